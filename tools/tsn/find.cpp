// tsn find: where a name of a library is declared.

#include "tessarin/ide/Library.hpp"

#include "Command.hpp"
#include "JsonWriter.hpp"
#include "LibraryOptions.hpp"
#include "Printable.hpp"
#include "SourceFiles.hpp"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarin::tool {

namespace fs = std::filesystem;

namespace {

struct FindOptions {
  LibraryOptions library;
  std::string name;
  bool json = false;
};

/// A declaration, or a directory, which has no place.
struct Place {
  std::string path;
  std::string kind;
  std::optional<nvf::LineColumn> begin;
};

Place placeOf(const std::string& path, const ide::Declaration& declaration) {
  return {path, std::string(wordFor(declaration.kind)), declaration.begin};
}

/// What the name leads to from a root, or all declarations of a plain name below the roots.
std::vector<Place> find(ide::Library& library, const nvf::CxIdPath& name, Console& console, Status& status) {
  const ide::Meaning meaning = library.find(name);
  if (meaning.kind == ide::Meaning::Kind::Package) return {{meaning.path.string(), "package", std::nullopt}};
  if (meaning.kind != ide::Meaning::Kind::Unknown) {
    return {placeOf(meaning.path.string(), library.names(meaning.path)->declarations[meaning.declaration])};
  }
  std::vector<Place> places;
  if (name.size() > 1) return places;
  for (const fs::path& root : library.roots().directories()) {
    for (const std::string& path : readableFilesBelow(root, console, status)) {
      const ide::Names* names = library.names(path);
      if (names == nullptr) continue;
      for (const ide::Declaration& declaration : names->declarations) {
        if (declaration.name == name.front())
          places.push_back(placeOf(fs::path(path).lexically_normal().string(), declaration));
      }
    }
  }
  return places;
}

Status runFind(const FindOptions& options, Console& console) {
  std::optional<nvf::CxIdPath> name;
  try {
    name.emplace(std::string_view(options.name));
  } catch (const nvf::Exception&) {
    console.report("tsn find: '" + escaped(options.name) + "' is no name\n");
    return Status::Usage;
  }
  const auto library = openLibrary(options.library, ".");
  Status status = Status::Success;
  const std::vector<Place> places = find(*library, *name, console, status);
  if (options.json) {
    console.beginDocument();
    JsonWriter json(console.out());
    json.beginObject().key("places").beginArray();
    for (const Place& place : places) {
      json.beginObject();
      json.key("path").string(place.path);
      json.key("kind").word(place.kind);
      if (place.begin) json.key("line").number(place.begin->line());
      if (place.begin) json.key("column").number(place.begin->column());
      json.endObject();
    }
    json.endArray().endObject();
    console.out() << '\n';
    console.endDocument();
  } else {
    for (const Place& place : places) {
      console.out() << escaped(place.path);
      if (place.begin) console.out() << ':' << place.begin->line() + 1 << ':' << place.begin->column() + 1;
      console.out() << ": " << place.kind << '\n';
    }
  }
  return places.empty() ? std::max(status, Status::Fault) : status;
}

} // namespace

Action find(CLI::App& app) {
  const auto options = std::make_shared<FindOptions>();
  app.add_option("NAME", options->name, "a dotted name from a root, or a plain name that is looked for in all files")
      ->required()
      ->type_name("");
  addLibraryOptions(app, options->library);
  app.add_flag("--json", options->json, "answer with one line of JSON");
  return [options](Console& console) { return runFind(*options, console); };
}

} // namespace tessarin::tool
