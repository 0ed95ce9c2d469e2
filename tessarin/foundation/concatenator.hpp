// Joining arrays to larger ones.
#pragma once

#include "tessarin/foundation/array.hpp"

#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace nvf {

/// Walks over the places of the elements of a block inside a whole array, in index order of the block.
///
///   for (Indexer place(whole); !place.done(); ++place) use(array[place.offset()]);
class Indexer {
public:
  /// The whole array.
  explicit Indexer(const ArraySize& whole) : Indexer(whole, whole, 0, 0) {}
  /// The block of extents `block` that begins in a row and a column of `whole`, from 0. Throws `InvalidArraySize` where
  /// it does not fit.
  Indexer(const ArraySize& whole, const ArraySize& block, std::size_t row, std::size_t column)
      : wholeRows_(whole.m()),
        firstRow_(row),
        endRow_(row + block.m()),
        row_(row),
        column_(column),
        endColumn_(block.isEmpty() ? column : column + block.n()) {
    if (row > whole.m() || block.m() > whole.m() - row || column > whole.n() || block.n() > whole.n() - column) {
      throw InvalidArraySize("a block of an array lies outside of it.");
    }
  }

  /// Whether there is no element left; the other members want one.
  [[nodiscard]] bool done() const noexcept { return column_ == endColumn_; }
  /// The row and the column of the element in the whole array, from 0.
  [[nodiscard]] std::size_t row() const noexcept { return row_; }
  /// See `row`.
  [[nodiscard]] std::size_t column() const noexcept { return column_; }
  /// The place of the element in the index order of the whole array, from 0.
  [[nodiscard]] std::size_t offset() const noexcept { return column_ * wholeRows_ + row_; }

  /// Goes on to the next element.
  Indexer& operator++() noexcept {
    if (++row_ == endRow_) {
      row_ = firstRow_;
      ++column_;
    }
    return *this;
  }

private:
  std::size_t wholeRows_;
  std::size_t firstRow_;
  std::size_t endRow_;
  std::size_t row_;
  std::size_t column_;
  std::size_t endColumn_;
};

/// The direction in which arrays are joined, as the language numbers it.
enum class Dimension : unsigned char {
  Rows = 1,    ///< one below the other
  Columns = 2, ///< one beside the other
};

/// Joins arrays, in the order in which they are appended. Arrays of 0 by 0 elements are passed over.
template <ArrayElement T>
class Concatenator {
public:
  /// For arrays that are put together along this dimension.
  explicit Concatenator(Dimension dimension) : dimension_(dimension) {}

  /// Throws `InvalidArraySize`, and leaves the parts as they were, where the array does not have the other extent of
  /// those before it, or where the result would be too large.
  void append(Array<T> part) {
    if (part.size() == ArraySize()) return;
    const ArraySize size = parts_.empty() ? part.size() : joined(size_, part.size());
    parts_.push_back(std::move(part));
    size_ = size;
  }

  /// The extents of the result.
  [[nodiscard]] const ArraySize& size() const noexcept { return size_; }

  /// The arrays added so far as one; an empty array where there was none.
  [[nodiscard]] Array<T> result() const {
    std::vector<T> elements(size_.numElements());
    std::size_t row = 0;
    std::size_t column = 0;
    for (const Array<T>& part : parts_) {
      Indexer destination(size_, part.size(), row, column);
      for (Indexer source(part.size()); !source.done(); ++source, ++destination) {
        elements[destination.offset()] = part[source.offset()];
      }
      if (dimension_ == Dimension::Rows) {
        row += part.size().m();
      } else {
        column += part.size().n();
      }
    }
    return Array<T>(size_, std::move(elements));
  }

private:
  [[nodiscard]] ArraySize joined(const ArraySize& a, const ArraySize& b) const {
    const auto sum = [](std::size_t x, std::size_t y) {
      if (y > std::numeric_limits<std::size_t>::max() - x) throw InvalidArraySize("an array is too large.");
      return x + y;
    };
    const auto same = [](std::size_t x, std::size_t y) {
      if (x != y) throw InvalidArraySize("arrays that are joined differ in their other extent.");
      return x;
    };
    return dimension_ == Dimension::Rows ? ArraySize(sum(a.m(), b.m()), same(a.n(), b.n()))
                                         : ArraySize(same(a.m(), b.m()), sum(a.n(), b.n()));
  }

  Dimension dimension_;
  ArraySize size_;
  std::vector<Array<T>> parts_;
};

} // namespace nvf
