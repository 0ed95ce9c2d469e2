// Models, functions and whole files: what they give, which of several faults is reported, and the round trip of text.
#include "builder/files.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;

void check(const std::vector<BuildCase>& cases) {
  for (const auto& [source, expected] : cases) EXPECT_EQ(built(source), expected) << source;
}

TEST(BuildFile, Models) {
  check({
      {"component c end", "% c.tsn\ncomponent c\nend \n\n"},
      {"domain (A = 1) d\nvariables; x = 1; end\nend",
       "% d.tsn\ndomain (A = 1) d\n  variables\n    x = 1;\n  end\nend \n\n"},
      {"import a.*\ncomponent c end\nfunction y = f(x)\ndefinitions; y = x; end\nend",
       "% c.tsn\nimport a.*;\ncomponent c\nend \n\nfunction [ y ] = f( x )\n  definitions \n    y = x\n  end \nend "
       "\n\n"},
  });
}

TEST(BuildFile, Functions) {
  check({
      {"function y = f\ndefinitions; end\nend", "% f.tsn\nfunction [ y ] = f( )\n  definitions \n  end \nend \n\n"},
      {"function y = f()\ndefinitions; end\nend", "% f.tsn\nfunction [ y ] = f( )\n  definitions \n  end \nend \n\n"},
      {"function [y, z] = f(a, b)\n"
       "definitions (A = 1)\n  [y, ~] = g(a)\n  assert(a > b, 'No')\nend\n"
       "definitions; z = let x = b; in x end; end\n"
       "end",
       "% f.tsn\n"
       "function [ y, z ] = f( a, b )\n"
       "  definitions (A = 1)\n    [y,~] = g(a)\n    assert(a > b, 'No')\n  end \n"
       "  definitions \n    z = let x = b; in x; end\n  end \n"
       "end \n\n"},
      {"import a.b\nfunction y = f\ndefinitions; end\nend", "% f.tsn\nimport a.b;\nfunction [ y ] = f( )\n"
                                                            "  definitions \n  end \nend \n\n"},
      {"function y = f\ndefinitions\n  [~] = 1\nend\nend", "NoIdInDeclaration at 3:4"},
      {"function y = f\ndefinitions (A = {1, '+'})\n  [~] = 1\nend\nend", "InvalidUnitLiteral(+) at 2:22"},
      {"function y = f\ndefinitions\n  assert(x, 1)\nend\nend", "InvalidAssertMessage at 3:13"},
  });
}

TEST(BuildFile, FunctionsWithoutDefinitions) {
  const auto node = [](NonTerminal::Value kind, const std::vector<ParseTree>& children) {
    return ParseTree(kind, children);
  };
  const ParseTree name(Token(TokenId::ID, nvf::Location(), u"f", 1));
  const ParseTree function =
      node(NonTerminal::TSNFunction, {node(NonTerminal::IdList, {name}), name, node(NonTerminal::NoFcnInputs, {})});
  EXPECT_THROW((void)ASTBuilder().buildTSNFunction(function, FileSource::open), nvf::InvalidExpressions1);
}

TEST(BuildFile, SourceIsCarried) {
  const ParseTree tree = fileTree("component c end\nfunction y = f\ndefinitions; end\nend");
  for (const FileSource source : {FileSource::open, FileSource::closed}) {
    const ModelFile file = ASTBuilder().buildModelFile(tree, source);
    EXPECT_EQ(file.model().modelSource(), source);
    ASSERT_EQ(file.localTSNFunctions().size(), 1U);
    EXPECT_EQ(file.localTSNFunctions().begin()->second.source(), source);
  }
  const Model model = modelOf("import a.b\n\n  domain c end");
  EXPECT_EQ(model.type(), ModelType::DDOMAIN);
  EXPECT_EQ(model.location().lineColumn(), nvf::LineColumn(2, 2));
}

/// A local function with this name, with these definitions.
std::string local(const std::string& name, const std::string& definitions = "") {
  return "function y = " + name + "\ndefinitions; " + definitions + " end\nend\n";
}

// A function begins at its results: the tree has no place for the keyword.
TEST(BuildFile, LocalFunctions) {
  const std::string bad = "[~] = 1";
  check({
      {"component c end\n" + local("f") + local("g") + local("f"), "DuplicateLocalTSNFcnId(f) at 8:10"},
      {"component c end\n" + local("c"), "NoSameNameForLocalTSNFcn(c) at 2:10"},
      {"component c end\n" + local("f") + local("c"), "NoSameNameForLocalTSNFcn(c) at 5:10"},
      {local("f") + local("f"), "NoSameNameForLocalTSNFcn(f) at 4:10"},
      {local("f") + local("g") + local("g"), "DuplicateLocalTSNFcnId(g) at 7:10"},
      // The fault of a function comes before that of its name, and each function is done before the next one.
      {"component c end\n" + local("c", bad), "NoIdInDeclaration at 3:15"},
      {"component c end\n" + local("c") + local("f", bad), "NoSameNameForLocalTSNFcn(c) at 2:10"},
      // Local functions come before the main item.
      {"component c\nparameters; [~] = 1; end\nend\n" + local("f", bad), "NoIdInDeclaration at 5:15"},
      {"component c\nparameters; [~] = 1; end\nend\n" + local("f") + local("f"), "DuplicateLocalTSNFcnId(f) at 7:10"},
      {local("f", bad) + local("g", bad), "NoIdInDeclaration at 5:15"},
      {local("f", bad) + local("g"), "NoIdInDeclaration at 2:15"},
  });
}

TEST(BuildFile, OrderOfLocalFunctionsDoesNotShow) {
  const std::string head = "component c end\n";
  const std::string text = built(head + local("f") + local("g") + local("h") + local("other"));
  EXPECT_EQ(built(head + local("other") + local("h") + local("f") + local("g")), text);
  EXPECT_EQ(built(text), text);
}

TEST(BuildFile, OrderInsideAModel) {
  check({
      // Attributes, base class, sections.
      {"component (A = {1, '+'}) c < b(x = {1, '-'})\nparameters; [~] = 1; end\nend", "InvalidUnitLiteral(+) at 1:20"},
      {"component c < b(x = {1, '-'})\nparameters; [~] = 1; end\nend", "InvalidUnitLiteral(-) at 1:25"},
      // Sections in the order of the source.
      {"component c\nfor i = 1; annotations; end; end\nparameters; [~] = 1; end\nend", "AnnotationsInForLoop at 2:12"},
      {"component c\nparameters; [~] = 1; end\nfor i = 1; annotations; end; end\nend", "NoIdInDeclaration at 2:14"},
      {"component c\nfunction setup\nend\nfunction setup\nend\nparameters; [~] = 1; end\nend",
       "MultipleSetupFunctions at 4:1"},
  });
}

TEST(BuildFile, SortsOfFiles) {
  using Entry = std::function<void(const ParseTree&)>;
  const ASTBuilder builder;
  const Entry file = [&](const ParseTree& t) { (void)builder.buildTSNFile(t, FileSource::open); };
  const Entry model = [&](const ParseTree& t) { (void)builder.buildModelFile(t, FileSource::open); };
  const Entry function = [&](const ParseTree& t) { (void)builder.buildTSNFunctionFile(t, FileSource::open); };
  const Entry structure = [&](const ParseTree& t) { (void)builder.extractStructureInfo(t); };
  const std::string statements = "x = 1;\n";
  const std::string component = "component c end";
  struct Case {
    const Entry& entry;
    std::string source;
    std::string expected;
  };
  const std::vector<Case> cases{
      {file, statements, "InvalidTsnFile"},
      {file, "", "InvalidTsnFile"},
      {file, component, ""},
      {file, local("f"), ""},
      {model, statements, "InvalidTsnModel"},
      {model, local("f"), "InvalidTsnModel"},
      {model, component, ""},
      {function, statements, "InvalidTsnFunction"},
      {function, component, "InvalidTsnFunction"},
      {function, local("f"), ""},
      {structure, statements, "InvalidTsnModel"},
      {structure, local("f"), "InvalidTsnModel"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(resultOf([&] {
                c.entry(fileTree(c.source));
                return std::string();
              }),
              c.expected)
        << c.source;
  }
  EXPECT_EQ(builder.buildTSNFile(fileTree(component), FileSource::open).index(), 0U);
  EXPECT_EQ(builder.buildTSNFile(fileTree(local("f")), FileSource::open).index(), 1U);
}

// ---- the outline of a component ----

/// The outline of a component with this body.
std::string outline(const std::string& body) {
  return resultOf([&] {
    const ComponentStructureInfo info =
        ASTBuilder().extractStructureInfo(fileTree("import a.b\ncomponent c < d\n" + body + "\nend"));
    std::string text;
    for (const ImportStmt& import : info.importStmts()) text += nvf::encode_utf8(import.string(0)) + "\n";
    for (std::size_t i = 0; i < info.numOfDeclarationBlocks(); ++i) {
      text += nvf::encode_utf8(info.declarationBlock(i).string(0, 2)) + "\n";
    }
    for (const ConnectionBlock& block : info.connectionBlocks()) text += nvf::encode_utf8(block.string(0, 2)) + "\n";
    for (const BranchBlock& block : info.branchBlocks()) text += nvf::encode_utf8(block.string(0, 2)) + "\n";
    return text;
  });
}

TEST(BuildFile, StructureInfo) {
  // What is skipped is not looked into, so that faults in it do not matter.
  EXPECT_EQ(outline("parameters; [~] = 1; end\n"
                    "equations; x == {1, '+'}; end\n"
                    "events; when x; y = {1, '+'}; end; end\n"
                    "function setup\nend\nfunction setup\nend\n"
                    "branches; i : p -> *; end\n"
                    "connections; connect(a, b); end\n"
                    "components; r = resistor; end\n"
                    "components (Hidden = true); s = t; end"),
            "import a.b\n"
            "components\n  r = resistor;\nend\n"
            "components(Hidden = true)\n  s = t;\nend\n"
            "connections\n  connect(a,b);\nend\n"
            "branches\n  i : p -> *;\nend\n");
  EXPECT_EQ(outline("connections; connect(a, 1 + b); end"), "InvalidConnectionArg(1 + b) at 3:25");
  for (const std::string body : {"annotations; end", "modecharts; end", "if a; end", "for i = 1; end"}) {
    EXPECT_EQ(outline(body), "fatal: Parse tree node not recognized. 720");
  }
}

// ---- trees that no text leads to ----

TEST(BuildFile, UnknownNodesAreFatal) {
  const ASTBuilder builder;
  const auto node = [](NonTerminal::Value kind, const std::vector<ParseTree>& children = {}) {
    return ParseTree(kind, children);
  };
  const auto word = [](TokenId::Value code) { return ParseTree(Token(code, nvf::Location(), u"x", 1)); };
  const ParseTree stray = node(NonTerminal::Stmts);
  const ParseTree pairs = node(NonTerminal::AvPairs);
  const auto fatal = [](const std::function<void()>& function) {
    return resultOf([&] {
      function();
      return std::string("nothing");
    });
  };
  EXPECT_EQ(fatal([&] {
              (void)builder.buildModel(
                  node(NonTerminal::Model, {word(TokenId::COMPONENT), pairs, word(TokenId::ID), ParseTree(), stray}),
                  FileSource::open);
            }),
            "fatal: Parse tree node not recognized. 329");
  EXPECT_EQ(fatal([&] { (void)builder.buildDeclarative(node(NonTerminal::ModelSections, {stray})); }),
            "fatal: Parse tree node not recognized. 649");
  EXPECT_EQ(
      fatal([&] { (void)builder.buildDeclarative(node(NonTerminal::ModelSections, {node(NonTerminal::Baseclass)})); }),
      "fatal: Parse tree node not recognized. 649");
  EXPECT_EQ(fatal([&] {
              (void)builder.buildDeclarationBlock(
                  node(NonTerminal::ModelDeclarationBlock,
                       {word(TokenId::PARAMETERS), pairs, node(NonTerminal::ModelItemDeclarationList, {stray})}));
            }),
            "fatal: invalid non terminal item 764");
  EXPECT_EQ(fatal([&] {
              (void)builder.buildModechart(
                  node(NonTerminal::ModechartDefinition,
                       {word(TokenId::MODECHART), node(NonTerminal::ModechartInternal, {stray})}));
            }),
            "fatal: Parse tree node not recognized. 867");
}

// ---- real files ----

std::vector<std::filesystem::path> modelFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(TESSARIN_TEST_DATA "/models")) {
    if (entry.path().extension() == ".tsn") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(BuildFile, PrintedFilesReadBack) {
  const std::vector<std::filesystem::path> files = modelFiles();
  ASSERT_GE(files.size(), 5U);
  const ASTBuilder withValues(nvf::DefaultValueTokensToValue{}); // what an assertion does is printed as a value
  for (const std::filesystem::path& path : files) {
    SCOPED_TRACE(path);
    const std::string source = contentOf(path);
    const std::string text = built(source);
    if (text == "InvalidTsnFile") continue; // a file of statements
    EXPECT_TRUE(text.starts_with("% " + path.filename().string() + "\n")) << text;
    EXPECT_EQ(built(text, withValues), text);
  }
}

TEST(BuildFile, OneBuilderOnSeveralThreads) {
  const ASTBuilder builder;
  const ParseTree tree = fileTree(contentOf(modelFiles().front()));
  const std::string expected = printed(builder.buildTSNFile(tree, FileSource::open));
  std::vector<std::string> results(4);
  std::vector<std::thread> threads;
  for (std::string& result : results) {
    threads.emplace_back([&] { result = printed(builder.buildTSNFile(tree, FileSource::open)); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& result : results) EXPECT_EQ(result, expected);
}

} // namespace
} // namespace tessarin::test
