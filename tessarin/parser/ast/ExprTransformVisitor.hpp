// Rewriting of expression trees.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/ast/LetDeclNameStack.hpp"

#include <boost/variant/static_visitor.hpp>

namespace tessarin::compiler::core {

/// Makes a tree of the rewritten forms of its parts. The defaults are the identity; a subclass overrides what it wants
/// to change. All recursion goes through the virtual `process` operations. Ranges and fields that are no nodes stay.
///
/// A node whose parts all stay what they were is not made anew but shared with the tree that came in, so that a
/// rewriting costs memory for what it changes and for what stands above that. `rewrite` of Rewrite.hpp takes a function
/// where no subclass is needed.
class TESSARIN_EXPORT ExprTransformVisitor : public boost::static_visitor<Expr> {
public:
  ExprTransformVisitor() = default;
  ExprTransformVisitor(const ExprTransformVisitor&) = default;
  ExprTransformVisitor& operator=(const ExprTransformVisitor&) = default;
  virtual ~ExprTransformVisitor();

  /// What an expression of the kind becomes: by default one of the same kind, made of what `process` gives for the
  /// parts.
  /// @{
  virtual Expr operator()(const Time& time);
  virtual Expr operator()(const EndIndex& end);
  virtual Expr operator()(const NumberLiteral& number);
  virtual Expr operator()(const StringLiteral& string);
  virtual Expr operator()(const ConcreteValueExpr& value);
  virtual Expr operator()(const TransitionExpr& transition);
  virtual Expr operator()(const ModechartEqnExpr& modechart);
  virtual Expr operator()(const FullPathVariable& path);
  virtual Expr operator()(const RelativePathVariable& path);
  virtual Expr operator()(const Variable& variable);
  virtual Expr operator()(const ValueRef& ref);
  virtual Expr operator()(const ObjectRef& ref);
  virtual Expr operator()(const UnitExpr& expr);
  virtual Expr operator()(const ValueExpr& expr);
  virtual Expr operator()(const MatrixExpr& matrix);
  virtual Expr operator()(const NativeFunctionCall& call);
  virtual Expr operator()(const CalvexFunctionCall& call);
  virtual Expr operator()(const TessarinFunctionCall& call);
  virtual Expr operator()(const TessarinLocalFunctionCall& call);
  virtual Expr operator()(const IfExpr& expr);
  virtual Expr operator()(const OpExpr& expr);
  virtual Expr operator()(const FieldValueArrayExpr& array);
  virtual Expr operator()(const LetExpr& expr);
  virtual Expr operator()(const MRVIndex& index);
  /// @}

  /// What a part becomes. The recursion of all the above goes through these; that for `Expr` calls the operator for the
  /// kind that it holds.
  /// @{
  virtual Expr process(const Expr& expr);
  virtual Arguments process(const Arguments& arguments);
  virtual ParenSubs process(const ParenSubs& subs);
  virtual ValueRefTail process(const ValueRefTail& tail);
  virtual EqnItem process(const EqnItem& item);
  virtual IfExpr processIfExpr(const IfExpr& expr);
  /// What an expression of one kind becomes.
  template <ExprAlternative A>
  Expr process(const A& expr) {
    return process(Expr(expr));
  }
  /// @}

  /// The `let` scopes around the node being visited.
  [[nodiscard]] LetDeclNameStack letStack() const { return letStack_; }

private:
  LetDeclNameStack letStack_;
};

/// Calls the visitor with the alternative that `expr` holds.
TESSARIN_EXPORT Expr expr_transform(const Expr& expr, ExprTransformVisitor& visitor);

} // namespace tessarin::compiler::core
