// What formatting keeps, held against the library from outside: the lexer's tokens, the comments that a listener is
// shown, the digests of the syntax tree. Over written files, generated ones, and files with a comment in each gap.
#include "tessarin/foundation/warning.hpp"
#include "tessarin/ide/Format.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/lex/Lexer.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "Corpus.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {

using namespace tessarin;
using namespace std::string_view_literals;
using namespace tessarin::compiler::core;
namespace fs = std::filesystem;

const fs::path sources = TESSARIN_SOURCE_DIR;

nvf::ustring textOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return nvf::decode_utf8(std::string(std::istreambuf_iterator<char>(file), {}));
}

std::vector<fs::path> files() {
  std::vector<fs::path> found;
  for (const char* const folder : {"examples", "tests/data/models"}) {
    for (const auto& entry : fs::recursive_directory_iterator(sources / folder)) {
      if (entry.path().extension() == ".tsn") found.push_back(entry.path());
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

/// Keeps the comments that it is shown, without the blanks around them and the dots of continuations.
class Comments final : public MarkupListener {
public:
  explicit Comments(std::vector<nvf::ustring>& found) : found_(found) {}
  void notify(const nvf::ustring& text, const nvf::LineColumn&) override {
    const std::size_t begin = text.find_first_not_of(u" \t.");
    const std::size_t end = text.find_last_not_of(u" \t\r\n");
    if (begin <= end && end != nvf::ustring::npos) found_.push_back(text.substr(begin, end - begin + 1));
  }
  [[nodiscard]] std::unique_ptr<MarkupListener> clone() const override { return std::make_unique<Comments>(found_); }

private:
  std::vector<nvf::ustring>& found_;
};

/// What a text is made of.
struct Contents {
  std::vector<std::pair<TokenId::Value, nvf::ustring>> tokens; ///< without line ends
  std::vector<nvf::ustring> comments;
  friend bool operator==(const Contents&, const Contents&) = default;
};

Contents contentsOf(nvf::ustring_view text) {
  Contents contents;
  Lexer lexer(nvf::SourceBuffer(nvf::FileName("a.tsn"), text));
  lexer.markupListener(Comments(contents.comments));
  for (Token token = lexer.next(); token.code() != TokenId::EOI; token = lexer.next()) {
    if (token.code() != TokenId::EOL) contents.tokens.emplace_back(token.code(), token.text().view());
  }
  return contents;
}

/// The digest of all that the builder makes of a text; of a model with a setup function, whose tree has places, the
/// digest of the rest. Empty where the text is no file.
std::string digestOf(nvf::ustring_view text) {
  const nvf::ScopedWarningSink silent([](const nvf::Message&) {});
  std::string bytes;
  nvf::DigestSink sink = [&bytes](const char* data, unsigned long count) { bytes.append(data, count); };
  const auto feed = [&](const auto& file) {
    using File = std::decay_t<decltype(file)>;
    if constexpr (std::is_same_v<File, ModelFile>) {
      const Model& m = file.model();
      incorporate_data(sink, Model(m.type(), m.name(), m.baseClassName(), m.declarativeSections(), m.attributes(),
                                   m.modelSource(), ParseTree(), m.location()));
    }
    bytes += nvf::encode_utf8(file.string(0, 2)); // local functions, imports
  };
  try {
    const ParseTree tree = Parser(nvf::SourceBuffer(nvf::FileName("a.tsn"), text)).parse();
    std::visit(feed, ASTBuilder().buildTSNFile(tree, FileSource::open));
  } catch (const nvf::Exception&) {
    bytes.clear();
  }
  return bytes;
}

void expectLaws(nvf::ustring_view text, const ide::FormatOptions& options = {}) {
  const ide::FormatResult once = ide::format(text, options);
  ASSERT_FALSE(once.refusal) << description(once.refusal->law) << " at " << once.refusal->offset;
  EXPECT_TRUE(contentsOf(text) == contentsOf(once.text));
  EXPECT_EQ(digestOf(text), digestOf(once.text));
  EXPECT_EQ(nvf::encode_utf8(ide::format(once.text, options).text), nvf::encode_utf8(once.text));
}

TEST(FormatLaws, HoldForFilesInAnyWidth) {
  for (const fs::path& file : files()) {
    SCOPED_TRACE(file);
    const nvf::ustring text = textOf(file);
    expectLaws(text);
    EXPECT_EQ(ide::format(text).faulty.size(), 0U);
    expectLaws(text, {40, 4, {}});
    expectLaws(text, {20, 1, {}});
  }
}

TEST(FormatLaws, HoldForGeneratedFiles) {
  for (std::uint32_t seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    const nvf::ustring text = bench::makeFile(seed, 8000).text;
    ASSERT_NE(digestOf(text), "");
    expectLaws(text);
    expectLaws(text, {50, 3, {}});
  }
}

/// On lines of their own, at the end of a line, behind the dots of a continuation: wherever there is a gap.
TEST(FormatLaws, HoldWithACommentInEachGap) {
  for (const char* const name : {"mechanical/brake", "thermal/wall", "control/limiter", "electrical/diode"}) {
    const nvf::ustring text = textOf(sources / "examples/library" / (std::string(name) + ".tsn"));
    const ide::Lossless lossless(text);
    int formatted = 0;
    int inserted = 0;
    std::size_t last = 0;
    for (const ide::Piece& piece : lossless.pieces()) {
      if (piece.length == 0 || piece.offset == last) continue;
      last = piece.offset;
      const bool isLineEnd = ide::Lossless::sort(piece) == ide::PieceSort::LineEnd;
      const nvf::ustring_view comment = isLineEnd ? u" % put in" : u" ... put in\n";
      nvf::ustring changed = text;
      changed.insert(piece.offset, comment);
      const bool isWhole = digestOf(changed) == digestOf(text);
      SCOPED_TRACE(std::string(name) + " at " + std::to_string(piece.offset));
      const ide::FormatResult result = ide::format(changed);
      ASSERT_FALSE(result.refusal) << description(result.refusal->law) << " at " << result.refusal->offset;
      ++inserted;
      if (!isWhole) continue; // it stood in front of a quote, say
      ++formatted;
      ASSERT_TRUE(result.faulty.empty());
      ASSERT_TRUE(contentsOf(changed) == contentsOf(result.text)) << nvf::encode_utf8(result.text);
      ASSERT_EQ(digestOf(result.text), digestOf(text)) << nvf::encode_utf8(result.text);
    }
    EXPECT_GT(formatted, inserted * 9 / 10) << name;
  }
}

/// A statement as it may be written, and as it stands afterwards: what the documents do not show.
TEST(Format, OddTexts) {
  const struct {
    std::u16string_view before;
    std::u16string_view after;
  } rows[] = {
      {u"", u""},
      {u"\n\n  \n", u""},
      {u"x=1", u"x = 1\n"},
      {u"\ufeffx=1;\r\ny=2;\r", u"\ufeffx = 1;\r\ny = 2;\r\n"},
      {u"x=[1 -2\n3,...\n- 4]", u"x = [1 -2\n     3, ...\n     -4]\n"},
      {u"x=[1 -2\n30 4]", u"x = [ 1 -2\n     30  4]\n"},
      {u"x=[a - b, a -b, a' b', 1-...\n2]", u"x = [a - b, a -b, a' b', 1 - ...\n     2]\n"},
      {u"x=[\n1,2\n  ];", u"x = [\n  1, 2\n];\n"},
      {u"x=f ( - a , ~ b ) ;;y={ } ;", u"x = f(-a, ~b);;\ny = {};\n"},
      {u"x = 1 ... why\n\ny = 2", u"x = 1 ... why\n\ny = 2\n"},
      {u"x = 1 + ...\n%{\nkept  as is\n%}\n  2", u"x = 1 + ...\n%{\nkept  as is\n%}\n    2\n"},
      {u"if a b=1, end", u"if a\n  b = 1,\nend\n"},
      {u"switch a,case 1,b=2;otherwise,end", u"switch a,\n  case 1,\n    b = 2;\n  otherwise,\nend\n"},
      {u"f=@ (x)- x;g=@ sin;", u"f = @(x) -x;\ng = @sin;\n"},
      {u"% tsn format: off\nx=1;  y=2\n\n\n% tsn format: on\nx=1;  y=2",
       u"% tsn format: off\nx=1;  y=2\n\n\n% tsn format: on\nx = 1;\ny = 2\n"},
      {u"x=1\n\x1aleft as it is ", u"x = 1\n\x1aleft as it is "},
      {u"x=1\0"sv, u"x = 1\n\0"sv},
  };
  for (const auto& row : rows) {
    const ide::FormatResult result = ide::format(row.before);
    EXPECT_FALSE(result.refusal) << nvf::encode_utf8(row.before);
    EXPECT_EQ(nvf::encode_utf8(result.text), nvf::encode_utf8(row.after)) << nvf::encode_utf8(row.before);
    EXPECT_EQ(nvf::encode_utf8(ide::format(result.text).text), nvf::encode_utf8(result.text));
  }
}

TEST(Format, OnlyTheLinesThatAreAskedFor) {
  const nvf::ustring_view text = u"a=1\n\n\nb=2;c=3\nd=4\n\n\n\ne=5";
  ide::FormatOptions options;
  options.lines = {{3, 3}};
  EXPECT_EQ(nvf::encode_utf8(ide::format(text, options).text), "a=1\n\n\nb = 2;\nc = 3\nd=4\n\n\n\ne=5\n");
  options.lines = {{100, 200}};
  EXPECT_EQ(nvf::encode_utf8(ide::format(text, options).text), nvf::encode_utf8(text) + "\n");
}

TEST(Format, TakesDeepAndLongTexts) {
  constexpr std::size_t n = 40'000;
  const auto repeated = [](nvf::ustring_view part, std::size_t times) {
    nvf::ustring text;
    for (std::size_t i = 0; i < times; ++i) text += part;
    return text;
  };
  for (const nvf::ustring& text :
       {u"x = " + repeated(u"(", n) + u"1" + repeated(u")", n), u"x = " + repeated(u"a + ", n) + u"1",
        u"component c\nequations\n" + repeated(u"if a, ", n) + u"x == 1;" + repeated(u"else y == 1; end;", n) +
            u"end\nend",
        u"x = [" + repeated(u"1 2;...\n", n) + u"]", repeated(u"%{\n", n), repeated(u"...\n", n), repeated(u"[1 ", n),
        repeated(u"if ", n), u"x = " + repeated(u"a.", n) + u"b"}) {
    const ide::FormatResult result = ide::format(text);
    EXPECT_FALSE(result.refusal) << nvf::encode_utf8(text.substr(0, 50)) << description(result.refusal->law);
  }
}

} // namespace
