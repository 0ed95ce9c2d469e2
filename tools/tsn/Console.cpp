#include "Console.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <new>
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

BlockBuffer::BlockBuffer(int descriptor) : descriptor_(descriptor), block_(new char[blockSize]) {
  setp(block_.get(), block_.get() + blockSize);
}

void BlockBuffer::drain() {
  if (isHeld_) return;
  write(pbase(), static_cast<std::size_t>(pptr() - pbase()));
  setp(block_.get(), block_.get() + blockSize);
}

void BlockBuffer::hold() {
  drain();
  isHeld_ = true;
}

void BlockBuffer::letGo() {
  for (const std::vector<char>& block : full_) write(block.data(), block.size());
  full_.clear();
  isHeld_ = false;
}

void BlockBuffer::drop() noexcept {
  if (!isHeld_) return;
  full_.clear();
  setp(block_.get(), block_.get() + blockSize);
  isHeld_ = false;
}

void BlockBuffer::makeRoom() {
  if (isHeld_) {
    full_.emplace_back(pbase(), pptr());
    setp(block_.get(), block_.get() + blockSize);
  } else {
    drain();
  }
}

BlockBuffer::int_type BlockBuffer::overflow(int_type c) {
  makeRoom();
  if (failure_ != 0) return traits_type::eof();
  if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
  return traits_type::not_eof(c);
}

std::streamsize BlockBuffer::xsputn(const char* text, std::streamsize length) {
  std::streamsize left = length;
  while (left > epptr() - pptr()) {
    if (!isHeld_ && pptr() == pbase()) break; // nothing to be written first: longer than a block
    const std::streamsize part = isHeld_ ? epptr() - pptr() : 0;
    put(text, part);
    text += part;
    left -= part;
    makeRoom();
  }
  if (left > epptr() - pptr()) {
    write(text, static_cast<std::size_t>(left));
  } else {
    put(text, left);
  }
  return failure_ == 0 ? length : 0;
}

void BlockBuffer::put(const char* text, std::streamsize length) {
  std::copy_n(text, length, pptr());
  pbump(static_cast<int>(length));
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

Console::StandardStreams::StandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is this one, for those below are taken. Opened the wrong way round on purpose.
    static_cast<void>(open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

Console::Console()
    : outBuffer_(STDOUT_FILENO),
      errorBuffer_(STDERR_FILENO),
      out_(&outBuffer_),
      outIsTerminal_(isatty(STDOUT_FILENO) == 1),
      outHasColours_(mayColour(STDOUT_FILENO)),
      errorHasColours_(mayColour(STDERR_FILENO)) {}

void Console::report(std::string_view text) {
  outBuffer_.drain();
  errorBuffer_.sputn(text.data(), static_cast<std::streamsize>(text.size()));
  errorBuffer_.drain();
}

void Console::endDocument() {
  // A stream turns what its buffer throws into a state.
  if (out_.bad() && outBuffer_.failure() == 0) throw std::bad_alloc();
  outBuffer_.letGo();
}

Status Console::finish(Status status) {
  outBuffer_.drain();
  if (outBuffer_.failure() == 0) return status;
  report("tsn: cannot write to standard output: " + std::generic_category().message(outBuffer_.failure()) + "\n");
  return Status::Usage;
}

} // namespace tessarin::tool
