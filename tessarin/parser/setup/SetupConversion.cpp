#include "tessarin/parser/setup/SetupConversion.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/stack.hpp"
#include "tessarin/parser/ast/FromTree.hpp"
#include "tessarin/parser/parse/ParseTreeBuilder.hpp"
#include "tessarin/parser/setup/SetupExpr.hpp"

#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::setup; // the messages
using K = NonTerminal;

namespace {

// ---- messages and their places ----

/// Gives the exception a place, unless it has one.
void locate(nvf::MessageException& exception, const nvf::Location& place) {
  if (!exception.stack().empty()) return;
  exception.stack({nvf::StackFrame{place.fileName(), ustring(), place.lineColumn().line()}});
}

template <class Msg>
[[noreturn]] void refuse(const nvf::Location& place) {
  nvf::MessageException exception{nvf::Message(Msg())};
  locate(exception, place);
  throw exception;
}

template <class Msg>
[[noreturn]] void refuse(NodeView tree) {
  refuse<Msg>(placeOf(tree));
}

// ---- assignments ----

Expr convertExpr(NodeView tree) {
  std::optional<Expr> expr = convertSetupExpr(tree);
  if (!expr) refuse<SimpleSetupUnsupportedExpression>(tree);
  return *std::move(expr);
}

/// The dotted name that the left side of an assignment is.
Name convertTarget(const Expr& expr) {
  const auto* variable = expr.getIf<Variable>();
  if (variable == nullptr) refuse<SimpleSetupUnsupportedStatement>(expr_location(expr));
  std::vector<Ident> names;
  names.reserve(variable->leadingPath().size() + 1);
  for (const IdParenSubs& step : variable->leadingPath()) {
    if (step.subs()) refuse<SimpleSetupIllegalIndexingLhs>(step.ident().location());
    names.push_back(step.ident());
  }
  if (variable->tail()) refuse<SimpleSetupIllegalIndexingLhs>(variable->id().location());
  names.push_back(variable->id());
  return Name(nvf::Expressions<Ident>(std::move(names)));
}

SimpleSetupAsgnStmt convertAssignment(NodeView target, NodeView value) {
  const Expr lhs = convertExpr(target);
  Expr rhs = convertExpr(value);
  return {convertTarget(lhs), std::move(rhs)};
}

/// `x = value` or `[x] = value`, in a statement with its terminator.
SimpleSetupAsgnStmt convertAssignmentStmt(NodeView stmt) {
  const NodeView assignment = childOf(stmt, 0);
  const NodeView target = childOf(assignment, 0);
  const NodeView value = childOf(assignment, 2);
  if (!childOf(stmt, 1).isTerminalType(TokenId::SEMI)) refuse<SimpleSetupMissingSemicolonInAssignment>(stmt);
  if (assignment.code() == K::Assign) return convertAssignment(target, value);

  const NodeView row = childOf(childOf(target, 1), 0);
  if (row.count() > 1) refuse<SimpleSetupWithMultipleLhs>(stmt);
  if (row.count() == 0) refuse<SimpleSetupWithZeroLhs>(stmt);
  return convertAssignment(childOf(row, 0), value);
}

// ---- statements ----

using Stmts = std::vector<SimpleSetupStmt>;

bool isAssignment(NodeView tree) {
  return tree.isNonTerminalType(K::Assign) || tree.isNonTerminalType(K::MultiAssign);
}

/// Whether it is `name(list)`.
bool isCall(NodeView tree) {
  return tree.isNonTerminalType(K::Subsref) && tree.count() == 4 && childOf(tree, 0).isTerminalType(TokenId::ID) &&
         childOf(tree, 2).isNonTerminalType(K::ExprList);
}

class Converter {
public:
  explicit Converter(const SetupDiagnosticLookup& diagnostics) noexcept : diagnostics_(diagnostics) {}

  /// The statements below a node: one as itself, any other number as a list.
  SimpleSetupStmt convertBlock(NodeView tree) const {
    Stmts stmts;
    append(stmts, tree);
    if (stmts.size() == 1) return std::move(stmts.front());
    return nvf::Expressions<SimpleSetupStmt>(std::move(stmts));
  }

private:
  /// Adds the statements that the node stands for. All go into one list, so that lists in it are flat from the start.
  void append(Stmts& stmts, NodeView tree) const {
    if (tree.type() == 0) {
      if (!isSeparator(tree.token())) refuse<SimpleSetupUnsupportedStatement>(tree);
      return;
    }
    switch (tree.code()) {
    case K::Stmts:
      for (const NodeView child : childrenOf(tree)) append(stmts, child);
      break;
    case K::NonExprStmt: append(stmts, childOf(tree, 0)); break;
    case K::IfStmt: stmts.push_back(nvf::with_stack([&] { return convertIf(tree); })); break;
    case K::ExprStmt: stmts.push_back(convertExprStmt(tree)); break;
    default: refuse<SimpleSetupUnsupportedStatement>(tree);
    }
  }

  static bool isSeparator(const Token& token) noexcept {
    return token.code() == TokenId::COMMA || token.code() == TokenId::SEMI || token.code() == TokenId::EOL;
  }

  SimpleSetupStmt convertExprStmt(NodeView tree) const {
    const NodeView expr = childOf(tree, 0);
    if (tree.count() == 2 && isAssignment(expr)) return convertAssignmentStmt(tree);
    if (tree.count() == 2 && isCall(expr)) return convertCall(expr);
    refuse<SimpleSetupUnsupportedStatement>(tree);
  }

  /// An `if` with the `elseif` parts of its third child and the `else` of its fourth. The chain is built from its end.
  SimpleSetupStmt convertIf(NodeView tree) const {
    struct Link {
      Expr predicate;
      SimpleSetupStmt whenTrue;
    };
    const auto convertLink = [this](NodeView part) {
      Expr predicate = convertExpr(childOf(part, 1));
      return Link{std::move(predicate), convertBlock(childOf(part, 2))};
    };
    std::vector<Link> chain{convertLink(tree)};
    for (const NodeView part : childrenOf(childOf(tree, 3))) chain.push_back(convertLink(part));

    const NodeView otherwise = childOf(tree, 4);
    SimpleSetupStmt result;
    if (otherwise.isNonTerminalType(K::Else)) result = convertBlock(childOf(otherwise, 1));
    for (; !chain.empty(); chain.pop_back()) {
      Link& link = chain.back();
      result = SimpleSetupIfStmt(link.predicate, std::move(link.whenTrue), std::move(result));
    }
    return result;
  }

  SimpleSetupStmt convertCall(NodeView call) const {
    try {
      const std::optional<SetupDiagnosticFunction> function = diagnostics_(Ident(childOf(call, 0).token()).id());
      if (!function) refuse<SimpleSetupUnsupportedStatement>(call);
      const SetupDiagnostic stmt = (*function)(mapChildren(childOf(call, 2), convertArgument), rangeOf(call));
      return std::visit([](const auto& alternative) { return SimpleSetupStmt(alternative); }, stmt);
    } catch (nvf::MessageException& exception) {
      locate(exception, placeOf(call));
      throw;
    }
  }

  static ustring convertArgument(NodeView tree) {
    if (!tree.isTerminalType(TokenId::STRING)) refuse<SimpleSetupInvalidDiagnosticArgument>(tree);
    return contentOf(tree.token());
  }

  const SetupDiagnosticLookup& diagnostics_;
};

} // namespace

SimpleSetupStmt to_simple_setup_stmt(const ParseTree& tree, const SetupDiagnosticLookup& diagnostics) {
  const Flattened flat(tree);
  const NodeView function = flat.root();
  if (function.isTerminalType(TokenId::EMPTYTOKEN)) return {};
  // The closed function, whose children are the keyword, the outputs, the name, the inputs, a separator, and the body.
  return Converter(diagnostics).convertBlock(childOf(childOf(function, 0), 5));
}

} // namespace tessarin::compiler::core
