// All the faults of a text: planted ones are found, each once; nothing that is invented on the way shows.
#include "tessarin/ide/Outline.hpp"
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
    for (const auto& entry : fs::recursive_directory_iterator(TESSARIN_SOURCE_DIR "/examples/library")) {
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

// ---- what else holds ----

std::string textOf(const nvf::Range& range) {
  const auto place = [](const nvf::Location& location) {
    return std::to_string(location.lineColumn().line() + 1) + ':' + std::to_string(location.lineColumn().column() + 1);
  };
  return place(range.begin()) + '-' + place(range.end());
}

/// Everything that a check finds, a line each.
std::string reportOf(const std::string& text) {
  const nvf::SourceBuffer source = bufferOf(text);
  const ide::CheckResult result = ide::check(source);
  std::ostringstream out;
  for (const ide::Finding& fault : result.faults) {
    out << fault.message.id().id << ' ' << (fault.range ? textOf(*fault.range) : "-");
    if (fault.suggestion) out << " meant " << nvf::encode_utf8(*fault.suggestion);
    out << '\n';
  }
  for (const nvf::Range& masked : result.masked) out << "masked " << textOf(masked) << '\n';
  for (const ide::Repair& repair : result.repairs) {
    out << "read '" << nvf::encode_utf8(repair.text) << "' at " << textOf(repair.range) << '\n';
  }
  if (!result.isComplete) out << "incomplete\n";
  if (!result.file) return out.str() + "no tree\n";
  const ide::Outline outline = ide::outlineOf(*result.file);
  for (const auto& [kind, entries] : outline.members) {
    out << nvf::encode_utf8(kind);
    for (const auto& entry : entries) out << ' ' << nvf::encode_utf8(entry.name) << ' ' << textOf(entry.range);
    out << '\n';
  }
  for (const auto& function : outline.functions) out << "function " << nvf::encode_utf8(function.function.name) << '\n';
  for (const auto& section : ide::sectionsOf(source, result)) {
    out << std::string(2 * section.depth, ' ') << nvf::encode_utf8(section.keyword) << ' ' << textOf(section.range)
        << '\n';
  }
  return out.str();
}

TEST(Recovery, ReportsWhatItDid) {
  GoldenFile(TESSARIN_TEST_DATA "/recovery_reports.txt").check([](const GoldenCase& c) { return reportOf(c.source); });
}

TEST(Recovery, TellsTheFirstFaultOfTheLibraryFirst) {
  const std::string text = "component tank\n  parameters\n    a = {1, 'm m'};\n    b = ;\n  end\nend\n";
  const auto all = linesOf(ide::check(bufferOf(text)));
  EXPECT_EQ(all, (std::vector<std::size_t>{3, 2})); // the parser comes before the builder
  EXPECT_EQ(linesOf(ide::check(bufferOf(text), {.maxFaults = 1})), std::vector<std::size_t>{3});
}

TEST(Recovery, TellsSoManyFaultsAndNoMore) {
  std::string text = "component tank\n  parameters\n";
  for (int i = 0; i < 30; ++i) text += "    a = ;\n";
  text += "  end\nend\n";
  const ide::CheckResult result = ide::check(bufferOf(text));
  EXPECT_EQ(result.faults.size(), 20U);
  EXPECT_FALSE(result.isComplete);
}

TEST(Recovery, WarnsOfWhatStandsBehindAFault) {
  const ide::CheckResult result = ide::check(bufferOf("component pump\n  parameters\n    b = ;\n  end\n"
                                                      "  equation\n    a == 1;\n  end\nend\n"));
  ASSERT_EQ(result.warnings.size(), 2U);
  EXPECT_EQ(result.warnings[0].message.id().id, "UseOfEquationDeprecated");
  EXPECT_EQ(result.warnings[1].message.id().id, "InconsistentModelNameAndFileName");
}

TEST(Recovery, SurvivesHostileTexts) {
  std::string junk;
  for (unsigned i = 0, state = 1; i < 200'000; ++i) {
    state = state * 1664525 + 1013904223;
    junk += static_cast<char>(1 + (state >> 24U) % 126);
  }
  const auto repeated = [](const std::string& head, const std::string& line) {
    std::string text = "component a\n" + head;
    for (int i = 0; i < 3000; ++i) text += line;
    return text + "end\n";
  };
  for (const std::string& text :
       {std::string(), std::string("%{\n"), std::string("end"), std::string(1, '\0'), junk,
        repeated("parameters\n x = ", "["), repeated("parameters\n", "x = [1\n"), repeated("equations\n", "if a\n"),
        repeated("", "end\n"), repeated("", "equatins\n  x\n"), repeated("equations\n", " x == (\n")}) {
    const ide::CheckResult result = ide::check(bufferOf(text));
    EXPECT_FALSE(result.failure);
    EXPECT_LE(result.faults.size(), 20U);
    static_cast<void>(ide::sectionsOf(bufferOf(text), result));
  }
}

} // namespace
} // namespace tessarin::test
