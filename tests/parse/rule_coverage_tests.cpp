// Every rule of the grammar that text can reach is reduced by a golden source or a model file.
#include "contexts.hpp"
#include "empty_grammar.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace tessarin::test {
namespace {

using namespace compiler::core;

constexpr int ruleCount = 426;

/// Rule 1 is never reduced, since rules 2 to 4 accept. The others need what text cannot hold: words of commands (221,
/// 265, 271, 272), or a part whose own rule is refused always (177, 179, 237, 239).
const std::set<int> unreachable{1, 177, 179, 221, 237, 239, 265, 271, 272};

/// The tokens that the parser reads until it has the tree or the fault.
std::vector<TokenId::Value> codesOf(const std::string& text) {
  std::vector<TokenId::Value> codes;
  Parser parser(bufferOf(text));
  parser.tokenListener([&codes](const Token& token) { codes.push_back(token.code()); });
  (void)parse(std::move(parser));
  return codes;
}

/// Adds the numbers of the rules that the automaton reduces on the way through the tokens.
void addRules(std::set<int>& rules, const std::vector<TokenId::Value>& codes) {
  std::stringstream trace;
  empty::Actions actions(codes);
  empty::TSNParser parser(actions);
  parser.set_debug_level(1);
  parser.set_debug_stream(trace);
  try {
    parser.parse();
  } catch (const empty::Stopped&) {
    // The rules up to here count.
  }
  constexpr std::string_view mark = "Reducing stack by rule "; // where the start rule is number 0
  for (std::string line; std::getline(trace, line);) {
    if (line.starts_with(mark)) rules.insert(std::stoi(line.substr(mark.size())) + 1);
  }
}

std::string read(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(ParseRules, AllThatTextCanReachAreReduced) {
  std::set<int> reduced;
  for (const std::string_view name : goldenNames) {
    const GoldenFile file = goldenFile(name);
    const Context& context = contextOf(file.property("context"));
    for (const GoldenCase& c : file.cases()) addRules(reduced, codesOf(context.fileOf(c.source)));
  }
  std::string missing;
  for (int rule = 1; rule <= ruleCount; ++rule) {
    if (!reduced.contains(rule) && !unreachable.contains(rule)) missing += " " + std::to_string(rule);
    EXPECT_FALSE(reduced.contains(rule) && unreachable.contains(rule)) << "rule " << rule << " can be reached";
  }
  EXPECT_EQ(missing, "");
}

/// The model files parse without a fault and without a warning.
TEST(ParseRules, ModelFilesParse) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(TESSARIN_TEST_DATA "/models")) {
    if (entry.path().extension() != ".tsn") continue;
    const Parsed parsed = parse(read(entry.path()), entry.path().string());
    EXPECT_FALSE(parsed.fault) << entry.path() << ": " << describe(*parsed.fault);
    for (const nvf::Message& warning : parsed.warnings) ADD_FAILURE() << entry.path() << ": " << describe(warning);
    ++count;
  }
  EXPECT_GE(count, 6U);
}

} // namespace
} // namespace tessarin::test
