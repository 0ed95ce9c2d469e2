// A file that is there whole, or not at all. Private to the stage of packages.
#pragma once

#include <filesystem>
#include <string_view>

namespace tessarin::compiler::core {

/// Writes the bytes into a new file. They go to a file with a name of its own in the same directory, which gets its
/// name in one step when it is complete. That step fails where the name exists, whatever it is the name of: nothing is
/// overwritten and no link is followed, and of several writers at the same time one wins. After a failure nothing is
/// left. The permissions are those that the process gives to new files.
///
/// Returns false where the name exists. Throws `std::filesystem::filesystem_error` about `path` for all other reasons.
bool writeNewFile(const std::filesystem::path& path, std::string_view bytes);

} // namespace tessarin::compiler::core
