// All the faults of a text: planted ones are found, on their lines, and little else is told.
#include "tessarin/ide/Recovery.hpp"

#include "support/golden.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace tessarin::test {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// ---- texts ----

nvf::SourceBuffer bufferOf(const std::string& text, const std::string& name = "tank.tsn") {
  return {nvf::FileName(name), nvf::ustring_view(nvf::decode_utf8(text))};
}

struct SourceFile {
  std::string name;
  Lines lines;
};

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

/// The files that faults are planted in.
const std::vector<SourceFile>& corpus() {
  static const auto files = [] {
    std::vector<SourceFile> result;
    for (const auto& entry : fs::recursive_directory_iterator(TESSARIN_EXAMPLES)) {
      if (entry.path().extension() != ".tsn") continue;
      SourceFile file{entry.path().filename(), {}};
      std::ifstream stream(entry.path());
      for (std::string line; std::getline(stream, line);) file.lines.push_back(line);
      result.push_back(std::move(file));
    }
    std::sort(result.begin(), result.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return result;
  }();
  return files;
}

std::string trimmed(const std::string& line) {
  const std::size_t begin = line.find_first_not_of(' ');
  if (begin == std::string::npos) return "";
  return line.substr(begin, line.find_last_not_of(' ') + 1 - begin);
}

/// The line of each fault, from 0.
std::vector<std::size_t> linesOf(const ide::CheckResult& result) {
  std::vector<std::size_t> lines;
  for (const ide::Finding& fault : result.faults) {
    lines.push_back(fault.range ? fault.range->begin().lineColumn().line() : static_cast<std::size_t>(-1));
  }
  return lines;
}

ide::CheckResult check(const Lines& lines, const std::string& name) {
  return ide::check(bufferOf(joined(lines), name));
}

// ---- faults of statements ----

/// A way to spoil a line such as `    x = y; % comment`; the code of the line is given, without blanks, `;` and
/// comment.
struct Spoiler {
  const char* name;
  std::string (*spoil)(const std::string& code);
};

const Spoiler spoilers[] = {
    {"operand missing", [](const std::string& code) { return code + " +"; }},
    {"parenthesis too many", [](const std::string& code) { return code + ")"; }},
    {"parenthesis missing", [](const std::string& code) { return code + "*(1 + 2"; }},
    {"bracket too many", [](const std::string& code) { return code + "]"; }},
    {"operator missing", [](const std::string& code) { return code + " zeta"; }},
    {"operator doubled", [](const std::string& code) { return code + " * / 2"; }},
    {"string unclosed", [](const std::string& code) { return code + " + 'abc"; }},
    {"not a unit", [](const std::string& code) { return code + " + {1, 'm m'}"; }},
    {"if without else", [](const std::string& code) { return code + " + if a, b end"; }},
};

/// The lines that hold one whole statement, in order.
std::vector<std::size_t> statementLines(const Lines& lines) {
  std::vector<std::size_t> result;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string code = trimmed(lines[i].substr(0, lines[i].find(';')));
    const bool isWhole = lines[i].find(';') != std::string::npos && lines[i].find("...") == std::string::npos;
    const bool isPlain = code.find("if ") == std::string::npos && code.find("let") == std::string::npos &&
                         code.find('%') == std::string::npos && code.find("else") == std::string::npos;
    const bool hasValue = code.find('=') != std::string::npos;
    if (isWhole && isPlain && hasValue) result.push_back(i);
  }
  return result;
}

std::string spoilt(const std::string& line, const Spoiler& spoiler) {
  const std::size_t begin = line.find_first_not_of(' ');
  const std::size_t end = line.find(';');
  return line.substr(0, begin) + spoiler.spoil(line.substr(begin, end - begin)) + line.substr(end);
}

/// What has come of planting.
struct Tally {
  std::size_t planted = 0;
  std::size_t found = 0;   // told on their lines
  std::size_t reports = 0; // told at all
  std::size_t trees = 0;   // texts of which a tree was built
  std::size_t texts = 0;

  [[nodiscard]] std::string string() const {
    std::ostringstream out;
    out << planted << " planted in " << texts << " texts: " << found << " told on their lines, " << reports
        << " reports, " << trees << " trees\n";
    return out.str();
  }
};

/// Plants up to three faults of one sort into each file. A line counts where the fault, alone, is told on it.
Tally plantInStatements(const Spoiler& spoiler) {
  Tally tally;
  for (const SourceFile& file : corpus()) {
    std::vector<std::size_t> fit;
    const std::vector<std::size_t> all = statementLines(file.lines);
    for (std::size_t k = 0; k < all.size() && fit.size() < 3; k += std::max<std::size_t>(1, all.size() / 3)) {
      Lines lines = file.lines;
      lines[all[k]] = spoilt(lines[all[k]], spoiler);
      const auto alone = ide::check(bufferOf(joined(lines), file.name), {.maxFaults = 1});
      if (linesOf(alone) == std::vector{all[k]}) fit.push_back(all[k]);
    }
    if (fit.empty()) continue;
    Lines lines = file.lines;
    for (const std::size_t i : fit) lines[i] = spoilt(lines[i], spoiler);
    const ide::CheckResult result = check(lines, file.name);
    const std::vector<std::size_t> told = linesOf(result);
    ++tally.texts;
    tally.trees += result.file ? 1 : 0;
    tally.planted += fit.size();
    tally.reports += told.size();
    for (const std::size_t i : fit)
      tally.found += static_cast<std::size_t>(std::count(told.begin(), told.end(), i) > 0);
  }
  return tally;
}

// ---- faults of structure ----

/// A way to spoil the structure at a line: the lines that take its place, or none where it does not fit.
struct StructureSpoiler {
  const char* name;
  std::vector<Lines> (*spoil)(const std::string& line);
};

std::vector<Lines> misspelt(const std::string& line) {
  static const std::set<std::string> words = {
      "parameters", "variables",   "nodes",      "inputs",        "outputs",     "components",  "equations",   "events",
      "branches",   "connections", "modecharts", "intermediates", "annotations", "definitions", "transitions", "modes"};
  const std::size_t begin = line.find_first_not_of(' ');
  if (begin == std::string::npos) return {};
  const std::size_t end = std::min(line.find_first_of(" (", begin), line.size());
  const std::string word = line.substr(begin, end - begin);
  if (!words.contains(word)) return {};
  std::string dropped = word;
  dropped.erase(2, 1);
  std::string swapped = word;
  std::swap(swapped[1], swapped[2]);
  const std::string doubled = word.substr(0, 3) + word.substr(2);
  std::vector<Lines> result;
  for (const std::string& wrong : {dropped, swapped, doubled}) {
    if (wrong != word) result.push_back({line.substr(0, begin) + wrong + line.substr(end)});
  }
  return result;
}

const StructureSpoiler structureSpoilers[] = {
    {"end missing",
     [](const std::string& line) { return trimmed(line) == "end" ? std::vector<Lines>{{}} : std::vector<Lines>(); }},
    {"end too many",
     [](const std::string& line) {
       return trimmed(line) == "end" ? std::vector<Lines>{{line, line}} : std::vector<Lines>();
     }},
    {"end too many, indented",
     [](const std::string& line) {
       return line.starts_with("    ") && line.ends_with(";") ? std::vector<Lines>{{line, "  end"}}
                                                              : std::vector<Lines>();
     }},
    {"section misspelt", misspelt},
};

Tally plantInStructure(const StructureSpoiler& spoiler) {
  Tally tally;
  for (const SourceFile& file : corpus()) {
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
      for (const Lines& instead : spoiler.spoil(file.lines[i])) {
        Lines lines = file.lines;
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(i));
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(i), instead.begin(), instead.end());
        const ide::CheckResult result = check(lines, file.name);
        const std::vector<std::size_t> told = linesOf(result);
        ++tally.texts;
        ++tally.planted;
        tally.reports += told.size();
        tally.trees += result.file ? 1 : 0;
        tally.found += static_cast<std::size_t>(std::count(told.begin(), told.end(), i) > 0);
      }
    }
  }
  return tally;
}

TEST(Recovery, TellsPlantedFaults) {
  GoldenFile file(TESSARIN_TEST_DATA "/recovery.txt");
  file.check([](const GoldenCase& c) {
    for (const Spoiler& spoiler : spoilers) {
      if (c.title != spoiler.name) continue;
      const Tally tally = plantInStatements(spoiler);
      EXPECT_GE(100 * tally.found, 99 * tally.planted) << c.title;
      EXPECT_EQ(tally.reports, tally.found) << c.title;
      return tally.string();
    }
    for (const StructureSpoiler& spoiler : structureSpoilers) {
      if (c.title != spoiler.name) continue;
      const Tally tally = plantInStructure(spoiler);
      EXPECT_LE(10 * tally.reports, 11 * tally.planted) << c.title;
      return tally.string();
    }
    ADD_FAILURE() << "no way to plant " << c.title;
    return std::string();
  });
  EXPECT_EQ(file.cases().size(), std::size(spoilers) + std::size(structureSpoilers));
}

} // namespace
} // namespace tessarin::test
