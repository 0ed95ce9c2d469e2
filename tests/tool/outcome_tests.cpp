#include "tessarin/foundation/messages.hpp"

#include "tools/tsn/InOrder.hpp"
#include "tools/tsn/Outcome.hpp"
#include "tools/tsn/Source.hpp"

#include <boost/throw_exception.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <stdexcept>

namespace {

using namespace tessarin::tool;

namespace ast = kelvane::tessarin::compiler::core::ast;
namespace parse = kelvane::tessarin::compiler::core::parse;
namespace setup = kelvane::tessarin::compiler::core::setup;

const nvf::Location place(nvf::FileName("m.tsn"), nvf::LineColumn(2, 4));

/// A message without a place of its own, from the statement on the given line.
nvf::MessageException atLine(const nvf::BaseMsgID& id, std::size_t line) {
  nvf::MessageException exception{nvf::Message(id)};
  exception.stack({{nvf::FileName("m.tsn"), u"", line}, {nvf::FileName("m.tsn"), u"", line + 1}});
  return exception;
}

TEST(Outcome, WhatIsThrownBecomesAMemberOfTheDocument) {
  struct Case {
    std::function<void()> stage;
    std::string json;
    Status status;
  };
  const Case cases[] = {
      {[] { throw nvf::LocatedError<ast::InvalidNamedArg>(place, false, u"a.b"); },
       R"("fault":{"family":"ast","id":"InvalidNamedArg","arguments":["a.b"],"line":2,"column":4})", Status::Fault},
      // The one argument of this message is a place in one form and the offending text in the other.
      {[] { throw nvf::LocatedError<ast::InvalidValueRefSyntax>(place, false); },
       R"("fault":{"family":"ast","id":"InvalidValueRefSyntax","arguments":[],"line":2,"column":4})", Status::Fault},
      {[] { throw nvf::MessageException(nvf::Message(ast::InvalidValueRefSyntax("a+b"))); },
       R"("fault":{"family":"ast","id":"InvalidValueRefSyntax","arguments":["a+b"],"line":null,"column":null})",
       Status::Fault},
      // The place of the exception counts, not that of its message.
      {[] {
         const nvf::Message message(parse::IfWithNoElse("here"), nvf::Location());
         throw nvf::LocationException(message, place, true);
       },
       R"("fault":{"family":"parse","id":"IfWithNoElse","arguments":[],"line":2,"column":4})", Status::Fault},
      {[] { throw atLine(setup::SimpleSetupWithZeroLhs(), 7); },
       R"("fault":{"family":"setup","id":"SimpleSetupWithZeroLhs","arguments":[],"line":7,"column":null})",
       Status::Fault},
      {[] {
         throw nvf::MessageException(nvf::Message({{7L, u"x"}, "elsewhere", "Unknown"}));
       },
       R"("fault":{"family":"elsewhere","id":"Unknown","arguments":[7,"x"],"line":null,"column":null})", Status::Fault},
      {[] {
         throw nvf::FatalError({"text \"q\"", "a/B", 12, "void f()"});
       },
       R"x("fatal":{"text":"text \"q\"","source":"a/B","line":12,"signature":"void f()"})x", Status::Fault},
      {[] { throw std::logic_error("bad visit"); }, R"("error":["std::logic_error","bad visit"])", Status::Fault},
      {[] { throw nvf::BadGet("é"); }, R"("error":["nvf::BadGet","é"])", Status::Fault},
      {[] { throw 1; }, R"("error":["int",""])", Status::Fault},
  };
  for (const Case& c : cases) {
    const auto failure = observe([](const nvf::Message&) {}, c.stage);
    ASSERT_TRUE(failure) << c.json;
    std::ostringstream out;
    JsonWriter json(out);
    writeJsonMember(json, *failure);
    EXPECT_EQ(out.str(), c.json);
    EXPECT_EQ(statusOf(failure), c.status) << c.json;
  }
  EXPECT_EQ(statusOf(observe([](const nvf::Message&) {}, [] {})), Status::Success);
}

TEST(Outcome, SentencesForFailuresWithoutAPlace) {
  struct Case {
    std::function<void()> stage;
    std::string sentence;
  };
  const Case cases[] = {
      {[] { static_cast<void>(Source::read("/nowhere")); }, "cannot be read: No such file or directory"},
      {[] { throw nvf::InvalidUtf8(7); }, "invalid UTF-8 at byte 7"},
      {[] { throw nvf::BadGet("tessarin::IfExpr"); }, "refused with nvf::BadGet: tessarin::IfExpr"},
      {[] { boost::throw_exception(std::range_error("too wide")); }, "refused with std::range_error: too wide"},
      {[] { throw std::bad_alloc(); }, "there is not enough memory"},
      {[] { throw 1; }, "refused with int"},
  };
  for (const Case& c : cases) {
    const auto failure = observe([](const nvf::Message&) {}, c.stage);
    ASSERT_TRUE(failure) << c.sentence;
    EXPECT_EQ(sentence(std::get<OtherException>(*failure)), c.sentence);
  }
}

TEST(InOrder, ResultsComeInOrderForAnyNumberOfWorkers) {
  constexpr std::size_t count = 500;
  for (const std::size_t workers : {0U, 1U, 2U, 7U, 1000U}) {
    std::vector<std::size_t> results;
    forEachInOrder(
        count, workers, [](std::size_t i) { return i * i; }, [&](std::size_t r) { results.push_back(r); });
    ASSERT_EQ(results.size(), count) << workers;
    for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(results[i], i * i) << workers;
  }
}

TEST(InOrder, FailuresComeInOrderToo) {
  const auto work = [](std::size_t i) { return i % 10 == 9 ? throw std::out_of_range(std::to_string(i)) : i; };
  for (const std::size_t workers : {1U, 3U}) {
    std::size_t used = 0;
    try {
      forEachInOrder(100, workers, work, [&](std::size_t) { ++used; });
      ADD_FAILURE() << "nothing was thrown";
    } catch (const std::out_of_range& e) {
      EXPECT_STREQ(e.what(), "9");
    }
    EXPECT_EQ(used, 9U);
  }
}

} // namespace
