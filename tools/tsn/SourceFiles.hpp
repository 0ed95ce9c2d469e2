// Which files the arguments of a command stand for.
#pragma once

#include "Console.hpp"
#include "Status.hpp"

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarin::tool {

/// What is below a directory.
struct FilesBelow {
  std::vector<std::string> files; ///< the paths of the .tsn files, sorted byte by byte
  /// The directories that cannot be looked into, with the reasons, sorted.
  std::vector<std::pair<std::string, std::error_code>> unreadable;
};

/// Symbolic links are followed to files, but not to directories, so that every file comes once and loops end. A file
/// that cannot be read is among the files, for its reader to find out why.
FilesBelow filesBelow(const std::filesystem::path& directory);

/// The files alone. What cannot be looked into is told and makes `status` that of trouble.
std::vector<std::string> readableFilesBelow(const std::filesystem::path& directory, Console& console, Status& status);

/// The same for each path that leads to a file through the same directory, under the same name there: `a.tsn`,
/// `./a.tsn` and `b/../a.tsn`, but not a link to it.
std::string identityOf(const std::string& path);

} // namespace tessarin::tool
