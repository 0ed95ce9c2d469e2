#include "tessarin/foundation/array.hpp"

#include "tessarin/foundation/number.hpp"

#include <algorithm>
#include <limits>

namespace nvf {

namespace {

/// The names of the types, in their order.
constexpr std::array<std::string_view, 5> typeNames{"bool", "int32", "uint64", "double", "string"};

bool productOverflows(std::size_t m, std::size_t n) {
  return m != 0 && n > std::numeric_limits<std::size_t>::max() / m;
}

std::string extents(std::size_t m, std::size_t n) {
  return std::to_string(m) + "x" + std::to_string(n);
}

} // namespace

ArraySize::ArraySize(std::size_t m, std::size_t n) : m_(m), n_(n) {
  if (productOverflows(m, n)) throw InvalidArraySize("an array of " + extents(m, n) + " elements is too large.");
}

ArraySize ArraySize::reshape(std::size_t m, std::size_t n) const {
  const ArraySize result(m, n);
  result.check(numElements());
  return result;
}

void ArraySize::check(std::size_t numElements) const {
  if (numElements == this->numElements()) return;
  throw InvalidArraySize("an array of " + extents(m_, n_) + " cannot have " + std::to_string(numElements) +
                         " elements.");
}

std::string_view to_user_name(ElementType type) {
  return typeNames.at(static_cast<std::size_t>(type));
}

std::optional<ElementType> element_type(std::string_view userName) {
  const auto* name = std::find(typeNames.begin(), typeNames.end(), userName);
  if (name == typeNames.end()) return std::nullopt;
  return static_cast<ElementType>(name - typeNames.begin());
}

std::string to_user_name(const ArrayType& type) {
  return std::string(to_user_name(type.element)) + " " + extents(type.size.m(), type.size.n());
}

std::optional<ArrayType> array_type(std::string_view userName) {
  const std::size_t blank = userName.find(' ');
  const std::size_t cross = userName.find('x', std::min(blank, userName.size()));
  if (blank == std::string_view::npos || cross == std::string_view::npos) return std::nullopt;
  const auto element = element_type(userName.substr(0, blank));
  const auto m = whole_number<std::size_t>(userName.substr(blank + 1, cross - blank - 1));
  const auto n = whole_number<std::size_t>(userName.substr(cross + 1));
  if (!element || !m || !n || productOverflows(*m, *n)) return std::nullopt;
  // Rows without columns cost their text nothing, and whoever makes a matrix of them has to make them all.
  constexpr std::size_t mostEmptyRows = 65'536;
  if (*n == 0 && *m > mostEmptyRows) return std::nullopt;
  return ArrayType{*element, ArraySize(*m, *n)};
}

} // namespace nvf
