// Text forms that are much longer than the source: to streams, and under a limit.
#include "tessarin/foundation/text_limit.hpp"
#include "tessarin/parser/builder/StringEntries.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace {

using namespace tessarin::compiler::core;

/// Keeps what is written, and the length of the longest piece.
class Recorder : public std::streambuf {
public:
  std::string text;
  std::size_t longest = 0;

protected:
  int_type overflow(int_type c) override {
    text += traits_type::to_char_type(c);
    return c;
  }
  std::streamsize xsputn(const char* bytes, std::streamsize length) override {
    text.append(bytes, static_cast<std::size_t>(length));
    longest = std::max(longest, static_cast<std::size_t>(length));
    return length;
  }
};

/// Its text has some twenty units for each level.
Expr nested(std::size_t levels) {
  ustring text;
  for (std::size_t i = 0; i < levels; ++i) text += u"if a, '\U0001D538' else ";
  text += u"x";
  for (std::size_t i = 0; i < levels; ++i) text += u" end";
  return str_to_astexpr(text);
}

TEST(Streaming, IsDoneInBlocks) {
  const Expr expr = nested(8'000);
  const ustring whole = to_string(expr);
  ASSERT_GT(whole.size(), 150'000U);
  Recorder recorder;
  std::ostream stream(&recorder);
  stream << expr;
  EXPECT_EQ(recorder.text, nvf::encode_utf8(whole));
  EXPECT_LT(recorder.longest, whole.size() / 4);
}

TEST(Streaming, EndsAtALimit) {
  const Expr expr = nested(60);
  const ustring whole = to_string(expr);
  const nvf::ScopedTextLimit enough(whole.size());
  EXPECT_EQ(to_string(expr), whole);
  {
    const nvf::ScopedTextLimit less(whole.size() - 1);
    EXPECT_THROW(to_string(expr), nvf::TextTooLong);
    std::ostringstream stream;
    EXPECT_THROW(stream << expr, nvf::TextTooLong);
    EXPECT_THROW(to_string(str_to_astexpr(u"'" + ustring(whole.size(), u'x') + u"'")), nvf::TextTooLong);
  }
  std::ostringstream stream;
  stream << expr;
  EXPECT_EQ(stream.str(), nvf::encode_utf8(whole));
}

} // namespace
