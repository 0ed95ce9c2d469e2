#include "tessarin/foundation/location.hpp"

#include <ostream>
#include <string>

namespace nvf {

LineColumn::ValueTooLarge::ValueTooLarge() : StandardFailure("line or column too large") {}

Ordering compare(const Location& a, const Location& b) noexcept {
  const Ordering byFile = compare(a.fileName_, b.fileName_);
  return byFile == Ordering::Equal ? compare(a.lineColumn_, b.lineColumn_) : byFile;
}

std::size_t hash_value(const Location& l) noexcept {
  return hash_combine(hash_combine(hash_value(l.fileName_), l.lineColumn_.line()), l.lineColumn_.column());
}

void incorporate_data(DigestSink& sink, const Location& l) {
  sink(l.fileName_.native().data(), l.fileName_.native().size());
  feed_bytes<8>(sink, l.lineColumn_.line());
  feed_bytes<8>(sink, l.lineColumn_.column());
}

std::ostream& operator<<(std::ostream& stream, const Location& l) {
  stream << '(';
  if (!l.fileName_.empty()) stream << l.fileName_.native().view() << ':';
  return stream << l.lineColumn_ << ')';
}

std::ostream& operator<<(std::ostream& stream, const FileName& f) {
  return stream << f.native_.view();
}

std::ostream& operator<<(std::ostream& stream, const LineColumn& p) {
  // Through strings: a locale of the stream's must not group the digits.
  return stream << std::to_string(p.line() + 1) << ':' << std::to_string(p.column() + 1);
}

std::ostream& operator<<(std::ostream& stream, const Range& r) {
  stream << '(';
  if (!r.begin_.fileName().empty()) stream << r.begin_.fileName() << ':';
  return stream << r.begin_.lineColumn() << '-' << r.end_.lineColumn() << ')';
}

Ordering compare(const Range& a, const Range& b) noexcept {
  const Ordering begin = compare(a.begin_, b.begin_);
  return begin == Ordering::Equal ? compare(a.end_, b.end_) : begin;
}

Range Range::operator+(const Range& other) const noexcept {
  if (*this == Range()) return other;
  if (other == Range()) return *this;
  if (begin_.fileName() != other.begin_.fileName()) return {begin_, other.end_};
  return {compare(other.begin_, begin_) == Ordering::Less ? other.begin_ : begin_,
          compare(other.end_, end_) == Ordering::Greater ? other.end_ : end_};
}

std::size_t hash_value(const Range& r) noexcept {
  return hash_combine(hash_value(r.begin_), hash_value(r.end_));
}

void incorporate_data(DigestSink& sink, const Range& r) {
  incorporate_data(sink, r.begin_);
  incorporate_data(sink, r.end_);
}

} // namespace nvf
