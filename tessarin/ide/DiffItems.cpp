#include "tessarin/ide/DiffItems.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/ast/Model.hpp"

#include <algorithm>
#include <map>
#include <type_traits>
#include <utility>
#include <variant>

namespace tessarin::ide {

using namespace compiler::core;

namespace {

using Attributes = nvf::Expressions<IdentValuePair>;

template <class List, class Text>
nvf::ustring joined(const List& list, nvf::ustring_view separator, Text text) {
  nvf::ustring out;
  bool isFirst = true;
  for (const auto& one : list) {
    if (!isFirst) out += separator;
    isFirst = false;
    out += text(one);
  }
  return out;
}

/// `keyword (name = value)`.
nvf::ustring headOf(nvf::ustring keyword, const Attributes& attributes) {
  if (!attributes.empty()) {
    keyword += u" (" + joined(attributes, u", ", [](const IdentValuePair& pair) { return pair.string(); }) + u")";
  }
  return keyword;
}

Expr nameExpr(const Ident& ident) {
  return Variable(ident.id(), ident.range());
}

class TakeApart {
public:
  explicit TakeApart(DiffItems& out) : out_(out) { out_.sections.emplace_back(); }

  void both(const ModelFile& before, const ModelFile& after) {
    head(0, before.model());
    head(1, after.model());
    imports(0, before.importStmts());
    imports(1, after.importStmts());
    pairSections(&before.model().declarativeSections(), &after.model().declarativeSections(), 0);
    setup(0, before.model());
    setup(1, after.model());
    functions(inOrderOfName(before.localTSNFunctions()), inOrderOfName(after.localTSNFunctions()));
  }
  void both(const TSNFunctionFile& before, const TSNFunctionFile& after) {
    imports(0, before.importStmts());
    imports(1, after.importStmts());
    functions(functionsOf(before), functionsOf(after));
  }
  /// A model in place of a function, or the reverse: all is new.
  void both(const ModelFile& before, const TSNFunctionFile& after) {
    one(0, before);
    one(1, after);
  }
  void both(const TSNFunctionFile& before, const ModelFile& after) {
    one(0, before);
    one(1, after);
  }

private:
  using Functions = std::vector<const TSNFunction*>;
  using Side = std::size_t;

  void one(Side side, const ModelFile& file) {
    head(side, file.model());
    imports(side, file.importStmts());
    const DeclarativeSections* sections = &file.model().declarativeSections();
    pairSections(side == 0 ? sections : nullptr, side == 1 ? sections : nullptr, 0);
    setup(side, file.model());
    const Functions all = inOrderOfName(file.localTSNFunctions());
    functions(side == 0 ? all : Functions(), side == 1 ? all : Functions());
  }
  void one(Side side, const TSNFunctionFile& file) {
    imports(side, file.importStmts());
    const Functions all = functionsOf(file);
    functions(side == 0 ? all : Functions(), side == 1 ? all : Functions());
  }

  static Functions functionsOf(const TSNFunctionFile& file) {
    Functions all{&file.tsnFunction()};
    const Functions local = inOrderOfName(file.localTSNFunctions());
    all.insert(all.end(), local.begin(), local.end());
    return all;
  }

  DiffItem& add(Side side, Element element, Index section, nvf::ustring subject, const nvf::Location& place) {
    DiffItem& item = out_.sides[side].emplace_back();
    item.element = element;
    item.section = section;
    item.subject = std::move(subject);
    item.begin = place.lineColumn();
    return item;
  }
  Index section(Index parent, nvf::ustring before, nvf::ustring after) {
    DiffSection made;
    made.parent = parent;
    made.labels = {std::move(before), std::move(after)};
    out_.sections.push_back(std::move(made));
    return static_cast<Index>(out_.sections.size() - 1);
  }
  /// The section of this label; the sides share it.
  Index named(Index parent, const nvf::ustring& label) {
    const auto [found, isNew] = named_.emplace(std::pair(parent, label), 0);
    if (isNew) found->second = section(parent, label, label);
    return found->second;
  }

  // ---- heads ----

  void pair(Side side, Element element, Index where, const IdentValuePair& one, const nvf::ustring& home) {
    DiffItem& item = add(side, element, where, nvf::ustring(), one.location());
    item.suffix = one.ident().string();
    item.home = home;
    item.exprs = {one.value()};
    item.text = [one] { return one.string(); };
  }

  void head(Side side, const Model& model) {
    DiffItem& item = add(side, Element::Model, 0, nvf::ustring(), model.location());
    const nvf::ustring text =
        nvf::ustring(model.type() == ModelType::DDOMAIN ? u"domain " : u"component ") + model.name().string();
    item.frame = nvf::encode_utf8(text);
    item.text = [text] { return text; };
    for (const IdentValuePair& one : model.attributes()) pair(side, Element::Attribute, 0, one, nvf::ustring());
    if (!model.baseClassName()) return;
    const ClassInitializer& base = *model.baseClassName();
    DiffItem& baseItem = add(side, Element::Base, 0, nvf::ustring(), base.name().location());
    baseItem.frame = nvf::encode_utf8(base.name().string());
    for (const NamedArgument& argument : base.args()) {
      baseItem.frame += bytesOf(to_expr(argument.name())) + (argument.isColonEquals() ? ':' : '=');
      baseItem.exprs.push_back(argument.value());
    }
    baseItem.text = [base] { return base.string(); };
  }

  void imports(Side side, const std::vector<ImportStmt>& imports) {
    for (const ImportStmt& import : imports) {
      DiffItem& item = add(side, Element::Import, 0, nvf::ustring(), import.location());
      const nvf::ustring text = import.importName().string() + (import.isUnqualified() ? u".*" : u"");
      item.suffix = text;
      item.text = [text] { return u"import " + text; };
    }
  }

  void setup(Side side, const Model& model) {
    if (!model.hasSetupFunctionParseTree()) return;
    ParseTree tree = model.setupFunctionParseTree();
    DiffItem& item = add(side, Element::SetupFunction, 0, nvf::ustring(), tree.location());
    strip_annotation_inplace(tree);
    item.frame = bytesOf(tree);
    item.text = [] { return nvf::ustring(u"function setup"); };
  }

  // ---- sections ----

  void pairSections(const DeclarativeSections* before, const DeclarativeSections* after, Index where) {
    for (const Side side : {Side{0}, Side{1}}) {
      const DeclarativeSections* sections = side == 0 ? before : after;
      if (sections == nullptr) continue;
      for (const AnnotationsBlock& block : sections->annotationsBlocks()) annotations(side, block, where);
    }
    pairSemantic(before == nullptr ? nullptr : &before->semanticSections(),
                 after == nullptr ? nullptr : &after->semanticSections(), where);
  }
  void pairSemantic(const SemanticSections* before, const SemanticSections* after, Index where) {
    static const std::vector<ConditionalSection> noConditions;
    static const std::vector<ForLoop> noLoops;
    if (before != nullptr) blocks(0, *before, where);
    if (after != nullptr) blocks(1, *after, where);
    nvf::with_stack([&] {
      pairAll(
          before == nullptr ? noConditions : before->conditionalSections(),
          after == nullptr ? noConditions : after->conditionalSections(),
          [](const ConditionalSection& one) { return bytesOf(one.ifSection().predicate()); },
          [&](const auto* a, const auto* b) { pairConditional(a, b, where); });
      pairAll(
          before == nullptr ? noLoops : before->forLoops(), after == nullptr ? noLoops : after->forLoops(),
          [](const ForLoop& one) { return bytesOf(one.idValuePair()); },
          [&](const auto* a, const auto* b) { pairLoop(a, b, where); });
    });
  }

  /// Finds out which of the elements belong together: those that are equal, which are no difference and left out, those
  /// with equal heads, and the rest in their order.
  template <class T, class Head, class Pair>
  static void pairAll(const std::vector<T>& before, const std::vector<T>& after, Head head, Pair pair) {
    std::vector<const T*> left, right;
    for (const T& one : before) left.push_back(&one);
    for (const T& one : after) right.push_back(&one);
    const auto match = [&](auto key, auto belong, auto found) {
      std::map<std::string, std::vector<const T**>> open;
      for (auto i = left.rbegin(); i != left.rend(); ++i) open[key(**i)].push_back(&*i);
      for (const T*& one : right) {
        std::vector<const T**>& same = open[key(*one)];
        if (same.empty() || !belong(**same.back(), *one)) continue;
        found(*same.back(), one);
        *same.back() = nullptr;
        one = nullptr;
        same.pop_back();
      }
      std::erase(left, nullptr);
      std::erase(right, nullptr);
    };
    // Hashes of sections are kept in them, so that sections in sections cost no more than their text.
    match([](const T& one) { return std::to_string(hash_value(one)); }, std::equal_to<T>(), [](const T*, const T*) {});
    match(
        head, [](const T&, const T&) { return true; }, pair);
    for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
      pair(i < left.size() ? left[i] : nullptr, i < right.size() ? right[i] : nullptr);
    }
  }

  /// A branch of a conditional section; without a predicate it is the `else`.
  struct SectionBranch {
    const Expr* predicate = nullptr;
    const DeclarativeSections* sections = nullptr;

    [[nodiscard]] std::string head() const { return predicate == nullptr ? std::string() : bytesOf(*predicate); }
    [[nodiscard]] nvf::ustring label() const {
      return predicate == nullptr ? nvf::ustring(u"else") : u"if " + to_user_string(*predicate);
    }
  };
  using SectionBranches = std::vector<SectionBranch>;

  static SectionBranches branchesOf(const ConditionalSection* conditional) {
    SectionBranches branches;
    if (conditional == nullptr) return branches;
    branches.push_back({&conditional->ifSection().predicate(), &conditional->ifSection().declarations()});
    for (const ElseifSection& one : conditional->elseifSections()) {
      branches.push_back({&one.predicate(), &one.declarations()});
    }
    return branches;
  }

  /// The order of the branches counts: those with equal predicates at both ends belong together, and of the rest the
  /// first with the first.
  void pairConditional(const ConditionalSection* before, const ConditionalSection* after, Index where) {
    const SectionBranches a = branchesOf(before);
    const SectionBranches b = branchesOf(after);
    std::size_t first = 0;
    while (first < std::min(a.size(), b.size()) && a[first].head() == b[first].head()) ++first;
    std::size_t last = 0;
    while (last < std::min(a.size(), b.size()) - first &&
           a[a.size() - 1 - last].head() == b[b.size() - 1 - last].head()) {
      ++last;
    }
    const std::size_t middle = std::max(a.size(), b.size()) - last - first;
    const auto at = [&](const SectionBranches& branches, std::size_t i, bool fromEnd) {
      const std::size_t end = branches.size() - last;
      if (fromEnd) return &branches[end + i];
      return i < end ? &branches[i] : nullptr;
    };
    for (std::size_t i = 0; i < first + middle; ++i) pairBranch(at(a, i, false), at(b, i, false), where);
    for (std::size_t i = 0; i < last; ++i) pairBranch(at(a, i, true), at(b, i, true), where);

    // The copies live until the pairing is done: the optional is returned by value.
    const auto elseBefore = before == nullptr ? std::nullopt : before->elseSection();
    const auto elseAfter = after == nullptr ? std::nullopt : after->elseSection();
    if (!elseBefore && !elseAfter) return;
    const SectionBranch x{nullptr, elseBefore ? &elseBefore->declarations() : nullptr};
    const SectionBranch y{nullptr, elseAfter ? &elseAfter->declarations() : nullptr};
    pairBranch(elseBefore ? &x : nullptr, elseAfter ? &y : nullptr, where);
  }
  void pairBranch(const SectionBranch* before, const SectionBranch* after, Index where) {
    if (before == nullptr && after == nullptr) return;
    const Index made = section(where, before == nullptr ? after->label() : before->label(),
                               after == nullptr ? before->label() : after->label());
    for (const Side side : {Side{0}, Side{1}}) {
      const SectionBranch* branch = side == 0 ? before : after;
      if (branch == nullptr || branch->predicate == nullptr) continue;
      DiffItem& item = add(side, Element::Condition, made, nvf::ustring(), expr_location(*branch->predicate));
      item.exprs = {*branch->predicate};
      item.text = [text = branch->label()] { return text; };
    }
    pairSections(before == nullptr ? nullptr : before->sections, after == nullptr ? nullptr : after->sections, made);
  }

  void pairLoop(const ForLoop* before, const ForLoop* after, Index where) {
    const auto label = [](const ForLoop* loop) { return u"for " + loop->idValuePair().string(); };
    const Index made =
        section(where, label(before == nullptr ? after : before), label(after == nullptr ? before : after));
    for (const Side side : {Side{0}, Side{1}}) {
      const ForLoop* loop = side == 0 ? before : after;
      if (loop == nullptr) continue;
      DiffItem& item = add(side, Element::Loop, made, nvf::ustring(), loop->idValuePair().location());
      item.frame = bytesOf(loop->idValuePair().ident());
      item.exprs = {loop->idValuePair().value()};
      item.text = [text = label(loop)] { return text; };
    }
    pairSemantic(before == nullptr ? nullptr : &before->body(), after == nullptr ? nullptr : &after->body(), made);
  }

  // ---- blocks ----

  void blocks(Side side, const SemanticSections& sections, Index where) {
    for (const DeclarationBlock& block : sections.declarationBlocks()) {
      const nvf::ustring home = headOf(DeclarationBlock::typeString(block.type()), block.attributes());
      for (const DeclarationItem& one : block.declarations()) declaration(side, one, where, home);
    }
    for (const BranchBlock& block : sections.branchBlocks()) {
      for (const Through& one : block.throughs()) through(side, one, block.location(), where);
    }
    for (const ConnectionBlock& block : sections.connectionBlocks()) {
      for (const Connection& one : block.connections()) connection(side, one, where);
    }
    for (const EquationBlock& block : sections.equationBlocks()) equations(side, block, where);
    for (const EventBlock& block : sections.eventBlocks()) {
      for (const WhenClause& clause : block.events()) event(side, clause, where);
    }
    for (const ModechartBlock& block : sections.modechartBlocks()) {
      for (const ModechartDeclaration& one : block.declarations()) {
        DiffItem& item = add(side, Element::Member, where, one.id().string(), one.id().location());
        item.home = headOf(u"modecharts", block.attributes());
        item.frame = "modechart";
        item.text = [name = one.id().string()] { return name + u" = modechart"; };
        modechart(side, one.modechart(), named(where, u"modechart " + one.id().string()));
      }
    }
  }

  void declaration(Side side, const DeclarationItem& one, Index where, const nvf::ustring& home) {
    DiffItem& item = add(side, Element::Member, where, nvf::ustring(), location(one));
    item.home = home;
    item.text = [one] { return to_string(one, ToStringContext().asRValue(true)); };
    if (const auto* ident = one.getIf<Ident>()) {
      item.subject = ident->string();
    } else if (const auto* element = one.getIf<ObjectArrayElementDecl>()) {
      item.subject = element->LHS().id().string();
      for (const Ident& index : element->LHS().indices()) item.exprs.push_back(nameExpr(index));
      item.exprs.push_back(element->RHS());
      item.frame = "()";
    } else {
      const IdListValuePair& pair = id_list_value(one);
      // The names of several results are one name, which no renaming is looked for in.
      const nvf::ustring names = joined(pair.ids(), u", ", [](const OptIdent& id) { return to_string(id); });
      (pair.ids().size() == 1 ? item.subject : item.suffix) = names;
      item.frame = pair.isColonEquals() ? ":=" : "=";
      item.exprs = {pair.value()};
    }
  }

  template <class Union>
  static std::optional<Expr> endExpr(const Union& end) {
    return end.visit([](const auto& alternative) -> std::optional<Expr> {
      using Alternative = std::decay_t<decltype(alternative)>;
      if constexpr (std::is_same_v<Alternative, ImplicitReference>) {
        return std::nullopt;
      } else {
        return Expr(alternative);
      }
    });
  }
  template <class Union>
  static void addEnd(DiffItem& item, const Union& end) {
    const std::optional<Expr> expr = endExpr(end);
    item.frame += expr ? 'x' : '*';
    if (expr) item.exprs.push_back(*expr);
  }

  void through(Side side, const Through& one, const nvf::Location& block, Index where) {
    const nvf::Location place = one.lhs().ident().range() == nvf::Range() ? block : one.lhs().ident().location();
    DiffItem& item = add(side, Element::Branch, where, one.lhs().ident().string(), place);
    if (one.lhs().subs()) item.suffix = one.lhs().subs()->string(ToStringContext());
    item.home = u"branches";
    addEnd(item, one.from());
    addEnd(item, one.to());
    item.text = [one] { return one.string(ToStringContext()); };
  }
  void connection(Side side, const Connection& one, Index where) {
    DiffItem& item = add(side, Element::Connection, where, nvf::ustring(), one.location());
    item.home = u"connections";
    addEnd(item, one.firstArg());
    for (const ConnectionArg& argument : one.remainingArguments()) addEnd(item, argument);
    item.text = [one] { return one.string(ToStringContext()); };
  }

  void equations(Side side, const EquationBlock& block, Index where) {
    const nvf::ustring home = headOf(u"equations", block.attributes());
    for (const EqnItem& one : block.eqnItems()) {
      if (const auto* assertion = one.getIf<EqnAssertion>()) {
        assertionItem(side, *assertion, where, home);
        continue;
      }
      DiffItem& item = add(side, Element::Equation, where, nvf::ustring(), eqnitem_location(one));
      item.home = home;
      item.exprs = {one.get<Expr>()};
      item.text = [one] { return to_user_string(one.get<Expr>()); };
    }
  }
  void assertionItem(Side side, const EqnAssertion& one, Index where, const nvf::ustring& home) {
    DiffItem& item = add(side, Element::Assertion, where, nvf::ustring(), one.range().begin());
    item.home = home;
    item.exprs = {one.predicate()};
    if (one.action()) item.exprs.push_back(*one.action());
    item.frame = std::visit(
        [](const auto& message) {
          if constexpr (std::is_same_v<std::decay_t<decltype(message)>, NoMessage>) {
            return std::string();
          } else {
            return bytesOf(message);
          }
        },
        one.message());
    item.text = [one] { return one.string(Indentation{0}); };
  }
  void event(Side side, const WhenClause& clause, Index where) {
    DiffItem& item = add(side, Element::Event, where, nvf::ustring(), clause.location());
    item.home = u"events";
    const auto branch = [&item](const auto& one) {
      item.frame += 'w';
      item.exprs.push_back(one.predicate());
      for (const IdentValuePair& update : one.body()) {
        item.frame += 'u';
        item.exprs.push_back(nameExpr(update.ident()));
        item.exprs.push_back(update.value());
      }
    };
    branch(clause.whenBranch());
    for (const ElseWhenBranch& one : clause.elseWhens()) branch(one);
    item.text = [clause] { return u"when " + to_user_string(clause.whenBranch().predicate()); };
  }
  void modechart(Side side, const Modechart& chart, Index where) {
    for (const ModesSection& modes : chart.modesSections()) {
      for (const Mode& mode : modes.modes()) {
        const nvf::ustring names = joined(mode.ids(), u", ", [](const Ident& id) { return id.string(); });
        const Index inside = named(where, u"mode " + names);
        for (const EquationBlock& block : mode.equationBlocks()) equations(side, block, inside);
        for (const EntryBlock& entry : mode.entryBlocks()) {
          for (const IdentValuePair& action : entry.actions()) {
            pair(side, Element::Entry, inside, action, u"entry");
            std::swap(out_.sides[side].back().subject, out_.sides[side].back().suffix);
          }
        }
      }
    }
    for (const TransitionsSection& transitions : chart.transitionsSections()) {
      for (const Transition& one : transitions.transitions()) {
        DiffItem& item = add(side, Element::Transition, where, nvf::ustring(), expr_location(one.predicate()));
        item.suffix = joined(one.modes(), u"->", [](const Ident& id) { return id.string(); });
        item.exprs = {one.predicate()};
        item.text = [one] { return one.string(0, 0); };
      }
    }
    for (const InitialSection& initial : chart.initialSections()) {
      for (const InitialMode& one : initial.initialModes()) {
        DiffItem& item = add(side, Element::InitialMode, where, nvf::ustring(), one.id().location());
        item.suffix = one.id().string();
        item.exprs = {one.predicate()};
        item.text = [one] { return one.string(0, 0); };
      }
    }
  }
  /// An item for each attribute of each member.
  void annotations(Side side, const AnnotationsBlock& block, Index where) {
    for (const IdentValuePair& one : block.classAnnotations()) {
      pair(side, Element::Annotation, where, one, u"annotations");
    }
    for (const MemberAnnotation& annotation : block.annotations()) {
      for (const IdentValuePair& one : annotation.attributes()) {
        for (const Ident& id : annotation.ids()) {
          pair(side, Element::Annotation, where, one, u"annotations");
          DiffItem& item = out_.sides[side].back();
          item.subject = id.string();
          item.suffix = u" : " + one.ident().string();
          item.begin = id.location().lineColumn();
          item.text = [id, one] { return id.string() + u" : " + one.string(); };
        }
      }
    }
  }

  // ---- functions ----

  void functions(const Functions& before, const Functions& after) {
    std::map<nvf::ustring, std::array<const TSNFunction*, 2>> byName;
    for (const TSNFunction* one : before) byName[one->name().string()][0] = one;
    for (const TSNFunction* one : after) byName[one->name().string()][1] = one;
    for (const auto& [name, sides] : byName) {
      const bool isWhole = sides[0] == nullptr || sides[1] == nullptr;
      for (const Side side : {Side{0}, Side{1}}) {
        if (sides[side] != nullptr) function(side, *sides[side], isWhole);
      }
    }
  }
  /// A function that only one side has is one element.
  void function(Side side, const TSNFunction& one, bool isWhole) {
    DiffItem& item = add(side, Element::Function, 0, nvf::ustring(), one.name().location());
    const auto name = [](const Ident& id) { return id.string(); };
    const nvf::ustring inputs = u"(" + joined(one.inputs(), u", ", name) + u")";
    const nvf::ustring outputs = u"[" + joined(one.outputs(), u", ", name) + u"]";
    item.suffix = one.name().string();
    item.frame = nvf::encode_utf8(outputs + inputs);
    item.text = [text = u"function " + outputs + u" = " + one.name().string() + inputs] { return text; };
    if (isWhole) {
      for (const DefinitionsBlock& block : one.definitions()) item.frame += bytesOf(block);
      return;
    }
    const Index inside = named(0, u"function " + one.name().string());
    for (const DefinitionsBlock& block : one.definitions()) {
      const nvf::ustring home = headOf(u"definitions", block.attributes());
      for (const FunctionEqnItem& definition : block.eqnItems()) {
        if (const auto* assertion = definition.getIf<EqnAssertion>()) {
          assertionItem(side, *assertion, inside, home);
          continue;
        }
        const IdListValuePair& values = definition.get<IdListValuePair>();
        DiffItem& value = add(side, Element::Definition, inside, nvf::ustring(), values.location());
        value.suffix = joined(values.ids(), u", ", [](const OptIdent& id) { return to_string(id); });
        value.home = home;
        value.exprs = {values.value()};
        value.text = [values] { return values.string(ToStringContext()); };
      }
    }
  }

  DiffItems& out_;
  std::map<std::pair<Index, nvf::ustring>, Index> named_;
};

} // namespace

DiffItems takeApart(const TSNFile& before, const TSNFile& after) {
  DiffItems items;
  TakeApart apart(items);
  std::visit([&apart](const auto& a, const auto& b) { apart.both(a, b); }, before, after);
  return items;
}

} // namespace tessarin::ide
