// Arrays: rectangles of elements of one built-in type.
//
// Every array has two extents, `m` rows and `n` columns; a scalar is 1 by 1. Elements are kept, and counted from 0,
// down each column and then from column to column: that is the index order.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/sequences.hpp"
#include "tessarin/foundation/text.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nvf {

/// Thrown where extents do not fit: each other, the elements, or the address space.
class TESSARIN_EXPORT InvalidArraySize : public Exception {
public:
  /// With what is wrong.
  explicit InvalidArraySize(const std::string& what) : Exception(what) {}
};

/// The extents of an array.
class TESSARIN_EXPORT ArraySize {
public:
  /// 0 by 0.
  constexpr ArraySize() noexcept = default;
  /// Throws `InvalidArraySize` where the number of elements does not fit in a `size_t`.
  ArraySize(std::size_t m, std::size_t n);
  /// One element.
  [[nodiscard]] static ArraySize scalar() { return {1, 1}; }

  /// The number of rows.
  [[nodiscard]] std::size_t m() const noexcept { return m_; }
  /// The number of columns.
  [[nodiscard]] std::size_t n() const noexcept { return n_; }
  /// The product of the extents, which fits.
  [[nodiscard]] std::size_t numElements() const noexcept { return m_ * n_; }
  /// The extents, rows first.
  [[nodiscard]] std::array<std::size_t, 2> size() const noexcept { return {m_, n_}; }
  /// Whether there is just one element, or none.
  /// @{
  [[nodiscard]] bool isScalar() const noexcept { return m_ == 1 && n_ == 1; }
  [[nodiscard]] bool isEmpty() const noexcept { return numElements() == 0; }
  /// @}

  /// Other extents for the same elements. Throws `InvalidArraySize` where their number would change.
  [[nodiscard]] ArraySize reshape(std::size_t m, std::size_t n) const;
  /// Throws `InvalidArraySize` unless there are `numElements` elements.
  void check(std::size_t numElements) const;

  friend auto operator<=>(const ArraySize&, const ArraySize&) noexcept = default;
  friend Ordering compare(const ArraySize& a, const ArraySize& b) noexcept { return order(a, b); }
  friend std::size_t hash_value(const ArraySize& s) noexcept { return hash_combine(hash_combine(0, s.m_), s.n_); }
  /// Feeds both extents with 8 bytes.
  friend void incorporate_data(DigestSink& sink, const ArraySize& s) {
    feed_bytes<8>(sink, s.m_);
    feed_bytes<8>(sink, s.n_);
  }

private:
  std::size_t m_ = 0;
  std::size_t n_ = 0;
};

/// The built-in types of elements. Their numbers enter hashes, digests and orderings.
enum class ElementType : unsigned char { Bool, Int32, UInt64, Double, Text };

/// The name of a type for people and in value tokens: "bool", "int32", "uint64", "double" or "string".
TESSARIN_EXPORT std::string_view to_user_name(ElementType type);
/// The type of that name.
TESSARIN_EXPORT std::optional<ElementType> element_type(std::string_view userName);

namespace detail {

template <class T>
struct ElementTypeOf;
template <ElementType type>
struct ElementTypeIs {
  static constexpr ElementType value = type;
};
template <>
struct ElementTypeOf<bool> : ElementTypeIs<ElementType::Bool> {};
template <>
struct ElementTypeOf<int> : ElementTypeIs<ElementType::Int32> {};
template <>
struct ElementTypeOf<unsigned long> : ElementTypeIs<ElementType::UInt64> {};
template <>
struct ElementTypeOf<double> : ElementTypeIs<ElementType::Double> {};
template <>
struct ElementTypeOf<ustring> : ElementTypeIs<ElementType::Text> {};

/// The bits of a double, those of one and the same NaN for every NaN.
constexpr std::uint64_t canonicalBits(double x) noexcept {
  return std::bit_cast<std::uint64_t>(x == x ? x : std::numeric_limits<double>::quiet_NaN());
}
/// A number that grows with the double: -0 comes before 0, and NaN behind all numbers.
constexpr std::uint64_t orderedBits(double x) noexcept {
  constexpr std::uint64_t sign = std::uint64_t{1} << 63U;
  const std::uint64_t bits = canonicalBits(x);
  return (bits & sign) != 0 ? ~bits : bits | sign;
}

/// What stands for an element wherever elements are compared. Doubles are told apart by their bits, so that a value is
/// always equal to itself.
template <class T>
constexpr decltype(auto) elementKey(const T& element) noexcept {
  if constexpr (std::same_as<T, double>) {
    return orderedBits(element);
  } else {
    return (element);
  }
}

template <class T>
std::size_t elementHash(const T& element) noexcept {
  if constexpr (std::same_as<T, ustring>) {
    return hash_value(ustring_view(element));
  } else if constexpr (std::same_as<T, double>) {
    return canonicalBits(element);
  } else {
    return static_cast<std::size_t>(element);
  }
}

/// Feeds 1 byte of a bool, 4 of an int, 8 of an unsigned long and of the bits of a double; of a text its length with 8
/// bytes and then its units, so that neighbours do not run together.
template <class T>
void digestElement(DigestSink& sink, const T& element) {
  if constexpr (std::same_as<T, ustring>) {
    feed_bytes<8>(sink, element.size());
    incorporate_data(sink, ustring_view(element));
  } else if constexpr (std::same_as<T, double>) {
    feed_bytes<8>(sink, canonicalBits(element));
  } else {
    feed_bytes<sizeof(T)>(sink, static_cast<std::uint64_t>(element));
  }
}

} // namespace detail

/// A type that an element can have: `bool`, `int`, `unsigned long`, `double`, `ustring`.
template <class T>
concept ArrayElement = requires {
  detail::ElementTypeOf<T>::value;
};

static_assert(sizeof(int) == 4 && sizeof(unsigned long) == 8 && sizeof(double) == 8);

/// The type of the elements of an array, and its extents.
struct ArrayType {
  /// The type of the elements and the extents.
  /// @{
  ElementType element = ElementType::Double;
  ArraySize size;
  /// @}

  friend auto operator<=>(const ArrayType&, const ArrayType&) noexcept = default;
  friend Ordering compare(const ArrayType& a, const ArrayType& b) noexcept { return order(a, b); }
  friend std::size_t hash_value(const ArrayType& t) noexcept {
    return hash_combine(hash_combine(0, static_cast<std::size_t>(t.element)), hash_value(t.size));
  }
};

/// The name of a type for people and in value tokens, such as "int32 2x3".
TESSARIN_EXPORT std::string to_user_name(const ArrayType& type);
/// The type of that name, or nothing where it is malformed or has too many elements.
TESSARIN_EXPORT std::optional<ArrayType> array_type(std::string_view userName);

/// A dense array. Copies share the elements. Two doubles are equal here if they have the same bits, or are both NaN. An
/// array that has been moved from can only be destroyed or assigned to.
template <ArrayElement T>
class Array : public detail::OrderingOperators<Array<T>> {
public:
  /// As the standard library names them. Iterators are pointers, and the sequence cannot be changed through them.
  /// @{
  using value_type = T;
  using const_iterator = const T*;
  using iterator = const_iterator;
  /// @}

  /// 0 by 0.
  Array() noexcept = default;
  /// 1 by 1.
  explicit Array(T element) : size_(ArraySize::scalar()), elements_{std::move(element)} {}
  /// From the elements in index order. Throws `InvalidArraySize` where `size` needs another number of them.
  Array(const ArraySize& size, std::vector<T> elements) : size_(size), elements_(std::move(elements)) {
    size_.check(elements_.size());
  }
  /// The same from a list.
  Array(const ArraySize& size, std::initializer_list<T> elements) : Array(size, std::vector<T>(elements)) {}
  /// From the elements at `elements`, in index order.
  Array(const ArraySize& size, const T* elements) : size_(size), elements_(elements, elements + size.numElements()) {}

  /// The extents, the type, and the elements in index order: the first column from top to bottom, then the next one.
  /// Iterators live as long as the array or a copy of it, the reference to the extents as long as this array.
  /// @{
  [[nodiscard]] const ArraySize& size() const noexcept { return size_; }
  [[nodiscard]] static constexpr ElementType elementType() noexcept { return detail::ElementTypeOf<T>::value; }
  [[nodiscard]] ArrayType type() const noexcept { return {elementType(), size_}; }
  [[nodiscard]] std::size_t numElements() const noexcept { return elements_.size(); }
  [[nodiscard]] const_iterator begin() const noexcept { return elements_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return elements_.end(); }
  /// @}
  /// The `i`-th element in index order, from 0; there must be one.
  [[nodiscard]] const T& operator[](std::size_t i) const noexcept { return elements_[i]; }
  /// The element in a row and a column, from 0; there must be one.
  [[nodiscard]] const T& at(std::size_t row, std::size_t column) const noexcept {
    return elements_[column * size_.m() + row];
  }
  /// The same elements with other extents. Throws `InvalidArraySize` where their number would change.
  [[nodiscard]] Array reshape(std::size_t m, std::size_t n) const {
    Array reshaped = *this;
    reshaped.size_ = size_.reshape(m, n);
    return reshaped;
  }

  friend bool operator==(const Array& a, const Array& b) noexcept {
    return a.size_ == b.size_ && std::equal(a.begin(), a.end(), b.begin(), [](const T& x, const T& y) {
             return detail::elementKey(x) == detail::elementKey(y);
           });
  }
  /// By extents, then by elements in index order; NaN comes behind all numbers, and -0 before 0.
  friend Ordering compare(const Array& a, const Array& b) noexcept {
    Ordering result = compare(a.size_, b.size_);
    for (std::size_t i = 0; result == Ordering::Equal && i < a.numElements(); ++i) {
      result = order(detail::elementKey(a[i]), detail::elementKey(b[i]));
    }
    return result;
  }
  friend std::size_t hash_value(const Array& a) noexcept {
    std::size_t seed = hash_value(a.size_);
    for (const T& element : a) seed = hash_combine(seed, detail::elementHash(element));
    return seed;
  }
  /// Feeds the extents, then the elements.
  friend void incorporate_data(DigestSink& sink, const Array& a) {
    incorporate_data(sink, a.size_);
    for (const T& element : a) detail::digestElement(sink, element);
  }

private:
  ArraySize size_;
  Expressions<T> elements_;
};

template <>
inline constexpr bool hashesByValue<ArraySize> = true;
template <>
inline constexpr bool hashesByValue<ArrayType> = true;
template <class T>
inline constexpr bool hashesByValue<Array<T>> = true;

} // namespace nvf
