#include "tessarin/ide/ChangedParts.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/parser/ast/EqnItem.hpp"

namespace tessarin::ide {

using namespace compiler::core;

namespace {

class Comparison {
public:
  explicit Comparison(std::vector<DiffPart>& parts) noexcept : parts_(parts) {}

  void compare(const Expr& a, const Expr& b) {
    // The hashes are kept in the nodes; equal ones are looked at once, since nothing below them is compared then.
    if (hash_value(a) == hash_value(b) && a == b) return;
    const bool isInside = nvf::with_stack([&] {
      return a.id() == b.id() && a.visit([&](const auto& left) {
        using Kind = std::decay_t<decltype(left)>;
        return inside(left, b.get<Kind>());
      });
    });
    if (!isInside) parts_.push_back({to_user_string(a), to_user_string(b), expr_range(a), expr_range(b)});
  }

private:
  /// Whether the difference lies in parts of the two, which are compared then. By default it does not.
  template <class Kind>
  static bool inside(const Kind&, const Kind&) {
    return false;
  }
  bool inside(const OpExpr& a, const OpExpr& b) {
    if (a.opType() != b.opType() || a.numOfOperands() != b.numOfOperands()) return false;
    for (std::size_t i = 0; i < a.numOfOperands(); ++i) compare(a.operandAt(i), b.operandAt(i));
    return true;
  }
  bool inside(const UnitExpr& a, const UnitExpr& b) {
    if (a.unit() != b.unit()) return false;
    compare(a.expr(), b.expr());
    return true;
  }
  bool inside(const ValueExpr& a, const ValueExpr& b) {
    if (a.unit() != b.unit() || a.conversion() != b.conversion()) return false;
    compare(a.expr(), b.expr());
    return true;
  }
  bool inside(const MatrixExpr& a, const MatrixExpr& b) {
    if (a.numOfRows() != b.numOfRows()) return false;
    for (std::size_t i = 0; i < a.numOfRows(); ++i) {
      if (a.row(i).size() != b.row(i).size()) return false;
    }
    for (std::size_t i = 0; i < a.numOfRows(); ++i) {
      for (std::size_t j = 0; j < a.row(i).size(); ++j) compare(a.element(i, j), b.element(i, j));
    }
    return true;
  }
  bool inside(const FieldValueArrayExpr& a, const FieldValueArrayExpr& b) {
    if (a.numPairs() != b.numPairs()) return false;
    for (std::size_t i = 0; i < a.numPairs(); ++i) {
      if (a.pair(i).ident() != b.pair(i).ident()) return false;
    }
    for (std::size_t i = 0; i < a.numPairs(); ++i) compare(a.pair(i).value(), b.pair(i).value());
    return true;
  }
  bool inside(const Variable& a, const Variable& b) {
    if (a.id() != b.id() || a.leadingPath() != b.leadingPath() || !a.tail() || !b.tail()) return false;
    if (!sameShape(a.tail()->posArgs(), b.tail()->posArgs())) return false;
    const std::vector<NamedArgument>& left = a.tail()->namedArgs();
    const std::vector<NamedArgument>& right = b.tail()->namedArgs();
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i) {
      if (left[i].name() != right[i].name() || left[i].isColonEquals() != right[i].isColonEquals()) return false;
    }
    compareSubscripts(a.tail()->posArgs(), b.tail()->posArgs());
    for (std::size_t i = 0; i < left.size(); ++i) compare(left[i].value(), right[i].value());
    return true;
  }
  bool inside(const LetExpr& a, const LetExpr& b) {
    if (a.numOfDeclarations() != b.numOfDeclarations() || !sameShape(a.eqnItemList(), b.eqnItemList())) return false;
    for (std::size_t i = 0; i < a.numOfDeclarations(); ++i) {
      if (a.declarationAt(i).ids() != b.declarationAt(i).ids()) return false;
    }
    for (std::size_t i = 0; i < a.numOfDeclarations(); ++i) {
      compare(a.declarationAt(i).value(), b.declarationAt(i).value());
    }
    compareItems(a.eqnItemList(), b.eqnItemList());
    return true;
  }
  bool inside(const IfExpr& a, const IfExpr& b) {
    if (!sameShape(a.ifEqnItems(), b.ifEqnItems()) || !sameShape(a.elseEqnItems(), b.elseEqnItems()) ||
        a.numOfElseifBranches() != b.numOfElseifBranches()) {
      return false;
    }
    for (std::size_t i = 0; i < a.numOfElseifBranches(); ++i) {
      if (!sameShape(a.elseifBranch(i).eqnItems(), b.elseifBranch(i).eqnItems())) return false;
    }
    compare(a.condition(), b.condition());
    compareItems(a.ifEqnItems(), b.ifEqnItems());
    for (std::size_t i = 0; i < a.numOfElseifBranches(); ++i) {
      compare(a.elseifBranch(i).condition(), b.elseifBranch(i).condition());
      compareItems(a.elseifBranch(i).eqnItems(), b.elseifBranch(i).eqnItems());
    }
    compareItems(a.elseEqnItems(), b.elseEqnItems());
    return true;
  }

  static bool sameShape(const std::vector<Subscript>& a, const std::vector<Subscript>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
      if ((a[i].expr() == nullptr) != (b[i].expr() == nullptr)) return false;
    }
    return true;
  }
  void compareSubscripts(const std::vector<Subscript>& a, const std::vector<Subscript>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (a[i].expr() != nullptr) compare(*a[i].expr(), *b[i].expr());
    }
  }

  /// The same number of items, and assertions, which are no expressions, equal at the same places.
  static bool sameShape(const std::vector<EqnItemHandle>& a, const std::vector<EqnItemHandle>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (a[i].get().id() != b[i].get().id()) return false;
      if (a[i].get().getIf<Expr>() == nullptr && a[i].get() != b[i].get()) return false;
    }
    return true;
  }
  void compareItems(const std::vector<EqnItemHandle>& a, const std::vector<EqnItemHandle>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
      const Expr* left = a[i].get().getIf<Expr>();
      if (left != nullptr) compare(*left, b[i].get().get<Expr>());
    }
  }

  std::vector<DiffPart>& parts_;
};

} // namespace

void addChangedParts(std::vector<DiffPart>& parts, const Expr& before, const Expr& after) {
  Comparison(parts).compare(before, after);
}

} // namespace tessarin::ide
