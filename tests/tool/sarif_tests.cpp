#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <regex>
#include <set>

namespace {

using nlohmann::json;
using namespace tessarin::test;

/// What the tool writes of SARIF. Strings are regular expressions, numbers the least values; a name that ends in `?` is
/// of a member that may be missing. No member may come on top.
const json shape = json::parse(R"({
  "$schema": "https://.*/sarif-schema-2[.]1[.]0[.]json",
  "version": "2[.]1[.]0",
  "runs": [{
    "tool": {"driver": {
      "name": "tsn",
      "version": "[0-9]+[.][0-9]+[.][0-9]+",
      "rules": [{
        "id": "[a-z:]+:[A-Za-z0-9]+",
        "name": "[A-Za-z0-9]+",
        "shortDescription": {"text": ".+"},
        "help": {"text": ".+"},
        "defaultConfiguration": {"level": "warning|error"}
      }]
    }},
    "invocations": [{
      "executionSuccessful": true,
      "exitCode": 0,
      "toolExecutionNotifications": [{
        "level": "error",
        "message": {"text": ".+"},
        "locations": [{"physicalLocation": {"artifactLocation": {"uri": "(file:///)?[-A-Za-z0-9._~%/]+"}}}],
        "exception": {"kind": ".+", "message": ".+"}
      }]
    }],
    "columnKind": "utf16CodeUnits",
    "results": [{
      "ruleId": "[a-z:]+:[A-Za-z0-9]+",
      "ruleIndex": 0,
      "level": "warning|error",
      "message": {"text": ".+"},
      "locations": [{"physicalLocation": {
        "artifactLocation": {"uri": "(file:///)?[-A-Za-z0-9._~%/]+"},
        "region?": {"startLine": 1, "startColumn?": 1, "endLine?": 1, "endColumn?": 1}
      }}],
      "partialFingerprints": {"ruleAndLine/v1": "[0-9a-f]{16}:[0-9]+"}
    }]
  }]
})");

void expectShape(const json& value, const json& expected, const std::string& path) {
  ASSERT_EQ(value.is_number() ? "number" : value.type_name(), expected.is_number() ? "number" : expected.type_name())
      << path;
  if (expected.is_string()) {
    EXPECT_TRUE(std::regex_match(value.get<std::string>(), std::regex(expected.get<std::string>())))
        << path << ": " << value;
  } else if (expected.is_number()) {
    EXPECT_GE(value.get<long>(), expected.get<long>()) << path;
  } else if (expected.is_array()) {
    for (const json& item : value) expectShape(item, expected.front(), path + "[]");
  } else if (expected.is_object()) {
    std::size_t known = 0;
    for (const auto& [name, member] : expected.items()) {
      const bool isOptional = name.ends_with('?');
      const std::string key = name.substr(0, name.size() - (isOptional ? 1 : 0));
      known += value.count(key);
      if (value.contains(key)) {
        expectShape(value[key], member, path + "." + key);
      } else {
        EXPECT_TRUE(isOptional) << path << " has no " << key;
      }
    }
    EXPECT_EQ(known, value.size()) << path << ": " << value;
  }
}

/// Runs `tsn check --format sarif` and looks at what every document must have.
json check(const TemporaryFolder& folder, const std::vector<std::string>& paths, const ToolOptions& options = {}) {
  std::vector<std::string> arguments = {"check", "--format", "sarif"};
  arguments.insert(arguments.end(), paths.begin(), paths.end());
  const ToolResult result = runTool(folder, arguments, options);
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
  const json document = json::parse(result.out);
  expectShape(document, shape, "");
  EXPECT_EQ(document["runs"].size(), 1U);
  const json& run = document["runs"].front();

  const json& rules = run["tool"]["driver"]["rules"];
  std::set<std::string> ids;
  for (const json& rule : rules) EXPECT_TRUE(ids.insert(rule["id"]).second) << rule;
  std::set<std::string> used;
  for (const json& found : run["results"]) {
    const json& rule = rules.at(found["ruleIndex"].get<std::size_t>());
    EXPECT_EQ(found["ruleId"], rule["id"]);
    EXPECT_EQ(found["level"], rule["defaultConfiguration"]["level"]);
    used.insert(found["ruleId"]);
  }
  EXPECT_EQ(used, ids);

  const json& invocation = run["invocations"].front();
  EXPECT_EQ(invocation["exitCode"], result.status);
  EXPECT_EQ(invocation["executionSuccessful"], invocation["toolExecutionNotifications"].empty());
  return run;
}

/// Results as `uri:line:column: level: text [rule]`, notifications as `uri: text [class]`.
std::vector<std::string> linesOf(const json& run) {
  std::vector<std::string> lines;
  for (const json& found : run["results"]) {
    const json& place = found["locations"].at(0)["physicalLocation"];
    std::string line = place["artifactLocation"]["uri"];
    if (place.contains("region")) {
      line += ":" + place["region"]["startLine"].dump();
      if (place["region"].contains("startColumn")) line += ":" + place["region"]["startColumn"].dump();
    }
    lines.push_back(line + ": " + found["level"].get<std::string>() + ": " +
                    found["message"]["text"].get<std::string>() + " [" + found["ruleId"].get<std::string>() + "]");
  }
  for (const json& note : run["invocations"].at(0)["toolExecutionNotifications"]) {
    lines.push_back(note["locations"].at(0)["physicalLocation"]["artifactLocation"]["uri"].get<std::string>() + ": " +
                    note["message"]["text"].get<std::string>() + " [" + note["exception"]["kind"].get<std::string>() +
                    "]");
  }
  return lines;
}

TEST(Sarif, ResultsAndNotifications) {
  const TemporaryFolder folder;
  folder.write("a é/b.tsn", "a = '\U0001D538'; x = ;\n"); // a pair of code units counts as two columns
  folder.write("a é/empty.tsn", "");                      // a fault without a place
  folder.write("a é/named.tsn", "component other\n inputs\n  " + std::string(64, 'n') + ";\n end\n x y\nend\n");
  folder.write("a é/setup.tsn", "component setup\n function setup\n  x;\n end\nend\n"); // a fault without a column
  folder.write("cast.tsn", "component cast\n equations\n  x == internal_mrv_index__(f, 1.5, 2);\n end\nend\n");
  folder.write("fatal.tsn", "component fatal\n function a.b\n  y = 2;\n end\nend\n");
  folder.write("good.tsn", "component good\nend\n");
  folder.write("utf.tsn", "\xFF");
  folder.write("c.tsn", "y = ;\n");
  const std::string absolute = folder.path() / "c.tsn";
  const json run = check(folder, {"a é", "cast.tsn", "fatal.tsn", "gone.tsn", "./good.tsn", "utf.tsn", "-", absolute},
                         {.input = "x == {1, 2};\n"});
  const std::string name(63, 'n');
  const std::vector<std::string> expected = {
      "a%20%C3%A9/b.tsn:1:15: error: A separator cannot stand here. [parse:UnexpectedSep]",
      "a%20%C3%A9/empty.tsn: error: The text is neither a model file nor a function file. [ast:InvalidTsnFile]",
      "a%20%C3%A9/named.tsn:3:3: warning: The name '" + name + "n' is longer than 63 characters and is cut to '" +
          name + "'. [lex:warnings:MaxNameLengthExceeded]",
      "a%20%C3%A9/named.tsn:5:2: error: This cannot stand here: an operator or a separator is missing before it, or a "
      "keyword is "
      "misspelt or out of place. [parse:MissingOperator]",
      std::string("a%20%C3%A9/setup.tsn:3: error: This statement cannot be used in a setup function. ") +
          "[setup:SimpleSetupUnsupportedStatement]",
      "%3Cstdin%3E: error: The text is neither a model file nor a function file. [ast:InvalidTsnFile]",
      "file://" + folder.path().native() + "/c.tsn:1:5: error: A separator cannot stand here. [parse:UnexpectedSep]",
      // What keeps a file from being checked.
      // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): long texts
      "cast.tsn: refused with boost::bad_lexical_cast: bad lexical cast: source type value could not be interpreted as "
      "target [boost::bad_lexical_cast]",
      "fatal.tsn: internal error: non-terminal (parser/parse/NonTerminalData:34, "
      "virtual const tessarin::compiler::core::Token& tessarin::compiler::core::NonTerminalData::token() const) "
      "[nvf::FatalError]",
      "gone.tsn: cannot be read: No such file or directory [tessarin::tool::UnreadableFile]",
      "utf.tsn: invalid UTF-8 at byte 0, line 1, column 1 [nvf::InvalidUtf8]",
  };
  EXPECT_EQ(linesOf(run), expected);
}

TEST(Sarif, Rules) {
  const TemporaryFolder folder;
  folder.write("a.tsn", "component b\nequations\n x == {1, 2};\nend\nend\n");
  folder.write("b.tsn", "component c\nend\n");
  folder.write("c.tsn", "component c\nequations\n x = ;\nend\nend\n");
  // Single braces would stand for placeholders.
  json rules = check(folder, {"."})["tool"]["driver"]["rules"];
  for (json& rule : rules) {
    EXPECT_NE(rule["help"]["text"].get<std::string>().find("'" + rule["name"].get<std::string>() + "'"),
              std::string::npos);
    rule.erase("help");
  }
  EXPECT_EQ(rules, json::parse(R"([
    {"id": "parse:CellArrayInDeclarativeConstruct", "name": "CellArrayInDeclarativeConstruct",
     "shortDescription": {"text": "A list in braces must be a value with a unit, such as {{1, 'm'}}."},
     "defaultConfiguration": {"level": "error"}},
    {"id": "parse:InconsistentModelNameAndFileName", "name": "InconsistentModelNameAndFileName",
     "shortDescription": {"text": "The model '…' should be in a file of the same name."},
     "defaultConfiguration": {"level": "warning"}},
    {"id": "parse:BisonSyntaxError", "name": "BisonSyntaxError",
     "shortDescription": {"text": "BisonSyntaxError"}, "defaultConfiguration": {"level": "error"}}])"));
}

TEST(Sarif, EndsAndFingerprints) {
  const TemporaryFolder folder;
  const std::string name(64, 'n');
  const std::string inputs = " inputs\n  " + name + ";\n end\n";
  folder.write("f.tsn", "component f\n" + inputs + inputs + "end\n");
  const auto resultsOf = [&] { return check(folder, {"f.tsn"})["results"]; };
  const auto regionOf = [](const json& result) { return result["locations"][0]["physicalLocation"]["region"]; };
  const json before = resultsOf();
  ASSERT_EQ(before.size(), 2U);
  EXPECT_EQ(regionOf(before[0]), json::parse(R"({"startLine":3,"startColumn":3,"endLine":3,"endColumn":67})"));
  EXPECT_NE(before[0]["partialFingerprints"], before[1]["partialFingerprints"]);

  folder.write("f.tsn", "% a line more\ncomponent f\n" + inputs + inputs + "end\n");
  const json after = resultsOf();
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_NE(regionOf(after[i]), regionOf(before[i]));
    EXPECT_EQ(after[i]["partialFingerprints"], before[i]["partialFingerprints"]);
  }
}

TEST(Sarif, NothingFound) {
  const TemporaryFolder folder;
  folder.write("good.tsn", "component good\nend\n");
  std::filesystem::create_directory(folder.path() / "empty");
  for (const char* path : {"good.tsn", "empty"}) {
    const json run = check(folder, {path});
    EXPECT_TRUE(linesOf(run).empty()) << run;
  }
}

} // namespace
