#include "Console.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <unistd.h>

namespace tessarin::tool {

namespace {

constexpr std::size_t blockSize = std::size_t{256} * 1024;

/// Whether an environment variable is there and not empty.
bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool mayColour(int descriptor) {
  const char* terminal = std::getenv("TERM");
  const bool isDumb = terminal == nullptr || std::string_view(terminal) == "dumb";
  return isatty(descriptor) == 1 && !isDumb && !isSet("NO_COLOR");
}

} // namespace

BlockBuffer::BlockBuffer(int descriptor)
    : descriptor_(descriptor), block_(std::make_unique_for_overwrite<char[]>(blockSize)) {
  setp(block_.get(), block_.get() + blockSize);
}

void BlockBuffer::drain() {
  write(pbase(), static_cast<std::size_t>(pptr() - pbase()));
  setp(block_.get(), block_.get() + blockSize);
}

BlockBuffer::int_type BlockBuffer::overflow(int_type c) {
  drain();
  if (failure_ != 0) return traits_type::eof();
  if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
  return traits_type::not_eof(c);
}

std::streamsize BlockBuffer::xsputn(const char* text, std::streamsize length) {
  if (length > epptr() - pptr()) drain();
  if (length > epptr() - pptr()) {
    write(text, static_cast<std::size_t>(length));
  } else {
    std::copy_n(text, length, pptr());
    pbump(static_cast<int>(length));
  }
  return failure_ == 0 ? length : 0;
}

void BlockBuffer::write(const char* text, std::size_t length) {
  while (length > 0 && failure_ == 0) {
    const ssize_t written = ::write(descriptor_, text, length);
    if (written >= 0) {
      text += written;
      length -= static_cast<std::size_t>(written);
    } else if (errno != EINTR) {
      failure_ = errno;
    }
  }
}

Console::Console()
    : outBuffer_(STDOUT_FILENO),
      errorBuffer_(STDERR_FILENO),
      out_(&outBuffer_),
      outHasColours_(mayColour(STDOUT_FILENO)),
      errorHasColours_(mayColour(STDERR_FILENO)) {}

void Console::report(std::string_view text) {
  outBuffer_.drain();
  errorBuffer_.sputn(text.data(), static_cast<std::streamsize>(text.size()));
  errorBuffer_.drain();
}

Status Console::finish(Status status) {
  outBuffer_.drain();
  if (outBuffer_.failure() == 0) return status;
  report("tsn: cannot write to standard output: " + std::generic_category().message(outBuffer_.failure()) + "\n");
  return Status::Usage;
}

} // namespace tessarin::tool
