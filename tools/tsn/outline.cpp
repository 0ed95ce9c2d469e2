// tsn outline: what a file declares.

#include "tessarin/ide/FileWalk.hpp"
#include "tessarin/ide/Stages.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"
#include "Printable.hpp"

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

/// A name with its place.
struct Entry {
  nvf::ustring name;
  nvf::Location place;
};

/// The members by the keyword of their blocks.
using Members = std::vector<std::pair<nvf::ustring, std::vector<Entry>>>;

struct FunctionEntry {
  Entry function;
  std::vector<nvf::ustring> inputs;
  std::vector<nvf::ustring> outputs;
};

struct Outline {
  std::vector<Entry> imports; // with ".*" behind those that import all names
  std::string type;           // "component", "domain" or "function"
  Entry main;
  std::optional<Entry> base;
  /// In the order of the kinds of members; those in conditional sections and loops included.
  Members members;
  std::vector<FunctionEntry> functions; // the local ones, or first the function of the file
};

Entry entryOf(const core::Ident& ident) {
  return {ident.string(), ident.range().begin()};
}

/// Gathers the members of a model by kind.
class MemberCollector : public ide::FileVisitor {
public:
  void declarations(const core::DeclarationBlock& block) override {
    std::vector<Entry>& entries = members_[block.type()];
    for (const core::DeclarationItem& item : block.declarations()) {
      if (const auto* ident = item.getIf<core::Ident>()) {
        entries.push_back(entryOf(*ident));
      } else if (const auto* element = item.getIf<core::ObjectArrayElementDecl>()) {
        entries.push_back(entryOf(element->LHS().id()));
      } else {
        core::opt_ident_vector_handler(core::id_list_value(item).ids(), [&](const core::Ident& name, unsigned long) {
          entries.push_back(entryOf(name));
        });
      }
    }
  }
  void modechart(const core::ModechartDeclaration& chart) override { modecharts_.push_back(entryOf(chart.id())); }

  [[nodiscard]] Members take() {
    Members result;
    for (auto& [type, entries] : members_) {
      result.emplace_back(core::DeclarationBlock::typeString(type), std::move(entries));
    }
    if (!modecharts_.empty()) result.emplace_back(u"modecharts", std::move(modecharts_));
    return result;
  }

private:
  std::map<core::MemberType::Value, std::vector<Entry>> members_;
  std::vector<Entry> modecharts_;
};

FunctionEntry functionEntry(const core::TSNFunction& function) {
  FunctionEntry entry{entryOf(function.name()), {}, {}};
  for (const core::Ident& input : function.inputs()) entry.inputs.push_back(input.string());
  for (const core::Ident& output : function.outputs()) entry.outputs.push_back(output.string());
  return entry;
}

struct MainPart {
  Outline& outline;

  void operator()(const core::ModelFile& file) const {
    const core::Model& model = file.model();
    outline.type = model.type() == core::ModelType::DDOMAIN ? "domain" : "component";
    outline.main = entryOf(model.name());
    if (const auto& base = model.baseClassName()) outline.base = Entry{base->name().string(), base->name().location()};
  }
  void operator()(const core::TSNFunctionFile& file) const {
    outline.type = "function";
    outline.main = entryOf(file.tsnFunction().name());
    outline.functions.push_back(functionEntry(file.tsnFunction()));
  }
};

Outline outlineOf(const Source& source) {
  const core::TSNFile file = ide::buildFile(source.buffer());
  Outline outline;
  MemberCollector members;
  ide::walk(file, members);
  outline.members = members.take();
  std::visit(
      [&outline](const auto& kind) {
        for (const core::ImportStmt& import : kind.importStmts()) {
          nvf::ustring name = import.importName().string();
          if (import.isUnqualified()) name += u".*";
          outline.imports.push_back({std::move(name), import.location()});
        }
        MainPart{outline}(kind);
        for (const core::TSNFunction* function : inOrderOfName(kind.localTSNFunctions())) {
          outline.functions.push_back(functionEntry(*function));
        }
      },
      file);
  return outline;
}

// ---- text ----

void writeLine(std::ostream& out, const std::string& text, const nvf::Location& place) {
  out << text << "  " << place.lineColumn().line() + 1 << ':' << place.lineColumn().column() + 1 << '\n';
}

std::string joined(const std::vector<nvf::ustring>& names) {
  std::string text;
  for (const nvf::ustring& name : names) text += (text.empty() ? "" : ", ") + escaped(name);
  return text;
}

void writeText(std::ostream& out, const Outline& outline) {
  for (const Entry& import : outline.imports) writeLine(out, "import " + escaped(import.name), import.place);
  if (outline.type != "function") {
    const std::string base = outline.base ? " < " + escaped(outline.base->name) : "";
    writeLine(out, outline.type + ' ' + escaped(outline.main.name) + base, outline.main.place);
  }
  for (const auto& [kind, entries] : outline.members) {
    out << "  " << escaped(kind) << '\n';
    for (const Entry& entry : entries) writeLine(out, "    " + escaped(entry.name), entry.place);
  }
  for (const FunctionEntry& entry : outline.functions) {
    writeLine(out,
              "function [" + joined(entry.outputs) + "] = " + escaped(entry.function.name) + '(' +
                  joined(entry.inputs) + ')',
              entry.function.place);
  }
}

// ---- JSON ----

/// The members `"name"`, `"line"` and `"column"` of an object, places from 0.
void writeEntry(JsonWriter& json, const Entry& entry) {
  json.key("name").string(entry.name);
  json.key("line").number(entry.place.lineColumn().line());
  json.key("column").number(entry.place.lineColumn().column());
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

void writeJson(JsonWriter& json, const Outline& outline) {
  json.key("outline").beginObject();
  json.key("type").word(outline.type);
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
  for (const FunctionEntry& entry : outline.functions) {
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
    .text = [](const Source& source, std::ostream& out) { writeText(out, outlineOf(source)); },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return [outline = outlineOf(source)](JsonWriter& json) { writeJson(json, outline); };
    },
};

} // namespace

Action outline(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, outlineAnswer, console); };
}

} // namespace tessarin::tool
