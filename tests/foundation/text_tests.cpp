#include "tessarin/foundation/text.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>

namespace {

using nvf::ustring;

struct Utf8Case {
  std::string bytes;
  std::optional<ustring> text; // nothing where the bytes are not UTF-8
  std::size_t invalidAt = 0;
};

TEST(Text, Utf8ToUtf16) {
  const Utf8Case cases[] = {
      {"", u""},
      {"plain", u"plain"},
      {"\xc3\xa9\xe2\x82\xac", u"\u00e9\u20ac"},
      {"\xf0\x9f\x98\x80", u"\xd83d\xde00"},
      {"\xef\xbb\xbfx", u"\ufeffx"},
      {"\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\xf4\x8f\xbf\xbf", u"\u007f\u0080\u07ff\u0800\uffff\U0010ffff"},
      {"ab\x80", std::nullopt, 2},
      {"a\xc3", std::nullopt, 1},
      {"\xc0\x80", std::nullopt, 0},         // overlong
      {"\xe0\x9f\xbf", std::nullopt, 0},     // overlong
      {"\xf0\x8f\xbf\xbf", std::nullopt, 0}, // overlong
      {"x\xed\xa0\x80", std::nullopt, 1},    // surrogate
      {"\xf4\x90\x80\x80", std::nullopt, 0}, // beyond U+10FFFF
      {"\xe2\x82\x28", std::nullopt, 0},
      {"\xff", std::nullopt, 0},
  };
  for (const Utf8Case& c : cases) {
    if (c.text) {
      EXPECT_EQ(nvf::decode_utf8(c.bytes), *c.text);
      EXPECT_EQ(nvf::encode_utf8(*c.text), c.bytes);
      continue;
    }
    try {
      nvf::decode_utf8(c.bytes);
      ADD_FAILURE() << "accepted: " << c.bytes;
    } catch (const nvf::InvalidUtf8& error) {
      EXPECT_EQ(error.offset(), c.invalidAt) << c.bytes;
    }
  }
}

TEST(Text, ConversionsThatCannotRefuseReplace) {
  EXPECT_EQ(nvf::utf8_string_to_ustring("a\xff\xc3z"), u"a\ufffd\ufffdz");
  EXPECT_EQ(nvf::ustring_to_local_encoded_string(u"a\xd800z"), "a\xef\xbf\xbdz");
  EXPECT_EQ(nvf::to_string(ustring(u"\xdc00\xd83d\xde00")), "\xef\xbf\xbd\xf0\x9f\x98\x80");
}

TEST(Text, AsciiIsChecked) {
  constexpr nvf::detail::AsciiStringCheck check;
  EXPECT_EQ(check(ustring(u"a\x7f")).text(), u"a\x7f");
  EXPECT_EQ(check("abc", 2).text(), u"ab");
  EXPECT_THROW(check(ustring(u"\x80")), nvf::NotAscii);
  try {
    check("ab\xff", 3);
    ADD_FAILURE();
  } catch (const nvf::NotAscii& error) {
    EXPECT_EQ(error.offset(), 2U);
  }
}

TEST(Text, AsciiRendering) {
  EXPECT_EQ(nvf::lower("Ab\xc3\x84[Z"), "ab\xc3\x84[z") << "ASCII only";
  std::ostringstream stream;
  for (const char16_t unit : ustring(u"a\n\u00e9\xd83d")) nvf::to_ascii(stream, unit);
  EXPECT_EQ(stream.str(), "a\n\\u00e9\\ud83d");
}

TEST(Text, HashIsTheSameOnEveryMachine) {
  EXPECT_EQ(nvf::hash_value(nvf::ustring_view()), 0U);
  EXPECT_EQ(nvf::hash_value(ustring(1, u'\0')), 0xe6546b64U);
  EXPECT_EQ(nvf::hash_value(ustring(2, u'\0')), 0xcb34c5ae03d8f098U);
}

} // namespace
