// tsn check: what is wrong with files.

#include "CheckFormat.hpp"
#include "Command.hpp"
#include "FileWalk.hpp"
#include "InOrder.hpp"
#include "Outcome.hpp"
#include "Printable.hpp"
#include "SetupFunction.hpp"
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
  std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
  std::string format = formats[0].name;
};

/// Reads a file and takes its text through all stages, up to the first fault.
CheckedFile check(const std::string& path) {
  CheckedFile file{path, {}, {}, {}};
  file.failure = observe([&](const nvf::Message& message) { file.warnings.emplace_back(message); },
                         [&] {
                           file.source = Source::read(path);
                           static_cast<void>(setupFunctionOf(buildFile(*file.source)));
                         });
  return file;
}

Status checkFiles(const std::vector<std::string>& files, std::size_t jobs, CheckFormat& format) {
  struct Result {
    CheckSummary summary;
    std::function<void()> write;
  };
  CheckSummary summary;
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

/// The files that the arguments stand for, each once. Tells of directories that have none.
std::vector<std::string> filesToCheck(const std::vector<std::string>& arguments, Console& console) {
  std::vector<std::string> files;
  std::unordered_set<std::string> seen;
  const auto add = [&](const std::string& file) {
    if (seen.insert(file).second) files.push_back(file);
  };
  for (const std::string& argument : arguments) {
    std::error_code ignored;
    if (argument == Source::standardInput || !std::filesystem::is_directory(argument, ignored)) {
      add(argument);
      continue;
    }
    const std::vector<std::string> below = filesBelow(argument);
    if (below.empty()) console.report("tsn: there are no .tsn files below '" + escaped(argument) + "'\n");
    std::for_each(below.begin(), below.end(), add);
  }
  return files;
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
      ->check([](const std::string& text) {
        return text.find_first_not_of('0') == std::string::npos ? std::string("at least one file at a time")
                                                                : std::string();
      })
      ->option_text("N");
  addFormatOptions(app, options);
  return [options](Console& console) {
    const std::vector<std::string> files = filesToCheck(options->paths, console);
    const auto* row = std::find_if(std::begin(formats), std::end(formats),
                                   [&](const FormatRow& f) { return options->format == f.name; });
    return checkFiles(files, options->jobs, *row->make(console));
  };
}

} // namespace tessarin::tool
