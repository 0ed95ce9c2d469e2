// The forms in which `tsn check` tells what it finds.
#pragma once

#include "Console.hpp"
#include "Outcome.hpp"
#include "Source.hpp"
#include "Status.hpp"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarin::tool {

/// What has come of checking a file.
struct CheckedFile {
  std::string path;              ///< as the command line has it, or the path below a directory of the command line
  std::optional<Source> source;  ///< nothing where it cannot be read
  std::vector<Finding> warnings; ///< in the order in which they were issued
  std::optional<Failure> failure;
};

/// What has come of some files, as figures.
struct CheckSummary {
  std::size_t files = 0;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  Status status = Status::Success;

  CheckSummary() = default;
  explicit CheckSummary(const CheckedFile& file)
      : files(1), errors(file.failure ? 1 : 0), warnings(file.warnings.size()), status(statusOf(file.failure)) {}

  CheckSummary& operator+=(const CheckSummary& other) {
    files += other.files;
    errors += other.errors;
    warnings += other.warnings;
    status = std::max(status, other.status);
    return *this;
  }
};

/// One way to write what is found. The console must live longer.
class CheckFormat {
public:
  CheckFormat() = default;
  CheckFormat(const CheckFormat&) = delete;
  CheckFormat& operator=(const CheckFormat&) = delete;
  virtual ~CheckFormat() = default;

  /// Makes up what is to be written about a file; calling the result writes it. Safe from any thread, while the results
  /// are called on one, in the order of the files, before `finish`.
  [[nodiscard]] virtual std::function<void()> prepare(CheckedFile file) = 0;
  /// Writes what stands behind all files.
  virtual void finish(const CheckSummary& summary) = 0;
};

/// For people: each finding with its line of source, and a line of figures at the end.
std::unique_ptr<CheckFormat> textFormat(Console& console);
/// The tool's own JSON, a document of one line.
std::unique_ptr<CheckFormat> jsonFormat(Console& console);
/// SARIF 2.1.0, the format of the OASIS standard for the results of static analysis, in one line.
std::unique_ptr<CheckFormat> sarifFormat(Console& console);

} // namespace tessarin::tool
