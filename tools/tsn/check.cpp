// tsn check: what is wrong with files.

#include "Command.hpp"
#include "FileWalk.hpp"
#include "InOrder.hpp"
#include "JsonWriter.hpp"
#include "Outcome.hpp"
#include "Printable.hpp"
#include "Report.hpp"
#include "SetupFunction.hpp"
#include "Source.hpp"
#include "SourceFiles.hpp"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace tessarin::tool {

namespace {

struct CheckOptions {
  std::vector<std::string> paths;
  std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
  bool json = false;
};

/// What has come of one file: its part of the output, and what is counted.
struct FileResult {
  std::string output;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  Status status = Status::Success;
};

struct Summary {
  std::size_t files = 0;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  Status status = Status::Success;

  void add(const FileResult& file) {
    ++files;
    errors += file.errors;
    warnings += file.warnings;
    status = std::max(status, file.status);
  }
};

/// Takes the text through all stages. Throws the first fault.
void check(const Source& source) {
  static_cast<void>(setupFunctionOf(buildFile(source)));
}

FileResult checkForPeople(const std::string& path, bool colours) {
  FileResult result;
  std::optional<Source> source;
  const Report report(path, source, colours);
  const auto failure = observe(
      [&](const nvf::Message& message) {
        ++result.warnings;
        result.output += report.warning(message);
      },
      [&] {
        source = Source::read(path);
        check(*source);
      });
  if (failure) {
    ++result.errors;
    result.output += report.failure(*failure);
  }
  result.status = statusOf(failure);
  return result;
}

FileResult checkForMachines(const std::string& path) {
  std::vector<nvf::Message> warnings;
  const auto failure =
      observe([&](const nvf::Message& message) { warnings.push_back(message); }, [&] { check(Source::read(path)); });

  std::ostringstream text;
  JsonWriter json(text);
  json.beginObject();
  json.key("path").string(path);
  if (failure) writeJsonMember(json, *failure);
  json.key("warnings").beginArray();
  for (const nvf::Message& warning : warnings) writeJson(json, Finding(warning));
  json.endArray().endObject();
  return {text.str(), failure ? std::size_t{1} : std::size_t{0}, warnings.size(), statusOf(failure)};
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

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

Status checkFilesForPeople(const std::vector<std::string>& files, std::size_t jobs, Console& console) {
  Summary summary;
  forEachInOrder(
      files.size(), jobs, [&](std::size_t i) { return checkForPeople(files[i], console.outHasColours()); },
      [&](const FileResult& file) {
        console.out() << file.output;
        summary.add(file);
      });
  console.out() << counted(summary.files, "file") << " checked: " << counted(summary.errors, "error") << ", "
                << counted(summary.warnings, "warning") << '\n';
  return summary.status;
}

Status checkFilesForMachines(const std::vector<std::string>& files, std::size_t jobs, Console& console) {
  Summary summary;
  JsonWriter json(console.out());
  json.beginObject().key("files").beginArray();
  forEachInOrder(
      files.size(), jobs, [&](std::size_t i) { return checkForMachines(files[i]); },
      [&](const FileResult& file) {
        json.raw(file.output);
        summary.add(file);
      });
  json.endArray().key("summary").beginObject();
  json.key("files").number(summary.files);
  json.key("errors").number(summary.errors);
  json.key("warnings").number(summary.warnings);
  json.endObject().endObject();
  console.out() << '\n';
  return summary.status;
}

} // namespace

Action check(CLI::App& app) {
  const auto options = std::make_shared<CheckOptions>();
  app.add_option("paths", options->paths, "files, directories, or - for standard input")
      ->required()
      ->type_name("FILE|DIR");
  app.add_option("-j,--jobs", options->jobs, "files to check at the same time")
      ->check([](const std::string& text) {
        return text.find_first_not_of('0') == std::string::npos ? std::string("at least one file at a time")
                                                                : std::string();
      })
      ->type_name("N")
      ->capture_default_str();
  app.add_flag("--json", options->json, "answer with one line of JSON");
  return [options](Console& console) {
    const std::vector<std::string> files = filesToCheck(options->paths, console);
    return options->json ? checkFilesForMachines(files, options->jobs, console)
                         : checkFilesForPeople(files, options->jobs, console);
  };
}

} // namespace tessarin::tool
