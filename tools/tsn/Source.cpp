#include "Source.hpp"

#include "tessarin/parser/lex/Tokenizer.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessarin::tool {

namespace {

/// An open file; standard input is left open.
class File {
public:
  explicit File(const std::string& path)
      : descriptor_(path == Source::standardInput ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) fail();
  }
  ~File() {
    if (descriptor_ != STDIN_FILENO) ::close(descriptor_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  /// The size that the file says it has; 0 for what has none, such as a pipe.
  [[nodiscard]] std::size_t size() const {
    struct stat status {};
    return ::fstat(descriptor_, &status) == 0 ? static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) : 0;
  }

  /// Reads up to `capacity` bytes; 0 at the end.
  std::size_t read(char* out, std::size_t capacity) const {
    while (true) {
      const ssize_t length = ::read(descriptor_, out, capacity);
      if (length >= 0) return static_cast<std::size_t>(length);
      if (errno != EINTR) fail();
    }
  }

private:
  [[noreturn]] static void fail() { throw UnreadableFile(errno, std::generic_category(), "cannot be read"); }

  int descriptor_;
};

std::string readBytes(const std::string& path) {
  constexpr std::size_t smallest = 4096;
  const File file(path);
  // One byte more than the size, so that the end shows without another block.
  std::string bytes(std::max(file.size() + 1, smallest), '\0');
  std::size_t length = 0;
  while (const std::size_t more = file.read(bytes.data() + length, bytes.size() - length)) {
    length += more;
    if (length == bytes.size()) bytes.resize(2 * bytes.size());
  }
  bytes.resize(length);
  return bytes;
}

/// Whether the input begins as UTF-16 does: with a mark of the byte order.
bool looksLikeUtf16(std::string_view bytes) {
  return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

nvf::ustring decode(std::string_view bytes) {
  try {
    return nvf::decode_utf8(bytes);
  } catch (const nvf::InvalidUtf8& cause) {
    throw NotUtf8(cause, bytes);
  }
}

} // namespace

NotUtf8::NotUtf8(const nvf::InvalidUtf8& cause, std::string_view bytes) : InvalidUtf8(cause), what_(cause.what()) {
  const nvf::ustring before = nvf::decode_utf8(bytes.substr(0, cause.offset()));
  std::size_t line = 1;
  std::size_t begin = 0; // of the line
  for (std::size_t i = 0; i < before.size(); ++i) {
    const bool endsLine = before[i] == u'\n' || (before[i] == u'\r' && !before.substr(i + 1, 1).starts_with(u'\n'));
    if (!endsLine) continue;
    ++line;
    begin = i + 1;
  }
  what_ += ", line " + std::to_string(line) + ", column " + std::to_string(before.size() - begin + 1);
  if (looksLikeUtf16(bytes)) what_ += "; it looks like UTF-16: save it as UTF-8";
}

Source Source::read(const std::string& path) {
  const nvf::ustring text = decode(readBytes(path));
  return Source({nvf::FileName(displayName(path)), text});
}

nvf::ustring_view Source::line(std::size_t number) const {
  while (lines_.size() <= number && !unwalked_.empty()) {
    const std::size_t length = std::min(unwalked_.find_first_of(u"\n\r"), unwalked_.size());
    lines_.push_back(unwalked_.substr(0, length));
    unwalked_.remove_prefix(length);
    unwalked_.remove_prefix(unwalked_.starts_with(u"\r\n") ? 2 : std::min<std::size_t>(unwalked_.size(), 1));
  }
  return number < lines_.size() ? lines_[number] : nvf::ustring_view();
}

std::size_t Source::endOfToken(std::size_t number, std::size_t column) const {
  const nvf::ustring_view text = buffer_.text();
  const nvf::ustring_view inLine = line(number);
  if (column >= inLine.size()) return column;
  if (tokenEnds_.empty()) {
    const auto tokenizer = compiler::core::Tokenizer::create();
    tokenizer->setBuffer(text.data(), text.size(), false);
    std::size_t end = 0;
    for (auto token = tokenizer->next(); token.kind != compiler::core::Kind::EMPTY; token = tokenizer->next()) {
      end += token.length;
      if (token.length != 0) tokenEnds_.push_back(end);
    }
  }
  const auto lineBegin = static_cast<std::size_t>(inLine.data() - text.data());
  const auto end = std::upper_bound(tokenEnds_.begin(), tokenEnds_.end(), lineBegin + column);
  return end == tokenEnds_.end() ? column : std::min(*end - lineBegin, inLine.size());
}

} // namespace tessarin::tool
