// Which fault is told: of what has the wrong shape, and of several faults in one text.
#include "builder/files.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarin::test {
namespace {

/// The fault of one item of an equations block, with its line and column in the item; empty where there is none.
std::string faultOf(const std::string& item) {
  const compiler::core::ASTBuilder builder(nvf::DefaultValueTokensToValue{});
  return resultOf(
      [&] {
        const compiler::core::ParseTree tree = fileTree("component c\nequations\n" + item + "\nend\nend\n");
        static_cast<void>(builder.buildModelFile(tree, compiler::core::FileSource::open));
        return std::string();
      },
      2);
}

void check(const std::vector<BuildCase>& cases) {
  for (const auto& [source, expected] : cases) EXPECT_EQ(faultOf(source), expected) << source;
}

// The units "+", "-", "*" and "^" are none; each marks the place at which the walk has come first.
TEST(BuildFaults, TheFirstOneInTheOrderOfBuilding) {
  check({
      // Operands from right to left.
      {"{1,'+'} * {2,'-'} * {3,'*'}", "InvalidUnitLiteral(*) at 1:24"},
      {"{1,'+'} : {2,'-'} : {3,'*'}", "InvalidUnitLiteral(*) at 1:24"},
      {"({1,'+'} + {2,'-'}) * a", "InvalidUnitLiteral(-) at 1:15"},
      {"{1,'+'} && ({2,'-'} || {3,'*'})", "InvalidUnitLiteral(*) at 1:27"},
      // Lists from left to right.
      {"[{1,'+'}, {2,'-'}]", "InvalidUnitLiteral(+) at 1:5"},
      {"[a; {1,'+'}, {2,'-'}]", "InvalidUnitLiteral(+) at 1:8"},
      {"{a = {1,'+'}, b = {2,'-'}}", "InvalidUnitLiteral(+) at 1:9"},
      {"value({1,'+'}, '-')", "InvalidUnitLiteral(+) at 1:10"},
      // Arguments before the steps in front of them, positional ones before named ones.
      {"a({1,'+'}).b({2,'-'})", "InvalidUnitLiteral(-) at 1:17"},
      {"a(m = 1).b({2,'-'})", "InvalidUnitLiteral(-) at 1:15"},
      {"a({1,'+'}).b(m = 1).c", "InvalidUnitLiteral(+) at 1:6"},
      {"f({1,'+'}, m = {2,'-'})", "InvalidUnitLiteral(+) at 1:6"},
      // A value before its sign and its name.
      {"f(internal_value_ref__(1) = {1,'+'})", "InvalidUnitLiteral(+) at 1:32"},
      {"f(internal_value_ref__(1) = 2)", "InvalidValueRefSyntax at 1:3"},
      {"assert(n := {1,'+'})", "InvalidUnitLiteral(+) at 1:16"},
      {"assert(internal_value_ref__(1) := 2)", "NoColonEquals at 1:32"},
      // Conditions, scopes and their items.
      {"if {1,'+'}, {2,'-'}; else {3,'*'}; end", "InvalidUnitLiteral(+) at 1:7"},
      {"if a, {1,'+'}; elseif b, {2,'-'}; else {3,'*'}; end", "InvalidUnitLiteral(+) at 1:10"},
      {"if a, b; elseif b, c; elseif d, {2,'-'}; else {3,'*'}; end", "InvalidUnitLiteral(-) at 1:36"},
      {"let x = {1,'+'}; in {2,'-'}; end", "InvalidUnitLiteral(+) at 1:12"},
      {"let [~] = {1,'+'}; in {2,'-'}; end", "InvalidUnitLiteral(+) at 1:14"},
      {"let [~,~] = 1; in {2,'-'}; end", "NoIdInDeclaration at 1:6"},
      // The parts of a reserved form in the order in which they are written.
      {"internal_transition_expr__({1,'+'}, {2,'-'})", "InvalidUnitLiteral(+) at 1:31"},
      {"internal_relative_path__(0, {1,'+'})", "InvalidUnitLiteral(+) at 1:32"},
      {"internal_value_ref__(a(n = 1), b)", "UnexpectedNamedArg at 1:24"},
      {"internal_value_ref__(a(1), b)", "InvalidValueRefSyntax at 1:1"},
  });
}

TEST(BuildFaults, Units) {
  check({
      {"{1,''}", "InvalidUnitLiteral() at 1:4"},
      {"{1,'m''s'}", "InvalidUnitLiteral(m''s) at 1:4"}, // as it stands between its quotes
      {"{1,\"\xC2\xB5m\"}", "InvalidUnitLiteral(\xC2\xB5m) at 1:4"},
      {"value(1, '+', 'relative')", "InvalidUnitLiteral(+) at 1:10"},
  });
}

TEST(BuildFaults, ShapesOfReservedForms) {
  const std::string fullPath = "InvalidFullPathVariableSyntax at 1:";
  const std::string relativePath = "InvalidRelativePathVariableSyntax at 1:1";
  const std::string call = "InvalidFunctionCallSyntax at 1:1";
  const std::string valueRef = "InvalidValueRefSyntax at 1:";
  const std::string objectRef = "InvalidObjectRefSyntax at 1:1";
  check({
      {"internal_full_path__(base, n = 1)", fullPath + "1"},
      {"internal_full_path__(base).x", fullPath + "1"},
      {"internal_full_path__(base(1))", fullPath + "22"},
      {"internal_full_path__(base(n = 1))", fullPath + "22"},
      {"internal_full_path__([base; base])", fullPath + "22"},
      {"internal_full_path__([base, member(1.5)])", fullPath + "29"},
      {"internal_full_path__(arraymember(1))", fullPath + "22"},

      {"internal_relative_path__", relativePath},
      {"internal_relative_path__(1, x).y", relativePath},
      {"internal_relative_path__(1, x, n = 2)", relativePath},
      {"internal_relative_path__(:, x)", relativePath},
      {"internal_relative_path__(1, :)", relativePath},
      {"internal_relative_path__(1, 'x')", relativePath},
      {"internal_relative_path__(1, x())", relativePath},
      {"internal_relative_path__(-1, x)", relativePath},
      {"internal_relative_path__(1i, x)", relativePath},

      {"internal_native_function_call__", call},
      {"internal_native_function_call__(f(:))", call},
      {"internal_native_function_call__(f(a.b = 1))", call},
      {"internal_calvex_function_call__(f(:),1,0,1)", call},
      {"internal_calvex_function_call__(f(1).g,1,0,1)", call},
      {"internal_calvex_function_call__(f,1,-1,1)", call},
      {"internal_tessarin_function_call__()", call},
      {"internal_tessarin_function_call__(:)", call},
      {"internal_tessarin_function_call__(f(n = 1))", call},
      {"internal_tessarin_local_function_call__(f)", call},
      {"internal_tessarin_local_function_call__(f,1)", call},
      {"internal_tessarin_local_function_call__(f(1).h,g)", call},
      {"internal_tessarin_local_function_call__(f,g(n = 1))", call},
      {"internal_mrv_index__(f, '1', 2)", call},
      {"internal_modechart_eqn_expr__()", call},

      {"internal_value_ref__(a).b", valueRef + "1"},
      {"internal_value_ref__(a, b, c)", valueRef + "1"},
      {"internal_value_ref__(a, n = 1)", valueRef + "1"},
      {"internal_value_ref__(:)", valueRef + "1"},
      {"internal_value_ref__(a(concrete_value__(1,'1')))", valueRef + "1"},
      {"internal_value_ref__(a, :)", valueRef + "25"},
      {"internal_value_ref__(a, 1 + 2)", valueRef + "25"},
      {"internal_value_ref__(a, x.y)", valueRef + "25"},
      {"internal_value_ref__(a, internal_value_ref_subs_tail__(n = 1))", valueRef + "25"},
      {"internal_value_ref__(a, internal_value_ref_id_tail__(b, c))", valueRef + "25"},
      {"internal_value_ref__(a, internal_value_ref_id_tail__(1))", valueRef + "25"},
      {"internal_value_ref__(a, internal_value_ref_id_tail__(b()))", valueRef + "25"},
      // Any other name of a tail stands for subscripts.
      {"internal_value_ref__(a, whatever(1, :))", ""},

      {"internal_object_ref__", objectRef},
      {"internal_object_ref__(1)", objectRef},
      {"internal_object_ref__(a(1))", objectRef},
      {"internal_object_ref__(internal_object_ref__(a))", objectRef},
      {"internal_object_ref__(a(n = 1))", "UnexpectedNamedArg at 1:25"},
  });
}

TEST(BuildFaults, Assertions) {
  const std::string message = "InvalidAssertMessage at 1:11";
  const std::string object = "InvalidMessageObject at 1:11";
  const std::string hole = "InvalidMessageObject at 1:26";
  check({
      {"assert(Warn = true)", "InvalidNumberOfPosArgsForAssert at 1:1"},
      {"assert(:, :, :, :)", "InvalidNumberOfPosArgsForAssert at 1:1"},
      {"assert(:, :)", "InvalidAssertPredicate at 1:8"},
      {"assert(x, 1, :)", "InvalidAssertMessage at 1:14"},
      {"assert(x, 'a:b', 1)", message},
      {"assert(x, 1, 'a')", message},
      {"assert(x, y, 'a')", message},
      {"assert(x, 'a:b', message('a:b'))", message},

      {"assert(x, message)", object},
      {"assert(x, message())", object},
      {"assert(x, a.message('a:b'))", object},
      {"assert(x, message('a:b', n = 1))", object},
      {"assert(x, message('a:b', :))", object},
      {"assert(x, message(''))", "InvalidAssertErrorID() at 1:19"},
      {"assert(x, message('ab', 1))", "InvalidAssertErrorID(ab) at 1:19"}, // before the holes
      {"assert(x, message('a:b', text))", hole},
      {"assert(x, message('a:b', text()))", hole},
      {"assert(x, message('a:b', text('s')))", hole},
      {"assert(x, message('a:b', text(y, n = 1)))", hole},
      {"assert(x, message('a:b', text(y(1).z)))", hole},
      {"assert(x, message('a:b', a.text(y)))", hole},
      {"assert(x, message('a:b', text(internal_value_ref__(v, t(1)))))", hole},
      {"assert(x, message('a:b', 'h', 1))", "InvalidMessageObject at 1:31"},

      {"assert(x, y, Other = 1)", object}, // a message before a named argument
      {"assert(x, Other = 1, a.b = 2)", "InvalidNumberOfNamedArgsForAssert at 1:1"},
      {"assert(x, Warn(1) = true)", "InvalidNamedArg(Warn(1)) at 1:11"},
      {"assert(x, internal_value_ref__(Warn) = true)", "InvalidNamedArg(internal_value_ref__(Warn)) at 1:11"},
      {"assert(x, warn = true)", "InvalidAttributeForAssert at 1:11"},
      {"assert(x, Action = (false))", "InvalidValueForAssertAction at 1:21"},
      {"assert(x, Action = 'true')", ""}, // its text has quotes
      {"assert(x, Warn = 'true')", "InvalidValueForWarn at 1:18"},
      {"assert(x, Warn = true.y)", "InvalidValueForWarn at 1:18"},
      {"assert(x, Warn = (true))", ""},
  });
}

} // namespace
} // namespace tessarin::test
