#include "tools/tsn/JsonWriter.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <limits>
#include <sstream>

namespace {

using tessarin::tool::JsonWriter;

std::string written(const std::function<void(JsonWriter&)>& write) {
  std::ostringstream out;
  JsonWriter json(out);
  write(json);
  return out.str();
}

TEST(JsonWriter, Text) {
  struct Case {
    std::u16string text;
    std::string json;
  };
  const Case cases[] = {
      {u"", R"("")"},
      {u"plain 'text' /~", R"("plain 'text' /~")"},
      {u"\"\\", R"("\"\\")"},
      {u"\b\f\n\r\t", R"("\b\f\n\r\t")"},
      {std::u16string(u"\0\x1F\x7F\x80", 4), "\"\\u0000\\u001F\\u007F\u0080\""},
      {u"é漢", "\"é漢\""},
      {u"\U0001F600\U0010FFFF", "\"\U0001F600\U0010FFFF\""},
      // Lone surrogates: leading, trailing, two in the wrong order, a leading one before a pair, one at the end.
      {u"\xD800", R"("\uD800")"},
      {u"a\xDFFF"
       u"b",
       R"("a\uDFFFb")"},
      {u"\xDC00\xD800", R"("\uDC00\uD800")"},
      {u"\xD83D\xD83D\xDE00", "\"\\uD83D\U0001F600\""},
      {u"x\xDBFF", R"("x\uDBFF")"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(written([&](JsonWriter& json) { json.string(c.text); }), c.json);
  }
}

TEST(JsonWriter, Structure) {
  struct Case {
    std::function<void(JsonWriter&)> write;
    std::string json;
  };
  const Case cases[] = {
      {[](JsonWriter& j) { j.beginArray().endArray(); }, "[]"},
      {[](JsonWriter& j) { j.beginObject().endObject(); }, "{}"},
      {[](JsonWriter& j) { j.beginArray().number(1).null().word("a").string(u"b").endArray(); }, R"([1,null,"a","b"])"},
      {[](JsonWriter& j) { j.beginArray().beginArray().endArray().beginObject().endObject().number(0).endArray(); },
       "[[],{},0]"},
      {[](JsonWriter& j) {
         j.beginObject();
         j.key("a").beginArray().endArray();
         j.key("b").beginObject().key("c").null().endObject();
         j.key("d").raw("[1]").endObject();
       },
       R"({"a":[],"b":{"c":null},"d":[1]})"},
      {[](JsonWriter& j) {
         j.beginArray().number(std::numeric_limits<std::size_t>::max()).number(std::numeric_limits<long>::min());
         j.endArray();
       },
       "[18446744073709551615,-9223372036854775808]"},
      {[](JsonWriter& j) { j.string(std::string("\xFF é")); }, "\"\uFFFD é\""},
  };
  for (const Case& c : cases) {
    const std::string json = written(c.write);
    EXPECT_EQ(json, c.json);
    EXPECT_TRUE(nlohmann::json::accept(json)) << json;
  }
}

} // namespace
