// Paths as URI references.
#pragma once

#include <filesystem>
#include <string>

namespace tessarin::tool {

/// The path as RFC 3986 has it: a relative path as a relative reference, an absolute one as a `file` URI. Every byte
/// but letters, digits and `-._~` is percent-encoded, whatever encoding the path is in. The dots of `./` are left out.
std::string uriOf(const std::filesystem::path& path);

} // namespace tessarin::tool
