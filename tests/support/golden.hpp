// Golden files: tables of cases that are read as text, and rewritten with TESSARIN_UPDATE_GOLDEN=1.
//
//   # Lines before the first case are a head; `key: value` among them sets a property of the file.
//   context: equations
//
//   == title of the case
//   source text, any number of lines
//   --
//   the expected result, any number of lines
//
// A blank line behind the result belongs to the next case. Source text does not end with a line end.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tessarin::test {

struct GoldenCase {
  std::string title;
  std::string source;
  std::string expected; ///< each line ends with a line end
  std::size_t line = 0; ///< of the title in the file, from 1
};

class GoldenFile {
public:
  explicit GoldenFile(std::string path) : path_(std::move(path)) {
    std::ifstream file(path_);
    if (!file) throw std::runtime_error("no golden file " + path_);
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) read(line, ++number);
    for (GoldenCase& c : cases_) {
      if (!c.source.empty()) c.source.pop_back();
      while (c.expected.size() > 1 && c.expected.ends_with("\n\n")) c.expected.pop_back();
      if (c.expected == "\n") c.expected.clear();
    }
  }

  [[nodiscard]] const std::vector<GoldenCase>& cases() const noexcept { return cases_; }
  [[nodiscard]] const std::string& property(const std::string& key) const { return properties_.at(key); }

  /// Compares what `evaluate` gives for each source with what is expected, or writes it down.
  void check(const std::function<std::string(const GoldenCase&)>& evaluate) {
    ASSERT_FALSE(cases_.empty()) << path_;
    const bool update = std::getenv("TESSARIN_UPDATE_GOLDEN") != nullptr;
    for (GoldenCase& c : cases_) {
      const std::string result = evaluate(c);
      if (update) {
        c.expected = result;
      } else {
        EXPECT_EQ(result, c.expected) << path_ << ":" << c.line << ": " << c.title << "\n" << c.source;
      }
    }
    if (update) write();
  }

private:
  enum class Part { Head, Source, Expected };

  void read(const std::string& line, std::size_t number) {
    if (line.starts_with("== ")) {
      cases_.push_back({line.substr(3), "", "", number});
      part_ = Part::Source;
    } else if (part_ == Part::Source && line == "--") {
      part_ = Part::Expected;
    } else if (part_ == Part::Head) {
      head_ += line + '\n';
      const std::size_t colon = line.find(": ");
      if (!line.starts_with('#') && colon != std::string::npos) {
        properties_[line.substr(0, colon)] = line.substr(colon + 2);
      }
    } else {
      (part_ == Part::Source ? cases_.back().source : cases_.back().expected) += line + '\n';
    }
  }

  /// All at once, since another test may be reading the file.
  void write() const {
    const std::string newPath = path_ + ".new";
    std::ofstream file(newPath);
    file << head_;
    const char* separator = "";
    for (const GoldenCase& c : cases_) {
      file << separator << "== " << c.title << '\n'
           << c.source << (c.source.empty() ? "" : "\n") << "--\n"
           << c.expected;
      separator = "\n";
    }
    file.close();
    if (!file) throw std::runtime_error("cannot write " + newPath);
    std::filesystem::rename(newPath, path_);
  }

  std::string path_;
  std::string head_;
  std::map<std::string, std::string> properties_;
  std::vector<GoldenCase> cases_;
  Part part_ = Part::Head;
};

} // namespace tessarin::test
