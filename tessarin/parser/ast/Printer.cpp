#include "tessarin/parser/ast/Printer.hpp"

#include <algorithm>
#include <ostream>

namespace tessarin::compiler::core {

namespace {
constexpr std::size_t blockSize = std::size_t{32} * 1024; // in UTF-16 code units
} // namespace

Printer::Printer(ustring& buffer, std::ostream& stream) noexcept
    : out_(buffer), stream_(&stream), checkAt_(std::min(blockSize, limit_)) {}

void Printer::check() {
  if (out_.size() > limit_ - written_) throw nvf::TextTooLong(limit_);
  if (stream_ == nullptr) return;
  // The first half of a pair waits for the second one.
  const bool endsInPair = (out_.back() & 0xFC00) == 0xD800;
  write(out_.size() - (endsInPair ? 1 : 0));
  checkAt_ = std::min(blockSize, limit_ - written_);
}

void Printer::rest() {
  write(out_.size());
}

void Printer::write(std::size_t length) {
  const std::string bytes = nvf::encode_utf8(ustring_view(out_).substr(0, length));
  stream_->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out_.erase(0, length);
  written_ += length;
}

} // namespace tessarin::compiler::core
