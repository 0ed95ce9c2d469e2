// Identifiers that stand in the code.
#pragma once

#include "tessarin/foundation/identifier.hpp"

#include <string_view>

namespace tessarin::compiler::core::detail {

/// The identifier of a text that is known to be one.
inline nvf::CxId fixedId(std::string_view text) {
  return nvf::detail::CxIdCheck()(text.data(), text.size());
}

} // namespace tessarin::compiler::core::detail

/// Defines `function`, which returns the identifier `text`; it is made on first use and never freed.
#define TESSARIN_FIXED_ID(function, text)                                                                              \
  const nvf::CxId& function() {                                                                                        \
    static const nvf::CxId id = detail::fixedId(text);                                                                 \
    return id;                                                                                                         \
  }
