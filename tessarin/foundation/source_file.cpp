#include "tessarin/foundation/source_file.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nvf {

namespace {

/// An open file.
class File {
public:
  explicit File(const std::filesystem::path& path)
      : path_(path), descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) fail();
  }
  ~File() { ::close(descriptor_); }
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
  [[noreturn]] void fail() const { throw UnreadableFile(path_, errno); }

  const std::filesystem::path& path_;
  int descriptor_;
};

} // namespace

UnreadableFile::UnreadableFile(const std::filesystem::path& path, int error)
    : StandardFailure(error, std::generic_category(), path.native() + " cannot be read"), path_(path) {}

std::string read_bytes(const std::filesystem::path& path) {
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

SourceBuffer read_source(const std::filesystem::path& path) {
  return {FileName(path), read_bytes(path)};
}

} // namespace nvf
