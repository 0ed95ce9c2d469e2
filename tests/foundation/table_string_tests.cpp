#include "tessarin/foundation/interned_texts.hpp"
#include "tessarin/foundation/table_string.hpp"

#include "support/large.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace {

using nvf::Ordering;
using UString = nvf::BasicTableString<char16_t>;
using NString = nvf::BasicTableString<char>;

TEST(TableString, EqualTextsShareOneEntry) {
  const std::u16string text = u"resistance";
  const UString a(text.c_str());
  const UString b(text.data(), text.size());
  EXPECT_EQ(a.data(), b.data());
  EXPECT_TRUE(a.equal_(b));
  EXPECT_EQ(a, text);
  EXPECT_EQ(std::u16string(a), text);
  EXPECT_EQ(a.data()[a.size()], u'\0');
  EXPECT_NE(a, UString(u"Resistance"));
}

TEST(TableString, TheEmptyStringIsTheDefault) {
  for (const UString& empty : {UString(), UString(u""), UString(nullptr, 0), UString(u"abc", 0)}) {
    EXPECT_EQ(empty, UString());
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(empty.size(), 0U);
    EXPECT_EQ(*empty.data(), u'\0');
    EXPECT_EQ(empty.begin(), empty.end());
    EXPECT_EQ(empty.hash(), 0U);
  }
}

TEST(TableString, HoldsAnyCodeUnit) {
  const std::u16string text{u'a', u'\0', u'\xd800', u'\xffff'};
  const UString interned(text);
  EXPECT_EQ(interned.size(), 4U);
  EXPECT_EQ(interned, text);
  EXPECT_NE(interned, UString(u"a"));
}

TEST(TableString, TheTableTellsHowMuchItHolds) {
  const nvf::InternedTexts before = nvf::interned_texts();
  const std::u16string large(100'000, u'x');
  for (int i = 0; i < 2; ++i) {
    const nvf::BasicTableString<char16_t> once(large);
    const nvf::BasicTableString<char> narrow("a narrow text that no other test has");
    const nvf::InternedTexts now = nvf::interned_texts();
    EXPECT_EQ(now.count, before.count + 2) << "each is kept once";
    EXPECT_GE(now.bytes, before.bytes + sizeof(char16_t) * large.size());
  }
}

TEST(TableString, OrdersByUnitAPrefixBeingLess) {
  const std::vector<std::string> sorted{"", "\x80", "\xff", "A", "B", "a", "aa", "ab", "b"};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    for (std::size_t j = 0; j < sorted.size(); ++j) {
      const Ordering expected = i < j ? Ordering::Less : i > j ? Ordering::Greater : Ordering::Equal;
      EXPECT_EQ(NString(sorted[i]).compare_(NString(sorted[j])), expected) << i << ' ' << j;
    }
  }
}

TEST(TableString, ThreadsAgreeOnEntries) {
  constexpr std::size_t count = 20'000; // enough for the table to grow while others read
  const auto internAll = [](std::vector<UString>& strings) {
    for (std::size_t i = 0; i < count; ++i) strings.emplace_back(u"t_" + nvf::decimal(i % (count / 2)));
  };
  std::vector<std::vector<UString>> byThread(4);
  std::vector<std::thread> threads;
  for (auto& strings : byThread) threads.emplace_back(internAll, std::ref(strings));
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(byThread[0][i], u"t_" + nvf::decimal(i % (count / 2)));
    for (const auto& strings : byThread) ASSERT_EQ(strings[i].data(), byThread[0][i].data());
  }
}

TEST(TableString, LongTextsAreKeptWhole) {
  for (const std::size_t size : {std::size_t{1023}, std::size_t{10'000}, std::size_t{1'000'000}}) {
    std::u16string text(size, u'x');
    text.back() = u'y';
    EXPECT_EQ(UString(text), text);
    EXPECT_EQ(UString(text).data(), UString(text).data());
  }
}

LARGE_TEST(TableString, TextsCannotBeMadeToCollide) {
  // All of these have one hash where it is made of the text alone, as it once was: for any first word there is a second
  // one after which all states were the same. The hash depends on a secret of the process.
  const auto made = [](std::uint64_t first) {
    std::uint64_t state = (std::uint64_t{16} ^ first) * 0x9e3779b97f4a7c15U;
    state ^= state >> 32U;
    const std::uint64_t words[] = {first, state ^ 0x1234'5678'9abc'def0U};
    std::u16string text(8, u'\0');
    std::memcpy(text.data(), words, sizeof words);
    return text;
  };
  constexpr std::uint64_t count = 200'000;
  std::unordered_set<std::size_t> hashes;
  for (std::uint64_t i = 0; i < count; ++i) hashes.insert(UString(made(i)).hash());
  EXPECT_EQ(hashes.size(), count);
  for (std::uint64_t i = 0; i < count; i += 1000) {
    const UString text(made(i));
    EXPECT_EQ(text, made(i));
    EXPECT_EQ(text, UString(made(i)));
  }
}

} // namespace
