// The text forms of expressions, equations and events.
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/value_token.hpp"
#include "tessarin/parser/ast/BoundNames.hpp"
#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/ast/Printer.hpp"
#include "tessarin/parser/ast/fixed_id.hpp"

#include <ostream>
#include <stdexcept>

namespace tessarin::compiler::core {

namespace {

/// The context for what stands inside a line: the given one where it is for that already.
class RValue {
public:
  explicit RValue(const ToStringContext& context) : context_(context) {
    if (!context.asRValue()) copy_ = context.rvalue();
  }
  operator const ToStringContext&() const noexcept { return copy_ ? *copy_ : context_; }

private:
  const ToStringContext& context_;
  std::optional<ToStringContext> copy_;
};

const ToStringContext& defaultContext() {
  static const ToStringContext context;
  return context;
}

std::u16string_view bit(bool value) {
  return value ? u"1" : u"0";
}

} // namespace

// ---- expressions by kind ----

/// Prints each kind under one context. What prints no lead stands without its indent: intended.
struct ToStringVisitor {
  struct FilterLet;

  Printer& out;
  const ToStringContext& context;
  RValue inner{context};

  Printer& lead() const { return out.blanks(context.asRValue() ? 0 : context.indent()); }
  void print(const Expr& expr) const { out.print(expr, inner); }
  void printIn(const Expr& expr, bool parentheses) const {
    if (parentheses) out << u"(";
    print(expr);
    if (parentheses) out << u")";
  }
  void mapped(const nvf::CxId& id) const {
    out.join(context.mapIdentifier(id), u".", [this](const nvf::CxId& name) { out << name; });
  }

  // ---- leaves ----

  void operator()(const Time&) const { lead() << u"time"; }
  void operator()(const EndIndex&) const { lead() << u"end"; }
  void operator()(const NumberLiteral& number) const { lead() << number.value().view(); }
  void operator()(const StringLiteral& string) const {
    lead();
    out.append(string);
  }
  void operator()(const ConcreteValueExpr& value) const {
    if (context.asUserStr()) {
      out << nvf::to_user_string(value.value());
      return;
    }
    out << ConcreteValueExpr::constructorName() << u"(";
    out.join(nvf::value_to_value_tokens(value.value()), u",",
             [this](const nvf::ValueToken& token) { out << nvf::as_calvex(token); });
    out << u")";
  }

  // ---- compounds ----

  void operator()(const UnitExpr& expr) const {
    lead();
    if (context.unitExprFcn() != ToStringContext::makeDefaultUnitExprFcn()) {
      out << (*context.unitExprFcn())(expr, inner);
      return;
    }
    out << u"{"; // what the default function prints, without a string of its own for each level
    print(expr.expr());
    out << u", ";
    out.append(expr.unit());
    out << u"}";
  }
  void operator()(const ValueExpr& expr) const {
    lead() << u"value(";
    print(expr.expr());
    out << u",";
    out.append(expr.unit());
    if (expr.conversion()) {
      out << u",";
      out.append(*expr.conversion());
    }
    out << u")";
  }
  void operator()(const MatrixExpr& matrix) const {
    lead() << u"[";
    out.join(matrix.rows(), u"; ", [this](const MatrixExpr::Row& row) {
      out.join(row, u", ", [this](const Expr& element) { print(element); });
    });
    out << u"]";
  }
  void operator()(const FieldValueArrayExpr& array) const {
    out << (context.fvaAsStruct() ? u"struct(" : u"{");
    out.join(array.pairList(), u", ", [this](const IdentValuePair& pair) {
      if (context.fvaAsStruct()) {
        out << u"'" << pair.ident() << u"', {";
        print(pair.value());
        out << u"}";
      } else {
        out << pair.ident() << u" = ";
        print(pair.value());
      }
    });
    out << (context.fvaAsStruct() ? u")" : u"}");
  }
  void operator()(const MRVIndex& index) const {
    if (context.asUserStr()) return print(index.expr());
    out << MRVIndex::ctor() << u"(";
    print(index.expr());
    out << u"," << index.rvIndex() << u"," << index.numRvs() << u")";
  }
  void operator()(const TransitionExpr& transition) const {
    if (context.asUserStr()) return print(transition.expr());
    out << TransitionExpr::ctor() << u"(";
    out.print(transition.expr(), defaultContext());
    out << u",";
    out.print(transition.preCondition(), defaultContext());
    out << u")";
  }
  void operator()(const ModechartEqnExpr& modechart) const {
    if (context.asUserStr()) return print(Expr(modechart.expr()));
    out << ModechartEqnExpr::ctor() << u"(";
    out.print(Expr(modechart.expr()), defaultContext());
    out << u")";
  }

  // ---- references ----

  void operator()(const Variable& variable) const {
    lead();
    out.printPath(variable.leadingPath(), variable.id(), context);
    if (variable.tail()) out.print(*variable.tail(), inner);
  }
  /// Prints the variable that a resolved form came from, where that is what the user is to see.
  bool printedOriginal(const std::optional<Variable>& original) const {
    if (!context.asUserStr() || !original) return false;
    print(Expr(*original));
    return true;
  }
  void operator()(const FullPathVariable& path) const {
    if (printedOriginal(path.originalVariable())) return;
    const bool isSingle = path.paths().size() == 1;
    out << FullPathVariable::ctor() << u"(" << (isSingle ? u"" : u"[");
    out.join(path.paths(), u", ", [this](const FullPathVariable::Path& one) { print(to_expr(one)); });
    out << (isSingle ? u"" : u"]");
    if (path.subs()) {
      for (const Subscript& subscript : path.subs()->subs()) {
        out << u", ";
        out.print(subscript, inner);
      }
    }
    out << u")";
  }
  void operator()(const RelativePathVariable& path) const {
    std::vector<Subscript> arguments{Expr(NumberLiteral(nvf::NumberString(path.depth().value()), nvf::Range())),
                                     Expr(Variable(path.id(), nvf::Range()))};
    if (path.subs()) arguments.insert(arguments.end(), path.subs()->subs().begin(), path.subs()->subs().end());
    const Variable call(Ident(RelativePathVariable::ctor(), nvf::Range()), {}, Arguments(arguments, {}, nvf::Range()),
                        nvf::Range());
    ToStringVisitor{out, inner}(call);
  }
  void operator()(const ValueRef& ref) const {
    if (printedOriginal(ref.originalVariable())) return;
    out << ValueRef::ctor() << u"(";
    out.printPath(ref.leadingPath(), ref.id(), inner);
    if (ref.tail()) {
      out << u",";
      if (const Ident* name = ref.tail()->getIf<Ident>()) {
        out << ValueRef::idTailCtor() << u"(" << *name << u")";
      } else {
        out << ValueRef::subsTailCtor();
        out.print(ref.tail()->get<ParenSubs>(), inner);
      }
    }
    out << u")";
  }
  void operator()(const ObjectRef& ref) const {
    if (printedOriginal(ref.originalVariable())) return;
    const auto& path = ref.ref();
    out << ObjectRef::ctor() << u"(";
    out.printPath(nvf::Expressions<IdValueIndices>(path.begin(), path.end() - 1), path.back().ident(),
                  defaultContext());
    out.printIndices(path.back(), defaultContext());
    out << u")";
  }

  // ---- calls ----

  template <class Call>
  void printArguments(const Call& call) const {
    if (const std::optional<Arguments> arguments = call.arguments()) out.print(*arguments, inner);
  }
  template <class Call>
  void printCall(const Call& call) const {
    mapped(call.path().front());
    for (std::size_t i = 1; i < call.path().size(); ++i) out << u"." << call.path()[i];
    printArguments(call);
  }
  template <class Call>
  void printResolved(const Call& call) const {
    if (context.asUserStr()) return printCall(call);
    out << Call::ctor() << u"(";
    printCall(call);
    out << u")";
  }
  void operator()(const NativeFunctionCall& call) const { printResolved(call); }
  void operator()(const TessarinFunctionCall& call) const { printResolved(call); }
  void operator()(const CalvexFunctionCall& call) const {
    if (context.asUserStr()) return printCall(call);
    out << CalvexFunctionCall::ctor() << u"(";
    printCall(call);
    out << u"," << bit(call.isEnum()) << u"," << bit(call.dottedEnum()) << u"," << bit(call.evalCompileTime()) << u")";
  }
  void operator()(const TessarinLocalFunctionCall& call) const {
    if (!context.asUserStr()) out << TessarinLocalFunctionCall::ctor() << u"(" << call.path().string() << u",";
    out << call.fcnId();
    printArguments(call);
    if (!context.asUserStr()) out << u")";
  }

  // ---- operators ----

  void printBinary(const OpExpr& op) const {
    const std::size_t precedence = op.precedence();
    printIn(op.operandAt(0), precedence < expr_precedence(op.operandAt(0)));
    out << u" " << OpExpr::typeString(op.opType()) << u" ";
    printIn(op.operandAt(1), precedence <= expr_precedence(op.operandAt(1)));
  }
  void operator()(const OpExpr& op) const {
    if (op.numOfOperands() < op.arity()) throw std::logic_error("an operator without its operands has no text");
    const auto looser = [&op](const Expr& operand) { return op.precedence() < expr_precedence(operand); };
    const ustring image = OpExpr::typeString(op.opType());
    switch (op.opType()) {
    case OpExprType::Der:
      out << image;
      printIn(op.operandAt(0), true);
      return;
    case OpExprType::Power:
    case OpExprType::DotPower:
      out << u"(";
      lead();
      printBinary(op);
      out << u")";
      return;
    case OpExprType::Transpose:
    case OpExprType::DotTranspose:
      printIn(op.operandAt(0), looser(op.operandAt(0)));
      out << image;
      return;
    case OpExprType::Not:
    case OpExprType::UnaryPlus:
    case OpExprType::UnaryMinus:
      out << image;
      printIn(op.operandAt(0), looser(op.operandAt(0)));
      return;
    case OpExprType::Colon3:
      lead();
      out.join(op.operands(), u" : ", [&](const Expr& operand) { printIn(operand, looser(operand)); });
      return;
    default:
      lead();
      printBinary(op);
      return;
    }
  }

  // ---- conditions and declarations ----

  void printItems(const std::vector<EqnItemHandle>& items, const ToStringContext& in, std::u16string_view end) const {
    const ToStringContext further = in.incrementIndent(1);
    for (const EqnItemHandle& item : items) {
      out.print(item.get(), further);
      out << u";" << end;
    }
  }
  void operator()(const IfExpr& expr) const {
    const std::u16string_view end = context.indent() != 0 ? u"\n" : u" ";
    const std::u16string_view then = context.indent() != 0 ? u"\n" : u", ";
    lead() << u"if ";
    print(expr.condition());
    out << then;
    printItems(expr.ifEqnItems(), context, end);
    for (const ElseifBranch& branch : expr.elseifBranches()) {
      out.blanks(context.indent()) << u"elseif ";
      print(branch.condition());
      out << then;
      printItems(branch.eqnItems(), context, end);
    }
    out.blanks(context.indent()) << u"else" << end;
    printItems(expr.elseEqnItems(), context, end);
    out.blanks(context.indent()) << u"end";
  }
  void operator()(const LetExpr& expr) const;
};

/// Keeps the names that a `let` and those around it bind from being mapped.
struct ToStringVisitor::FilterLet {
  BoundNames bound; // by all of them: they nest as deep as text likes
  std::shared_ptr<const ToStringContext::MapIdentifierFcn> mapping;

  nvf::CxIdPath operator()(const nvf::CxId& id) const {
    return bound.find(id) != nullptr ? nvf::CxIdPath({id}) : (*mapping)(id);
  }

  /// The context for the items of a `let`.
  static ToStringContext around(const LetExpr& let, const ToStringContext& context) {
    // The default function maps nothing, so there is nothing to keep from it.
    if (context.mapIdentifierFcn() == ToStringContext::makeDefaultMapIdentifierFcn()) return context;
    const auto* around = context.mapIdentifierFcn()->target<FilterLet>();
    FilterLet filter = around != nullptr ? *around : FilterLet{{}, context.mapIdentifierFcn()};
    for (const IdListValuePair& declaration : let.declarations()) {
      for (const OptIdent& id : declaration.ids()) {
        if (const Ident* ident = id.getIf<Ident>()) filter.bound.bind(ident->id(), {});
      }
    }
    ToStringContext inner = context;
    inner.mapIdentifierFcn(std::make_shared<const ToStringContext::MapIdentifierFcn>(std::move(filter)));
    return inner;
  }
};

void ToStringVisitor::operator()(const LetExpr& expr) const {
  const std::u16string_view end = context.indent() != 0 ? u"\n" : u" ";
  lead() << u"let" << end;
  const ToStringContext further = context.incrementIndent(1);
  for (const IdListValuePair& declaration : expr.declarations()) {
    out.print(declaration, further);
    out << u";" << end;
  }
  out.blanks(context.indent()) << u"in" << end;
  printItems(expr.eqnItemList(), FilterLet::around(expr, context), end);
  out.blanks(context.indent()) << u"end";
}

void Printer::print(const Expr& expr, const ToStringContext& context) {
  if (context.outputFcn()) {
    if (const std::optional<ustring> text = context.outputFcn()(expr, context)) {
      *this << *text;
      return;
    }
  }
  expr.visit(ToStringVisitor{*this, context});
}

void Printer::print(const Expr& expr) {
  print(expr, defaultContext());
}

// ---- paths and arguments ----

void Printer::printIndices(const IdParenSubs& step, const ToStringContext& context) {
  if (step.subs()) print(*step.subs(), context);
}

void Printer::printIndices(const IdValueIndices& step, const ToStringContext& context) {
  if (!step.indices()) return;
  *this << u"(";
  join(*step.indices(), u",", [&](const ConcreteValueExpr& value) { print(Expr(value), context); });
  *this << u")";
}

template <class Steps>
void Printer::printPath(const Steps& leadingPath, const Ident& last, const ToStringContext& context) {
  const RValue inner(context);
  bool isFirst = true;
  const auto name = [&](const Ident& ident) {
    if (isFirst) {
      join(context.mapIdentifier(ident.id()), u".", [this](const nvf::CxId& id) { *this << id; });
    } else {
      *this << u"." << ident;
    }
    isFirst = false;
  };
  for (const auto& step : leadingPath) {
    name(step.ident());
    printIndices(step, inner);
  }
  name(last);
}

void Printer::print(const Subscript& subscript, const ToStringContext& context) {
  if (!subscript.expr()) {
    *this << u":";
  } else if (context.indent() == 0) {
    print(*subscript.expr(), context);
  } else {
    print(*subscript.expr(), ToStringContext(context).indent(Indentation{0}));
  }
}

void Printer::print(const ParenSubs& subs, const ToStringContext& context) {
  *this << u"(";
  join(subs.subs(), u", ", [&](const Subscript& subscript) { print(subscript, context); });
  *this << u")";
}

void Printer::print(const NamedArgument& argument, const ToStringContext& context) {
  print(to_expr(argument.name()), context);
  *this << (argument.isColonEquals() ? u" := " : u" = ");
  print(argument.value(), context);
}

void Printer::print(const Arguments& arguments, const ToStringContext& context) {
  *this << u"(";
  join(arguments.posArgs(), u", ", [&](const Subscript& subscript) { print(subscript, context); });
  if (!arguments.posArgs().empty() && !arguments.namedArgs().empty()) *this << u", ";
  join(arguments.namedArgs(), u", ", [&](const NamedArgument& argument) { print(argument, context); });
  *this << u")";
}

void Printer::print(const IdParenSubs& step, const ToStringContext& context) {
  *this << step.ident();
  printIndices(step, context);
}

// ---- items ----

void Printer::print(const EqnItem& item, const ToStringContext& context) {
  if (const EqnAssertion* assertion = item.getIf<EqnAssertion>()) return print(*assertion, context.indent());
  const Expr& expr = item.get<Expr>();
  if (context.asRValue()) return print(expr, ToStringContext(context).asRValue(false));
  print(expr, context);
}

void Printer::print(const FunctionEqnItem& item, const ToStringContext& context) {
  if (const EqnAssertion* assertion = item.getIf<EqnAssertion>()) return print(*assertion, context.indent());
  print(item.get<IdListValuePair>(), context);
}

namespace {

StringLiteral text(const ustring& value) {
  return {value, nvf::Range()};
}

Expr call(const nvf::CxId& function, const std::vector<Expr>& arguments) {
  return make_variable(nvf::CxIdPath({function}), arguments);
}

/// The hole of a message as an expression.
struct HoleToExpr {
  Expr operator()(const ustring& value) const { return text(value); }
  Expr operator()(const MemberText& member) const {
    return call(MemberText::ctor(), {cxidpath_to_variable(member.path(), nvf::Range())});
  }
  Expr operator()(const RefText& ref) const { return call(RefText::ctor(), {ref.ref()}); }
};

/// The message of an assertion as arguments.
struct MessageToArguments {
  std::vector<Expr>& arguments;
  void operator()(const NoMessage&) const {}
  void operator()(const PreformattedMessage& message) const {
    if (!message.id().empty()) arguments.emplace_back(text(message.id().string()));
    arguments.emplace_back(text(message.text()));
  }
  void operator()(const MessageObject& message) const {
    std::vector<Expr> parts{text(message.id().string())};
    for (const MessageObject::Hole& hole : message.holes()) parts.push_back(std::visit(HoleToExpr(), hole));
    arguments.push_back(call(MessageObject::ctor(), parts));
  }
};

} // namespace

void Printer::print(const EqnAssertion& assertion, std::size_t indent) {
  std::vector<Expr> positional{assertion.predicate()};
  std::visit(MessageToArguments{positional}, assertion.message());
  NativeFunctionCall::NamedArguments named;
  if (assertion.action()) named.emplace(detail::fixedId("Action"), *assertion.action());
  blanks(indent);
  print(Expr(to_variable(NativeFunctionCall(nvf::CxIdPath({EqnAssertion::ctor()}), positional, named, nvf::Range()))),
        defaultContext());
}

void Printer::print(const IdListValuePair& pair, const ToStringContext& context) {
  blanks(context.indent());
  const auto name = [this](const OptIdent& id) { *this << to_string(id); };
  if (pair.ids().size() == 1) {
    name(pair.ids().front());
  } else {
    *this << u"[";
    join(pair.ids(), u",", name);
    *this << u"]";
  }
  *this << (pair.isColonEquals() ? u" := " : u" = ");
  print(pair.value(), RValue(context));
}

void Printer::print(const IdentValuePair& pair) {
  *this << pair.ident() << u" = ";
  print(pair.value(), defaultContext());
}

// ---- blocks ----

void Printer::printAttributes(const nvf::Expressions<IdentValuePair>& attributes) {
  if (attributes.empty()) return;
  *this << u"(";
  join(attributes, u", ", [this](const IdentValuePair& pair) { print(pair); });
  *this << u")";
}

void Printer::print(const EquationBlock& block, std::size_t indent, std::size_t step) {
  blanks(indent) << u"equations ";
  printAttributes(block.attributes());
  *this << u"\n";
  const ToStringContext context =
      ToStringContext().indent(Indentation{indent + step}).increment(Increment{step}).asRValue(false);
  for (const EqnItem& item : block.eqnItems()) {
    print(item, context);
    *this << u";\n";
  }
  blanks(indent) << u"end";
}

template <class Branch>
void Printer::print(std::u16string_view keyword, const Branch& branch, std::size_t indent, std::size_t step) {
  blanks(indent) << keyword;
  print(branch.predicate(), defaultContext());
  *this << u"\n";
  for (const IdentValuePair& update : branch.body()) {
    blanks(indent + step);
    print(update);
    *this << u";\n";
  }
}

void Printer::print(const WhenClause& clause, std::size_t indent, std::size_t step) {
  print(u"when ", clause.whenBranch(), indent, step);
  for (const ElseWhenBranch& branch : clause.elseWhens()) print(u"elsewhen ", branch, indent, step);
  blanks(indent) << u"end";
}

void Printer::print(const EventBlock& block, std::size_t indent, std::size_t step) {
  blanks(indent) << u"events\n";
  for (const WhenClause& clause : block.events()) {
    print(clause, indent + step, step);
    *this << u";\n";
  }
  blanks(indent) << u"end";
}

// ---- the interface ----

ustring to_string(const Expr& expr, const ToStringContext& context) {
  return textOf(expr, context);
}
ustring to_string(const Expr& expr) {
  return textOf(expr, defaultContext());
}
ustring to_user_string(const Expr& expr) {
  return textOf(expr, ToStringContext().asUserStr(true));
}
std::ostream& operator<<(std::ostream& stream, const Arguments& arguments) {
  return stream << nvf::ustring_to_local_encoded_string(arguments.string(defaultContext()));
}
std::ostream& operator<<(std::ostream& stream, const EqnItem& item) {
  return stream << nvf::ustring_to_local_encoded_string(to_string(item, defaultContext()));
}
std::ostream& operator<<(std::ostream& stream, const Expr& expr) {
  if (stream.width() != 0) return stream << nvf::ustring_to_local_encoded_string(to_string(expr));
  return printTo(stream, [&](Printer& out) { out.print(expr); });
}

ustring Subscript::string(ToStringContext context) const {
  context.indent(Indentation{0});
  return expr_ ? to_string(*expr_, context) : u":";
}
ustring ParenSubs::string(const ToStringContext& context) const {
  return textOf(*this, context);
}
ustring NamedArgument::string(const ToStringContext& context) const {
  return textOf(*this, context);
}
ustring Arguments::string(const ToStringContext& context) const {
  return textOf(*this, context);
}
ustring to_string(const Arguments& arguments, const ToStringContext& context) {
  return arguments.string(context);
}
ustring to_string(const IdParenSubs& step, const ToStringContext& context) {
  return textOf(step, context);
}
ustring to_string(const EqnItem& item, ToStringContext context) {
  return textOf(item, context.asRValue(false));
}
ustring to_string(const FunctionEqnItem& item, const ToStringContext& context) {
  return textOf(item, context);
}
ustring IdListValuePair::string(const ToStringContext& context) const {
  return textOf(*this, context);
}
ustring IdentValuePair::string() const {
  return textOf(*this);
}
ustring EqnAssertion::string(Indentation indent) const {
  return textOf(*this, indent.value);
}
ustring EquationBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring EventBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring WhenClause::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring WhenBranch::string(std::size_t indent, std::size_t step) const {
  return textOf(std::u16string_view(u"when "), *this, indent, step);
}
ustring ElseWhenBranch::string(std::size_t indent, std::size_t step) const {
  return textOf(std::u16string_view(u"elsewhen "), *this, indent, step);
}

// ---- literals ----

void SimpleOutputter::operator()(ustring& out, const nvf::NumberString& number) const {
  out += number.view();
}

void SimpleOutputter::operator()(std::ostream& stream, const nvf::NumberString& number) const {
  stream << nvf::ustring_to_local_encoded_string(ustring(number.view()));
}

void CharacterVectorOutputter::operator()(ustring& out, const ustring& text) const {
  out += u'\'';
  for (const char16_t unit : text) out.append(unit == u'\'' ? 2 : 1, unit);
  out += u'\'';
}

void CharacterVectorOutputter::operator()(std::ostream& stream, const ustring& text) const {
  ustring quoted;
  (*this)(quoted, text);
  stream << nvf::ustring_to_local_encoded_string(quoted);
}

void CharacterVectorOutputter::operator()(std::basic_ostream<char16_t>& stream, const ustring& text) const {
  ustring quoted;
  (*this)(quoted, text);
  stream.write(quoted.data(), static_cast<std::streamsize>(quoted.size())); // `<<` asks for a facet that libc++ lacks
}

void SingleQuoteOutputter::operator()(ustring& out, const nvf::ExprString& unit) const {
  out += u'\'';
  out += unit.view();
  out += u'\'';
}

void SingleQuoteOutputter::operator()(std::ostream& stream, const nvf::ExprString& unit) const {
  ustring quoted;
  (*this)(quoted, unit);
  stream << nvf::ustring_to_local_encoded_string(quoted);
}

} // namespace tessarin::compiler::core
