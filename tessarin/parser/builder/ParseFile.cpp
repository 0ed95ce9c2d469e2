#include "tessarin/parser/builder/ParseFile.hpp"

#include "tessarin/foundation/failure.hpp"
#include "tessarin/foundation/source_file.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include <ostream>

namespace tessarin {

namespace {

TSNFile build(const nvf::SourceBuffer& source, const ParseOptions& options) {
  const compiler::core::ParseTree tree = compiler::core::Parser(source).parse();
  if (options.builder != nullptr) return options.builder->buildTSNFile(tree, options.source);
  return compiler::core::ASTBuilder(nvf::DefaultValueTokensToValue{}).buildTSNFile(tree, options.source);
}

} // namespace

Finding::Finding(const nvf::Message& message)
    : severity(message.severity()), text(message.text()), location(message.location()), id(message.id()) {}

Finding::Finding(const std::exception& exception) {
  const auto* failure = dynamic_cast<const nvf::Failure*>(&exception);
  text = failure == nullptr ? nvf::utf8_string_to_ustring(exception.what()) : failure->text();
  if (failure == nullptr) return;
  if (const nvf::Message* message = failure->findMessage()) id = message->id();
  if (const nvf::Location* place = failure->findLocation()) location = *place;
}

std::ostream& operator<<(std::ostream& stream, const Finding& finding) {
  if (finding.location) {
    if (!finding.location->fileName().empty()) stream << finding.location->fileName() << ':';
    stream << finding.location->lineColumn() << ": ";
  }
  stream << (finding.severity == nvf::Severity::Warning ? "warning: " : "error: ");
  return stream << nvf::encode_utf8(finding.text);
}

const TSNFile& ParseResult::value() const {
  if (!ok()) std::rethrow_exception(exception_);
  return *file_;
}

template <class Job>
ParseResult runJob(const Job& job) {
  ParseResult result;
  const nvf::ScopedWarningSink sink([&result](const nvf::Message& warning) { result.findings_.emplace_back(warning); });
  try {
    result.file_ = job();
  } catch (const std::exception& exception) {
    result.exception_ = std::current_exception();
    result.findings_.emplace_back(exception);
  }
  return result;
}

TSNFile parseFile(const std::filesystem::path& path, const ParseOptions& options) {
  return build(nvf::read_source(path), options);
}
TSNFile parseText(const std::filesystem::path& name, nvf::ustring_view text, const ParseOptions& options) {
  return build(nvf::SourceBuffer(nvf::FileName(name), text), options);
}
TSNFile parseText(const std::filesystem::path& name, std::string_view utf8, const ParseOptions& options) {
  return build(nvf::SourceBuffer(nvf::FileName(name), utf8), options);
}

ParseResult tryParseFile(const std::filesystem::path& path, const ParseOptions& options) {
  return runJob([&] { return parseFile(path, options); });
}
ParseResult tryParseText(const std::filesystem::path& name, nvf::ustring_view text, const ParseOptions& options) {
  return runJob([&] { return parseText(name, text, options); });
}
ParseResult tryParseText(const std::filesystem::path& name, std::string_view utf8, const ParseOptions& options) {
  return runJob([&] { return parseText(name, utf8, options); });
}

} // namespace tessarin
