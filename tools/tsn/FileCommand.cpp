#include "FileCommand.hpp"

#include "Outcome.hpp"
#include "Report.hpp"

#include <optional>
#include <vector>

namespace tessarin::tool {

namespace {

Status answerText(const std::string& path, const FileAnswer& how, Console& console) {
  std::optional<Source> source;
  const Report report(path, source, console.errorHasColours());
  const auto failure = observe([&](const nvf::Message& message) { console.report(report.warning(Finding(message))); },
                               [&] {
                                 source = Source::read(path);
                                 how.text(*source, console.out());
                               });
  if (failure) console.report(report.failure(*failure));
  return statusOf(failure);
}

Status answerJson(const std::string& path, const FileAnswer& how, Console& console) {
  std::vector<nvf::Message> warnings;
  std::function<void(JsonWriter&)> writeAnswer;
  const auto failure = observe([&](const nvf::Message& message) { warnings.push_back(message); },
                               [&] { writeAnswer = how.json(Source::read(path)); });

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
    for (const nvf::Message& warning : warnings) writeJson(json, Finding(warning));
    json.endArray().endObject();
  }
  console.out() << '\n';
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
