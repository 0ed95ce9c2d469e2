// A file that is read and written in place, without ever leaving the directory that was named.
#pragma once

#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarin::tool {

/// A file below a directory. No link is followed on the way from the directory to the file, whatever becomes of the
/// tree in the meantime; the file itself is no link either.
class TreeFile {
public:
  /// Opens the file. `root` is a directory, and `path` leads from there through directories, with "/" between its parts
  /// and none of them "..". Throws `UnreadableFile` where it cannot be opened, or is no plain file.
  TreeFile(const std::string& root, const std::string& path);
  ~TreeFile();
  TreeFile(const TreeFile&) = delete;
  TreeFile& operator=(const TreeFile&) = delete;

  /// The bytes of the file. Throws `UnreadableFile`.
  [[nodiscard]] std::string read() const;
  /// Puts a file with these bytes, and the mode and the owner of the file, in its place: at every moment there is the
  /// one or the other, as a whole. Throws `UnreadableFile`; the file is then as it was.
  void replace(std::string_view bytes) const;

private:
  int directory_ = -1;
  int file_ = -1;
  std::string name_;
};

/// A file with the directory that it is looked for in.
struct TreePath {
  std::string root;  ///< a directory
  std::string path;  ///< from there
  std::string shown; ///< as the command line has it
};

/// What the arguments of a command line stand for.
struct TreePaths {
  std::vector<TreePath> files; ///< each once, in order
  /// The directories that cannot be looked into, with the reasons, and those without files, with none.
  std::vector<std::pair<std::string, std::error_code>> unreadable;
};

/// A file stands for itself, a directory for all files below it that are named *.tsn and are no links.
TreePaths treePaths(const std::vector<std::string>& arguments);

} // namespace tessarin::tool
