#include "tessarin/parser/ast/Reference.hpp"

#include "tessarin/parser/ast/Expr.hpp"
#include "tessarin/parser/ast/fixed_id.hpp"

#include <ostream>
#include <stdexcept>

namespace tessarin::compiler::core {

// ---- Subscript ----

Subscript::Subscript(const Expr& expr)
    : type_(Type::Expression), expr_(std::make_shared<const Expr>(expr)), location_(expr_location(expr)) {}

Subscript Subscript::copy() const {
  Subscript result = *this;
  if (expr_) result.expr_ = std::make_shared<const Expr>(*expr_);
  return result;
}

std::size_t hash_value(const Subscript& s) {
  const std::size_t seed = nvf::hash_combine(0, static_cast<std::size_t>(s.type_));
  return s.expr_ ? nvf::hash_combine(seed, hash_value(*s.expr_)) : seed;
}

void incorporate_data(DigestSink& sink, const Subscript& s) {
  nvf::fields::digest(sink, s.type_);
  if (s.expr_) incorporate_data(sink, *s.expr_);
}

Ordering compare(const Subscript& a, const Subscript& b) {
  if (a.type_ != b.type_) return nvf::order(a.type_, b.type_);
  if (a.expr_ == b.expr_) return Ordering::Equal;
  return a.expr_ && b.expr_ ? compare(*a.expr_, *b.expr_) : nvf::order(bool(a.expr_), bool(b.expr_));
}

bool operator==(const Subscript& a, const Subscript& b) {
  return a.type_ == b.type_ && (a.expr_ == b.expr_ || (a.expr_ && b.expr_ && *a.expr_ == *b.expr_));
}

void strip_annotation_inplace(Subscript& s) {
  if (!s.expr_) {
    s.location_ = nvf::Location();
    return;
  }
  Expr stripped = *s.expr_;
  strip_annotation_inplace(stripped);
  s = Subscript(stripped);
}

void dump(nvf::DumpSink& sink, const Subscript& s) {
  if (s.expr_) {
    dump(sink, *s.expr_);
  } else {
    sink.value(u":");
  }
}

// ---- NamedArgument ----

NamedArgument::NamedArgument() : NamedArgument(NamedArgumentName(), Expr(), false) {}
NamedArgument::NamedArgument(const NamedArgumentName& name, const Expr& value, bool isColonEquals)
    : TupleWrapper(name, value, isColonEquals) {}
const NamedArgumentName& NamedArgument::name() const noexcept {
  return get<0>().get();
}
const Expr& NamedArgument::value() const noexcept {
  return get<1>().get();
}
nvf::Location NamedArgument::location() const {
  return name().visit([](const auto& alternative) { return alternative.location(); });
}

nvf::Range range(const Arguments& arguments) {
  return arguments.range();
}

// ---- references ----

Variable::Variable(const nvf::CxId& id, const nvf::Range& range)
    : Variable(Ident(id, nvf::Range()), {}, std::nullopt, range) {}

TESSARIN_FIXED_ID(BaseClassPathElement::id, "base")
TESSARIN_FIXED_ID(MemberPathElement::id, "member")
TESSARIN_FIXED_ID(ArrayMemberPathElement::id, "arraymember")
TESSARIN_FIXED_ID(FullPathVariable::ctor, "internal_full_path__")
TESSARIN_FIXED_ID(RelativePathVariable::ctor, "internal_relative_path__")
TESSARIN_FIXED_ID(ConcreteValueExpr::constructorName, "concrete_value__")
TESSARIN_FIXED_ID(ValueRef::ctor, "internal_value_ref__")
TESSARIN_FIXED_ID(ValueRef::idTailCtor, "internal_value_ref_id_tail__")
TESSARIN_FIXED_ID(ValueRef::subsTailCtor, "internal_value_ref_subs_tail__")
TESSARIN_FIXED_ID(ObjectRef::ctor, "internal_object_ref__")

std::ostream& operator<<(std::ostream& stream, const UniquePathElement& element) {
  struct Write {
    std::ostream& stream;
    void operator()(const BaseClassPathElement& e) const { stream << e.id(); }
    void operator()(const MemberPathElement& e) const { stream << e.id() << '(' << e.memberIndex() << ')'; }
    void operator()(const ArrayMemberPathElement& e) const {
      stream << e.id() << '(' << e.memberIndex() << ',' << e.elementIndex() << ')';
    }
  };
  element.visit(Write{stream});
  return stream;
}

const Ident& ValueRef::firstId() const noexcept {
  return leadingPath().empty() ? id() : leadingPath().front().ident();
}

const Ident& ObjectRef::firstId() const noexcept {
  return ref().front().ident();
}

IdParenIds::IdParenIds(const Ident& id, const nvf::Expressions<Ident>& indices) : TupleWrapper(id, indices) {
  if (indices.empty()) {
    throw std::logic_error("Internal error: indices expected in object array element declaration.");
  }
}

ustring IdParenIds::string() const {
  ustring out = id().string() + u'(';
  const char16_t* separator = u"";
  for (const Ident& index : indices()) {
    out += separator;
    out += index.id().view();
    separator = u",";
  }
  return out + u')';
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ParenSubs);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::IdParenSubs);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::NamedArgument);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Arguments);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Variable);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::BaseClassPathElement);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::MemberPathElement);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ArrayMemberPathElement);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::UniquePathElement);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::FullPathVariable);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::RelativePathVariable);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ConcreteValueExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::IdValueIndices);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ValueRefTail);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ValueRef);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ObjectRef);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::NamedArgumentName);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::IdParenIds);
