#include "tessarin/parser/ast/ComponentStructureInfo.hpp"
#include "tessarin/parser/ast/Model.hpp"
#include "tessarin/parser/ast/TSNFunction.hpp"

#include "ast/builders.hpp"
#include "support/large.hpp"
#include "support/small_stack.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <thread>
#include <utility>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

// ---- one block of each kind ----

DeclarationBlock parameters(std::string_view name, const Expr& value) {
  const IdListValuePair pair = declaration(name, value);
  return {MemberType::PARAMETER, {}, nvf::Expressions<DeclarationItem>{DeclarationItem(pair)}, nvf::Location()};
}
EquationBlock equations(const Items& items) {
  return {items, {}, nvf::Location()};
}
DeclarativeSections declarationsOf(std::string_view name) {
  return {SemanticSections({parameters(name, number("1"))}, {}, {}, {}, {}, {}, {}, {}), {}};
}
ConditionalSection condition(std::string_view predicate, const DeclarativeSections& sections) {
  return {IfSection(name(predicate), sections), {}, std::nullopt};
}
ForLoop loop(std::string_view variable, const SemanticSections& body) {
  return {IdentValuePair(ident(variable), op(OpExprType::Colon, number("1"), name("n")), nvf::Location()), body};
}
AnnotationsBlock annotations() {
  return {{}, {}, nvf::Location()};
}

/// Sections with one block of each kind.
DeclarativeSections oneOfEach() {
  const Connection connection(name("a"), {}, nvf::Location());
  const ModechartBlock modecharts({}, {}, nvf::Location());
  return {{parameters("p", number("1"))},
          {BranchBlock({}, nvf::Location())},
          {ConnectionBlock({connection}, nvf::Location())},
          {equations({name("e")})},
          {EventBlock()},
          {modecharts},
          {annotations()},
          {ConditionalSection(IfSection(name("c"), declarationsOf("q")),
                              {ElseifSection(name("d"), declarationsOf("r")), ElseifSection()},
                              ElseSection(declarationsOf("s")))},
          {loop("i", declarationsOf("t").semanticSections())}};
}

struct Parts {
  ModelType::Value type = ModelType::COMPONENT;
  std::string name = "m";
  std::optional<ClassInitializer> base;
  DeclarativeSections sections;
  NamedValues attributes;
  FileSource source = FileSource::open;
  ParseTree setup;
};
Model model(const Parts& parts) {
  return {parts.type,   ident(parts.name), parts.base,       parts.sections, pairs(parts.attributes),
          parts.source, parts.setup,       onLine(7).begin()};
}
Model modelOf(const DeclarativeSections& sections) {
  Parts parts;
  parts.sections = sections;
  return model(parts);
}

ParseTree setupTree(unsigned long line) {
  const nvf::ustring text = u"setup";
  const Token token(TokenId::ID, onLine(line).begin(), text.data(), text.size());
  return ParseTree(NonTerminal::FcnNoOutputs, {ParseTree(token)});
}

TSNFunction function(std::initializer_list<std::string_view> outputs, std::initializer_list<std::string_view> inputs,
                     const std::vector<DefinitionsBlock>& definitions) {
  return {ident("f"), idents(outputs), idents(inputs), nvf::Expressions1<DefinitionsBlock>(definitions),
          FileSource::open};
}
DefinitionsBlock definitions(std::string_view name) {
  const FunctionEqnItem item = declaration(name, number("1"));
  return {nvf::Expressions<FunctionEqnItem>{item}, {}, nvf::Location()};
}

// ---- printing ----

TEST(Models, SectionsPrintInTheOrderOfTheKinds) {
  EXPECT_EQ(oneOfEach().string(2, 2), u"  parameters\n"
                                      u"    p = 1;\n"
                                      u"  end\n"
                                      u"  branches\n"
                                      u"  end\n"
                                      u"  connections\n"
                                      u"    connect(a);\n"
                                      u"  end\n"
                                      u"  equations \n"
                                      u"    e;\n"
                                      u"  end\n"
                                      u"  events\n"
                                      u"  end\n"
                                      u"  modecharts\n"
                                      u"  end\n"
                                      u"  if c\n"
                                      u"    parameters\n"
                                      u"      q = 1;\n"
                                      u"    end\n"
                                      u"  elseif d\n"
                                      u"    parameters\n"
                                      u"      r = 1;\n"
                                      u"    end\n"
                                      u"  elseif time\n"
                                      u"  else\n"
                                      u"    parameters\n"
                                      u"      s = 1;\n"
                                      u"    end\n"
                                      u"  end\n"
                                      u"  for i = 1 : n\n"
                                      u"    parameters\n"
                                      u"      t = 1;\n"
                                      u"    end\n"
                                      u"  end\n"
                                      u"  annotations\n"
                                      u"  end\n");
  EXPECT_EQ(SemanticSections().string(4, 2), u"");
  EXPECT_EQ(IfSection().string(1, 2), u" if time\n");
  EXPECT_EQ(ElseifSection().string(1, 2), u" elseif time\n");
  EXPECT_EQ(ElseSection().string(1, 2), u" else\n");
  EXPECT_EQ(ConditionalSection(IfSection(), {}, ElseSection()).string(0, 2), u"if time\nelse\nend");
  EXPECT_EQ(loop("i", SemanticSections()).string(1, 2), u" for i = 1 : n\n end");
}

TEST(Models, PrintedForm) {
  Parts parts;
  EXPECT_EQ(model(parts).string(0, 2), u"component m\nend \n");
  parts.type = ModelType::DDOMAIN;
  parts.attributes = {{"Hidden", name("true")}, {"k", number("1")}};
  parts.base = ClassInitializer(Name("lib.base"), {});
  parts.sections = DeclarativeSections(declarationsOf("p").semanticSections(), {annotations()});
  parts.setup = setupTree(1);
  EXPECT_EQ(model(parts).string(1, 3), u" domain (Hidden = true, k = 1) m < lib.base\n"
                                       u"    parameters\n"
                                       u"       p = 1;\n"
                                       u"    end\n"
                                       u"    annotations\n"
                                       u"    end\n"
                                       u" end \n");
  std::ostringstream stream;
  stream << modelOf(
      DeclarativeSections(SemanticSections({}, {}, {}, {equations({string(u"\u20ac")})}, {}, {}, {}, {}), {}));
  EXPECT_EQ(stream.str(), "component m\n  equations \n    '\xe2\x82\xac';\n  end\nend \n");
}

TEST(Functions, PrintedForm) {
  EXPECT_EQ(function({"y"}, {"x"}, {definitions("y")}).string(0, 2), u"function [ y ] = f( x )\n"
                                                                     u"  definitions \n"
                                                                     u"    y = 1\n"
                                                                     u"  end \n"
                                                                     u"end \n");
  EXPECT_EQ(function({"y", "z"}, {"a", "b"}, {definitions("y"), definitions("z")}).string(1, 1),
            u" function [ y, z ] = f( a, b )\n"
            u"  definitions \n"
            u"    y = 1\n"
            u"  end \n"
            u"  definitions \n"
            u"    z = 1\n"
            u"  end \n"
            u" end \n");
  const std::u16string text = function({}, {}, {definitions("y")}).string(0, 2);
  EXPECT_EQ(text.substr(0, text.find(u'\n')), u"function [ ] = f( )");
  EXPECT_THROW(function({}, {}, {}), nvf::InvalidExpressions1);
}

// ---- what is asked of them ----

TEST(Models, Accessors) {
  EXPECT_FALSE(modelOf({}).hasNonEmptyEquationBlock());
  const SemanticSections equationsOnly({}, {}, {}, {EquationBlock(), equations({name("e")})}, {}, {}, {}, {});
  EXPECT_TRUE(modelOf(DeclarativeSections(equationsOnly, {})).hasNonEmptyEquationBlock());
  EXPECT_FALSE(
      modelOf(DeclarativeSections({}, {}, {}, {EquationBlock()}, {}, {}, {},
                                  {condition("c", DeclarativeSections(equationsOnly, {}))}, {loop("i", equationsOnly)}))
          .hasNonEmptyEquationBlock())
      << "blocks inside sections do not count";

  Parts parts;
  EXPECT_FALSE(model(parts).hasSetupFunctionParseTree());
  parts.setup = setupTree(1);
  parts.source = FileSource::closed;
  parts.attributes = {{"k", number("1")}};
  const Model full = model(parts);
  EXPECT_TRUE(full.hasSetupFunctionParseTree());
  EXPECT_EQ(full.setupFunctionParseTree().data(), std::as_const(parts.setup).data()) << "the tree is shared";
  EXPECT_EQ(full.modelSource(), FileSource::closed);
  EXPECT_EQ(full.attribute(0).ident(), ident("k"));
  EXPECT_EQ(full.line(), 7U);

  // The nine lists, each in its place.
  const DeclarativeSections sections = oneOfEach();
  const Model withLists(ModelType::COMPONENT, ident("m"), std::nullopt, sections.declarationBlocks(),
                        sections.branchBlocks(), sections.connectionBlocks(), sections.equationBlocks(),
                        sections.eventBlocks(), sections.modechartBlocks(), sections.annotationsBlocks(),
                        sections.conditionalSections(), {}, FileSource::open, ParseTree(), nvf::Location());
  EXPECT_TRUE(withLists.declarativeSections().semanticSections().forLoops().empty());
  EXPECT_EQ(withLists,
            modelOf(DeclarativeSections(SemanticSections(sections.declarationBlocks(), sections.branchBlocks(),
                                                         sections.connectionBlocks(), sections.equationBlocks(),
                                                         sections.eventBlocks(), sections.modechartBlocks(),
                                                         sections.conditionalSections(), {}),
                                        sections.annotationsBlocks())));

  const ComponentStructureInfo info({ImportStmt(Name("a.b"), true, nvf::Location())}, sections.declarationBlocks(),
                                    sections.connectionBlocks(), sections.branchBlocks());
  EXPECT_EQ(info.numOfImports(), 1U);
  EXPECT_TRUE(info.importStmt(0).isUnqualified());
  EXPECT_EQ(info.numOfDeclarationBlocks(), 1U);
  EXPECT_EQ(info.declarationBlock(0), sections.declarationBlocks().front());
  EXPECT_THROW((void)info.declarationBlock(1), std::out_of_range);
}

TEST(Models, FileSourceAsText) {
  const auto read = [](const char* text) {
    FileSource source{};
    std::istringstream(text) >> source;
    return static_cast<int>(source);
  };
  EXPECT_EQ(read("open"), 0);
  EXPECT_EQ(read("closed "), 1);
  EXPECT_EQ(read("Closed"), -1);
  EXPECT_EQ(read("opened"), -1);
  EXPECT_EQ(read(""), -1);
  std::ostringstream stream;
  stream << FileSource::open << FileSource::closed;
  EXPECT_EQ(stream.str(), "openclosed");
  stream << static_cast<FileSource>(-1);
  EXPECT_TRUE(stream.bad());
  EXPECT_EQ(stream.str(), "openclosed");
}

// ---- laws ----

TEST(Models, Laws) {
  std::vector<Model> models;
  const auto add = [&models](const auto& change) {
    Parts parts;
    change(parts);
    models.push_back(model(parts));
  };
  add([](Parts&) {});
  add([](Parts& p) { p.setup = setupTree(1); });
  add([](Parts& p) { p.setup = setupTree(2); }); // a parse tree counts its places
  add([](Parts& p) { p.source = FileSource::closed; });
  add([](Parts& p) { p.attributes = {{"k", number("1")}}; });
  add([](Parts& p) { p.sections = DeclarativeSections({}, {}, {}, {}, {}, {}, {}, {}, {loop("i", {})}); });
  add([](Parts& p) { p.sections = DeclarativeSections({}, {}, {}, {}, {}, {}, {}, {condition("c", {})}, {}); });
  add([](Parts& p) {
    p.sections = DeclarativeSections({}, {}, {}, {}, {}, {}, {}, {condition("c", declarationsOf("q"))}, {});
  });
  add([](Parts& p) { p.sections = declarationsOf("p"); });
  add([](Parts& p) { p.base = ClassInitializer(Name("b"), {}); });
  add([](Parts& p) { p.name = "n"; });
  add([](Parts& p) { p.type = ModelType::DDOMAIN; });
  expectDistinctInOrder(models);

  expectDistinctInOrder<TSNFunction>({
      function({}, {"y"}, {definitions("a")}),
      function({}, {"z"}, {definitions("a")}),
      function({"x"}, {"z"}, {definitions("a")}),
      function({"x"}, {"z"}, {definitions("a"), definitions("b")}),
  });
}

TEST(Models, StrippingUnshares) {
  const Model original = modelOf(oneOfEach());
  Model copy = original;
  strip_annotation_inplace(copy);
  expectEqualValues(copy, original);
  EXPECT_EQ(copy.location(), original.location()) << "a place stays";
  EXPECT_NE(&copy.declarativeSections().semanticSections().forLoops().front().body().declarationBlocks(),
            &original.declarativeSections().semanticSections().forLoops().front().body().declarationBlocks());
  EXPECT_NE(&copy.declarativeSections().conditionalSections().front().ifSection().declarations(),
            &original.declarativeSections().conditionalSections().front().ifSection().declarations());
}

/// Counts what a node and everything below it shows.
class CountingSink final : public nvf::DumpSink {
public:
  void beginNode(const std::string&, const nvf::Range*) override { ++depth; }
  void endNode() override {
    --depth;
    ++nodes;
  }
  void beginList(std::size_t) override { ++depth; }
  void endList() override { --depth; }
  void value(const nvf::ustring&) override {}

  std::size_t depth = 0;
  std::size_t nodes = 0;
};

/// Sections that nest `depth` levels deep: conditions in all three branches and loops, by turns.
DeclarativeSections nested(std::size_t depth, std::string_view innermost = "p") {
  DeclarativeSections sections = declarationsOf(innermost);
  for (std::size_t i = 0; i < depth; ++i) {
    const auto conditional = [](const ConditionalSection& section) {
      return DeclarativeSections({}, {}, {}, {}, {}, {}, {}, {section}, {});
    };
    switch (i % 4) {
    case 0: sections = conditional(condition("c", sections)); break;
    case 1: sections = conditional({IfSection(), {ElseifSection(name("c"), sections)}, std::nullopt}); break;
    case 2: sections = conditional({IfSection(), {}, ElseSection(sections)}); break;
    default: sections = {SemanticSections({}, {}, {}, {}, {}, {}, {}, {loop("i", sections.semanticSections())}), {}};
    }
  }
  return sections;
}

LARGE_TEST(Models, NestedSectionsNeedNoStack) {
  constexpr std::size_t depth = 10'000;
  onSmallStack([] {
    const Model a = modelOf(nested(depth));
    const Model b = modelOf(nested(depth));
    expectEqualValues(a, b);
    EXPECT_EQ(compare(a, modelOf(nested(depth, "q"))), Ordering::Less);
    EXPECT_TRUE(equal_ignore_annotation(a, b));
    Model copy = a;
    strip_annotation_inplace(copy);
    EXPECT_EQ(copy, a);
    const std::u16string text = a.string(0, 0);
    EXPECT_EQ(text, b.string(0, 0));
    EXPECT_EQ(text.substr(text.size() - 9), u"end\nend \n");
    CountingSink sink;
    dump(sink, a);
    EXPECT_EQ(sink.depth, 0U);
    EXPECT_GT(sink.nodes, 3 * depth);
  });
}

LARGE_TEST(Models, LargeModelsPrintInLinearTime) {
  // The time for each item must not grow with their number; a wide margin, since other processes run too.
  const auto seconds = [](std::size_t items, std::size_t length) {
    const std::vector<DeclarationBlock> blocks(items, parameters("p", number("1")));
    const std::vector<EquationBlock> many(1, equations(Items(items, name("e"))));
    const Model big = modelOf(DeclarativeSections(SemanticSections(blocks, {}, {}, many, {}, {}, {}, {}), {}));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(big.string(0, 2).size(), length);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  // "component m\n", "  equations \n", "  end\n", "end \n"; "  parameters\n    p = 1;\n  end\n" and "    e;\n".
  const auto length = [](std::size_t items) { return 12 + 13 + 6 + 5 + items * (13 + 11 + 6 + 7); };
  const double small = seconds(2'000, length(2'000));
  const double large = seconds(100'000, length(100'000));
  EXPECT_LT(large, 50 * 10 * (small + 0.001));
}

TEST(Models, ThreadsShareOneModel) {
  const Model shared = modelOf(nested(50));
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([shared] {
      Model copy = shared;
      expectEqualValues(copy, modelOf(nested(50)));
      EXPECT_EQ(copy.string(0, 2), shared.string(0, 2));
      strip_annotation_inplace(copy);
      EXPECT_EQ(copy, shared);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

} // namespace
