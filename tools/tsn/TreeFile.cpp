#include "TreeFile.hpp"

#include "Source.hpp"
#include "SourceFiles.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <unordered_set>
#include <utility>

namespace tessarin::tool {

namespace {

[[noreturn]] void fail(const char* what, int error = errno) {
  throw UnreadableFile(error, std::generic_category(), what);
}

/// A descriptor that is closed at the end.
class Descriptor {
public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { reset(-1); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  void reset(int number) {
    if (number_ >= 0) ::close(number_);
    number_ = number;
  }
  [[nodiscard]] int get() const noexcept { return number_; }
  [[nodiscard]] int release() noexcept { return std::exchange(number_, -1); }

private:
  int number_;
};

void writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t length = ::write(file, bytes.data(), bytes.size());
    if (length >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(length));
    } else if (errno != EINTR) {
      fail("cannot be written");
    }
  }
}

/// A new file beside others, which is removed unless it takes the place of one.
class NewFile {
public:
  NewFile(int directory, const std::string& beside) : directory_(directory), file_(-1) {
    constexpr int attempts = 100;
    constexpr mode_t ownerOnly = 0600;
    for (int i = 0; i < attempts && file_.get() < 0; ++i) {
      name_ = "." + beside + "." + std::to_string(::getpid()) + "." + std::to_string(i);
      file_.reset(::openat(directory, name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownerOnly));
      if (file_.get() < 0 && errno != EEXIST) fail("cannot be written");
    }
    if (file_.get() < 0) fail("cannot be written", EEXIST);
  }
  ~NewFile() {
    if (!name_.empty()) ::unlinkat(directory_, name_.c_str(), 0);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  [[nodiscard]] int get() const noexcept { return file_.get(); }
  void takePlaceOf(const std::string& other) {
    if (::renameat(directory_, name_.c_str(), directory_, other.c_str()) != 0) fail("cannot be written");
    name_.clear();
  }

private:
  int directory_;
  Descriptor file_;
  std::string name_;
};

} // namespace

TreeFile::TreeFile(const std::string& root, const std::string& path) {
  Descriptor directory(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.get() < 0) fail("cannot be read");
  std::size_t begin = 0;
  for (std::size_t slash = 0; (slash = path.find('/', begin)) != std::string::npos; begin = slash + 1) {
    const std::string part = path.substr(begin, slash - begin);
    if (part == "..") fail("cannot be read", EINVAL);
    if (part.empty()) continue;
    directory.reset(::openat(directory.get(), part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (directory.get() < 0) fail("cannot be read");
  }
  name_ = path.substr(begin);
  // A pipe would not open before somebody writes to it.
  Descriptor file(::openat(directory.get(), name_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (file.get() < 0) fail(errno == ELOOP ? "is a link, and links are not followed" : "cannot be read");
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) fail("cannot be read");
  if (S_ISDIR(status.st_mode)) fail("cannot be read", EISDIR);
  if (!S_ISREG(status.st_mode)) fail("is no plain file", EINVAL);
  directory_ = directory.release();
  file_ = file.release();
}

TreeFile::~TreeFile() {
  ::close(file_);
  ::close(directory_);
}

std::string TreeFile::read() const {
  constexpr std::size_t blockSize = 65536;
  std::string bytes;
  std::array<char, blockSize> block{};
  while (true) {
    const ssize_t length = ::read(file_, block.data(), block.size());
    if (length == 0) return bytes;
    if (length > 0) {
      bytes.append(block.data(), static_cast<std::size_t>(length));
    } else if (errno != EINTR) {
      fail("cannot be read");
    }
  }
}

void TreeFile::replace(std::string_view bytes) const {
  constexpr mode_t permissions = 07777;
  struct stat status {};
  if (::fstat(file_, &status) != 0) fail("cannot be read");
  NewFile file(directory_, name_);
  writeAll(file.get(), bytes);
  // Who may not give files away keeps the new one.
  static_cast<void>(::fchown(file.get(), status.st_uid, status.st_gid) == 0);
  if (::fchmod(file.get(), status.st_mode & permissions) != 0) fail("cannot be written");
  if (::fsync(file.get()) != 0) fail("cannot be written");
  file.takePlaceOf(name_);
}

TreePaths treePaths(const std::vector<std::string>& arguments) {
  namespace fs = std::filesystem;
  TreePaths paths;
  std::unordered_set<std::string> seen;
  const auto add = [&](const std::string& root, const std::string& path, const std::string& shown) {
    if (seen.insert(identityOf(shown)).second) paths.files.push_back({root, path, shown});
  };
  for (const std::string& argument : arguments) {
    std::error_code ignored;
    if (!fs::is_directory(argument, ignored)) {
      const std::size_t slash = argument.rfind('/');
      const bool isHere = slash == std::string::npos;
      add(isHere ? "." : argument.substr(0, slash + 1), isHere ? argument : argument.substr(slash + 1), argument);
      continue;
    }
    FilesBelow below = filesBelow(argument);
    std::move(below.unreadable.begin(), below.unreadable.end(), std::back_inserter(paths.unreadable));
    if (below.files.empty()) paths.unreadable.emplace_back(argument, std::error_code());
    for (const std::string& file : below.files) {
      if (fs::is_symlink(fs::symlink_status(file, ignored))) continue;
      std::string relative = file.substr(std::min(file.size(), argument.size()));
      relative.erase(0, std::min(relative.find_first_not_of('/'), relative.size()));
      add(argument, relative, file);
    }
  }
  return paths;
}

} // namespace tessarin::tool
