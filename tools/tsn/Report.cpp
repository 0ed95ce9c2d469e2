#include "Report.hpp"

#include "Printable.hpp"

#include <algorithm>

namespace tessarin::tool {

namespace {

// Sequences for terminals.
constexpr std::string_view bold = "\x1b[1m";
constexpr std::string_view red = "\x1b[1;31m";
constexpr std::string_view magenta = "\x1b[1;35m";
constexpr std::string_view green = "\x1b[1;32m";
constexpr std::string_view plain = "\x1b[0m";

/// How much of a long line is shown before and behind the place, in UTF-16 code units.
constexpr std::size_t surroundings = 100;
constexpr std::string_view ellipsis = "…";

/// The part of a line that is shown, and the place in it.
struct Window {
  nvf::ustring_view text;
  std::size_t column;
  std::size_t endColumn;
  bool isCutBefore;
  bool isCutBehind;
};

Window windowOf(nvf::ustring_view line, std::size_t column, std::size_t endColumn) {
  column = std::min(column, line.size());
  const std::size_t begin = column > surroundings ? column - surroundings : 0;
  const std::size_t length = column - begin + surroundings;
  const nvf::ustring_view text = line.substr(begin, length);
  return {text, column - begin, std::min(endColumn - begin, text.size()), begin > 0, begin + length < line.size()};
}

/// How many columns of a terminal the text takes.
std::size_t widthOf(nvf::ustring_view text) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    const Character character = characterAt(text, i);
    width += static_cast<std::size_t>(isPrintable(character.code) ? columnsOf(character.code) : 1);
    i += character.length;
  }
  return width;
}

/// How much of a word in a message is shown, in UTF-16 code units: names may be as long as the input.
constexpr std::size_t longestWord = 120;

/// The text with the end of each long word cut off.
nvf::ustring withShortWords(nvf::ustring_view text) {
  nvf::ustring out;
  std::size_t word = 0; // its length so far
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = characterAt(text, i).length;
    word = text[i] == u' ' ? 0 : word + length;
    if (word <= longestWord) {
      out += text.substr(i, length);
    } else if (word - length <= longestWord) {
      out += u"…";
    }
    i += length;
  }
  return out;
}

/// What brings a caret under a column: as many blanks as the text before it is wide, and the same tabs.
std::string marginOf(nvf::ustring_view before) {
  std::string margin;
  for (std::size_t i = 0; i < before.size();) {
    const Character character = characterAt(before, i);
    if (character.code == U'\t') {
      margin += '\t';
    } else {
      const int columns = isPrintable(character.code) ? columnsOf(character.code) : 1;
      margin.append(static_cast<std::size_t>(columns), ' ');
    }
    i += character.length;
  }
  return margin;
}

} // namespace

/// The text of each kind of failure.
struct Report::FailureText {
  const Report& report;

  std::string operator()(const Finding& fault) const { return report.finding(fault, red, "error"); }
  std::string operator()(const nvf::FatalDiagnostic& fatal) const {
    return report.headline("", red, "internal error", escaped(sentence(fatal)));
  }
  std::string operator()(const OtherException& error) const {
    return report.headline("", red, "error", escaped(sentence(error)));
  }
};

Report::Report(const std::string& path, const std::optional<Source>& source, bool colours)
    : path_(escaped(Source::displayName(path))), source_(source), colours_(colours) {}

std::string Report::warning(const Finding& about) const {
  return finding(about, magenta, "warning");
}

std::string Report::failure(const Failure& failure) const {
  return std::visit(FailureText{*this}, failure);
}

std::string Report::coloured(std::string_view colour, std::string_view text) const {
  std::string out;
  if (colours_) out += colour;
  out += text;
  if (colours_) out += plain;
  return out;
}

std::string Report::headline(std::string_view place, std::string_view colour, std::string_view label,
                             std::string_view text) const {
  std::string out = coloured(bold, path_ + std::string(place) + ":");
  out += ' ';
  out += coloured(colour, std::string(label) + ":");
  out += ' ';
  out += text;
  out += '\n';
  return out;
}

std::string Report::finding(const Finding& finding, std::string_view colour, std::string_view label) const {
  std::string place;
  if (finding.line) place += ":" + std::to_string(*finding.line + 1);
  if (finding.column) place += ":" + std::to_string(*finding.column + 1);
  const std::string text = escaped(withShortWords(finding.message.text())) + " [" + finding.message.id().id + "]";
  return headline(place, colour, label, text) + snippet(finding);
}

std::string Report::snippet(const Finding& finding) const {
  if (!source_ || !finding.line) return {};
  const nvf::ustring_view line = source_->line(*finding.line);
  if (line.empty()) return {};

  const std::size_t column = finding.column.value_or(0);
  const std::size_t end = finding.column ? source_->endOfToken(*finding.line, column) : column;
  const Window window = windowOf(line, column, end);
  std::string out;
  if (window.isCutBefore) out += ellipsis;
  out += oneColumnEach(window.text);
  if (window.isCutBehind) out += ellipsis;
  out += '\n';
  if (!finding.column) return out;

  if (window.isCutBefore) out += ' ';
  out += marginOf(window.text.substr(0, window.column));
  const nvf::ustring_view token =
      window.text.substr(window.column, window.endColumn - std::min(window.column, window.endColumn));
  out += coloured(green, "^" + std::string(std::max<std::size_t>(widthOf(token), 1) - 1, '~'));
  out += '\n';
  return out;
}

} // namespace tessarin::tool
