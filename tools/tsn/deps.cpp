// tsn deps: which files of a library use which.

#include "tessarin/ide/Library.hpp"

#include "Command.hpp"
#include "JsonWriter.hpp"
#include "LibraryOptions.hpp"
#include "Printable.hpp"
#include "SourceFiles.hpp"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tessarin::tool {

namespace fs = std::filesystem;

namespace {

struct DepsOptions {
  LibraryOptions library;
  std::string path;
  bool json = false;
  bool dot = false;
};

/// What one file uses: the dotted names of the files that its names lead to, and the names that lead outside.
struct Uses {
  std::set<std::string> files;
  std::set<std::string> outside;
  bool isFaulty = false;
};

/// The steps of a path from its first to this one.
std::string pathText(const ide::Names& names, const ide::Reference& reference) {
  std::vector<const ide::Reference*> steps{&reference};
  while (steps.back()->parent != ide::noIndex) steps.push_back(&names.references[steps.back()->parent]);
  std::string text;
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
    text += (text.empty() ? "" : ".") + nvf::narrow((*step)->name.view());
  }
  return text;
}

std::string nameOf(const ide::Library& library, const fs::path& path) {
  const auto name = library.roots().nameOf(path);
  return name ? nvf::narrow(name->string()) : path.string();
}

Uses usesOf(ide::Library& library, const fs::path& path) {
  Uses uses;
  const ide::Names* names = library.names(path);
  if (names == nullptr) {
    uses.isFaulty = true;
    return uses;
  }
  const std::vector<ide::Meaning>& meanings = library.meanings(path);
  for (std::size_t i = 0; i < meanings.size(); ++i) {
    const ide::Reference& reference = names->references[i];
    const bool isType =
        reference.role == ide::Role::Type || reference.role == ide::Role::Base || reference.role == ide::Role::Import;
    if (meanings[i].kind == ide::Meaning::Kind::File) {
      if (meanings[i].path != path.lexically_normal()) uses.files.insert(nameOf(library, meanings[i].path));
    } else if (isType && reference.isLastStep && meanings[i].kind == ide::Meaning::Kind::Unknown) {
      uses.outside.insert(pathText(*names, reference));
    }
  }
  return uses;
}

using AllUses = std::map<std::string, Uses>;

void writeText(std::ostream& out, const AllUses& all) {
  for (const auto& [name, uses] : all) {
    out << escaped(name) << (uses.isFaulty ? " (has a fault)" : "") << '\n';
    for (const std::string& used : uses.files) out << "  " << escaped(used) << '\n';
    for (const std::string& used : uses.outside) out << "  " << escaped(used) << " (outside)\n";
  }
}

void writeNames(JsonWriter& json, const char* key, const std::set<std::string>& names) {
  json.key(key).beginArray();
  for (const std::string& name : names) json.string(name);
  json.endArray();
}

void writeJson(std::ostream& out, const AllUses& all) {
  JsonWriter json(out);
  json.beginObject().key("files").beginArray();
  for (const auto& [name, uses] : all) {
    json.beginObject();
    json.key("name").string(name);
    writeNames(json, "uses", uses.files);
    writeNames(json, "outside", uses.outside);
    json.key("faulty").raw(uses.isFaulty ? "true" : "false");
    json.endObject();
  }
  json.endArray().endObject();
  out << '\n';
}

/// A name in the language of Graphviz.
std::string quoted(const std::string& name) {
  std::string text = "\"";
  for (const char c : name) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  return text + '"';
}

void writeDot(std::ostream& out, const AllUses& all) {
  out << "digraph {\n";
  for (const auto& [name, uses] : all) {
    out << "  " << quoted(name) << ";\n";
    for (const std::string& used : uses.files) out << "  " << quoted(name) << " -> " << quoted(used) << ";\n";
    for (const std::string& used : uses.outside) {
      out << "  " << quoted(name) << " -> " << quoted(used) << " [style=dashed];\n";
    }
  }
  out << "}\n";
}

Status runDeps(const DepsOptions& options, Console& console) {
  const auto library = openLibrary(options.library, options.path);
  const bool isDirectory = fs::is_directory(options.path);
  if (!isDirectory && !fs::exists(options.path)) {
    console.report("tsn deps: " + escaped(options.path) + ": there is no such file\n");
    return Status::Usage;
  }
  AllUses all;
  Status status = Status::Success;
  for (const std::string& path :
       isDirectory ? readableFilesBelow(options.path, console, status) : std::vector<std::string>{options.path}) {
    Uses& uses = all[nameOf(*library, path)] = usesOf(*library, path);
    if (uses.isFaulty) status = std::max(status, Status::Fault);
  }
  if (options.json) {
    console.beginDocument();
    writeJson(console.out(), all);
    console.endDocument();
  } else if (options.dot) {
    writeDot(console.out(), all);
  } else {
    writeText(console.out(), all);
  }
  return status;
}

} // namespace

Action deps(CLI::App& app) {
  const auto options = std::make_shared<DepsOptions>();
  app.add_option("FILE|DIR", options->path, "a file, or a directory with all .tsn files below it")
      ->required()
      ->type_name("");
  addLibraryOptions(app, options->library);
  CLI::Option* json = app.add_flag("--json", options->json, "answer with one line of JSON");
  app.add_flag("--dot", options->dot, "answer with a graph in the language of Graphviz")->excludes(json);
  return [options](Console& console) { return runDeps(*options, console); };
}

} // namespace tessarin::tool
