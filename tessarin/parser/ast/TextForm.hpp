// The stream form of the classes that have a text.
#pragma once

#include "tessarin/foundation/node.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include <concepts>
#include <cstddef>
#include <ostream>

namespace tessarin::compiler::core {

namespace detail {

/// Stands for an object of type `T` and for nothing that a `T` converts to.
template <class T>
struct Itself {
  const T& value;                                      ///< The object.
  operator const T&() const noexcept { return value; } // NOLINT(google-explicit-constructor)
};

/// Whether a free `to_string` takes a `T` itself, with and without a context.
/// @{
template <class T>
concept ToStringWithContext = requires(const Itself<T>& value, const ToStringContext& context) {
  { to_string(value, context) } -> std::same_as<ustring>;
};
template <class T>
concept ToStringAlone = requires(const Itself<T>& value) {
  { to_string(value) } -> std::same_as<ustring>;
};
/// @}

/// Whether `T` has a member that gives its text: as it is, in a context, or as lines.
/// @{
template <class T>
concept StringAlone = requires(const T& value) {
  { value.string() } -> std::same_as<ustring>;
};
template <class T>
concept StringWithContext = requires(const T& value, const ToStringContext& context) {
  { value.string(context) } -> std::same_as<ustring>;
};
template <class T>
concept StringInLines = requires(const T& value) {
  { value.string(std::size_t{0}, std::size_t{2}) } -> std::same_as<ustring>;
};
/// @}

} // namespace detail

/// A class of the syntax tree with a text of its own, and not only as a part of what it converts to.
template <class T>
concept HasTextForm = requires(nvf::DumpSink& sink, const T& value) {
  dump(sink, value);
}
&&(detail::StringAlone<T> || detail::StringWithContext<T> || detail::StringInLines<T> ||
   detail::ToStringWithContext<T> || detail::ToStringAlone<T>);

/// The text in the default context, at indent 0.
template <HasTextForm T>
ustring default_text(const T& value) {
  if constexpr (detail::StringAlone<T>) {
    return value.string();
  } else if constexpr (detail::StringWithContext<T>) {
    return value.string(ToStringContext());
  } else if constexpr (detail::StringInLines<T>) {
    return value.string(0, ToStringContext().increment());
  } else if constexpr (detail::ToStringWithContext<T>) {
    return to_string(value, ToStringContext());
  } else {
    return to_string(value);
  }
}

/// Writes the text in the default context, in the local encoding.
template <HasTextForm T>
std::ostream& operator<<(std::ostream& stream, const T& value) {
  return stream << nvf::ustring_to_local_encoded_string(default_text(value));
}

} // namespace tessarin::compiler::core
