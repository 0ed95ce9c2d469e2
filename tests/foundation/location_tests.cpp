#include "tessarin/foundation/location.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using nvf::FileName;
using nvf::LineColumn;
using nvf::Location;
using nvf::Ordering;
using nvf::Range;

Location at(const char* file, unsigned long line, unsigned long column) {
  return {FileName(file), LineColumn(line, column)};
}

TEST(Location, LineAndColumnShareOneWord) {
  static_assert(sizeof(LineColumn) == 8 && sizeof(Location) == 16);
  const LineColumn largest(LineColumn::maxLine, LineColumn::maxColumn);
  EXPECT_EQ(largest.line(), (1UL << 40) - 1);
  EXPECT_EQ(largest.column(), (1UL << 24) - 1);
  EXPECT_THROW(LineColumn(0, LineColumn::maxColumn + 1), LineColumn::ValueTooLarge);
  EXPECT_THROW(LineColumn(LineColumn::maxLine + 1, 0), LineColumn::ValueTooLarge);
  EXPECT_EQ(compare(LineColumn(1, 500), LineColumn(2, 0)), Ordering::Less);
}

TEST(Location, FileNamesKeepEveryPath) {
  const std::filesystem::path odd("dir/\xff\xc3\xa9.tsn"); // not UTF-8 as a whole
  EXPECT_EQ(FileName(odd).path(), odd);
  EXPECT_EQ(nvf::ustring(FileName(odd)), u"dir/\ufffd\u00e9.tsn");
  EXPECT_EQ(FileName("a"), FileName("a"));
  EXPECT_EQ(compare(FileName("a"), FileName("b")), Ordering::Less);
}

TEST(Location, RangesAddUp) {
  const Range early(at("f", 1, 2), at("f", 1, 5));
  const Range late(at("f", 3, 0), at("f", 3, 4));
  const Range outer(at("f", 1, 2), at("f", 3, 4));
  const Range other(at("g", 0, 0), at("g", 0, 1));
  EXPECT_EQ(early + late, outer);
  EXPECT_EQ(late + early, outer);
  EXPECT_EQ(outer + late, outer);
  EXPECT_EQ(Range() + late, late);
  EXPECT_EQ(late + Range(), late);
  EXPECT_EQ(early + other, Range(early.begin(), other.end()));
}

TEST(Location, DigestAndText) {
  std::string bytes;
  nvf::DigestSink sink = [&bytes](const char* data, unsigned long size) { bytes.append(data, size); };
  incorporate_data(sink, at("f", 258, 3));
  EXPECT_EQ(bytes, std::string("f\0\0\0\0\0\0\1\2\0\0\0\0\0\0\0\3", 17));

  bytes.clear();
  const Range range(at("f", 0, 1), at("f", 0, 2));
  incorporate_data(sink, range);
  const std::string both = bytes;
  bytes.clear();
  incorporate_data(sink, range.begin());
  incorporate_data(sink, range.end());
  EXPECT_EQ(both, bytes);
  EXPECT_EQ(hash_value(range), nvf::hash_combine(hash_value(range.begin()), hash_value(range.end())));

  std::ostringstream stream;
  stream << at("m.tsn", 0, 4) << ' ' << at("", 2, 0);
  EXPECT_EQ(stream.str(), "(m.tsn:1:5) (3:1)");
}

TEST(Location, Swaps) {
  Location a = at("a", 1, 2);
  Location b = at("b", 3, 4);
  Range range(a, b);
  Range empty;
  swap(range, empty);
  EXPECT_EQ(empty, Range(a, b));
  swap(a, b);
  EXPECT_EQ(empty, Range(b, a));
  FileName name("a");
  FileName other;
  swap(name, other);
  EXPECT_TRUE(name.empty() && other == FileName("a"));
}

TEST(Location, BuffersShowTheirLines) {
  const nvf::SourceBuffer buffer(FileName("b"), u"one\ntwo\r\nthree\rfour\n");
  const nvf::SourceBuffer copy = buffer; // NOLINT(performance-unnecessary-copy-initialization): the copy is tested
  EXPECT_EQ(copy.text().data(), buffer.text().data());
  const std::u16string_view lines[] = {u"one", u"two", u"three", u"four", u"", u""};
  for (std::size_t i = 0; i < std::size(lines); ++i) EXPECT_EQ(buffer.line(i), lines[i]) << i;
  EXPECT_EQ(nvf::SourceBuffer(FileName(), std::shared_ptr<const std::vector<char16_t>>()).text(), u"");
}

} // namespace
