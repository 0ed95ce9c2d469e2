// Pieces of a text, places in it, changes of it.
#include "tessarin/ide/EditorConfig.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/ide/Positions.hpp"
#include "tessarin/ide/TextEdit.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using namespace tessarin;
using compiler::core::Kind;

std::string part(const ide::Lossless& lossless, const ide::PieceRange& range) {
  nvf::ustring text;
  for (std::size_t i = range.begin; i < range.end; ++i) text += lossless.text(lossless.pieces()[i]);
  return nvf::encode_utf8(text);
}

TEST(LosslessText, PiecesAddUpToAnyText) {
  for (const nvf::ustring_view text :
       {nvf::ustring_view(u""), nvf::ustring_view(u"a = [1 -2 ... why\n 3]; % b\n%{\nc\n%}\n"),
        nvf::ustring_view(u"x\0", 2), nvf::ustring_view(u"x\x1a y"), nvf::ustring_view(u"'open\n\ufeff$\"")}) {
    const ide::Lossless lossless(text);
    EXPECT_EQ(part(lossless, {0, lossless.pieces().size()}), nvf::encode_utf8(text));
    for (std::size_t i = 0; i < text.size(); ++i) {
      const ide::Piece& piece = lossless.pieces()[lossless.at(i)];
      EXPECT_TRUE(piece.offset <= i && i < piece.end());
    }
    EXPECT_EQ(lossless.at(text.size()), lossless.pieces().size());
  }
}

TEST(LosslessText, TriviaBelongToTokens) {
  const ide::Lossless lossless(u"% head\n\na = 1; % of a\n% of b\n  b = ... on\n2\n% tail\n");
  const auto token = [&](nvf::ustring_view text) {
    std::size_t i = 0;
    while (lossless.text(lossless.pieces()[i]) != text) ++i;
    return i;
  };
  EXPECT_EQ(part(lossless, lossless.leading(token(u"a"))), "% head\n\n");
  EXPECT_EQ(part(lossless, lossless.trailing(token(u"a"))), " ");
  EXPECT_EQ(part(lossless, lossless.leading(token(u"="))), "");
  EXPECT_EQ(part(lossless, lossless.trailing(token(u";"))), " % of a\n");
  EXPECT_EQ(part(lossless, lossless.leading(token(u"b"))), "% of b\n  ");
  EXPECT_EQ(part(lossless, lossless.leading(token(u"2"))), "");
  EXPECT_EQ(part(lossless, lossless.leading(lossless.pieces().size())), "% tail\n");
  EXPECT_EQ(lossless.trailing(lossless.pieces().size()),
            (ide::PieceRange{lossless.pieces().size(), lossless.pieces().size()}));
}

TEST(LosslessText, NodesAndPieces) {
  const nvf::ustring_view text = u"component c\n  equations\n    f(x + 1) == y;\n  end\nend\n";
  const ide::Lossless lossless(text);
  const ide::LineTable lines(text);
  const ide::NodeIndex index(compiler::core::Parser(nvf::SourceBuffer(nvf::FileName("c.tsn"), text)).parse(), lossless,
                             lines);
  const auto innermost = [&](nvf::ustring_view from, nvf::ustring_view to) {
    const ide::NodeIndex::Entry* entry =
        index.innermost({lossless.at(text.find(from)), lossless.at(text.find(to)) + 1});
    return entry == nullptr ? std::string() : part(lossless, entry->pieces);
  };
  EXPECT_EQ(innermost(u"x", u"x"), "x");
  EXPECT_EQ(innermost(u"x", u"1"), "x + 1");
  EXPECT_EQ(innermost(u"1", u"y"), "f(x + 1) == y");
  EXPECT_EQ(innermost(u"component", u"y"), part(lossless, index.entries()[0].pieces));
  for (const ide::NodeIndex::Entry& entry : index.entries()) { // what a node spans, a node has
    if (entry.pieces.begin == entry.pieces.end) continue;
    EXPECT_EQ(index.innermost(entry.pieces)->pieces, entry.pieces);
  }
}

TEST(LineTable, ColumnsOfBothEncodings) {
  const nvf::ustring_view text = u"a\u00e4\U0001f600b\r\n\rc\x0b\n"; // 1, 2 and 4 bytes; 1, 1 and 2 units
  const ide::LineTable lines(text);
  EXPECT_EQ(lines.lineCount(), 4U);
  const struct {
    std::size_t offset;
    ide::Position utf16;
    std::size_t bytes;
  } rows[] = {{0, {0, 0}, 0}, {1, {0, 1}, 1}, {2, {0, 2}, 3}, {3, {0, 3}, 3}, {4, {0, 4}, 7},
              {5, {0, 5}, 8}, {7, {1, 0}, 0}, {8, {2, 0}, 0}, {9, {2, 1}, 1}, {11, {3, 0}, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.offset);
    EXPECT_EQ(lines.utf16(row.offset), row.utf16);
    EXPECT_EQ(lines.utf8(row.offset), (ide::Position{row.utf16.line, row.bytes}));
    EXPECT_EQ(lines.offsetOfUtf16(row.utf16), row.offset);
    const bool isInsidePair = row.offset == 3;
    EXPECT_EQ(lines.offsetOfUtf8({row.utf16.line, row.bytes}), row.offset - (isInsidePair ? 1 : 0));
  }
  EXPECT_EQ(lines.utf16(1000), (ide::Position{3, 0}));
  EXPECT_EQ(lines.offsetOfUtf16({0, 1000}), 5U); // in front of the line end
  EXPECT_EQ(lines.offsetOfUtf8({0, 5}), 2U);     // inside a character
  EXPECT_EQ(lines.offsetOfUtf16({1000, 3}), text.size());
}

TEST(TextEdits, AreAppliedAndShown) {
  const nvf::ustring_view before = u"a=1;% c\nkept\nb =2\nx\nx\nx\nx\nx\nx\nx\nd=3";
  const nvf::ustring after = u"a = 1; % c\nkept\nb = 2\nx\nx\nx\nx\nx\nx\nx\nd = 3\n";
  const std::vector<ide::TextEdit> edits = ide::edits(ide::Lossless(before), ide::Lossless(after));
  EXPECT_EQ(ide::apply(before, edits), after);
  EXPECT_EQ(edits[0], (ide::TextEdit{{1, 1}, u" "}));
  EXPECT_EQ(ide::unifiedDifference(before, edits, "m/a.tsn"), "--- m/a.tsn\n+++ m/a.tsn\n@@ -1,6 +1,6 @@\n-a=1;% c\n"
                                                              "+a = 1; % c\n kept\n-b =2\n+b = 2\n x\n x\n x\n"
                                                              "@@ -8,4 +8,4 @@\n x\n x\n x\n-d=3\n\\ No newline at end "
                                                              "of file\n+d = 3\n");
  EXPECT_EQ(ide::apply(u"ab", ide::edits(ide::Lossless(u"ab"), ide::Lossless(u"a c"))), u"a c");
  EXPECT_EQ(ide::unifiedDifference(before, {}, "a"), "");
  const ide::TextEdit twice[] = {{{1, 3}, u""}, {{2, 4}, u""}};
  EXPECT_THROW(static_cast<void>(ide::apply(before, twice)), std::invalid_argument);
  const ide::TextEdit outside[] = {{{1, 1000}, u""}};
  EXPECT_THROW(static_cast<void>(ide::apply(before, outside)), std::invalid_argument);
}

TEST(EditorConfig, Patterns) {
  const struct {
    const char* pattern;
    const char* path;
    bool matches;
  } rows[] = {{"*", "a/b.tsn", true},
              {"*.tsn", "a/b.tsn", true},
              {"*.tsn", "a/b.tsnx", false},
              {"/*.tsn", "a/b.tsn", false},
              {"/*.tsn", "b.tsn", true},
              {"a/*.tsn", "a/b.tsn", true},
              {"a/*.tsn", "a/c/b.tsn", false},
              {"a/**.tsn", "a/c/b.tsn", true},
              {"?.{tsn,txt}", "b.txt", true},
              {"[a-c!].tsn", "b.tsn", true},
              {"[!a-c].tsn", "b.tsn", false},
              {"b{1..12}.tsn", "b12.tsn", true},
              {"b{1..12}.tsn", "b13.tsn", false},
              {"{b}.tsn", "{b}.tsn", true},
              {"{a,{b,c}d}.tsn", "cd.tsn", true},
              {"\\*.tsn", "b.tsn", false},
              {"[b.tsn", "[b.tsn", true},
              {"{a,b", "{a,b", true}};
  for (const auto& row : rows)
    EXPECT_EQ(ide::matchesEditorConfigPattern(row.pattern, row.path), row.matches) << row.pattern << ' ' << row.path;
}

TEST(EditorConfig, GivesWidthAndIndentation) {
  ide::FormatOptions options;
  EXPECT_TRUE(ide::applyEditorConfig("root = TRUE\n[*]\nmax_line_length = 80\r\n# c\n[*.tsn]\nIndent_Size=4\n[*.c]\n"
                                     "indent_size = 8\n",
                                     "a/b.tsn", options));
  EXPECT_EQ(options.width, 80U);
  EXPECT_EQ(options.indentation, 4U);
  EXPECT_FALSE(ide::applyEditorConfig("[*]\nmax_line_length = off\nindent_size = tab\ntab_width = 3\nroot = true\n"
                                      "indent_size\n[\n",
                                      "b.tsn", options));
  EXPECT_EQ(options.width, 80U);
  EXPECT_EQ(options.indentation, 3U);
  ide::applyEditorConfig("[*]\nindent_size = 0\nmax_line_length = 99999999999999999999\n", "b.tsn", options);
  EXPECT_EQ(options.width, 80U);
  EXPECT_EQ(options.indentation, 3U);
}

} // namespace
