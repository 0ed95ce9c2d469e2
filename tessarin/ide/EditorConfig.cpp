#include "tessarin/ide/EditorConfig.hpp"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarin::ide {

namespace {

constexpr std::size_t maxPatternLength = 1024;
constexpr std::size_t maxFileSize = 1U << 20U;
constexpr std::size_t maxIndentation = 16;
constexpr std::size_t leastWidth = 20;
constexpr std::size_t mostWidth = 10'000;

std::string_view withoutBlanks(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string lower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

template <class Number>
std::optional<Number> numberIn(std::string_view text) {
  Number number{};
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  return failure == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// ---- patterns -----------------------------------------------------------------------------------------------------
//
// A pattern is matched by following, character by character of the path, all places in it at which a match may be.

/// A part of a pattern that matches a character, or goes on elsewhere.
struct Step {
  enum class Type { Character, Any, AnyOf, Star, Stars, Number, Fork, Jump, End } type;
  char character = 0;
  std::string_view set;             // of AnyOf, without its brackets
  std::vector<std::size_t> targets; // of a fork or a jump
  std::pair<long, long> range{};    // of Number
};

/// Translates a pattern to steps. Braces without a comma stand for themselves.
class Compiler {
public:
  explicit Compiler(std::string_view pattern) : pattern_(pattern) {}
  std::vector<Step> run() {
    sequence(pattern_.size());
    steps_.push_back({Step::Type::End, 0, {}, {}, {}});
    return std::move(steps_);
  }

private:
  void add(Step::Type type, char character = 0) { steps_.push_back({type, character, {}, {}, {}}); }

  void sequence(std::size_t end) {
    while (i_ < end) part(end);
  }

  void part(std::size_t end) {
    const char c = pattern_[i_++];
    switch (c) {
    case '\\':
      if (i_ < end) add(Step::Type::Character, pattern_[i_++]);
      break;
    case '?': add(Step::Type::Any); break;
    case '*': {
      const bool isDouble = i_ < end && pattern_[i_] == '*';
      if (isDouble) ++i_;
      add(isDouble ? Step::Type::Stars : Step::Type::Star);
      break;
    }
    case '[': {
      const std::size_t close = pattern_.substr(0, end).find(']', i_ + 1);
      if (close == std::string_view::npos) return add(Step::Type::Character, c);
      add(Step::Type::AnyOf);
      steps_.back().set = pattern_.substr(i_, close - i_);
      i_ = close + 1;
      break;
    }
    case '{': braces(end); break;
    default: add(Step::Type::Character, c);
    }
  }

  void braces(std::size_t end) {
    std::vector<std::size_t> commas;
    std::size_t depth = 1;
    std::size_t close = i_;
    for (; close < end; ++close) {
      const char c = pattern_[close];
      if (c == '{') ++depth;
      if (c == '}' && --depth == 0) break;
      if (c == ',' && depth == 1) commas.push_back(close);
    }
    if (close == end) return add(Step::Type::Character, '{');
    if (commas.empty()) return range(close);
    commas.push_back(close);
    const std::size_t fork = steps_.size();
    add(Step::Type::Fork);
    std::vector<std::size_t> jumps;
    for (const std::size_t comma : commas) {
      steps_[fork].targets.push_back(steps_.size());
      sequence(comma);
      jumps.push_back(steps_.size());
      add(Step::Type::Jump);
      i_ = comma + 1;
    }
    for (const std::size_t jump : jumps) steps_[jump].targets = {steps_.size()};
  }

  void range(std::size_t close) {
    const std::string_view text = pattern_.substr(i_, close - i_);
    const std::size_t dots = text.find("..");
    if (dots != std::string_view::npos) {
      const auto low = numberIn<long>(text.substr(0, dots));
      const auto high = numberIn<long>(text.substr(dots + 2));
      if (low && high) {
        i_ = close + 1;
        add(Step::Type::Number);
        steps_.back().range = {*low, *high};
        return;
      }
    }
    add(Step::Type::Character, '{');
  }

  std::string_view pattern_;
  std::size_t i_ = 0;
  std::vector<Step> steps_;
};

bool isAnyOf(std::string_view set, char c) {
  const bool isNegated = !set.empty() && set[0] == '!';
  if (isNegated) set.remove_prefix(1);
  bool found = false;
  for (std::size_t i = 0; i < set.size(); ++i) {
    if (i + 2 < set.size() && set[i + 1] == '-') {
      found = found || (set[i] <= c && c <= set[i + 2]);
      i += 2;
    } else {
      found = found || set[i] == c;
    }
  }
  return found != isNegated && c != '/';
}

class Matcher {
public:
  explicit Matcher(std::vector<Step> steps) : steps_(std::move(steps)) {}

  bool matches(std::string_view path) {
    // For each place in the path the steps that a match may have come to there: numbers reach further than one place.
    std::vector<std::vector<bool>> at(path.size() + 1, std::vector<bool>(steps_.size()));
    enter(at[0], 0);
    for (std::size_t i = 0; i < path.size(); ++i) {
      for (std::size_t step = 0; step < steps_.size(); ++step) {
        if (at[i][step]) advance(path, i, step, at);
      }
    }
    return at[path.size()].back();
  }

private:
  /// Comes to a step, and to those that it leads to without a character.
  void enter(std::vector<bool>& places, std::size_t first) {
    std::vector<std::size_t> open = {first};
    while (!open.empty()) {
      const std::size_t step = open.back();
      open.pop_back();
      if (places[step]) continue;
      places[step] = true;
      const Step& here = steps_[step];
      open.insert(open.end(), here.targets.begin(), here.targets.end());
      if (here.type == Step::Type::Star || here.type == Step::Type::Stars) open.push_back(step + 1);
    }
  }

  void advance(std::string_view path, std::size_t i, std::size_t step, std::vector<std::vector<bool>>& at) {
    const Step& here = steps_[step];
    const char c = path[i];
    switch (here.type) {
    case Step::Type::Character:
      if (c == here.character) enter(at[i + 1], step + 1);
      break;
    case Step::Type::Any:
      if (c != '/') enter(at[i + 1], step + 1);
      break;
    case Step::Type::AnyOf:
      if (isAnyOf(here.set, c)) enter(at[i + 1], step + 1);
      break;
    case Step::Type::Star:
      if (c != '/') enter(at[i + 1], step);
      break;
    case Step::Type::Stars: enter(at[i + 1], step); break;
    case Step::Type::Number:
      for (std::size_t end = i + 1; end <= std::min(path.size(), i + maxDigits); ++end) {
        const auto number = numberIn<long>(path.substr(i, end - i));
        if (number && *number >= here.range.first && *number <= here.range.second) enter(at[end], step + 1);
      }
      break;
    case Step::Type::Fork:
    case Step::Type::Jump:
    case Step::Type::End: break;
    }
  }

  static constexpr std::size_t maxDigits = 19;
  std::vector<Step> steps_;
};

/// Sets an option where the value is a number that makes sense.
void apply(const std::string& key, const std::string& value, FormatOptions& options, bool& isByTab) {
  const auto number = numberIn<std::size_t>(value);
  if (key == "max_line_length" && number && *number >= leastWidth && *number <= mostWidth) options.width = *number;
  if (key == "indent_size") isByTab = value == "tab";
  const bool isIndentation = key == "indent_size" || (key == "tab_width" && isByTab);
  if (isIndentation && number && *number >= 1 && *number <= maxIndentation) options.indentation = *number;
}

} // namespace

bool matchesEditorConfigPattern(std::string_view pattern, std::string_view path) {
  if (pattern.size() > maxPatternLength) return false;
  // Without "/" a pattern is about the name of the file, wherever it is.
  std::string whole;
  if (pattern.find('/') == std::string_view::npos) {
    whole = "{,**/}" + std::string(pattern);
  } else {
    whole = pattern.substr(pattern.front() == '/' ? 1 : 0);
  }
  return Matcher(Compiler(whole).run()).matches(path);
}

bool applyEditorConfig(std::string_view text, std::string_view path, FormatOptions& options) {
  bool isRoot = false;
  bool isHead = true;
  bool isForPath = false;
  bool isByTab = false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = withoutBlanks(text.substr(0, end));
    text.remove_prefix(std::min(text.size(), end + 1));
    if (line.empty() || line[0] == '#' || line[0] == ';') continue;
    if (line.front() == '[' && line.back() == ']') {
      isHead = false;
      isForPath = matchesEditorConfigPattern(line.substr(1, line.size() - 2), path);
      continue;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string key = lower(withoutBlanks(line.substr(0, equals)));
    const std::string value = lower(withoutBlanks(line.substr(equals + 1)));
    if (isHead && key == "root") isRoot = value == "true";
    if (isForPath) apply(key, value, options, isByTab);
  }
  return isRoot;
}

FormatOptions formatOptionsFor(const std::filesystem::path& file) {
  std::error_code failure;
  const std::filesystem::path whole = std::filesystem::absolute(file, failure).lexically_normal();
  std::vector<std::pair<std::string, std::string>> configs; // texts, and the path relative to each; the nearest first
  for (std::filesystem::path folder = whole.parent_path(); !failure; folder = folder.parent_path()) {
    std::ifstream stream(folder / ".editorconfig", std::ios::binary);
    if (stream) {
      std::string text(maxFileSize, '\0');
      stream.read(text.data(), static_cast<std::streamsize>(text.size()));
      text.resize(static_cast<std::size_t>(std::max<std::streamsize>(stream.gcount(), 0)));
      configs.emplace_back(std::move(text), whole.lexically_relative(folder).generic_string());
      FormatOptions ignored;
      if (applyEditorConfig(configs.back().first, {}, ignored)) break;
    }
    if (folder == folder.parent_path()) break;
  }
  FormatOptions options;
  for (auto config = configs.rbegin(); config != configs.rend(); ++config)
    applyEditorConfig(config->first, config->second, options);
  return options;
}

} // namespace tessarin::ide
