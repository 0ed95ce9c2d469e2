// The base of the library's exceptions, and the failures that carry plain text.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/failure.hpp"
#include "tessarin/foundation/location.hpp"

#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nvf {

/// The base of the library's exceptions. Whoever passes one on may note on its stack where it came from.
class TESSARIN_EXPORT Exception : public std::exception, public Failure {
public:
  Exception() = default;
  /// With the text that `what()` gives.
  explicit Exception(std::string what) : what_(std::move(what)) {}
  Exception(const Exception&) = default;
  Exception(Exception&&) = default;
  Exception& operator=(const Exception&) = default;
  Exception& operator=(Exception&&) = default;
  ~Exception() override;

  /// The text in UTF-8.
  [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }
  /// The frames that whoever passed it on has noted; none at first.
  /// @{
  [[nodiscard]] const std::vector<StackFrame>& stack() const noexcept { return stack_; }
  void stack(const std::vector<StackFrame>& frames) { stack_ = frames; }
  /// @}

private:
  std::string what_;
  std::vector<StackFrame> stack_;
};

/// An exception with the exceptions that caused it and the names of the objects that it is about.
class TESSARIN_EXPORT AttributedException : public Exception {
public:
  /// Causes are shared by the copies of an exception; none may be null, which is not checked.
  using Cause = std::shared_ptr<const Exception>;

  /// With the text that `what()` gives, what led to it, and the names of the objects that it is about.
  AttributedException(std::string what, std::vector<Cause> causes, std::vector<ustring> objects)
      : Exception(std::move(what)), causes_(std::move(causes)), objects_(std::move(objects)) {}
  AttributedException(const AttributedException&) = default;
  AttributedException(AttributedException&&) = default;
  AttributedException& operator=(const AttributedException&) = default;
  AttributedException& operator=(AttributedException&&) = default;
  ~AttributedException() override;

  /// How many causes there are.
  [[nodiscard]] std::size_t numCauses() const noexcept { return causes_.size(); }
  /// The `i`-th cause; throws `std::out_of_range` where there is none.
  [[nodiscard]] const Exception& cause(std::size_t i) const { return *causes_.at(i); }
  /// How many objects it is about.
  [[nodiscard]] std::size_t numObjects() const noexcept { return objects_.size(); }
  /// The name of the `i`-th object; throws `std::out_of_range` where there is none.
  [[nodiscard]] const ustring& object(std::size_t i) const { return objects_.at(i); }

private:
  std::vector<Cause> causes_;
  std::vector<ustring> objects_;
};

/// The failure of reading an alternative from a variant that holds another one.
class TESSARIN_EXPORT BadGet : public Exception {
public:
  /// With the name of the alternative that was asked for.
  explicit BadGet(const std::string& what) : Exception(what) {}
  BadGet(const BadGet&) = default;
  BadGet(BadGet&&) = default;
  BadGet& operator=(const BadGet&) = default;
  BadGet& operator=(BadGet&&) = default;
  ~BadGet() override;
};

} // namespace nvf
