// The forms of `tsn check` that are its own: text and JSON.
#include "CheckFormat.hpp"

#include "JsonWriter.hpp"
#include "Report.hpp"

#include <sstream>

namespace tessarin::tool {

namespace {

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

class TextFormat final : public CheckFormat {
public:
  explicit TextFormat(Console& console) : console_(console) {}

  std::function<void()> prepare(CheckedFile file) override {
    const Report report(file.path, file.source, console_.outHasColours());
    std::string text;
    for (const Finding& warning : file.warnings) text += report.warning(warning);
    if (file.failure) text += report.failure(*file.failure);
    return [this, text = std::move(text)] { console_.out() << text; };
  }

  void finish(const CheckSummary& summary) override {
    console_.out() << counted(summary.files, "file") << " checked: " << counted(summary.errors, "error") << ", "
                   << counted(summary.warnings, "warning") << '\n';
  }

private:
  Console& console_;
};

class JsonFormat final : public CheckFormat {
public:
  explicit JsonFormat(Console& console) : console_(console), json_(console.out()) {
    json_.beginObject().key("files").beginArray();
  }

  std::function<void()> prepare(CheckedFile file) override {
    std::ostringstream stream;
    JsonWriter json(stream);
    json.beginObject();
    json.key("path").string(file.path);
    if (file.failure) writeJsonMember(json, *file.failure);
    json.key("warnings").beginArray();
    for (const Finding& warning : file.warnings) writeJson(json, warning);
    json.endArray().endObject();
    return [this, text = std::move(stream).str()] { json_.raw(text); };
  }

  void finish(const CheckSummary& summary) override {
    json_.endArray().key("summary").beginObject();
    json_.key("files").number(summary.files);
    json_.key("errors").number(summary.errors);
    json_.key("warnings").number(summary.warnings);
    json_.endObject().endObject();
    console_.out() << '\n';
  }

private:
  Console& console_;
  JsonWriter json_;
};

} // namespace

std::unique_ptr<CheckFormat> textFormat(Console& console) {
  return std::make_unique<TextFormat>(console);
}

std::unique_ptr<CheckFormat> jsonFormat(Console& console) {
  return std::make_unique<JsonFormat>(console);
}

} // namespace tessarin::tool
