// Which files the arguments of a command stand for.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tessarin::tool {

/// The paths of the .tsn files below a directory, sorted byte by byte. Symbolic links are followed to files, but not to
/// directories, so that every file comes once and loops end. What cannot be looked into is among the paths, for its
/// reader to find out why.
std::vector<std::string> filesBelow(const std::filesystem::path& directory);

} // namespace tessarin::tool
