// tsn outline: what a file declares.

#include "tessarin/ide/Outline.hpp"

#include "tessarin/ide/Stages.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"
#include "Printable.hpp"

#include <string>
#include <vector>

namespace tessarin::tool {

namespace {

using Entry = ide::OutlineEntry;

// ---- text ----

void writeLine(std::ostream& out, const std::string& text, const nvf::Location& place) {
  out << text << "  " << place.lineColumn().line() + 1 << ':' << place.lineColumn().column() + 1 << '\n';
}

std::string joined(const std::vector<nvf::ustring>& names) {
  std::string text;
  for (const nvf::ustring& name : names) text += (text.empty() ? "" : ", ") + escaped(name);
  return text;
}

void writeText(std::ostream& out, const ide::Outline& outline) {
  for (const Entry& import : outline.imports) writeLine(out, "import " + escaped(import.name), import.range.begin());
  if (outline.type != u"function") {
    const std::string base = outline.base ? " < " + escaped(outline.base->name) : "";
    writeLine(out, escaped(outline.type) + ' ' + escaped(outline.main.name) + base, outline.main.range.begin());
  }
  for (const auto& [kind, entries] : outline.members) {
    out << "  " << escaped(kind) << '\n';
    for (const Entry& entry : entries) writeLine(out, "    " + escaped(entry.name), entry.range.begin());
  }
  for (const ide::OutlineFunction& entry : outline.functions) {
    writeLine(out,
              "function [" + joined(entry.outputs) + "] = " + escaped(entry.function.name) + '(' +
                  joined(entry.inputs) + ')',
              entry.function.range.begin());
  }
}

// ---- JSON ----

/// The members `"name"`, `"line"` and `"column"` of an object, places from 0.
void writeEntry(JsonWriter& json, const Entry& entry) {
  json.key("name").string(entry.name);
  json.key("line").number(entry.range.begin().lineColumn().line());
  json.key("column").number(entry.range.begin().lineColumn().column());
}

void writeEntries(JsonWriter& json, const std::vector<Entry>& entries) {
  json.beginArray();
  for (const Entry& entry : entries) {
    json.beginObject();
    writeEntry(json, entry);
    json.endObject();
  }
  json.endArray();
}

void writeNames(JsonWriter& json, const std::vector<nvf::ustring>& names) {
  json.beginArray();
  for (const nvf::ustring& name : names) json.string(name);
  json.endArray();
}

void writeJson(JsonWriter& json, const ide::Outline& outline) {
  json.key("outline").beginObject();
  json.key("type").string(outline.type);
  writeEntry(json, outline.main);
  json.key("base");
  if (outline.base) {
    json.string(outline.base->name);
  } else {
    json.null();
  }
  json.key("imports");
  writeEntries(json, outline.imports);
  json.key("members").beginArray();
  for (const auto& [kind, entries] : outline.members) {
    json.beginObject();
    json.key("kind").string(kind);
    json.key("entries");
    writeEntries(json, entries);
    json.endObject();
  }
  json.endArray();
  json.key("functions").beginArray();
  for (const ide::OutlineFunction& entry : outline.functions) {
    json.beginObject();
    writeEntry(json, entry.function);
    json.key("inputs");
    writeNames(json, entry.inputs);
    json.key("outputs");
    writeNames(json, entry.outputs);
    json.endObject();
  }
  json.endArray().endObject();
}

constexpr FileAnswer outlineAnswer{
    .text = [](const Source& source,
               std::ostream& out) { writeText(out, ide::outlineOf(ide::buildFile(source.buffer()))); },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return
          [outline = ide::outlineOf(ide::buildFile(source.buffer()))](JsonWriter& json) { writeJson(json, outline); };
    },
};

} // namespace

Action outline(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, outlineAnswer, console); };
}

} // namespace tessarin::tool
