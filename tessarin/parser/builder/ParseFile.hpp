// A file from its text to its syntax tree in one call.
//
//   const auto file = tessarin::parseFile("motor.tsn");                  throws the first fault
//
//   const tessarin::ParseResult result = tessarin::tryParseFile("motor.tsn");
//   for (const tessarin::Finding& finding : result.findings()) std::cerr << finding << '\n';
//   if (result) use(*result);
//
// Every call is a job of its own: the warnings that it gives rise to are in its result, or go where `nvf::Warning`
// says, and jobs on other threads do not see them. All functions may be called from any thread.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/message.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include <exception>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string_view>
#include <vector>

namespace tessarin {

/// A file of the language: a model (0) or a function (1), each with its imports and local functions.
using compiler::core::TSNFile;

/// How a file is built.
struct ParseOptions {
  /// What turns the parse tree into the file; null for one that reads values back, so that a printed file prints the
  /// same again. Must live as long as the call.
  const compiler::core::ASTBuilder* builder = nullptr;
  /// The mark that the model or function gets.
  compiler::core::FileSource source = compiler::core::FileSource::open;
};

/// Something that is said about a text.
struct TESSARIN_EXPORT Finding {
  /// How grave it is, the sentence without the place, and the place, where there is one.
  /// @{
  nvf::Severity severity = nvf::Severity::Error;
  nvf::ustring text;
  std::optional<nvf::Location> location;
  /// @}
  /// Its id and arguments; absent where it is none of the catalog, as for a file that cannot be read.
  std::optional<nvf::BaseMsgID> id;

  /// A warning, or an error that has become a message.
  explicit Finding(const nvf::Message& message);
  /// What has ended a job. Any exception of the standard library has at least a text.
  explicit Finding(const std::exception& exception);
};
/// Writes `path:line:column: error: sentence`, in UTF-8, with line and column from 1, and without a place where there
/// is none.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const Finding& finding);

/// What has become of a job: a file, or what was thrown; and what was said meanwhile. Copies share what was thrown.
class TESSARIN_EXPORT ParseResult {
public:
  /// Whether there is a file.
  /// @{
  [[nodiscard]] bool ok() const noexcept { return file_.has_value(); }
  explicit operator bool() const noexcept { return ok(); }
  /// @}
  /// The file; there must be one.
  /// @{
  [[nodiscard]] const TSNFile& operator*() const noexcept { return *file_; }
  [[nodiscard]] const TSNFile* operator->() const noexcept { return &*file_; }
  /// @}
  /// The file, or throws what has ended the job.
  [[nodiscard]] const TSNFile& value() const;

  /// The warnings in their order, and behind them the error, if there is one.
  [[nodiscard]] const std::vector<Finding>& findings() const noexcept { return findings_; }
  /// What has ended the job, or null where there is a file.
  [[nodiscard]] const std::exception_ptr& exception() const noexcept { return exception_; }

private:
  template <class Job>
  friend ParseResult runJob(const Job& job);

  std::optional<TSNFile> file_;
  std::vector<Finding> findings_;
  std::exception_ptr exception_;
};

/// Reads, parses and builds the UTF-8 file `path`. Throws `nvf::UnreadableFile`, `nvf::InvalidUtf8`, or the first fault
/// as a `nvf::LocationException`; all are `nvf::Failure`s. Warnings go to `nvf::Warning::get()`.
[[nodiscard]] TESSARIN_EXPORT TSNFile parseFile(const std::filesystem::path& path, const ParseOptions& options = {});
/// The same for a text, whose file is called `name` in places; whether there is such a file is not asked.
/// @{
[[nodiscard]] TESSARIN_EXPORT TSNFile parseText(const std::filesystem::path& name, nvf::ustring_view text,
                                                const ParseOptions& options = {});
[[nodiscard]] TESSARIN_EXPORT TSNFile parseText(const std::filesystem::path& name, std::string_view utf8,
                                                const ParseOptions& options = {});
/// @}

/// As the above, but for what they throw: it is in the result, as are the warnings, which go nowhere else. Throws
/// `std::bad_alloc` only, where there is no memory for the result.
/// @{
[[nodiscard]] TESSARIN_EXPORT ParseResult tryParseFile(const std::filesystem::path& path,
                                                       const ParseOptions& options = {});
[[nodiscard]] TESSARIN_EXPORT ParseResult tryParseText(const std::filesystem::path& name, nvf::ustring_view text,
                                                       const ParseOptions& options = {});
[[nodiscard]] TESSARIN_EXPORT ParseResult tryParseText(const std::filesystem::path& name, std::string_view utf8,
                                                       const ParseOptions& options = {});
/// @}

} // namespace tessarin
