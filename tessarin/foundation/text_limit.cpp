#include "tessarin/foundation/text_limit.hpp"

#include <string>
#include <utility>

namespace nvf {

namespace {
constinit thread_local std::size_t limitOfThread = ScopedTextLimit::none;
} // namespace

TextTooLong::TextTooLong(std::size_t limit)
    : std::length_error("the text is longer than " + std::to_string(limit) + " code units"), limit_(limit) {}

ScopedTextLimit::ScopedTextLimit(std::size_t length) noexcept : outer_(std::exchange(limitOfThread, length)) {}

ScopedTextLimit::~ScopedTextLimit() {
  limitOfThread = outer_;
}

std::size_t ScopedTextLimit::current() noexcept {
  return limitOfThread;
}

} // namespace nvf
