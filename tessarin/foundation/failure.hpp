// What the exceptions of the library have in common.
#pragma once

#include "tessarin/export.hpp"

#include <string>

namespace nvf {

class Location;
class Message;

/// The base of every exception that the library throws of its own, beside the class of the standard library that it
/// derives from: whoever catches `const nvf::Failure&` has the text, the message and the place without asking for the
/// class. What only the standard library throws, such as `std::bad_alloc`, and the `std::logic_error`s by which the
/// library says that a caller or it itself has broken a rule, are no failures.
class TESSARIN_EXPORT Failure {
public:
  virtual ~Failure();
  /// The whole text in UTF-8, with the place where there is one.
  [[nodiscard]] virtual const char* what() const noexcept = 0;
  /// What is said, as id and arguments; null where the failure is none of the catalog. It lives as long as the
  /// exception.
  [[nodiscard]] virtual const Message* findMessage() const noexcept;
  /// Which place it is about; null where it is about none. It lives as long as the exception.
  [[nodiscard]] virtual const Location* findLocation() const noexcept;
  /// The sentence without the place.
  [[nodiscard]] std::u16string text() const;

protected:
  Failure() = default;
  Failure(const Failure&) = default;
  Failure(Failure&&) = default;
  Failure& operator=(const Failure&) = default;
  Failure& operator=(Failure&&) = default;
};

/// A failure that is also a `Standard`, an exception of the standard library.
template <class Standard>
class TESSARIN_EXPORT StandardFailure : public Standard, public Failure {
public:
  using Standard::Standard;
  /// The text of the exception.
  [[nodiscard]] const char* what() const noexcept override { return Standard::what(); }
};

} // namespace nvf
