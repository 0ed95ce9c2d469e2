// Text that has passed a check: the common part of identifiers, numbers, units and message ids.
#pragma once

#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/table_string.hpp"
#include "tessarin/foundation/text.hpp"

#include <algorithm>
#include <compare>
#include <concepts>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace nvf {

/// The base of the class `Derived` of ASCII texts that only a check can make. One pointer wide; equality compares
/// pointers. Safe to read from several threads.
template <class Derived>
class CheckedText {
public:
  /// Equal texts share their code units.
  using Text = BasicTableString<char16_t>;

  /// The text; the reference lives as long as this object, the code units as long as the process.
  [[nodiscard]] const Text& text() const noexcept { return text_; }
  /// The same as a view.
  [[nodiscard]] ustring_view view() const noexcept { return text_.view(); }
  /// A copy of the text.
  [[nodiscard]] ustring string() const { return text_; }
  /// The code units, closed by a zero that `size` does not count.
  [[nodiscard]] const char16_t* data() const noexcept { return text_.data(); }
  /// The number of code units.
  [[nodiscard]] std::size_t size() const noexcept { return text_.size(); }
  /// Whether there is no code unit, as in a default object only.
  [[nodiscard]] bool empty() const noexcept { return text_.empty(); }

  friend bool operator==(const CheckedText&, const CheckedText&) noexcept = default;
  /// The order of the bytes, a prefix being less.
  friend std::strong_ordering operator<=>(const CheckedText& a, const CheckedText& b) noexcept {
    return a == b ? std::strong_ordering::equal : a.view().compare(b.view()) <=> 0;
  }
  /// Comparison with plain text: narrow text is compared byte by byte.
  /// @{
  friend bool operator==(const CheckedText& a, ustring_view b) noexcept { return a.view() == b; }
  friend bool operator==(const CheckedText& a, std::string_view b) noexcept {
    return std::equal(a.data(), a.data() + a.size(), b.begin(), b.end(),
                      [](char16_t x, char y) { return x == static_cast<unsigned char>(y); });
  }
  /// @}
  friend Ordering compare(const CheckedText& a, const CheckedText& b) noexcept { return order(a, b); }
  friend std::size_t hash_value(const CheckedText& t) noexcept { return t.text_.hash(); }
  /// Feeds one byte a character, all as one piece.
  friend void incorporate_data(DigestSink& sink, const CheckedText& t) {
    const std::string bytes = narrow(t.view());
    sink(bytes.data(), bytes.size());
  }
  friend void swap(CheckedText& a, CheckedText& b) noexcept { swap(a.text_, b.text_); }
  friend std::ostream& operator<<(std::ostream& stream, const CheckedText& t) { return stream << narrow(t.view()); }
  friend ustring dump_text(const CheckedText& t) { return t.string(); }

protected:
  CheckedText() noexcept = default;
  /// For classes that have looked at the text.
  explicit CheckedText(Text text) noexcept : text_(text) {}

private:
  Text text_;
};

template <class T>
requires std::derived_from<T, CheckedText<T>>
inline constexpr bool hashesByValue<T> = true;

} // namespace nvf
