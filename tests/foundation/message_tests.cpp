#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/warning.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>

namespace {

namespace parse = kelvane::tessarin::compiler::core::parse;
namespace ast = kelvane::tessarin::compiler::core::ast;
namespace setup = kelvane::tessarin::compiler::core::setup;
namespace warnings = kelvane::tessarin::compiler::core::lex::warnings;
using nvf::ArgumentKind;
using nvf::Location;
using nvf::Message;

const Location place{nvf::FileName("m.tsn"), nvf::LineColumn(2, 4)};

TEST(Message, EveryRowOfTheCatalogFitsItsArguments) {
  std::set<std::pair<std::string_view, std::string_view>> seen;
  for (const nvf::MessageInfo& info : nvf::all_messages()) {
    EXPECT_TRUE(seen.emplace(info.catalog, info.id).second) << info.id << " stands twice";
    EXPECT_TRUE(info.catalog.starts_with(nvf::catalogPrefix)) << info.catalog;
    EXPECT_EQ(nvf::find_message(info.catalog, info.id), &info);
    // Each argument but the place is shown, and no hole is without an argument.
    for (std::size_t n = 1; n <= 9; ++n) {
      const bool shown = info.text.find("{" + std::to_string(n) + "}") != std::string_view::npos;
      const bool wanted = n <= info.arguments.size() && info.arguments[n - 1] != ArgumentKind::Where;
      EXPECT_EQ(shown, wanted || (shown && info.arguments[n - 1] == ArgumentKind::Integer)) << info.id << ' ' << n;
    }
    EXPECT_TRUE(info.textOfString.empty() || info.arguments.size() == 1) << info.id;
  }
  const auto count = [](std::string_view family) {
    return std::count_if(nvf::all_messages().begin(), nvf::all_messages().end(),
                         [family](const auto& info) { return info.catalog.ends_with(family); });
  };
  EXPECT_EQ(count(":ast"), 40);
  EXPECT_EQ(count(":parse"), 50);
  EXPECT_EQ(count(":setup"), 7);
  EXPECT_EQ(count(":warnings"), 1);
  EXPECT_EQ(count(":check"), 1);
}

TEST(Message, ArgumentsAndTexts) {
  struct Case {
    nvf::BaseMsgID id;
    std::u16string text;
    std::u16string full;
  };
  const Case cases[] = {
      {parse::IfWithNoElse(u"m.tsn:3:5"), u"An 'if' expression needs an 'else' branch.",
       u"m.tsn:3:5: An 'if' expression needs an 'else' branch."},
      {parse::BisonSyntaxError("here", "unexpected {1}"), u"unexpected {1}", u"here: unexpected {1}"},
      {ast::InvalidExpressionSyntax(std::string("1+")), u"'1+' is not an expression.", u"'1+' is not an expression."},
      {setup::SimpleSetupWithZeroLhs(), u"An assignment in a setup function needs a left side.",
       u"An assignment in a setup function needs a left side."},
      {warnings::MaxNameLengthExceeded(u"w", u"long", 63, u"lo"),
       u"The name 'long' is longer than 63 characters and is cut to 'lo'.",
       u"w: The name 'long' is longer than 63 characters and is cut to 'lo'."},
      {nvf::BaseMsgID{{5L, nvf::ustring(u"x")}, "other", "Id"}, u"other:Id 5 x", u"other:Id 5 x"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Message(c.id).text(), c.text);
    EXPECT_EQ(Message(c.id).fullMessage(), c.full);
  }
  const warnings::MaxNameLengthExceeded message(u"w", u"long", 63, u"lo");
  EXPECT_EQ(message.catalog, "kelvane:tessarin:compiler:core:lex:warnings");
  EXPECT_EQ(message.id, "MaxNameLengthExceeded");
  EXPECT_EQ(message.arguments,
            (std::vector<nvf::MessageArgument>{nvf::ustring(u"w"), nvf::ustring(u"long"), 63L, nvf::ustring(u"lo")}));
}

TEST(Message, OfATextInAString) {
  // The same message of a place in a file, and of a string, where the argument is its text.
  const nvf::LocatedError<ast::InvalidObjectRefSyntax> located(place, false);
  EXPECT_EQ(located.fullMessage(), u"m.tsn:3: This is not a well-formed reference to an object.");
  const std::pair<nvf::BaseMsgID, std::u16string> ofStrings[] = {
      {ast::InvalidObjectRefSyntax(u"a("), u"'a(' is not a well-formed reference to an object."},
      {ast::InvalidValueRefSyntax(u"a("), u"'a(' is not a well-formed reference to a value."},
      {ast::InvalidFullPathVariableSyntax(u"a("), u"'a(' is not a well-formed full path."},
      {parse::LineColumnTooLarge(u""), u"A line of the string is too long, or the string has too many lines."},
  };
  for (const auto& [id, text] : ofStrings) {
    EXPECT_EQ(Message(id).text(), text);
    EXPECT_EQ(Message(id).fullMessage(), text);
  }
}

TEST(Message, TwoThatReadAlikeDifferInSeverity) {
  EXPECT_EQ(Message(parse::UseOfThroughsDeprecated("w")).severity(), nvf::Severity::Error);
  EXPECT_EQ(Message(parse::UseOfEquationDeprecated("w")).severity(), nvf::Severity::Warning);
}

TEST(Message, PlacesForPeopleCountFromOne) {
  EXPECT_EQ(nvf::file_line_message(place), u"m.tsn:3");
  EXPECT_EQ(nvf::file_line_column_message(place), u"m.tsn:3:5");
  EXPECT_EQ(nvf::file_line_message(Location()), u"line 1");
  EXPECT_EQ(nvf::file_line_column_message(Location()), u"line 1, column 1");
}

TEST(Message, Exceptions) {
  const nvf::LocatedError<parse::IllegalReservedKeywordUsage> error(place, true, u"when");
  const nvf::LocationException& base = error;
  EXPECT_EQ(base.id(), parse::IllegalReservedKeywordUsage(u"m.tsn:3:5", u"when"));
  EXPECT_EQ(base.location(), place);
  EXPECT_TRUE(base.showColumn());
  EXPECT_EQ(base.fullMessage(), u"m.tsn:3:5: The keyword 'when' cannot stand here.");
  EXPECT_STREQ(base.what(), "m.tsn:3:5: The keyword 'when' cannot stand here.");

  nvf::MessageException plain(Message(ast::FailToOpenFile("out")));
  plain.stack({{nvf::FileName("m.tsn"), u"setup", 7}});
  const auto copy = plain.clone();
  EXPECT_EQ(copy->id(), plain.id());
  EXPECT_EQ(copy->stack(), plain.stack());
  EXPECT_EQ(copy->fullMessage(), u"'out' cannot be written.");

  const auto cause = std::make_shared<nvf::BadGet>("no such alternative");
  const nvf::AttributedException attributed("failed", {cause}, {u"a", u"b"});
  EXPECT_EQ(attributed.numCauses(), 1U);
  EXPECT_STREQ(attributed.cause(0).what(), "no such alternative");
  EXPECT_EQ(attributed.numObjects(), 2U);
  EXPECT_EQ(attributed.object(1), u"b");
  EXPECT_THROW((void)attributed.object(2), std::out_of_range);
}

/// Shows another text than its message, through one hook or both.
template <bool narrow, bool wide>
class Shouting final : public nvf::MessageException {
public:
  Shouting() : MessageException(Message(ast::FailToOpenFile("out"))) {}

protected:
  void message_(std::string& text) const override {
    MessageException::message_(text);
    if (narrow) text = "narrow \xC3\xA9";
  }
  void message_(nvf::ustring& text) const override {
    MessageException::message_(text);
    if (wide) text = u"wide \u00e9";
  }
};

TEST(MessageException, WhatAndFullMessageTellTheSame) {
  const auto expectTells = [](const nvf::MessageException& e, const char* what) {
    const nvf::MessageException copy = e; // of the base alone
    EXPECT_STREQ(e.what(), what);
    EXPECT_EQ(nvf::encode_utf8(e.fullMessage()), what);
    EXPECT_EQ(e.what(), e.what()) << "the text stays where it is";
    EXPECT_STREQ(copy.what(), "'out' cannot be written.");
    EXPECT_EQ(copy.fullMessage(), u"'out' cannot be written.");
  };
  expectTells(Shouting<false, false>(), "'out' cannot be written.");
  expectTells(Shouting<true, false>(), "narrow \xC3\xA9");
  expectTells(Shouting<false, true>(), "wide \xC3\xA9");
  expectTells(Shouting<true, true>(), "wide \xC3\xA9");

  nvf::MessageException assigned(Message(ast::FailToOpenFile("first")));
  EXPECT_STREQ(assigned.what(), "'first' cannot be written.");
  assigned = nvf::MessageException(Message(ast::FailToOpenFile("second")));
  EXPECT_STREQ(assigned.what(), "'second' cannot be written.");
}

TEST(Warning, ScopesNestAndBelongToTheirThread) {
  using Ids = std::vector<std::string>;
  Ids process;
  Ids outer;
  Ids inner;
  const auto into = [](Ids& ids) { return [&ids](const Message& m) { ids.push_back(m.id().id); }; };
  const nvf::WarningSink former = nvf::Warning::get().sink(into(process));
  nvf::file_line_warning<parse::UseOfEquationDeprecated>(place);
  {
    const nvf::ScopedWarningSink outerScope(into(outer));
    nvf::file_line_warning<parse::InconsistentModelNameAndFileName>(place, u"m");
    {
      const nvf::ScopedWarningSink innerScope([&](const Message& m) {
        EXPECT_EQ(m.location(), place);
        EXPECT_EQ(m.id(), parse::InconsistentFunctionNameAndFileName(u"m.tsn:3", u"f"));
        inner.push_back(m.id().id);
      });
      nvf::file_line_warning<parse::InconsistentFunctionNameAndFileName>(place, u"f");
    }
    std::thread([] { nvf::file_line_warning<parse::UseOfEquationDeprecated>(place); }).join();
    nvf::file_line_warning<parse::UseOfEquationDeprecated>(place);
  }
  nvf::Warning::get().sink(former);
  EXPECT_EQ(process, (Ids{"UseOfEquationDeprecated", "UseOfEquationDeprecated"}));
  EXPECT_EQ(outer, (Ids{"InconsistentModelNameAndFileName", "UseOfEquationDeprecated"}));
  EXPECT_EQ(inner, (Ids{"InconsistentFunctionNameAndFileName"}));
}

TEST(Warning, GoesToStandardErrorByDefault) {
  nvf::Warning::get().sink({});
  testing::internal::CaptureStderr();
  nvf::file_line_warning<parse::UseOfEquationDeprecated>(place);
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(text.starts_with("warning: ") && text.ends_with("\n")) << text;
  const nvf::ScopedWarningSink scope({});
  testing::internal::CaptureStderr();
  nvf::file_line_warning<parse::UseOfEquationDeprecated>(place);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), text);
}

TEST(Terminate, AHandlerMayThrow) {
  // NOLINTNEXTLINE(clang-analyzer-deadcode.DeadStores): the analyser takes a fatal diagnostic for the end
  const nvf::TerminateHandler former = nvf::set_terminate_handler(nvf::throw_fatal_error);
  try {
    nvf::terminate("terminal", "parser/parse/TerminalData", 29, "signature");
    ADD_FAILURE();
  } catch (const nvf::FatalError& error) {
    EXPECT_STREQ(error.what(), "terminal");
    EXPECT_EQ(error.diagnostic().sourceFile, "parser/parse/TerminalData");
    EXPECT_EQ(error.diagnostic().line, 29);
    EXPECT_EQ(error.diagnostic().signature, "signature");
  }
  EXPECT_EQ(nvf::set_terminate_handler(former), &nvf::throw_fatal_error);
}

TEST(TerminateDeathTest, TheDefaultPrintsAndAborts) {
  EXPECT_DEATH(nvf::terminate("terminal", "parser/parse/TerminalData", 29, "code() const"),
               "terminal(.|\n)*parser/parse/TerminalData:29(.|\n)*code\\(\\) const");
}

} // namespace
