// Whether what rewriting gave is what it was given. Private to the services that rewrite.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"

#include <concepts>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace tessarin::compiler::core {

template <class T, class... Fields>
std::true_type sharesFields(const nvf::TupleWrapper<T*, Fields...>&);
std::false_type sharesFields(...);
template <class T>
concept Shared = decltype(sharesFields(std::declval<const T&>()))::value;

inline bool same(const EqnAssertion& a, const EqnAssertion& b);

/// Whether two values are one object, ranges included: a value that has been made anew is another one, even where it is
/// equal. Takes no walk, for it asks whether memory is shared.
template <class T>
bool same(const T& a, const T& b) {
  if constexpr (Shared<T>) {
    return std::addressof(a.tuple()) == std::addressof(b.tuple());
  } else if constexpr (nvf::IsTaggedUnion<T>) {
    return a.id() == b.id() &&
           a.visit([&b](const auto& left) { return same(left, *b.template getIf<std::decay_t<decltype(left)>>()); });
  } else if constexpr (requires { a.tuple(); }) {
    return nvf::fields::allPairs(a.tuple(), b.tuple(), [](const auto& x, const auto& y) { return same(x, y); });
  } else if constexpr (nvf::detail::Optional<T>) {
    return a && b ? same(*a, *b) : a.has_value() == b.has_value();
  } else if constexpr (nvf::detail::Ignored<T>) {
    return same(a.value, b.value);
  } else if constexpr (std::same_as<T, ExprHandle>) {
    return std::addressof(a.get()) == std::addressof(b.get());
  } else {
    return a == b;
  }
}
inline bool same(const EqnAssertion& a, const EqnAssertion& b) {
  return nvf::fields::allPairs(a.tuple(), b.tuple(), [](const auto& x, const auto& y) { return same(x, y); }) &&
         a.range() == b.range();
}

/// What has become of a part, or nothing where it has stayed what it was.
template <class T>
std::optional<T> changeOf(const T& before, T after) {
  return same(before, after) ? std::nullopt : std::optional<T>(std::move(after));
}

} // namespace tessarin::compiler::core
