#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/positive.hpp"
#include "tessarin/foundation/sequences.hpp"

#include "support/large.hpp"
#include "support/small_stack.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using nvf::CxId;
using nvf::Expressions;
using nvf::Expressions1;
using nvf::Positive;
using tessarin::test::digestBytes;
using tessarin::test::digestOf;
using tessarin::test::expectDistinctInOrder;

CxId id(const char* text) {
  return nvf::detail::CxIdCheck()(text, std::char_traits<char>::length(text));
}

TEST(Expressions, OrdersLexicographicallyAPrefixBeingLess) {
  expectDistinctInOrder<Expressions<CxId>>({
      {},
      {id("B")},
      {id("a")},
      {id("a"), id("a")},
      {id("a"), id("b")},
      {id("a"), id("b"), id("a")},
      {id("ab")},
      {id("b")},
  });
}

TEST(Expressions, HashAndDigestHoldNothingButTheElements) {
  EXPECT_EQ(hash_value(Expressions<CxId>()), 0U);
  EXPECT_EQ(hash_value(Expressions<CxId>{CxId()}), 0xe6546b64U);
  EXPECT_EQ(hash_value(Expressions<CxId>{CxId(), CxId()}), 0xcb34c5ae03d8f098U);
  EXPECT_TRUE(digestOf(Expressions<CxId>()).empty());
  EXPECT_EQ(digestOf(Expressions<CxId>{id("a"), id("bc")}), (std::vector<std::string>{"a", "bc"}));
}

TEST(Expressions, AreMadeInSeveralWaysAndShareTheirElements) {
  const std::vector<std::string> words{"a", "b", "a long text that needs memory of its own"};
  std::vector<std::string> givenAway = words;
  const Expressions<std::string> made[] = {
      Expressions<std::string>(words),
      Expressions<std::string>(std::move(givenAway)),
      Expressions<std::string>(words.begin(), words.end()),
      {words[0], words[1], words[2]},
  };
  for (const auto& sequence : made) {
    EXPECT_EQ(sequence, made[0]);
    EXPECT_EQ(std::vector<std::string>(sequence.begin(), sequence.end()), words);
    EXPECT_EQ(sequence.front(), sequence[0]);
    EXPECT_EQ(sequence.back(), sequence[2]);
  }

  Expressions<std::string> copy = made[0];
  EXPECT_EQ(copy.begin(), made[0].begin());
  const Expressions<std::string> moved = std::move(copy);
  EXPECT_EQ(moved.begin(), made[0].begin());
  EXPECT_TRUE(copy.empty()); // NOLINT(bugprone-use-after-move): promised
  EXPECT_EQ(copy, Expressions<std::string>(std::vector<std::string>()));

  const std::vector<bool> bits{true, false, true}; // whose elements have no addresses
  EXPECT_EQ(Expressions<bool>(bits), (Expressions<bool>{true, false, true}));
  struct alignas(16) Wide {
    long value;
  };
  const Expressions<Wide> wide{{1}, {2}};
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(wide.begin()) % alignof(Wide), 0U);
  EXPECT_EQ(wide[1].value, 2);
}

/// Counts its living objects; one of them refuses to be copied.
struct Counted {
  static inline int alive = 0;
  int number;
  explicit Counted(int n) : number(n) { ++alive; }
  Counted(const Counted& other) : number(other.number) {
    if (number == 13) throw std::runtime_error("13");
    ++alive;
  }
  Counted& operator=(const Counted&) = default;
  ~Counted() { --alive; }
};

TEST(Expressions, ElementsLiveAsLongAsTheLastCopy) {
  {
    Expressions<Counted> outer;
    {
      const Expressions<Counted> sequence{Counted(1), Counted(2)};
      EXPECT_EQ(Counted::alive, 2);
      outer = sequence;
      outer = *&outer;
    }
    EXPECT_EQ(Counted::alive, 2);
    std::vector<Counted> unlucky;
    unlucky.reserve(3);
    for (const int number : {1, 13, 2}) unlucky.emplace_back(number);
    EXPECT_THROW(Expressions<Counted>{unlucky}, std::runtime_error);
    unlucky.clear();
    EXPECT_EQ(Counted::alive, 2) << "nothing is left of a sequence that failed";
  }
  EXPECT_EQ(Counted::alive, 0);
}

struct Tree {
  Expressions<Tree> children;
};

LARGE_TEST(Expressions, DeepNestsAreFreedOnASmallStack) {
  tessarin::test::onSmallStack([] {
    Tree tree;
    for (int level = 0; level < 200'000; ++level) tree = Tree{{std::move(tree), Tree()}};
    const Tree copy = tree;
    tree = Tree();
    EXPECT_EQ(copy.children.size(), 2U);
  });
}

TEST(Expressions, ThreadsCopyAndReleaseOneSequence) {
  const Expressions<std::string> shared{"one", "two"};
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([own = shared] {
      std::vector<Expressions<std::string>> copies;
      for (int round = 0; round < 100; ++round) copies.assign(100, own);
      EXPECT_EQ(copies.back(), own);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(shared, (Expressions<std::string>{"one", "two"}));
}

TEST(Expressions1, HasAtLeastOneElement) {
  using Ids = Expressions1<CxId>;
  EXPECT_THROW(Ids(Expressions<CxId>()), nvf::InvalidExpressions1);
  EXPECT_THROW(Ids(std::vector<CxId>()), nvf::InvalidExpressions1);
  EXPECT_THROW(Ids(std::initializer_list<CxId>()), nvf::InvalidExpressions1);
  static_assert(!std::is_default_constructible_v<Ids>);

  const Ids ids{id("a"), id("b")};
  const Expressions<CxId>& all = ids;
  EXPECT_EQ(ids.begin(), all.begin());
  EXPECT_EQ(hash_value(ids), hash_value(all));
  EXPECT_EQ(digestOf(ids), digestOf(all));
  expectDistinctInOrder<Ids>({{id("a")}, ids, {id("b")}});
}

TEST(Positive, RefusesWhatIsNot) {
  EXPECT_EQ(Positive<std::size_t>(1).value(), 1U);
  EXPECT_THROW(Positive<int>(-1), Positive<int>::NonPositiveValueFound);
  try {
    Positive<std::size_t>(0);
    ADD_FAILURE();
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "non-positive value found where a positive value was expected.");
  }
  using Depth = Positive<std::size_t>;
  expectDistinctInOrder<Depth>({Depth(1), Depth(2), Depth(~std::size_t{0})});
  EXPECT_EQ(digestBytes(Depth(258)), "0000000000000102");
  EXPECT_EQ(hash_value(Depth(258)), 258U);
}

} // namespace
