#include "tessarin/parser/builder/StringEntries.hpp"

#include "tessarin/foundation/concatenator.hpp"
#include "tessarin/foundation/messages.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include <boost/numeric/conversion/cast.hpp>

#include <new>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages

// ---- the frame ----

namespace {

/// What stands around a fragment, so that the whole is a model.
struct Frame {
  ustring_view before;
  ustring_view after;
};

constexpr Frame baseClass{u"component dummy < ", u"\nend\n"};
constexpr Frame equations{u"component dummy\n   equations\n", u"  end\nend\n"};
constexpr Frame branches{u"component dummy\n   branches\n", u"\n  end\nend\n"};
constexpr Frame connections{u"component dummy\n   connections\n", u"\n  end\nend\n"};
constexpr Frame events{u"component dummy\n   events\n", u"\n  end\nend\n"};
constexpr Frame parameters{u"component dummy\n  parameters \n", u"  end \nend \n"};
constexpr Frame annotations{u"component dummy\n   annotations\n", u"\n  end\nend\n"};

/// The lines of the frame of equations that stand before the fragment.
constexpr std::size_t linesBeforeEquations = 2;

template <class Msg>
[[noreturn]] void refuse(ustring_view fragment) {
  throw nvf::MessageException(nvf::Message(Msg(fragment)));
}

ParseTree parse(const Frame& frame, ustring_view content, const nvf::FileName& fileName = nvf::FileName()) {
  ustring text;
  text.reserve(frame.before.size() + content.size() + frame.after.size());
  text.append(frame.before).append(content).append(frame.after);
  return Parser(nvf::SourceBuffer(fileName, ustring_view(text))).parse();
}

Model modelOf(const ParseTree& tree, const ASTBuilder& builder) {
  return builder.buildModelFile(tree, FileSource::open).model();
}

/// The model around a fragment; text that does not parse raises `Msg` about the fragment.
template <class Msg>
Model parseModel(const Frame& frame, ustring_view content, ustring_view fragment, const ASTBuilder& builder,
                 const nvf::FileName& fileName = nvf::FileName()) {
  ParseTree tree;
  try {
    tree = parse(frame, content, fileName);
  } catch (const nvf::LocationException&) {
    refuse<Msg>(fragment);
  }
  return modelOf(tree, builder);
}

/// The piece of a fragment: the first of the items of the first block. Raises `Msg` where there is none.
template <class Msg, class List>
const auto& first(const List& list, ustring_view fragment) {
  if (list.begin() == list.end()) refuse<Msg>(fragment);
  return *list.begin();
}

/// The text as a `ustring`.
ustring checked(const std::string& text) {
  try {
    return nvf::detail::AsciiStringCheck()(text.data(), text.size()).text();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    std::ostringstream shown;
    for (const char c : text) nvf::to_ascii(shown, static_cast<unsigned char>(c));
    throw std::logic_error("parsing non-ASCII std::string: " + shown.str());
  }
}

std::vector<ustring> checked(const std::vector<std::string>& texts) {
  std::vector<ustring> result;
  result.reserve(texts.size());
  for (const std::string& text : texts) result.push_back(checked(text));
  return result;
}

} // namespace

// ---- names of base classes ----

ClassInitializer str_to_classinitializer(const ustring& text, const ASTBuilder& builder) {
  const Model model = modelOf(parse(baseClass, text), builder);
  if (!model.baseClassName()) refuse<InvalidExpressionSyntax>(text);
  return *model.baseClassName();
}

Name str_to_astname(const ustring& text) {
  return str_to_classinitializer(text, ASTBuilder()).name();
}
Name str_to_astname(const std::string& text) {
  return str_to_astname(checked(text));
}

// ---- equations and expressions ----

namespace {

/// The item that each fragment is.
std::vector<EqnItem> parseEqnItems(const std::vector<ustring>& fragments, const ASTBuilder& builder,
                                   const nvf::FileName& fileName = nvf::FileName()) {
  ustring content;
  ustring shown;
  for (const ustring& fragment : fragments) {
    content.append(fragment) += u'\n';
    if (!shown.empty() || &fragment != fragments.data()) shown += u", ";
    shown += fragment;
  }
  const Model model = parseModel<InvalidExpressionSyntax>(equations, content, shown, builder, fileName);
  const EquationBlock& block = first<InvalidExpressionSyntax>(model.declarativeSections().equationBlocks(), shown);
  if (block.numOfEqnItems() != fragments.size()) refuse<InvalidExpressionSyntax>(shown);
  return block.eqnItems();
}

/// The expressions that the items are; raises a message about the fragment of an item that is none.
template <class FragmentOf>
std::vector<Expr> expressions(const std::vector<EqnItem>& items, FragmentOf fragmentOf) {
  std::vector<Expr> result;
  result.reserve(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const auto* expr = items[i].getIf<Expr>();
    if (expr == nullptr) refuse<AssertionNotExpression>(fragmentOf(i));
    result.push_back(*expr);
  }
  return result;
}

std::vector<Expr> parseExpressions(const std::vector<ustring>& fragments, const ASTBuilder& builder,
                                   const nvf::FileName& fileName = nvf::FileName()) {
  return expressions(parseEqnItems(fragments, builder, fileName),
                     [&](std::size_t i) -> const ustring& { return fragments[i]; });
}

/// The location in the text that stands behind the head of the frame. A place in the head itself becomes the first
/// line.
nvf::Location behindFrame(const nvf::Location& location) {
  const nvf::LineColumn& place = location.lineColumn();
  const unsigned long line = place.line() < linesBeforeEquations ? 0 : place.line() - linesBeforeEquations;
  return {location.fileName(), nvf::LineColumn(line, place.column())};
}

} // namespace

EqnItem str_to_asteqnitem(const ustring& text, const ASTBuilder& builder) {
  return parseEqnItems({text}, builder).front();
}
EqnItem str_to_asteqnitem(const std::string& text, const ASTBuilder& builder) {
  return str_to_asteqnitem(checked(text), builder);
}

Expr str_to_astexpr(const ustring& text, const ASTBuilder& builder) {
  return parseExpressions({text}, builder).front();
}
Expr str_to_astexpr(const std::string& text, const ASTBuilder& builder) {
  return str_to_astexpr(checked(text), builder);
}

Expr str_to_astexpr_with_dummy_filename(const std::string& text) {
  return parseExpressions({checked(text)}, ASTBuilder(), nvf::FileName(std::string("dummy.tsn"))).front();
}

std::vector<Expr> strs_to_astexprs(const std::vector<ustring>& texts) {
  return parseExpressions(texts, ASTBuilder());
}
std::vector<Expr> strs_to_astexprs(const std::vector<std::string>& texts) {
  return strs_to_astexprs(checked(texts));
}

std::vector<Expr> str_to_astexprs(const ustring& text) {
  ParseTree tree;
  try {
    tree = parse(equations, text);
  } catch (const nvf::LocationException& e) {
    const nvf::Location location = behindFrame(e.location());
    throw nvf::LocationException(nvf::Message(e.id(), location), location, e.showColumn());
  }
  const Model model = modelOf(tree, ASTBuilder());
  const EquationBlock& block = first<InvalidExpressionSyntax>(model.declarativeSections().equationBlocks(), text);
  return expressions(block.eqnItems(), [&](std::size_t) -> const ustring& { return text; });
}
std::vector<Expr> str_to_astexprs(const std::string& text) {
  return str_to_astexprs(checked(text));
}

// ---- items of other blocks ----

Through str_to_astthrough(const ustring& text, const ASTBuilder& builder) {
  using Msg = InvalidThroughSyntax;
  const Model model = parseModel<Msg>(branches, text, text, builder);
  return first<Msg>(first<Msg>(model.declarativeSections().branchBlocks(), text).throughs(), text);
}
Through str_to_astthrough(const std::string& text) {
  return str_to_astthrough(checked(text));
}

Connection str_to_astconnection(const ustring& text, const ASTBuilder& builder) {
  using Msg = InvalidConnectionSyntax;
  const Model model = parseModel<Msg>(connections, text, text, builder);
  return first<Msg>(first<Msg>(model.declarativeSections().connectionBlocks(), text).connections(), text);
}
Connection str_to_astconnection(const std::string& text) {
  return str_to_astconnection(checked(text));
}

WhenClause str_to_whenclause(const ustring& text, const ASTBuilder& builder) {
  using Msg = InvalidConnectionSyntax;
  const Model model = parseModel<Msg>(events, text, text, builder);
  return first<Msg>(first<Msg>(model.declarativeSections().eventBlocks(), text).events(), text);
}
WhenClause str_to_whenclause(const std::string& text) {
  return str_to_whenclause(checked(text));
}

IdListValuePair str_to_IdListValuePair(const ustring& id, const ustring& value, const ASTBuilder& builder) {
  using Msg = InvalidExpressionSyntax;
  const ustring pair = id + u"=" + value;
  const Model model = modelOf(parse(parameters, pair + u";\n"), builder);
  return id_list_value(
      first<Msg>(first<Msg>(model.declarativeSections().declarationBlocks(), pair).declarations(), pair));
}
IdListValuePair str_to_IdListValuePair(const std::string& id, const std::string& value, const ASTBuilder& builder) {
  const ustring name = checked(id); // first, so that of two faulty texts the name is the one that is told
  return str_to_IdListValuePair(name, checked(value), builder);
}

namespace {

AnnotationsBlock parseAnnotations(const ustring& text) {
  using Msg = InvalidAnnotationSyntax;
  const Model model = parseModel<Msg>(annotations, text, text, ASTBuilder());
  return first<Msg>(model.declarativeSections().annotationsBlocks(), text);
}

} // namespace

IdentValuePair str_to_ivpair(const ustring& text) {
  const AnnotationsBlock block = parseAnnotations(text);
  return first<InvalidAnnotationSyntax>(block.classAnnotations(), text);
}
IdentValuePair str_to_ivpair(const std::string& text) {
  return str_to_ivpair(checked(text));
}

MemberAnnotation str_to_annotation(const ustring& text) {
  const AnnotationsBlock block = parseAnnotations(text);
  return first<InvalidAnnotationSyntax>(block.annotations(), text);
}
MemberAnnotation str_to_annotation(const std::string& text) {
  return str_to_annotation(checked(text));
}

// ---- references ----

namespace {

using IndexArray = nvf::Array<unsigned long>;

/// Builds the reference of one class that a text is. Each failure is the message `Msg` about the text.
template <class Msg>
class ReferenceText {
public:
  explicit ReferenceText(const std::string& text) : text_(checked(text)) {}

  [[noreturn]] void refuse() const { core::refuse<Msg>(text_); }

  /// The variable that the text is.
  [[nodiscard]] Variable variable() const {
    const Expr expr = [this] {
      try {
        return str_to_astexpr(text_);
      } catch (const nvf::MessageException&) {
        refuse();
      } catch (const nvf::LocationException&) { // of the builder
        refuse();
      }
    }();
    const auto* variable = expr.getIf<Variable>();
    if (variable == nullptr) refuse();
    return *variable;
  }

  /// The arguments behind the last name, which have to be positional.
  [[nodiscard]] const std::optional<Arguments>& tail(const Variable& variable) const {
    if (variable.tail() && !variable.tail()->namedArgs().empty()) refuse();
    return variable.tail();
  }

  /// The steps before the last name, with their indices.
  [[nodiscard]] std::vector<IdValueIndices> leadingPath(const Variable& variable) const {
    std::vector<IdValueIndices> path;
    path.reserve(variable.leadingPath().size() + 1);
    for (const IdParenSubs& step : variable.leadingPath()) {
      path.push_back(this->step(step.ident(), step.subs() ? &step.subs()->subs() : nullptr));
    }
    return path;
  }

  /// A step with its indices; `subs` is null where there are none.
  [[nodiscard]] IdValueIndices step(const Ident& ident, const std::vector<Subscript>* subs) const {
    if (subs == nullptr) return {ident, std::nullopt};
    std::vector<ConcreteValueExpr> indices;
    indices.reserve(subs->size());
    for (const Subscript& sub : *subs) {
      if (!sub.expr()) refuse();
      indices.emplace_back(nvf::Value(evaluate(*sub.expr()), nvf::UnitsExpr()), expr_range(*sub.expr()));
    }
    return {ident, nvf::Expressions<ConcreteValueExpr>(std::move(indices))};
  }

private:
  [[nodiscard]] unsigned long number(const Expr& expr) const {
    const auto* literal = expr.getIf<NumberLiteral>(); // an index is no imaginary number: intended
    if (literal == nullptr || literal->value().isImaginary()) refuse();
    return boost::numeric_cast<unsigned long>(literal->value().number());
  }

  [[nodiscard]] IndexArray evaluate(const Expr& expr) const {
    const auto* matrix = expr.getIf<MatrixExpr>();
    if (matrix == nullptr) return IndexArray(number(expr));
    try {
      nvf::Concatenator<unsigned long> result(nvf::Dimension::Rows);
      for (const MatrixExpr::Row& row : matrix->rows()) {
        nvf::Concatenator<unsigned long> elements(nvf::Dimension::Columns);
        for (const Expr& element : row) elements.append(IndexArray(number(element)));
        result.append(elements.result());
      }
      return result.result();
    } catch (const nvf::InvalidArraySize&) { // the rows differ in length
      refuse();
    }
  }

  ustring text_;
};

} // namespace

ObjectRef str_to_objectref(const std::string& text) {
  const ReferenceText<InvalidObjectRefSyntax> reference(text);
  const Variable variable = reference.variable();
  std::vector<IdValueIndices> path = reference.leadingPath(variable);
  const std::optional<Arguments>& tail = reference.tail(variable);
  path.push_back(reference.step(variable.id(), tail ? &tail->posArgs() : nullptr));
  return {nvf::Expressions1<IdValueIndices>(std::move(path)), std::nullopt, nvf::Range()};
}

ValueRef str_to_valueref(const std::string& text) {
  const ReferenceText<InvalidValueRefSyntax> reference(text);
  const Variable variable = reference.variable();
  const nvf::Expressions<IdValueIndices> path(reference.leadingPath(variable));
  std::optional<ValueRefTail> tail;
  if (const std::optional<Arguments>& arguments = reference.tail(variable)) {
    tail = ParenSubs(arguments->posArgs(), arguments->range());
  }
  return {variable.id(), path, tail, std::nullopt, nvf::Range()};
}

ValueRef str_to_valueref(const std::string& text, const std::string& tail) {
  const ValueRef reference = str_to_valueref(text);
  if (reference.tail()) refuse<InvalidValueRefSyntax>(checked(text));
  const ReferenceText<InvalidValueRefSyntax> whole(text + "." + tail);
  const Variable original = whole.variable();
  if (!nvf::is_identifier(checked(tail))) whole.refuse();
  const Ident name(nvf::detail::CxIdCheck()(tail.data(), tail.size()), nvf::Range());
  return {reference.id(), reference.leadingPath(), ValueRefTail(name),
          Variable(original.id(), original.leadingPath(), original.tail(), nvf::Range()), nvf::Range()};
}

} // namespace tessarin::compiler::core
