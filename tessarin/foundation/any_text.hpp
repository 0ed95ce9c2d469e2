// Text of every sort that is at hand, for functions that take text.
#pragma once

#include "tessarin/foundation/text.hpp"

#include <string>
#include <string_view>
#include <utility>

namespace nvf {

/// A parameter for text: a literal, a string or a view, of UTF-16 or of UTF-8. Bytes that are not UTF-8 become U+FFFD.
class AnyText {
public:
  /// Any text; narrow text is UTF-8.
  /// @{
  AnyText() = default;
  AnyText(ustring text) : text_(std::move(text)) {}                                    // NOLINT
  AnyText(ustring_view text) : text_(text) {}                                          // NOLINT
  AnyText(const char16_t* text) : text_(text) {}                                       // NOLINT
  AnyText(std::string_view text) : text_(utf8_string_to_ustring(std::string(text))) {} // NOLINT
  AnyText(const std::string& text) : text_(utf8_string_to_ustring(text)) {}            // NOLINT
  AnyText(const char* text) : text_(utf8_string_to_ustring(text)) {}                   // NOLINT
  /// @}

  /// The text, which lives as long as this object.
  [[nodiscard]] const ustring& string() const noexcept { return text_; }
  /// The same as a view.
  [[nodiscard]] ustring_view view() const noexcept { return text_; }

private:
  ustring text_;
};

} // namespace nvf
