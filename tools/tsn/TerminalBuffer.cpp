#include "TerminalBuffer.hpp"

#include "Printable.hpp"

#include <cstddef>
#include <exception>

namespace tessarin::tool {

namespace {
constexpr std::size_t longest = 4096;

/// Whether a byte continues a character.
bool isContinuation(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}
} // namespace

TerminalBuffer::~TerminalBuffer() {
  try {
    pass();
  } catch (const std::exception&) {
    // What is lost is the end of a text that cannot be completed anyway.
  }
}

TerminalBuffer::int_type TerminalBuffer::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char byte = traits_type::to_char_type(c);
  const bool isPlain = byte == '\n' || byte == '\t';
  if (isPlain || (held_.size() >= longest && !isContinuation(byte))) pass();
  if (isPlain) return target_.sputc(byte);
  held_ += byte;
  return c;
}

int TerminalBuffer::sync() {
  pass();
  return 0;
}

void TerminalBuffer::pass() {
  const std::string text = escaped(held_);
  held_.clear();
  target_.sputn(text.data(), static_cast<std::streamsize>(text.size()));
}

void writeText(Console& console, const std::function<void(std::ostream&)>& write) {
  if (!console.outIsTerminal()) {
    write(console.out());
    return;
  }
  TerminalBuffer buffer(*console.out().rdbuf());
  std::ostream out(&buffer);
  write(out);
}

} // namespace tessarin::tool
