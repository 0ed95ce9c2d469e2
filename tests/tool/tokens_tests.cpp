#include "support/large.hpp"
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace {

using nlohmann::json;
using namespace tessarin::test;

/// The document that a run has written: one value on one line, and nothing else.
json documentOf(const ToolResult& result) {
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
  EXPECT_TRUE(result.out.ends_with('\n'));
  return json::parse(result.out);
}

const std::string longName = std::string(63, 'n') + "XYZ";

TEST(TokensCommand, Json) {
  struct Case {
    std::string source;
    std::string document;
  };
  const std::string shortName(63, 'n');
  const Case cases[] = {
      {"", R"({"tokens":[["EOI","",0,0]],"warnings":[]})"},
      {"a = 1.5; % note\n'x'",
       R"({"tokens":[["ID","a",0,0],["EQUALS","",0,2],["NUMBER","1.5",0,4],["SEMI","",0,7],["EOL","",0,15],
                     ["STRING","'x'",1,0],["EOI","",1,3]],"warnings":[]})"},
      // Columns count UTF-16 units; text keeps what is in the string; a soft keyword has no text.
      {"x = '\U0001F600\x01\"'; value",
       R"({"tokens":[["ID","x",0,0],["EQUALS","",0,2],["STRING","'\uD83D\uDE00\u0001\"'",0,4],["SEMI","",0,10],
                     ["VALUE","",0,12],["EOI","",0,17]],"warnings":[]})"},
      // Two names that are too long: the text is cut, and each is warned of where it stands.
      {longName + "\r\n " + longName,
       R"({"tokens":[["ID",")" + shortName + R"(",0,0],["EOL","",0,66],["ID",")" + shortName +
           R"(",1,1],["EOI","",1,67]],"warnings":[)" +
           R"({"family":"lex:warnings","id":"MaxNameLengthExceeded","arguments":[")" + longName + R"(",63,")" +
           shortName + R"("],"line":0,"column":0,"endLine":0,"endColumn":66},)" +
           R"({"family":"lex:warnings","id":"MaxNameLengthExceeded","arguments":[")" + longName + R"(",63,")" +
           shortName + R"("],"line":1,"column":1,"endLine":1,"endColumn":67}]})"},
      {"a\n%{\nopen", R"({"tokens":[["ID","a",0,0],["EOL","",0,1],["INCOMPLETE_COMMENT","",2,4],["EOI","",2,4]],
                          "warnings":[]})"},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    folder.write("f.tsn", c.source);
    const ToolResult fromFile = runTool(folder, {"tokens", "--json", "f.tsn"});
    EXPECT_EQ(documentOf(fromFile), json::parse(c.document)) << c.source << '\n' << fromFile.out;
    EXPECT_EQ(fromFile.status, 0);
    const ToolResult fromInput = runTool(folder, {"tokens", "-", "--json"}, {.input = c.source});
    EXPECT_EQ(fromInput.out, fromFile.out);
    EXPECT_EQ(fromInput.status, 0);
  }
}

TEST(TokensCommand, ScannerJsonIsABareArray) {
  struct Case {
    std::string source;
    std::string document;
  };
  const Case cases[] = {
      {"", "[]"},
      {"a  =1\n", R"([["ID",1],["WHITE",2],["EQUALS",1],["INT",1],["EOL",1]])"},
      {"% \U0001F600\n", R"([["COMMENT",4],["EOL",1]])"},
      {"\xC3\xA9", R"([["BADCHAR",1]])"},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    const ToolResult result = runTool(folder, {"tokens", "--scanner", "--json", "-"}, {.input = c.source});
    EXPECT_EQ(documentOf(result), json::parse(c.document)) << result.out;
    EXPECT_EQ(result.status, 0);
  }
}

TEST(TokensCommand, Text) {
  const TemporaryFolder folder;
  folder.write("f.tsn", "a=1\n  '\xC3\xA9\x1B' % c\n");
  const ToolResult lexer = runTool(folder, {"tokens", "f.tsn"});
  EXPECT_EQ(lexer.out, "1:1       ID                    a\n"
                       "1:2       EQUALS\n"
                       "1:3       NUMBER                1\n"
                       "1:4       EOL\n"
                       "2:3       STRING                'é\\u001B'\n"
                       "2:11      EOL\n"
                       "3:1       EOI\n");
  EXPECT_EQ(lexer.error, "");
  EXPECT_EQ(lexer.status, 0);
  const ToolResult scanner = runTool(folder, {"tokens", "--scanner", "f.tsn"});
  EXPECT_EQ(scanner.out, "1:1       ID                    a\n"
                         "1:2       EQUALS                =\n"
                         "1:3       INT                   1\n"
                         "1:4       EOL                   \\n\n"
                         "2:1       WHITE                   \n"
                         "2:3       STRING                'é\\u001B'\n"
                         "2:7       WHITE                  \n"
                         "2:8       COMMENT               % c\n"
                         "2:11      EOL                   \\n\n");
  EXPECT_EQ(scanner.status, 0);
}

TEST(TokensCommand, WarningsAreTextOnStandardError) {
  const TemporaryFolder folder;
  folder.write("f.tsn", "x " + longName);
  const ToolResult result = runTool(folder, {"tokens", "f.tsn"});
  EXPECT_EQ(result.error, "f.tsn:1:3: warning: The name '" + longName +
                              "' is longer than 63 characters and is cut to '" + longName.substr(0, 63) +
                              "'. [MaxNameLengthExceeded]\nx " + longName + "\n  ^" +
                              std::string(longName.size() - 1, '~') + "\n");
  EXPECT_EQ(result.status, 0);
}

TEST(TokensCommand, BytesThatAreNotUtf8) {
  struct Case {
    std::string bytes;
    std::string place;
  };
  const Case cases[] = {
      {"\xFF", "0, line 1, column 1"},             // no such byte
      {"ab\n\x80", "3, line 2, column 1"},         // a continuation alone
      {"x\xC3", "1, line 1, column 2"},            // cut short
      {"\xC3\xA9\xC0\xAF", "2, line 1, column 2"}, // overlong
      {"\xED\xA0\x80", "0, line 1, column 1"},     // a surrogate
      {"\xF4\x90\x80\x80", "0, line 1, column 1"}, // too large
      // Each line end counts once; columns count UTF-16 code units.
      {"a\r\nb\rc\n\xF0\x9D\x94\xB8\xFF", "11, line 4, column 3"},
      {std::string("\xFF\xFEx\0", 4), "0, line 1, column 1; it looks like UTF-16: save it as UTF-8"},
      {std::string("\xFE\xFF\0x", 4), "0, line 1, column 1; it looks like UTF-16: save it as UTF-8"},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    const std::string what = "invalid UTF-8 at byte " + c.place;
    folder.write("f.tsn", c.bytes);
    const ToolResult text = runTool(folder, {"tokens", "f.tsn"});
    EXPECT_EQ(text.out, "");
    EXPECT_EQ(text.error, "f.tsn: error: " + what + "\n");
    EXPECT_EQ(text.status, 1);
    const json document = {{"error", {"nvf::InvalidUtf8", what}}, {"warnings", json::array()}};
    for (const std::string mode : {"tokens", "tree"}) {
      const ToolResult machine = runTool(folder, {mode, "--json", "f.tsn"});
      EXPECT_EQ(documentOf(machine), document);
      EXPECT_EQ(machine.status, 1);
    }
  }
}

LARGE_TEST(TokensCommand, AFaultInTheMiddle) {
  const TemporaryFolder folder;
  folder.write("wide.tsn", "a\n" + std::string(std::size_t{1} << 24U, ' ') + "b");
  const json fault = json::parse(R"({"fault":{"family":"parse","id":"LineColumnTooLarge","arguments":["wide.tsn"],
                                     "line":null,"column":null},"warnings":[]})");
  const ToolResult machine = runTool(folder, {"tokens", "--json", "wide.tsn"});
  EXPECT_EQ(documentOf(machine), fault);
  EXPECT_EQ(machine.status, 1);
  // As text, what was read before the fault is there.
  const ToolResult text = runTool(folder, {"tokens", "wide.tsn"});
  EXPECT_EQ(text.out, "1:1       ID                    a\n1:2       EOL\n");
  EXPECT_EQ(text.error.find("wide.tsn: error: "), 0U);
  EXPECT_NE(text.error.find(" [LineColumnTooLarge]\n"), std::string::npos);
  EXPECT_EQ(text.status, 1);
  const ToolResult scanner = runTool(folder, {"tokens", "--scanner", "wide.tsn"}, {.outputFile = "/dev/null"});
  EXPECT_EQ(scanner.error, text.error);
  EXPECT_EQ(scanner.status, 1);
}

} // namespace
