#include "tessarin/parser/ast/Kinds.hpp"

#include <array>
#include <ostream>
#include <tuple>
#include <type_traits>

namespace tessarin::compiler::core {

namespace {

// The rows are the alternatives of `Expr`, in their order.
template <class... Alternatives>
std::tuple<Alternatives...> alternativesOf(const nvf::TaggedUnion<Expr, Alternatives...>&);
using ExprAlternatives = decltype(alternativesOf(std::declval<const Expr&>()));
#define TESSARIN_EXPR_KIND(name)                                                                                       \
  static_assert(std::is_same_v<std::tuple_element_t<static_cast<std::size_t>(ExprKind::name), ExprAlternatives>, name>);
#include "tessarin/parser/ast/expr_kinds.def"

constexpr std::string_view kindNames[] = {
#define TESSARIN_EXPR_KIND(name) #name,
#include "tessarin/parser/ast/expr_kinds.def"
};
static_assert(std::size(kindNames) == std::tuple_size_v<ExprAlternatives>);

constexpr std::string_view operatorNames[] = {
#define TESSARIN_OPERATOR(name, image, arity, precedence) #name,
#include "tessarin/parser/ast/operators.def"
};

template <std::size_t size>
std::string_view rowOf(const std::string_view (&names)[size], std::size_t number) noexcept {
  return number < size ? names[number] : std::string_view();
}

} // namespace

std::string_view kindName(ExprKind kind) noexcept {
  return rowOf(kindNames, static_cast<std::size_t>(kind));
}
std::string_view kindName(const Expr& expr) noexcept {
  return kindName(kind(expr));
}
std::string_view kindName(OpExprType type) noexcept {
  return rowOf(operatorNames, static_cast<std::size_t>(type));
}

std::ostream& operator<<(std::ostream& stream, ExprKind kind) {
  return stream << kindName(kind);
}
std::ostream& operator<<(std::ostream& stream, OpExprType type) {
  return stream << kindName(type);
}

} // namespace tessarin::compiler::core
