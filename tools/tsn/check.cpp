// tsn check: what is wrong with files.

#include "tessarin/ide/Stages.hpp"

#include "CheckFormat.hpp"
#include "Command.hpp"
#include "InOrder.hpp"
#include "Outcome.hpp"
#include "Printable.hpp"
#include "Source.hpp"
#include "SourceFiles.hpp"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tessarin::tool {

namespace {

struct FormatRow {
  const char* name;
  std::unique_ptr<CheckFormat> (*make)(Console&);
};

/// The first one is the default.
constexpr FormatRow formats[] = {{"text", textFormat}, {"json", jsonFormat}, {"sarif", sarifFormat}};

struct CheckOptions {
  std::vector<std::string> paths;
  std::size_t jobs = std::clamp(std::thread::hardware_concurrency(), 1U, 256U);
  std::string format = formats[0].name;
};

/// Reads a file and takes its text through all stages, up to the first fault.
CheckedFile check(const std::string& path) {
  CheckedFile file{path, {}, {}, {}};
  const auto warn = [&](const nvf::Message& message) { file.warnings.emplace_back(message); };
  file.failure = observe(warn, [&] {
    file.source = Source::read(path);
    static_cast<void>(ide::setupFunctionOf(ide::buildFile(file.source->buffer(), warn)));
  });
  if (file.source) addEnds(*file.source, file.warnings, file.failure);
  return file;
}

/// `summary` begins with what is known before the first file is read.
Status checkFiles(const std::vector<std::string>& files, std::size_t jobs, CheckFormat& format, CheckSummary summary) {
  struct Result {
    CheckSummary summary;
    std::function<void()> write;
  };
  forEachInOrder(
      files.size(), jobs,
      [&](std::size_t i) {
        CheckedFile file = check(files[i]);
        const CheckSummary figures(file);
        return Result{figures, format.prepare(std::move(file))};
      },
      [&](const Result& result) {
        result.write();
        summary += result.summary;
      });
  format.finish(summary);
  return summary.status;
}

/// What the arguments stand for.
struct FilesToCheck {
  std::vector<std::string> files; ///< each once
  Status status = Status::Success;
};

/// Tells of directories that have no files or cannot be read.
FilesToCheck filesToCheck(const std::vector<std::string>& arguments, Console& console) {
  FilesToCheck result;
  std::unordered_set<std::string> seen;
  const auto add = [&](const std::string& file) {
    if (seen.insert(file == Source::standardInput ? file : identityOf(file)).second) result.files.push_back(file);
  };
  for (const std::string& argument : arguments) {
    std::error_code ignored;
    if (argument == Source::standardInput || !std::filesystem::is_directory(argument, ignored)) {
      add(argument);
      continue;
    }
    const std::vector<std::string> below = readableFilesBelow(argument, console, result.status);
    if (below.empty()) console.report("tsn: there are no .tsn files below '" + escaped(argument) + "'\n");
    std::for_each(below.begin(), below.end(), add);
  }
  if (result.files.empty()) result.status = Status::Usage;
  return result;
}

/// Says what is wrong with a number of jobs.
std::string jobsFault(const std::string& text) {
  constexpr unsigned long most = 256;
  const bool isNumber = !text.empty() && text.size() <= 3 && !text.starts_with('0') &&
                        text.find_first_not_of("0123456789") == std::string::npos;
  const unsigned long number = isNumber ? std::stoul(text) : 0;
  return number >= 1 && number <= most ? std::string() : "must be a whole number from 1 to " + std::to_string(most);
}

/// Adds --format, and --json, which is short for one form.
void addFormatOptions(CLI::App& app, const std::shared_ptr<CheckOptions>& options) {
  std::vector<std::string> names;
  std::string alternatives;
  for (const FormatRow& row : formats) {
    names.emplace_back(row.name);
    alternatives += (alternatives.empty() ? "" : "|") + names.back();
  }
  CLI::Option* format =
      app.add_option("--format", options->format, "write text for people (the default), JSON, or SARIF 2.1.0")
          ->check(CLI::IsMember(names))
          ->option_text(alternatives);
  app.add_flag_callback(
         "--json", [options] { options->format = "json"; }, "the same as --format json")
      ->check([options, format](const std::string&) { // once --format has been read, for it stands before
        const bool contradicts = format->count() > 0 && options->format != "json";
        return contradicts ? "contradicts --format " + options->format : std::string();
      });
}

} // namespace

Action check(CLI::App& app) {
  const auto options = std::make_shared<CheckOptions>();
  app.add_option("FILE|DIR", options->paths, "files, directories, or - for standard input")->required()->type_name("");
  app.add_option("-j,--jobs", options->jobs, "check so many files at the same time (by default one for each processor)")
      ->check(jobsFault)
      ->option_text("N");
  addFormatOptions(app, options);
  return [options](Console& console) {
    const FilesToCheck toCheck = filesToCheck(options->paths, console);
    const auto* row = std::find_if(std::begin(formats), std::end(formats),
                                   [&](const FormatRow& f) { return options->format == f.name; });
    const bool isDocument = row != std::begin(formats);
    if (isDocument) console.beginDocument();
    CheckSummary summary;
    summary.status = toCheck.status;
    const Status status = checkFiles(toCheck.files, options->jobs, *row->make(console), summary);
    if (isDocument) console.endDocument();
    return status;
  };
}

} // namespace tessarin::tool
