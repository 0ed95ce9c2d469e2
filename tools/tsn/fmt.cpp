// tsn fmt: files laid out anew.

#include "tessarin/ide/EditorConfig.hpp"
#include "tessarin/ide/Format.hpp"
#include "tessarin/ide/TextEdit.hpp"

#include "Command.hpp"
#include "Outcome.hpp"
#include "Printable.hpp"
#include "Report.hpp"
#include "Source.hpp"
#include "TreeFile.hpp"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace tessarin::tool {

namespace {

struct FmtOptions {
  std::vector<std::string> paths;
  std::string stdinPath;
  std::optional<ide::LineRange> lines;
  bool check = false;
  bool diff = false;
};

/// `A:B`, two numbers from 1, as a range of lines from 0; nothing where it is no such thing.
std::optional<ide::LineRange> linesIn(const std::string& text) {
  std::size_t first = 0;
  std::size_t last = 0;
  const char* const end = text.data() + text.size();
  const auto [colon, firstFailure] = std::from_chars(text.data(), end, first);
  if (firstFailure != std::errc() || colon == end || *colon != ':') return std::nullopt;
  const auto [rest, lastFailure] = std::from_chars(colon + 1, end, last);
  if (lastFailure != std::errc() || rest != end || first == 0 || last < first) return std::nullopt;
  return ide::LineRange{first - 1, last - 1};
}

nvf::ustring decoded(const std::string& bytes) {
  try {
    return nvf::decode_utf8(bytes);
  } catch (const nvf::InvalidUtf8& e) {
    throw NotUtf8(e, bytes);
  }
}

/// The formatting of one input.
class Formatting {
public:
  Formatting(const FmtOptions& options, Console& console) : options_(options), console_(console) {}

  /// Formats a file in place, or tells what it would become.
  Status file(const TreePath& path) {
    return observed(path.shown, [&] {
      const TreeFile file(path.root, path.path);
      const nvf::ustring text = decoded(file.read());
      const auto formatted = format(path.shown, text, optionsFor(path.shown));
      if (!formatted || *formatted == text) return;
      tell(path.shown, text, *formatted);
      if (!options_.check && !options_.diff) file.replace(nvf::encode_utf8(*formatted));
    });
  }

  /// Formats standard input to standard output.
  Status standardInput() {
    return observed(Source::standardInput, [&] {
      const Source source = Source::read(Source::standardInput);
      const std::string shown = options_.stdinPath.empty() ? Source::standardInputName : options_.stdinPath;
      const nvf::ustring text(source.text());
      const auto options = options_.stdinPath.empty() ? ide::FormatOptions() : optionsFor(options_.stdinPath);
      const nvf::ustring formatted = format(shown, text, options).value_or(text);
      if (formatted != text) tell(shown, text, formatted);
      if (!options_.check && !options_.diff) console_.out() << nvf::encode_utf8(formatted);
    });
  }

private:
  template <class Stage>
  Status observed(const std::string& shown, const Stage& stage) {
    status_ = Status::Success;
    const std::optional<Source> noSource;
    const auto failure = observe([](const nvf::Message&) {}, stage);
    if (!failure) return status_;
    console_.report(Report(shown, noSource, console_.errorHasColours()).failure(*failure));
    return std::max(status_, statusOf(failure));
  }

  [[nodiscard]] ide::FormatOptions optionsFor(const std::string& path) const {
    ide::FormatOptions options = ide::formatOptionsFor(path);
    options.lines = options_.lines;
    return options;
  }

  /// Writes a sentence about a place of the input to standard error.
  void complain(const std::string& shown, const nvf::ustring& text, std::size_t offset, const std::string& sentence) {
    const ide::Position place = ide::LineTable(text).utf16(offset);
    console_.report(escaped(shown) + ":" + std::to_string(place.line + 1) + ":" + std::to_string(place.column + 1) +
                    ": " + sentence + "\n");
    status_ = Status::Fault;
  }

  /// Nothing where the text is to stay as it is.
  std::optional<nvf::ustring> format(const std::string& shown, const nvf::ustring& text, ide::FormatOptions options) {
    options.lines = options_.lines;
    ide::FormatResult result = ide::format(text, options);
    if (result.refusal) {
      complain(shown, text, result.refusal->offset,
               "error: not formatted: the formatted text would " + std::string(description(result.refusal->law)));
      return std::nullopt;
    }
    for (const ide::OffsetRange& range : result.faulty)
      complain(shown, text, range.begin, "error: what is faulty stays as it is; 'tsn check' tells the fault");
    return std::move(result.text);
  }

  /// Tells of a text that changes, where that is what is asked for.
  void tell(const std::string& shown, const nvf::ustring& text, const nvf::ustring& formatted) {
    if (options_.diff) {
      const ide::Lossless before(text);
      const ide::Lossless after(formatted);
      console_.out() << ide::unifiedDifference(text, ide::edits(before, after), shown);
    } else if (options_.check) {
      console_.out() << shown << '\n';
    }
    if (options_.check) status_ = std::max(status_, Status::Fault);
  }

  const FmtOptions& options_;
  Console& console_;
  Status status_ = Status::Success;
};

Status formatAll(const FmtOptions& options, Console& console) {
  const bool hasInput =
      std::find(options.paths.begin(), options.paths.end(), Source::standardInput) != options.paths.end();
  if ((hasInput || options.lines) && options.paths.size() != 1) {
    console.report("tsn: standard input and --lines are for one input alone\n");
    return Status::Usage;
  }
  Formatting formatting(options, console);
  if (hasInput) return formatting.standardInput();
  const TreePaths paths = treePaths(options.paths);
  Status status = paths.files.empty() ? Status::Usage : Status::Success;
  for (const auto& [directory, failure] : paths.unreadable) {
    if (!failure) {
      console.report("tsn: there are no .tsn files below '" + escaped(directory) + "'\n");
      continue;
    }
    console.report("tsn: '" + escaped(directory) + "' cannot be read: " + failure.message() + "\n");
    status = Status::Usage;
  }
  for (const TreePath& path : paths.files) status = std::max(status, formatting.file(path));
  return status;
}

} // namespace

Action fmt(CLI::App& app) {
  const auto options = std::make_shared<FmtOptions>();
  app.add_option("FILE|DIR", options->paths, "files, directories, or - for standard input")->required()->type_name("");
  app.add_flag("--check", options->check, "write nothing; list the files that would change, and exit with 1 then");
  app.add_flag("--diff", options->diff, "write nothing; show what would change");
  app.add_option("--stdin-path", options->stdinPath, "whose .editorconfig files and name standard input goes by")
      ->option_text("PATH");
  app.add_option_function<std::string>(
         "--lines", [options](const std::string& text) { options->lines = linesIn(text); },
         "format the statements on these lines only, counted from 1")
      ->check([](const std::string& text) {
        return linesIn(text) ? std::string() : "not two line numbers with a colon between: " + text;
      })
      ->option_text("A:B");
  return [options](Console& console) { return formatAll(*options, console); };
}

} // namespace tessarin::tool
