// A class for each message of the catalog: `kelvane::tessarin::compiler::core::parse::IfWithNoElse` and so on. A class
// takes one constructor argument for each argument of its row, text as UTF-16 or as UTF-8.
#pragma once

#include "tessarin/foundation/message.hpp"

#include <concepts>
#include <string>
#include <utility>

namespace nvf {

/// Text for an argument of a message.
class MessageText {
public:
  /// Text of every sort that is at hand; narrow text is UTF-8.
  /// @{
  MessageText(ustring text) : text_(std::move(text)) {}
  MessageText(ustring_view text) : text_(text) {}
  MessageText(const char16_t* text) : text_(text) {}
  MessageText(std::string_view text) : text_(utf8_string_to_ustring(std::string(text))) {}
  MessageText(const std::string& text) : text_(utf8_string_to_ustring(text)) {}
  MessageText(const char* text) : text_(utf8_string_to_ustring(text)) {}
  operator MessageArgument() && { return std::move(text_); }
  /// @}

private:
  ustring text_;
};

/// A number for an argument of a message.
class MessageInteger {
public:
  /// Any whole number; whether it fits in a `long` is not checked.
  /// @{
  MessageInteger(std::integral auto value) : value_(static_cast<long>(value)) {}
  operator MessageArgument() && { return value_; }
  /// @}

private:
  long value_;
};

namespace detail {
template <ArgumentKind kind>
using MessageArgumentOf = std::conditional_t<kind == ArgumentKind::Integer, MessageInteger, MessageText>;
}

/// A message whose arguments are of the given kinds.
template <ArgumentKind... kinds>
struct CatalogMessage : BaseMsgID {
  /// With the arguments in their order; a wrong number of them does not compile.
  CatalogMessage(std::string_view catalogName, std::string_view idName,
                 detail::MessageArgumentOf<kinds>... messageArguments) {
    catalog = catalogName;
    id = idName;
    arguments.reserve(sizeof...(kinds));
    (arguments.push_back(std::move(messageArguments)), ...);
  }
};

} // namespace nvf

#define TESSARIN_FAMILY_NAMESPACE_ast ast
#define TESSARIN_FAMILY_NAMESPACE_parse parse
#define TESSARIN_FAMILY_NAMESPACE_setup setup
#define TESSARIN_FAMILY_NAMESPACE_lex_warnings lex::warnings
#define TESSARIN_FAMILY_NAMESPACE_check check
#define TESSARIN_FAMILY_CATALOG_ast "kelvane:tessarin:compiler:core:ast"
#define TESSARIN_FAMILY_CATALOG_parse "kelvane:tessarin:compiler:core:parse"
#define TESSARIN_FAMILY_CATALOG_setup "kelvane:tessarin:compiler:core:setup"
#define TESSARIN_FAMILY_CATALOG_lex_warnings "kelvane:tessarin:compiler:core:lex:warnings"
#define TESSARIN_FAMILY_CATALOG_check "kelvane:tessarin:compiler:core:check"

#define TESSARIN_MESSAGE(family, name, severity, text, ...)                                                            \
  namespace kelvane::tessarin::compiler::core::TESSARIN_FAMILY_NAMESPACE_##family::kinds_of_##name {                   \
    using enum ::nvf::ArgumentKind;                                                                                    \
    using Base = ::nvf::CatalogMessage<__VA_ARGS__>;                                                                   \
  }                                                                                                                    \
  namespace kelvane::tessarin::compiler::core::TESSARIN_FAMILY_NAMESPACE_##family {                                    \
    struct name : kinds_of_##name::Base {                                                                              \
      using Base = kinds_of_##name::Base;                                                                              \
      static constexpr std::string_view catalogName = TESSARIN_FAMILY_CATALOG_##family;                                \
      template <class... Arguments>                                                                                    \
      requires std::constructible_from<Base, std::string_view, std::string_view, Arguments...>                         \
      explicit name(Arguments&&... values) : Base(catalogName, #name, std::forward<Arguments>(values)...) {}           \
    };                                                                                                                 \
  }
#include "tessarin/foundation/messages.def"

#undef TESSARIN_FAMILY_NAMESPACE_ast
#undef TESSARIN_FAMILY_NAMESPACE_parse
#undef TESSARIN_FAMILY_NAMESPACE_setup
#undef TESSARIN_FAMILY_NAMESPACE_lex_warnings
#undef TESSARIN_FAMILY_NAMESPACE_check
