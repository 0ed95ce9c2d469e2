// The two types of models.
#pragma once

#include "tessarin/export.hpp"

#include <cstdint>

namespace tessarin::compiler::core {

/// Scopes the sorts of models.
struct ModelType {
  /// The sorts, and none; the numbers enter orderings and digests.
  enum Value : std::int32_t { NONE = -1, COMPONENT = 0, DDOMAIN = 1 };

  /// "component" or "domain"; not for `NONE`.
  static constexpr const char* name(Value type) noexcept { return type == COMPONENT ? "component" : "domain"; }
};

} // namespace tessarin::compiler::core
