// Immutable sequences that share their elements with their copies.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/shared_block.hpp"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace nvf {

/// A sequence of `T`, one pointer wide; copying it copies the pointer. The empty sequence needs no memory, any other
/// one piece of it. A sequence may be a member of its own element type. One that has been moved from is empty.
template <class T>
class Expressions : public detail::OrderingOperators<Expressions<T>> {
public:
  /// As the standard library names them. Iterators are pointers, and the sequence cannot be changed through them.
  /// @{
  using value_type = T;
  using const_iterator = const T*;
  using iterator = const_iterator;
  /// @}

  Expressions() noexcept = default;
  /// With copies of the elements.
  /// @{
  Expressions(std::initializer_list<T> elements) : Expressions(elements.begin(), elements.end()) {}
  template <std::forward_iterator Iterator>
  Expressions(Iterator first, Iterator last) : Expressions(first, countOf(first, last)) {}
  explicit Expressions(const std::vector<T>& elements) : Expressions(elements.begin(), elements.size()) {}
  /// @}
  /// Moves the elements out of the vector.
  explicit Expressions(std::vector<T>&& elements)
      : Expressions(std::make_move_iterator(elements.begin()), elements.size()) {}

  /// The elements, which live as long as the sequence or a copy of it.
  /// @{
  [[nodiscard]] const_iterator begin() const noexcept { return empty() ? nullptr : block_->elements(); }
  [[nodiscard]] const_iterator end() const noexcept { return begin() + size(); }
  [[nodiscard]] std::size_t size() const noexcept { return empty() ? 0 : block_->size; }
  [[nodiscard]] bool empty() const noexcept { return !block_; }
  /// @}
  /// The `i`-th element, from 0; there must be one.
  [[nodiscard]] const T& operator[](std::size_t i) const noexcept { return begin()[i]; }
  /// The first and the last element; there must be one.
  /// @{
  [[nodiscard]] const T& front() const noexcept { return *begin(); }
  [[nodiscard]] const T& back() const noexcept { return end()[-1]; }
  /// @}

  friend bool operator==(const Expressions& a, const Expressions& b) {
    return a.block_ == b.block_ || (a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin()));
  }
  /// Element by element; a prefix is less.
  friend Ordering compare(const Expressions& a, const Expressions& b) {
    if (a.block_ == b.block_) return Ordering::Equal;
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
      if (const Ordering result = compare(a[i], b[i]); result != Ordering::Equal) return result;
    }
    return order(a.size(), b.size());
  }
  friend std::size_t hash_value(const Expressions& sequence) {
    std::size_t seed = 0;
    for (const T& element : sequence) seed = hash_combine(seed, hash_value(element));
    return seed;
  }
  /// Feeds each element and nothing else.
  friend void incorporate_data(DigestSink& sink, const Expressions& sequence) {
    for (const T& element : sequence) incorporate_data(sink, element);
  }
  friend void swap(Expressions& a, Expressions& b) noexcept { std::swap(a.block_, b.block_); }

private:
  /// The elements follow the block in memory.
  struct Block final : SharedBlock {
    /// The memory behind the block.
    struct Room {
      std::size_t bytes; ///< Its size.
    };
    static void* operator new(std::size_t head, Room room) { return ::operator new(head + room.bytes); }
    static void operator delete(void* memory, Room) noexcept { ::operator delete(memory); }
    static void operator delete(void* memory) noexcept { ::operator delete(memory); }

    template <class Iterator>
    Block(Iterator first, std::size_t count) : size(count) {
      static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
      std::uninitialized_copy_n(first, count, elements());
    }
    ~Block() override { std::destroy_n(elements(), size); }

    [[nodiscard]] T* elements() noexcept { return const_cast<T*>(std::as_const(*this).elements()); }
    [[nodiscard]] const T* elements() const noexcept {
      return reinterpret_cast<const T*>(reinterpret_cast<const char*>(this) + offset());
    }
    static constexpr std::size_t offset() noexcept {
      return (sizeof(Block) + alignof(T) - 1) / alignof(T) * alignof(T);
    }

    const std::size_t size;
  };

  template <class Iterator>
  static std::size_t countOf(Iterator first, Iterator last) {
    return static_cast<std::size_t>(std::distance(first, last));
  }

  template <std::input_iterator Iterator>
  Expressions(Iterator first, std::size_t count) {
    if (count == 0) return;
    const typename Block::Room room{Block::offset() - sizeof(Block) + count * sizeof(T)};
    block_ = SharedPtr<Block>(new (room) Block(first, count));
  }

  SharedPtr<Block> block_;
};

static_assert(sizeof(Expressions<int>) == sizeof(void*));

/// Thrown where a sequence that needs an element has none.
class TESSARIN_EXPORT InvalidExpressions1 : public Exception {
public:
  InvalidExpressions1() : Exception("a sequence is empty that must have an element.") {}
};

/// A sequence with at least one element. One that has been moved from can only be destroyed or assigned to.
template <class T>
class Expressions1 : public detail::OrderingOperators<Expressions1<T>> {
public:
  /// As the standard library names them. Iterators are pointers, and the sequence cannot be changed through them.
  /// @{
  using value_type = T;
  using const_iterator = const T*;
  using iterator = const_iterator;
  /// @}

  /// Each constructor throws `InvalidExpressions1` where there is no element.
  explicit Expressions1(Expressions<T> elements) : elements_(std::move(elements)) {
    if (elements_.empty()) throw InvalidExpressions1();
  }
  /// Throws `InvalidExpressions1` where there is no element.
  /// @{
  Expressions1(std::initializer_list<T> elements) : Expressions1(Expressions<T>(elements)) {}
  template <std::forward_iterator Iterator>
  Expressions1(Iterator first, Iterator last) : Expressions1(Expressions<T>(first, last)) {}
  explicit Expressions1(const std::vector<T>& elements) : Expressions1(Expressions<T>(elements)) {}
  explicit Expressions1(std::vector<T>&& elements) : Expressions1(Expressions<T>(std::move(elements))) {}
  /// @}

  /// The same elements where there may be none.
  operator const Expressions<T>&() const noexcept { return elements_; }

  /// The elements, which live as long as the sequence or a copy of it.
  /// @{
  [[nodiscard]] const_iterator begin() const noexcept { return elements_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return elements_.end(); }
  [[nodiscard]] std::size_t size() const noexcept { return elements_.size(); }
  /// @}
  /// The `i`-th element, from 0; there must be one.
  [[nodiscard]] const T& operator[](std::size_t i) const noexcept { return elements_[i]; }
  /// The first and the last element.
  /// @{
  [[nodiscard]] const T& front() const noexcept { return elements_.front(); }
  [[nodiscard]] const T& back() const noexcept { return elements_.back(); }
  /// @}

  friend bool operator==(const Expressions1& a, const Expressions1& b) { return a.elements_ == b.elements_; }
  friend Ordering compare(const Expressions1& a, const Expressions1& b) { return compare(a.elements_, b.elements_); }
  friend std::size_t hash_value(const Expressions1& sequence) { return hash_value(sequence.elements_); }
  friend void incorporate_data(DigestSink& sink, const Expressions1& sequence) {
    incorporate_data(sink, sequence.elements_);
  }
  friend void swap(Expressions1& a, Expressions1& b) noexcept { swap(a.elements_, b.elements_); }

private:
  Expressions<T> elements_;
};

template <class T>
inline constexpr bool hashesByValue<Expressions<T>> = true;
template <class T>
inline constexpr bool hashesByValue<Expressions1<T>> = true;

} // namespace nvf
