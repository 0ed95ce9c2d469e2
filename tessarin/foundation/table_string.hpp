// Interned strings: equal texts share one immutable entry, so that a string is one pointer, copying it copies the
// pointer and equality compares pointers.
//
// The table is shared by the whole process and is safe from any thread. Looking up a text that is already there takes
// no lock. Entries live to the end of the process: the table grows with the number of different texts, not with their
// uses.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace nvf {

namespace detail {

/// The head of an entry. The text follows it in memory, closed by a zero that does not count.
struct TableEntry {
  std::size_t hash;
  std::size_t size;
};

/// The entry of a text that is not empty.
template <class CharT>
TESSARIN_EXPORT const TableEntry* intern(const CharT* text, std::size_t size);

template <class CharT>
inline constexpr CharT emptyText[1]{};

} // namespace detail

/// An interned string of `char16_t` or `char`.
template <class CharT>
class BasicTableString : public detail::OrderingOperators<BasicTableString<CharT>> {
public:
  /// As the standard library names them.
  /// @{
  using value_type = CharT;
  using view_type = std::basic_string_view<CharT>;
  using const_iterator = const CharT*;
  /// @}

  /// The empty string.
  constexpr BasicTableString() noexcept = default;
  /// Interns a text that is closed by a zero.
  explicit BasicTableString(const CharT* text) : BasicTableString(view_type(text)) {}
  /// Interns `size` code units.
  BasicTableString(const CharT* text, std::size_t size) : entry_(size == 0 ? nullptr : detail::intern(text, size)) {}
  /// The interned copy of a text.
  explicit BasicTableString(view_type text) : BasicTableString(text.data(), text.size()) {}

  /// The text, closed by a zero that `size` does not count.
  [[nodiscard]] const CharT* data() const noexcept {
    return empty() ? detail::emptyText<CharT> : reinterpret_cast<const CharT*>(entry_ + 1);
  }
  /// The text, its size in characters, and views of it, which live as long as the process.
  /// @{
  [[nodiscard]] std::size_t size() const noexcept { return empty() ? 0 : entry_->size; }
  [[nodiscard]] bool empty() const noexcept { return entry_ == nullptr; }
  [[nodiscard]] const_iterator begin() const noexcept { return data(); }
  [[nodiscard]] const_iterator end() const noexcept { return data() + size(); }
  [[nodiscard]] view_type view() const noexcept { return {data(), size()}; }
  operator std::basic_string<CharT>() const { return std::basic_string<CharT>(view()); }
  /// @}

  /// The hash of the text. It is another one in each process, so that nobody can make texts that collide; nothing that
  /// outlives the process may depend on it. The empty string hashes to 0.
  [[nodiscard]] std::size_t hash() const noexcept { return empty() ? 0 : entry_->hash; }
  /// Whether the texts are equal: they are one object then.
  [[nodiscard]] bool equal_(const BasicTableString& other) const noexcept { return entry_ == other.entry_; }
  /// The order of the texts, unit by unit as the character type compares, a prefix being less.
  [[nodiscard]] Ordering compare_(const BasicTableString& other) const noexcept {
    if (equal_(other)) return Ordering::Equal;
    const CharT* a = begin();
    const CharT* b = other.begin();
    for (; a != end() && b != other.end(); ++a, ++b) {
      if (*a != *b) return *a < *b ? Ordering::Less : Ordering::Greater;
    }
    return a == end() ? Ordering::Less : Ordering::Greater;
  }

  friend bool operator==(const BasicTableString& a, const BasicTableString& b) noexcept { return a.equal_(b); }
  friend bool operator==(const BasicTableString& a, view_type b) noexcept { return a.view() == b; }
  friend Ordering compare(const BasicTableString& a, const BasicTableString& b) noexcept { return a.compare_(b); }
  friend std::size_t hash_value(const BasicTableString& s) noexcept { return s.hash(); }
  friend void swap(BasicTableString& a, BasicTableString& b) noexcept { std::swap(a.entry_, b.entry_); }

private:
  const detail::TableEntry* entry_ = nullptr; // null for the empty string
};

static_assert(sizeof(BasicTableString<char16_t>) == sizeof(void*));

template <class CharT>
inline constexpr bool hashesByValue<BasicTableString<CharT>> = true;

} // namespace nvf
