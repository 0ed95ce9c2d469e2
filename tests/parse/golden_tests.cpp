// Trees, faults and warnings for the sources of tests/data/parse.
#include "contexts.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace tessarin::test {
namespace {

std::string evaluate(const Context& context, const GoldenCase& c) {
  const Parsed parsed = parse(context.fileOf(c.source));
  const auto firstLine = static_cast<std::size_t>(std::count(context.before.begin(), context.before.end(), '\n'));
  std::string result;
  for (const nvf::Message& warning : parsed.warnings) result += "warning " + describe(warning, firstLine) + "\n";
  if (parsed.fatal) return result + "fatal " + parsed.fatal->text + " in " + parsed.fatal->signature + "\n";
  if (parsed.fault) return result + "error " + describe(*parsed.fault, firstLine) + "\n";
  compiler::core::ParseTree tree = parsed.tree;
  for (const std::size_t i : context.path) tree = compiler::core::ParseTree(tree.child(i));
  for (std::size_t i = context.first; i < tree.count(); ++i) result += expressionOf(tree.child(i)) + "\n";
  return result;
}

class ParseGolden : public testing::TestWithParam<std::string_view> {};

TEST_P(ParseGolden, File) {
  GoldenFile file = goldenFile(GetParam());
  const Context& context = contextOf(file.property("context"));
  file.check([&context](const GoldenCase& c) { return evaluate(context, c); });
}

INSTANTIATE_TEST_SUITE_P(Files, ParseGolden, testing::ValuesIn(goldenNames),
                         [](const auto& row) { return std::string(row.param); });

} // namespace
} // namespace tessarin::test
