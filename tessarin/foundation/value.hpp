// Values: arrays of a built-in type, with a unit.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/array.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/units.hpp"

#include <cstddef>
#include <utility>
#include <variant>

namespace nvf {

/// An array of any built-in type of elements. Copies share the elements.
class TESSARIN_EXPORT ValueData : public detail::OrderingOperators<ValueData> {
public:
  /// Holds the array.
  template <ArrayElement T>
  ValueData(Array<T> array) : array_(std::move(array)) {}

  /// The type of the elements, and the extents.
  [[nodiscard]] ArrayType type() const;
  /// The array, or null where its elements are not of the type `T`.
  template <ArrayElement T>
  [[nodiscard]] const Array<T>* getIf() const noexcept {
    return std::get_if<Array<T>>(&array_);
  }
  /// Calls `visitor` with the `Array<T>`.
  template <class Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    return std::visit(std::forward<Visitor>(visitor), array_);
  }

  friend bool operator==(const ValueData& a, const ValueData& b) { return a.array_ == b.array_; }
  /// By the type of the elements, then by extents, then by elements.
  friend TESSARIN_EXPORT Ordering compare(const ValueData& a, const ValueData& b);
  friend TESSARIN_EXPORT std::size_t hash_value(const ValueData& data);
  /// Feeds the number of the element type with 8 bytes, then the array.
  friend TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const ValueData& data);

private:
  // In the order of `ElementType`.
  std::variant<Array<bool>, Array<int>, Array<unsigned long>, Array<double>, Array<ustring>> array_;
};

/// Thrown where a constant is not of the type that it is asked for.
class TESSARIN_EXPORT BadConstantAccess : public StandardFailure<std::bad_variant_access> {
public:
  /// "Unexpected index".
  [[nodiscard]] const char* what() const noexcept override { return "Unexpected index"; }
};

/// Constants of the built-in type `T`: a scalar or an array.
template <ArrayElement T>
class Constants {
public:
  /// One element, or an array of them.
  /// @{
  explicit Constants(T scalar) : value_(std::move(scalar)) {}
  explicit Constants(Array<T> value) : value_(std::move(value)) {}
  [[nodiscard]] const Array<T>& value() const noexcept { return value_; }
  /// @}

private:
  Array<T> value_;
};

/// A constant of any built-in type.
class Constant {
public:
  /// An array with any type of elements.
  /// @{
  explicit Constant(ValueData value) : value_(std::move(value)) {}
  template <ArrayElement T>
  explicit Constant(const Constants<T>& constants) : value_(constants.value()) {}
  [[nodiscard]] const ValueData& value() const noexcept { return value_; }
  /// @}
  /// The constant as one of the type `T`. Throws `BadConstantAccess` where it is of another type; nothing is converted.
  template <ArrayElement T>
  [[nodiscard]] Constants<T> as() const {
    if (const Array<T>* array = value_.getIf<T>()) return Constants<T>(*array);
    throw BadConstantAccess();
  }

private:
  ValueData value_;
};

/// An array with a unit.
class Value : public detail::OrderingOperators<Value> {
public:
  /// A constant and its unit.
  /// @{
  Value(ValueData data, UnitsExpr unit) : data_(std::move(data)), unit_(std::move(unit)) {}
  Value(const Constant& constant, UnitsExpr unit) : Value(constant.value(), std::move(unit)) {}
  /// @}

  /// The constant and its unit.
  /// @{
  [[nodiscard]] const ValueData& data() const noexcept { return data_; }
  [[nodiscard]] const UnitsExpr& unit() const noexcept { return unit_; }
  /// @}

  friend bool operator==(const Value& a, const Value& b) { return a.data_ == b.data_ && a.unit_ == b.unit_; }
  /// By data, then by unit.
  friend TESSARIN_EXPORT Ordering compare(const Value& a, const Value& b);
  friend TESSARIN_EXPORT std::size_t hash_value(const Value& value);
  /// Feeds the data, then the unit.
  friend TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const Value& value);
  friend void swap(Value& a, Value& b) noexcept { std::swap(a, b); }
  friend TESSARIN_EXPORT ustring dump_text(const Value& value);

private:
  ValueData data_;
  UnitsExpr unit_;
};

template <>
inline constexpr bool hashesByValue<ValueData> = true;
template <>
inline constexpr bool hashesByValue<Value> = true;

/// The data of a value, without its unit.
TESSARIN_EXPORT Constant to_constant(const Value& value);

/// The value for people: `5`, `[1, 2; 3, 4]`, `true`, `'text'`, and with a unit other than 1 `{5, 'm'}`. Types and the
/// extents of an empty array do not show.
TESSARIN_EXPORT ustring to_user_string(const Value& value);

} // namespace nvf
