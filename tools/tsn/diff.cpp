// tsn diff: how files or directories differ by what they mean.

#include "tessarin/ide/Diff.hpp"

#include "tessarin/ide/Stages.hpp"

#include "Command.hpp"
#include "JsonWriter.hpp"
#include "Outcome.hpp"
#include "Printable.hpp"
#include "Report.hpp"
#include "Source.hpp"
#include "SourceFiles.hpp"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

constexpr const char* noFile = "/dev/null"; // how git names a side that is not there

struct DiffOptions {
  std::vector<std::string> paths;
  bool json = false;
  bool git = false;
};

/// Two files that are compared; one of them may be missing.
struct FilePair {
  std::optional<std::string> before; ///< paths to read
  std::optional<std::string> after;
  std::string beforeName; ///< what they are called
  std::string afterName;

  [[nodiscard]] bool isMoved() const { return before && after && beforeName != afterName; }
};

// ---- which files are compared ----

/// The files below both directories. Of files that only one of them has, those of one name and one file name alone are
/// taken for one file that has moved.
std::vector<FilePair> pairsBelow(const std::string& before, const std::string& after, Console& console,
                                 Status& status) {
  namespace fs = std::filesystem;
  const auto relative = [&](const std::string& root) {
    std::map<std::string, std::string> files;
    for (const std::string& path : readableFilesBelow(root, console, status))
      files[fs::path(path).lexically_relative(root).string()] = path;
    return files;
  };
  const std::map<std::string, std::string> left = relative(before);
  const std::map<std::string, std::string> right = relative(after);

  std::vector<FilePair> pairs;
  std::map<std::string, std::vector<std::string>> gone;
  std::map<std::string, std::vector<std::string>> come;
  const auto fileName = [](const std::string& path) { return fs::path(path).filename().string(); };
  for (const auto& [name, path] : left) {
    const auto same = right.find(name);
    if (same == right.end()) {
      gone[fileName(name)].push_back(name);
    } else {
      pairs.push_back({path, same->second, name, name});
    }
  }
  for (const auto& [name, path] : right) {
    if (!left.contains(name)) come[fileName(name)].push_back(name);
  }
  std::set<std::string> moved;
  for (const auto& [name, paths] : gone) {
    const auto there = come.find(name);
    if (paths.size() == 1 && there != come.end() && there->second.size() == 1) {
      const std::string& to = there->second.front();
      pairs.push_back({left.at(paths.front()), right.at(to), paths.front(), to});
      moved.insert(name);
      continue;
    }
    for (const std::string& path : paths) pairs.push_back({left.at(path), std::nullopt, path, path});
  }
  for (const auto& [name, paths] : come) {
    if (moved.contains(name)) continue;
    for (const std::string& path : paths) pairs.push_back({std::nullopt, right.at(path), path, path});
  }
  std::stable_sort(pairs.begin(), pairs.end(),
                   [](const FilePair& a, const FilePair& b) { return a.afterName < b.afterName; });
  return pairs;
}

// ---- text ----

class TextOutput {
public:
  explicit TextOutput(Console& console) : out_(console.out()), hasColours_(console.outHasColours()) {}

  void write(const FilePair& files, const std::vector<ide::Change>& changes) {
    if (!files.before || !files.after) {
      line(files.before ? red : green, (files.before ? "removed file " : "added file ") + escaped(files.afterName));
      return;
    }
    if (changes.empty() && !files.isMoved()) return;
    line(bold,
         escaped(files.isMoved() ? "moved file " + files.beforeName + " -> " + files.afterName : files.afterName));
    for (const ide::Change& change : changes) write(change);
  }

private:
  static constexpr const char* bold = "\033[1m";
  static constexpr const char* red = "\033[31m";
  static constexpr const char* green = "\033[32m";

  void line(const char* colour, const std::string& text) {
    if (hasColours_ && colour != nullptr) {
      out_ << colour << text << "\033[0m\n";
    } else {
      out_ << text << '\n';
    }
  }
  static std::string placeOf(const ide::DiffSide& side) {
    return std::to_string(side.begin.line() + 1) + ':' + std::to_string(side.begin.column() + 1);
  }
  /// The text of an element, with the further lines under the first.
  static std::string indented(const nvf::ustring& text) {
    std::string out;
    for (std::size_t begin = 0; begin <= text.size();) {
      const std::size_t end = std::min(text.find(u'\n', begin), text.size());
      if (begin > 0) out += "\n      ";
      out += escaped(text.substr(begin, end - begin));
      begin = end + 1;
    }
    return out;
  }

  void write(const ide::Change& change) {
    const ide::DiffSide& side = change.after ? *change.after : *change.before;
    std::string head = "  " + std::string(wordFor(change.kind)) + ' ' + std::string(wordFor(change.element));
    if (!side.name.empty()) head += ' ' + escaped(side.name);
    if (change.before && change.after) {
      if (change.before->where != change.after->where) {
        head += ", in " + escaped(change.before->where) + " -> " + escaped(change.after->where);
      } else if (!side.where.empty()) {
        head += ", in " + escaped(side.where);
      }
      head += "  " + placeOf(*change.before) + " -> " + placeOf(*change.after);
    } else {
      if (!side.where.empty()) head += ", in " + escaped(side.where);
      head += "  " + placeOf(side);
    }
    line(nullptr, head);
    if (change.kind == ide::ChangeKind::Moved) return;
    if (change.before) line(red, "    - " + indented(change.before->text));
    if (change.after) line(green, "    + " + indented(change.after->text));
    for (const ide::DiffPart& part : change.parts) {
      line(nullptr, "      " + escaped(part.before) + "  ->  " + escaped(part.after));
    }
  }

  std::ostream& out_;
  bool hasColours_;
};

// ---- JSON ----

void writeSide(JsonWriter& json, const char* key, const std::optional<ide::DiffSide>& side) {
  if (!side) return;
  json.key(key).beginObject();
  json.key("name").string(side->name);
  json.key("text").string(side->text);
  json.key("where").string(side->where);
  json.key("line").number(side->begin.line());
  json.key("column").number(side->begin.column());
  json.endObject();
}

void writeRange(JsonWriter& json, const nvf::Range& range) {
  json.beginArray();
  for (const nvf::Location* place : {&range.begin(), &range.end()}) {
    json.number(place->lineColumn().line()).number(place->lineColumn().column());
  }
  json.endArray();
}

void writeJson(JsonWriter& json, const FilePair& files, const std::vector<ide::Change>& changes) {
  json.beginObject();
  if (files.before) json.key("before").string(files.beforeName);
  if (files.after) json.key("after").string(files.afterName);
  json.key("changes").beginArray();
  for (const ide::Change& change : changes) {
    json.beginObject();
    json.key("kind").word(wordFor(change.kind));
    json.key("element").word(wordFor(change.element));
    writeSide(json, "before", change.before);
    writeSide(json, "after", change.after);
    json.key("parts").beginArray();
    for (const ide::DiffPart& part : change.parts) {
      json.beginObject();
      json.key("before").string(part.before);
      json.key("after").string(part.after);
      const nvf::Range& before = part.beforeRange;
      json.key("beforeRange");
      writeRange(json, before);
      json.key("afterRange");
      writeRange(json, part.afterRange);
      json.endObject();
    }
    json.endArray().endObject();
  }
  json.endArray().endObject();
}

// ---- the run ----

class Run {
public:
  /// Begins with `status`, which is not forgotten.
  Run(const DiffOptions& options, Console& console, Status status = Status::Success)
      : options_(options), console_(console), status_(status) {}

  Status all(const std::vector<FilePair>& pairs) {
    TextOutput text(console_);
    JsonWriter json(console_.out());
    if (options_.json) {
      console_.beginDocument();
      json.beginObject().key("files").beginArray();
    }
    for (const FilePair& files : pairs) {
      std::vector<ide::Change> changes;
      if (files.before && files.after) {
        const std::optional<core::TSNFile> before = read(*files.before, files.beforeName);
        const std::optional<core::TSNFile> after = read(*files.after, files.afterName);
        if (!before || !after) continue;
        changes = ide::diff(*before, *after);
      }
      const bool isEqual = changes.empty() && files.before && files.after && !files.isMoved();
      if (!isEqual && status_ == Status::Success) status_ = Status::Fault;
      if (options_.json && !isEqual) writeJson(json, files, changes);
      if (!options_.json) text.write(files, changes);
    }
    if (options_.json) {
      json.endArray().endObject();
      console_.out() << '\n';
      console_.endDocument();
    }
    return status_;
  }

private:
  /// A file that cannot be read or has a fault cannot be compared: that is told, and is trouble. Warnings are not told.
  std::optional<core::TSNFile> read(const std::string& path, const std::string& name) {
    std::optional<Source> source;
    std::optional<core::TSNFile> file;
    const Report report(path, source, console_.errorHasColours());
    const auto failure = observe([](const nvf::Message&) {},
                                 [&] {
                                   source = Source::read(path);
                                   file = ide::buildFile(source->buffer());
                                 });
    if (!failure) return file;
    console_.report(report.failure(*failure));
    console_.report("tsn diff: " + escaped(name) + " is not compared\n");
    status_ = Status::Usage;
    return std::nullopt;
  }

  const DiffOptions& options_;
  Console& console_;
  Status status_;
};

/// `path old-file old-hex old-mode new-file new-hex new-mode`, and of a file that has been renamed the new path and how
/// alike they are; for a file in conflict the path alone. Git takes any status but 0 for a failure of the driver.
Status runForGit(const DiffOptions& options, Console& console) {
  const std::vector<std::string>& given = options.paths;
  if (given.size() < 7) {
    console.report("tsn diff: " + escaped(given.front()) + " is in conflict and is not compared\n");
    return Status::Success;
  }
  FilePair files{given[1], given[4], given[0], given.size() > 7 ? given[7] : given[0]};
  if (given[1] == noFile) files.before.reset();
  if (given[4] == noFile) files.after.reset();
  Run(options, console).all({files});
  return Status::Success;
}

Status runDiff(const DiffOptions& options, Console& console) {
  if (options.git) return runForGit(options, console);
  if (options.paths.size() != 2) {
    console.report("tsn diff: two files or two directories are compared\n");
    return Status::Usage;
  }
  const std::string& before = options.paths[0];
  const std::string& after = options.paths[1];
  const bool isDirectory = std::filesystem::is_directory(before);
  if (isDirectory != std::filesystem::is_directory(after)) {
    console.report("tsn diff: a file is not compared with a directory\n");
    return Status::Usage;
  }
  // Two files that were named belong together, whatever they are called.
  const std::string name = before + " -> " + after;
  Status status = Status::Success;
  const std::vector<FilePair> pairs =
      isDirectory ? pairsBelow(before, after, console, status) : std::vector<FilePair>{{before, after, name, name}};
  return Run(options, console, status).all(pairs);
}

} // namespace

Action diff(CLI::App& app) {
  const auto options = std::make_shared<DiffOptions>();
  app.add_option("FILE|DIR", options->paths, "two files, or two directories whose .tsn files are compared")
      ->required()
      ->type_name("");
  app.add_flag("--json", options->json, "answer with one line of JSON");
  app.add_flag("--git", options->git, "take the arguments that git gives to a diff driver, and always succeed");
  return [options](Console& console) { return runDiff(*options, console); };
}

} // namespace tessarin::tool
