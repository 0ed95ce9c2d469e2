#include "tessarin/foundation/identifier.hpp"

#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

using nvf::CxId;
using nvf::CxIdPath;
using nvf::MessageId;
using nvf::ustring;
using nvf::detail::CxIdCheck;
using tessarin::test::digestBytes;
using tessarin::test::digestOf;
using tessarin::test::expectDistinctInOrder;

CxId id(const ustring& text) {
  return CxIdCheck()(text);
}

TEST(Identifier, IsALetterThenLettersDigitsAndUnderscores) {
  struct Case {
    ustring text;
    bool isIdentifier;
  };
  const Case cases[] = {
      {u"a", true},
      {u"Z9_", true},
      {u"end", true}, // keywords are no matter of this rule
      {ustring(1000, u'x'), true},
      {u"", false},
      {u"_a", false},
      {u"1a", false},
      {u"a b", false},
      {u"a.b", false},
      {u"a-", false},
      {u"a\u00e4", false},
      {u"\u00e4", false},
      {u"\uff41", false},
      {u"\u0161", false}, // its low byte is a letter
      {ustring{u'a', u'\0'}, false},
      {u"@", false},
      {u"[", false},
      {u"`", false},
      {u"{", false},
      {u"a/", false},
      {u"a:", false},
  };
  for (const auto& [text, isIdentifier] : cases) {
    SCOPED_TRACE(nvf::encode_utf8(text));
    EXPECT_EQ(nvf::is_identifier(text), isIdentifier);
    const std::string bytes = nvf::encode_utf8(text);
    const nvf::BasicTableString<char16_t> interned(text);
    if (isIdentifier) {
      EXPECT_EQ(CxIdCheck()(interned).text(), interned);
      EXPECT_EQ(CxIdCheck()(bytes.data(), bytes.size()).string(), text);
    } else {
      EXPECT_THROW(CxIdCheck()(interned), nvf::InvalidCxId);
      EXPECT_THROW(CxIdCheck()(text), nvf::InvalidCxId);
      EXPECT_THROW(CxIdCheck()(bytes.data(), bytes.size()), nvf::InvalidCxId);
    }
  }
}

TEST(Identifier, KeepsTheLawsAndOrdersByBytes) {
  const std::vector<CxId> sorted{CxIdCheck()(), id(u"A"),  id(u"B"), id(u"B0"), id(u"BA"),
                                 id(u"B_"),     id(u"Ba"), id(u"a"), id(u"a0"), id(u"aa")};
  expectDistinctInOrder(sorted);
  const std::set<CxId> set(sorted.rbegin(), sorted.rend());
  EXPECT_EQ(std::vector<CxId>(set.begin(), set.end()), sorted);
  EXPECT_EQ(std::unordered_set<CxId>(sorted.begin(), sorted.end()).size(), sorted.size());
}

TEST(Identifier, DigestIsOneByteACharacterInOnePiece) {
  EXPECT_EQ(digestOf(id(u"time_1")), std::vector<std::string>{"time_1"});
}

TEST(Identifier, PathsAreSplitAtDots) {
  struct Case {
    ustring text;
    std::optional<std::vector<ustring>> names; // nothing where a name is no identifier
  };
  const Case cases[] = {
      {u"", std::vector<ustring>{}},
      {u"a", {{u"a"}}},
      {u"foundation.electrical.b_1", {{u"foundation", u"electrical", u"b_1"}}},
      {u".", std::nullopt},
      {u"a.", std::nullopt},
      {u".a", std::nullopt},
      {u"a..b", std::nullopt},
      {u"a b.c", std::nullopt},
      {u"a(1).b", std::nullopt},
      {u"a.\u00e4", std::nullopt},
  };
  for (const auto& [text, names] : cases) {
    SCOPED_TRACE(nvf::encode_utf8(text));
    const std::string bytes = nvf::encode_utf8(text);
    if (!names) {
      EXPECT_THROW(nvf::detail::parse_ids(text.data(), text.size()), nvf::InvalidCxId);
      EXPECT_THROW(nvf::detail::parse_ids(bytes.data(), bytes.size()), nvf::InvalidCxId);
      continue;
    }
    const auto ids = nvf::detail::parse_ids(text.data(), text.size());
    EXPECT_EQ(ids, nvf::detail::parse_ids(bytes.data(), bytes.size()));
    ASSERT_EQ(ids.size(), names->size());
    for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i].string(), (*names)[i]);
    EXPECT_EQ(nvf::BasicCxIdPath<0>(text).string(), text);
  }
}

TEST(Identifier, PathsHaveALeastLength) {
  const nvf::BasicCxIdPath<0> empty;
  EXPECT_THROW(CxIdPath{empty}, nvf::IdPathTooShort);
  EXPECT_THROW(CxIdPath(u""), nvf::IdPathTooShort);
  EXPECT_THROW(nvf::BasicCxIdPath<3>("a.b"), nvf::IdPathTooShort);
  EXPECT_EQ(nvf::BasicCxIdPath<2>("a.b").size(), 2U);
  const nvf::BasicCxIdPath<0> weaker = CxIdPath("a.b");
  EXPECT_EQ(weaker.string(), u"a.b");
  try {
    nvf::detail::id_path_too_short(1, 2);
  } catch (const nvf::IdPathTooShort& error) {
    EXPECT_STREQ(error.what(), "a path has 1 names where it must have at least 2.");
  }
}

TEST(Identifier, PathsAreComparedNameByName) {
  EXPECT_EQ(dump_text(CxIdPath("a.b")), u"a.b");
  EXPECT_EQ(dump_text(CxIdPath("a.b").back()), u"b");
  expectDistinctInOrder<CxIdPath>({CxIdPath("a"), CxIdPath("a.b"), CxIdPath("a.b.c"), CxIdPath("ab"), CxIdPath("b.a")});
  EXPECT_EQ(hash_value(CxIdPath("a.b")), hash_value(CxIdPath("a.b").ids()));
  EXPECT_EQ(digestOf(CxIdPath("a.bc")), (std::vector<std::string>{"a", "bc"}));
}

TEST(Identifier, MessageIdsAreTwoOrMoreIdentifiers) {
  for (const ustring text : {u"a:b", u"lib:electrical:Too_Large2"}) {
    EXPECT_EQ(MessageId::make(text).value().string(), text);
    EXPECT_EQ(nvf::detail::MessageIdCheck()(text.data(), text.size()), MessageId::make(text));
  }
  for (const ustring text : {u"a", u":", u"a:", u":a", u"a::b", u"a:1", u"a: b", u"a:b ", u"a:\u00e4", u"a.b"}) {
    EXPECT_EQ(MessageId::make(text), std::nullopt) << nvf::encode_utf8(text);
    EXPECT_THROW(nvf::detail::MessageIdCheck()(text.data(), text.size()), nvf::InvalidMessageId);
  }
  EXPECT_EQ(MessageId::make(u""), MessageId());
  EXPECT_THROW(nvf::detail::MessageIdCheck()(nullptr, 0), nvf::InvalidMessageId);
}

TEST(Identifier, MessageIdsHashAndDigestAsText) {
  const MessageId ab = MessageId::make(u"a:b").value();
  EXPECT_EQ(hash_value(ab), nvf::hash_value(nvf::ustring_view(u"a:b")));
  EXPECT_EQ(digestBytes(ab), "0061003a0062");
  EXPECT_EQ(digestOf(ab).size(), 3U);
  expectDistinctInOrder<MessageId>(
      {MessageId(), ab, MessageId::make(u"a:b:c").value(), MessageId::make(u"b:a").value()});
}

} // namespace
