#include "tessarin/packages/NewFile.hpp"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace tessarin::compiler::core {

namespace {

namespace fs = std::filesystem;

/// With what the system has answered to the last call.
std::system_error lastError() {
  return {errno, std::generic_category()};
}

/// A new file under a name of its own, which is removed unless it is published.
class TemporaryFile {
public:
  /// Throws `std::system_error`, as all operations do.
  explicit TemporaryFile(const fs::path& directory) {
    // Names can only be taken by what another process has left behind, so a few attempts are enough.
    static std::atomic<unsigned long> counter = 0;
    for (int attempt = 0; attempt < 1000 && file_ < 0; ++attempt) {
      path_ = directory / (".tessarin-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp");
      file_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
      if (file_ < 0 && errno != EEXIST && errno != EINTR) break;
    }
    if (file_ < 0) throw lastError();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (file_ >= 0) ::close(file_);
    if (!path_.empty()) ::unlink(path_.c_str());
  }

  void write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = ::write(file_, bytes.data(), bytes.size());
      if (count < 0 && errno != EINTR) throw lastError();
      if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  /// Some systems only tell here that something could not be written.
  void close() {
    const int file = file_;
    file_ = -1;
    if (::close(file) != 0 && errno != EINTR) throw lastError();
  }

  /// Gives the file its name; returns false where that exists.
  bool publish(const fs::path& name) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) {
      path_.clear();
      return true;
    }
    // Not every file system knows the flag.
    if (errno == EEXIST) return false;
#endif
    if (::link(path_.c_str(), name.c_str()) == 0) return true; // the name that it had is removed with this object
    if (errno == EEXIST) return false;
    throw lastError();
  }

private:
  fs::path path_;
  int file_ = -1;
};

} // namespace

bool writeNewFile(const fs::path& path, std::string_view bytes) {
  try {
    // What is there now will most likely be there later: nothing needs to be written to find that out.
    std::error_code ignored;
    if (exists(fs::symlink_status(path, ignored))) return false;
    TemporaryFile file(path.parent_path());
    file.write(bytes);
    file.close();
    return file.publish(path);
  } catch (const std::system_error& reason) {
    throw fs::filesystem_error("cannot write", path, reason.code());
  }
}

} // namespace tessarin::compiler::core
