#include "tessarin/foundation/value.hpp"

#include "tessarin/foundation/number.hpp"

namespace nvf {

namespace {

template <class T>
ustring elementText(const T& element) {
  return number_text(element);
}
ustring elementText(bool element) {
  return element ? u"true" : u"false";
}
ustring elementText(const ustring& element) {
  ustring out = u"'";
  for (const char16_t unit : element) out.append(unit == u'\'' ? 2 : 1, unit);
  return out += u'\'';
}

template <class T>
ustring arrayText(const Array<T>& array) {
  const ArraySize& size = array.size();
  if (size.isScalar()) return elementText(array[0]);
  if (size.isEmpty()) return u"[]";
  ustring out = u"[";
  for (std::size_t row = 0; row < size.m(); ++row) {
    if (row != 0) out += u"; ";
    for (std::size_t column = 0; column < size.n(); ++column) {
      if (column != 0) out += u", ";
      out += elementText(array.at(row, column));
    }
  }
  return out += u']';
}

std::size_t typeNumber(const ValueData& data) {
  return static_cast<std::size_t>(data.type().element);
}

} // namespace

ArrayType ValueData::type() const {
  return visit([](const auto& array) { return array.type(); });
}

Ordering compare(const ValueData& a, const ValueData& b) {
  return a.visit([&]<class T>(const Array<T>& left) {
    const Array<T>* right = b.getIf<T>();
    return right != nullptr ? compare(left, *right) : order(typeNumber(a), typeNumber(b));
  });
}

std::size_t hash_value(const ValueData& data) {
  return hash_combine(data.visit([](const auto& array) { return hash_value(array); }), typeNumber(data));
}

void incorporate_data(DigestSink& sink, const ValueData& data) {
  feed_bytes<8>(sink, typeNumber(data));
  data.visit([&sink](const auto& array) { incorporate_data(sink, array); });
}

Ordering compare(const Value& a, const Value& b) {
  const Ordering result = compare(a.data_, b.data_);
  return result != Ordering::Equal ? result : compare(a.unit_, b.unit_);
}

std::size_t hash_value(const Value& value) {
  return hash_combine(hash_combine(0, hash_value(value.data_)), hash_value(value.unit_));
}

void incorporate_data(DigestSink& sink, const Value& value) {
  incorporate_data(sink, value.data_);
  incorporate_data(sink, value.unit_);
}

ustring dump_text(const Value& value) {
  return to_user_string(value) + u" (" + widen(to_user_name(value.data_.type())) + u")";
}

Constant to_constant(const Value& value) {
  return Constant(value.data());
}

ustring to_user_string(const Value& value) {
  ustring data = value.data().visit([](const auto& array) { return arrayText(array); });
  if (value.unit().isOne()) return data;
  return u"{" + data + u", '" + value.unit().text().string() + u"'}";
}

} // namespace nvf
