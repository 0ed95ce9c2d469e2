// Identifiers: names of the language, dotted paths of names, and the ids of messages.
//
// An identifier is a letter followed by letters, digits and "_", all of them ASCII. That rule stands here once; the
// scanner asks for it too.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/checked_text.hpp"
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/sequences.hpp"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nvf {

/// "A" to "Z" and "a" to "z".
constexpr bool is_ascii_letter(char16_t unit) noexcept {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}
/// "0" to "9".
constexpr bool is_ascii_digit(char16_t unit) noexcept {
  return unit >= u'0' && unit <= u'9';
}
/// Whether the unit may stand in an identifier behind the first one.
constexpr bool continues_identifier(char16_t unit) noexcept {
  return is_ascii_letter(unit) || is_ascii_digit(unit) || unit == u'_';
}
/// Whether the text is an identifier.
constexpr bool is_identifier(ustring_view text) noexcept {
  return !text.empty() && is_ascii_letter(text.front()) && std::all_of(text.begin(), text.end(), continues_identifier);
}

/// Thrown where text that must be an identifier is not.
class TESSARIN_EXPORT InvalidCxId : public Exception {
public:
  /// For the text that is no identifier.
  explicit InvalidCxId(ustring_view text);
};

/// Thrown where a path has fewer names than it must have.
class TESSARIN_EXPORT IdPathTooShort : public Exception {
public:
  /// For a path of `actual` names where `minimum` are wanted.
  IdPathTooShort(unsigned long actual, unsigned long minimum);
};

/// Thrown where text that must be the id of a message is not.
class TESSARIN_EXPORT InvalidMessageId : public Exception {
public:
  /// For the text that is no message identifier.
  explicit InvalidMessageId(ustring_view text);
};

namespace detail {
struct CxIdCheck;
struct MessageIdCheck;
} // namespace detail

/// An identifier. The default is the empty one, which stands for a name that is not there.
class CxId : public CheckedText<CxId> {
public:
  CxId() noexcept = default;
  /// The identifier of this text. Throws `InvalidCxId` where the text is none.
  /// @{
  TESSARIN_EXPORT explicit CxId(ustring_view text);
  TESSARIN_EXPORT explicit CxId(std::string_view text);
  /// @}
  /// The same, or nothing where the text is none.
  /// @{
  TESSARIN_EXPORT static std::optional<CxId> make(ustring_view text);
  TESSARIN_EXPORT static std::optional<CxId> make(std::string_view text);
  /// @}

private:
  friend struct detail::CxIdCheck;
  explicit CxId(Text text) noexcept : CheckedText(text) {}
};

namespace detail {

/// Makes a `CxId`; throws `InvalidCxId` where the text is no identifier.
struct TESSARIN_EXPORT CxIdCheck {
  /// The empty identifier.
  CxId operator()() const noexcept { return {}; }
  CxId operator()(BasicTableString<char16_t> text) const;
  CxId operator()(ustring_view text) const;
  CxId operator()(const char* text, unsigned long length) const;
};

/// Splits a dotted text into its names. The empty text has none; throws `InvalidCxId` for a name that is no identifier.
TESSARIN_EXPORT Expressions<CxId> parse_ids(const char* text, unsigned long length);
TESSARIN_EXPORT Expressions<CxId> parse_ids(const char16_t* text, unsigned long length);

/// Throws `IdPathTooShort`.
[[noreturn]] TESSARIN_EXPORT void id_path_too_short(unsigned long actual, unsigned long minimum);

/// The names with a dot between them.
TESSARIN_EXPORT ustring join_ids(const Expressions<CxId>& ids);

} // namespace detail

/// A dotted path of at least `minimum` names. Copies share the names. Constructors throw `IdPathTooShort` where there
/// are too few, and `InvalidCxId` where a name in a text is no identifier.
template <std::size_t minimum>
class BasicCxIdPath : public detail::OrderingOperators<BasicCxIdPath<minimum>> {
public:
  /// As the standard library names them. Iterators are pointers, and the sequence cannot be changed through them.
  /// @{
  using value_type = CxId;
  using const_iterator = const CxId*;
  using iterator = const_iterator;
  /// @}

  BasicCxIdPath() noexcept requires(minimum == 0) = default;
  /// Throws `IdPathTooShort` where there are fewer names than `minimum`.
  /// @{
  explicit BasicCxIdPath(Expressions<CxId> ids) : ids_(std::move(ids)) {
    if (ids_.size() < minimum) detail::id_path_too_short(ids_.size(), minimum);
  }
  explicit BasicCxIdPath(const std::vector<CxId>& ids) : BasicCxIdPath(Expressions<CxId>(ids)) {}
  BasicCxIdPath(std::initializer_list<CxId> ids) : BasicCxIdPath(Expressions<CxId>(ids)) {}
  /// @}
  /// Splits a dotted text.
  explicit BasicCxIdPath(ustring_view dotted) : BasicCxIdPath(detail::parse_ids(dotted.data(), dotted.size())) {}
  /// The same for ASCII text.
  explicit BasicCxIdPath(std::string_view dotted) : BasicCxIdPath(detail::parse_ids(dotted.data(), dotted.size())) {}
  /// A path with another minimum; explicit, and throwing like the above, where that is lower.
  template <std::size_t other>
  requires(other != minimum) explicit(other < minimum) BasicCxIdPath(const BasicCxIdPath<other>& path)
      : BasicCxIdPath(path.ids()) {}

  /// The names from left to right; they live as long as the path or a copy of it, the sequence of them only as long as
  /// this path.
  /// @{
  [[nodiscard]] const Expressions<CxId>& ids() const noexcept { return ids_; }
  [[nodiscard]] const_iterator begin() const noexcept { return ids_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return ids_.end(); }
  [[nodiscard]] std::size_t size() const noexcept { return ids_.size(); }
  [[nodiscard]] bool empty() const noexcept { return ids_.empty(); }
  /// @}
  /// The `i`-th name, from 0; there must be one.
  [[nodiscard]] const CxId& operator[](std::size_t i) const noexcept { return ids_[i]; }
  /// The first and the last name; there must be one.
  /// @{
  [[nodiscard]] const CxId& front() const noexcept { return ids_.front(); }
  [[nodiscard]] const CxId& back() const noexcept { return ids_.back(); }
  /// @}

  /// The names with a dot between them.
  [[nodiscard]] ustring string() const { return detail::join_ids(ids_); }

  friend bool operator==(const BasicCxIdPath& a, const BasicCxIdPath& b) { return a.ids_ == b.ids_; }
  friend Ordering compare(const BasicCxIdPath& a, const BasicCxIdPath& b) { return compare(a.ids_, b.ids_); }
  friend std::size_t hash_value(const BasicCxIdPath& path) { return hash_value(path.ids_); }
  friend void incorporate_data(DigestSink& sink, const BasicCxIdPath& path) { incorporate_data(sink, path.ids_); }
  friend void swap(BasicCxIdPath& a, BasicCxIdPath& b) noexcept { swap(a.ids_, b.ids_); }
  /// Comparison with a dotted text.
  /// @{
  friend bool operator==(const BasicCxIdPath& a, ustring_view b) { return a.string() == b; }
  friend bool operator==(const BasicCxIdPath& a, std::string_view b) { return narrow(a.string()) == b; }
  /// @}
  friend std::ostream& operator<<(std::ostream& stream, const BasicCxIdPath& path) {
    return stream << narrow(path.string());
  }
  friend ustring dump_text(const BasicCxIdPath& path) { return path.string(); }

private:
  Expressions<CxId> ids_;
};

template <std::size_t minimum>
inline constexpr bool hashesByValue<BasicCxIdPath<minimum>> = true;

/// The path of something that has a name.
using CxIdPath = BasicCxIdPath<1>;

/// The id of a message that a model defines: two or more identifiers with a colon between them. The default is the
/// empty id, which stands for none.
class MessageId : public CheckedText<MessageId> {
public:
  MessageId() noexcept = default;
  /// The id of this text, the empty id for the empty text, or nothing where the text is malformed.
  TESSARIN_EXPORT static std::optional<MessageId> make(const ustring& text);

  // Hashes and digests as the text that it is in the source, unlike an identifier.
  friend std::size_t hash_value(const MessageId& id) noexcept { return hash_value(id.view()); }
  friend void incorporate_data(DigestSink& sink, const MessageId& id) { incorporate_data(sink, id.view()); }

private:
  friend struct detail::MessageIdCheck;
  explicit MessageId(Text text) noexcept : CheckedText(text) {}
};

namespace detail {
/// Makes a `MessageId`; throws `InvalidMessageId` where the text is malformed or empty.
struct TESSARIN_EXPORT MessageIdCheck {
  MessageId operator()(const char16_t* text, std::size_t length) const;
};
} // namespace detail

} // namespace nvf
