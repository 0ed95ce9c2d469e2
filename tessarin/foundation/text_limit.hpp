// A limit on text that is printed.
//
// Text forms of deep trees grow with the depth of the tree as well as with its size, for each level is indented: a
// source of some hundred kilobytes can print as a gigabyte. A host that prints what strangers wrote sets a limit:
//
//   const nvf::ScopedTextLimit limit(16'000'000);
//   try {
//     answer(model.string(0, 2));
//   } catch (const nvf::TextTooLong&) { … }
#pragma once

#include "tessarin/export.hpp"

#include <cstddef>
#include <limits>
#include <stdexcept>

namespace nvf {

/// Thrown by what prints, where the text would be longer than the limit. What a stream has got so far stays.
class TESSARIN_EXPORT TextTooLong : public std::length_error {
public:
  /// With the limit in UTF-16 code units.
  explicit TextTooLong(std::size_t limit);
  /// The limit, in UTF-16 code units.
  [[nodiscard]] std::size_t limit() const noexcept { return limit_; }

private:
  std::size_t limit_;
};

/// Limits each text form of a syntax tree or a package that this thread prints while it lives, to a string or to a
/// stream. Scopes nest; the innermost one holds. Other threads are not limited by it.
class TESSARIN_EXPORT ScopedTextLimit {
public:
  /// What holds where there is no scope.
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  /// With the greatest length of one text, in UTF-16 code units.
  explicit ScopedTextLimit(std::size_t length) noexcept;
  ~ScopedTextLimit();
  ScopedTextLimit(const ScopedTextLimit&) = delete;
  ScopedTextLimit& operator=(const ScopedTextLimit&) = delete;

  /// The limit of this thread, in UTF-16 code units.
  [[nodiscard]] static std::size_t current() noexcept;

private:
  std::size_t outer_;
};

} // namespace nvf
