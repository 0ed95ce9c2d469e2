#include "FileCommand.hpp"

#include "Outcome.hpp"
#include "Report.hpp"
#include "TerminalBuffer.hpp"

#include <optional>
#include <ostream>
#include <vector>

namespace tessarin::tool {

namespace {

Status answerText(const std::string& path, const FileAnswer& how, Console& console) {
  std::optional<Source> source;
  const Report report(path, source, console.errorHasColours());
  const auto failure = observe([&](const nvf::Message& message) { console.report(report.warning(Finding(message))); },
                               [&] {
                                 source = Source::read(path);
                                 writeText(console, [&](std::ostream& out) { how.text(*source, out); });
                               });
  if (failure) console.report(report.failure(*failure));
  return statusOf(failure);
}

/// Writes the document: the answer, where there is no failure.
void writeDocument(const FileAnswer& how, const std::function<void(JsonWriter&)>& writeAnswer,
                   const std::optional<Failure>& failure, const std::vector<Finding>& warnings, Console& console) {
  console.beginDocument();
  JsonWriter json(console.out());
  if (how.isWholeDocument && !failure) {
    writeAnswer(json);
  } else {
    json.beginObject();
    if (failure) {
      writeJsonMember(json, *failure);
    } else {
      writeAnswer(json);
    }
    json.key("warnings").beginArray();
    for (const Finding& warning : warnings) writeJson(json, warning);
    json.endArray().endObject();
  }
  console.out() << '\n';
  console.endDocument();
}

Status answerJson(const std::string& path, const FileAnswer& how, Console& console) {
  std::optional<Source> source;
  std::vector<Finding> warnings;
  std::function<void(JsonWriter&)> writeAnswer;
  auto failure = observe([&](const nvf::Message& message) { warnings.emplace_back(message); },
                         [&] {
                           source = Source::read(path);
                           writeAnswer = how.json(*source);
                         });
  if (source) addEnds(*source, warnings, failure);
  if (!failure) {
    // Where the answer cannot be written down, the failure stands in its place.
    failure =
        observe([](const nvf::Message&) {}, [&] { writeDocument(how, writeAnswer, std::nullopt, warnings, console); });
    if (!failure) return Status::Success;
    console.dropDocument();
    writeAnswer = nullptr;
  }
  writeDocument(how, writeAnswer, failure, warnings, console);
  return statusOf(failure);
}

} // namespace

std::shared_ptr<const FileOptions> addFileOptions(CLI::App& app) {
  const auto options = std::make_shared<FileOptions>();
  app.add_option("FILE", options->path, "the file, in UTF-8, or - for standard input")->required()->type_name("");
  app.add_flag("--json", options->json, "answer with one line of JSON");
  return options;
}

Status answer(const FileOptions& options, const FileAnswer& how, Console& console) {
  return options.json ? answerJson(options.path, how, console) : answerText(options.path, how, console);
}

} // namespace tessarin::tool
