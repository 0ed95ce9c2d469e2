// Source text from the disk.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/failure.hpp"
#include "tessarin/foundation/location.hpp"

#include <filesystem>
#include <string>
#include <system_error>

namespace nvf {

/// Thrown for a file that cannot be opened or read; the code is that of the system.
class TESSARIN_EXPORT UnreadableFile : public StandardFailure<std::system_error> {
public:
  /// For the file, with what the system says: `errno` as it was.
  UnreadableFile(const std::filesystem::path& path, int error);
  /// The path as it was given.
  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

private:
  std::filesystem::path path_;
};

/// The bytes of a file to its end, whatever sort of file it is. Throws `UnreadableFile`. Safe from any thread.
[[nodiscard]] TESSARIN_EXPORT std::string read_bytes(const std::filesystem::path& path);

/// The text of a UTF-8 file under the name `path`. Throws `UnreadableFile`, and `InvalidUtf8` where the bytes are none.
/// A byte order mark is kept: positions count it. Safe from any thread.
[[nodiscard]] TESSARIN_EXPORT SourceBuffer read_source(const std::filesystem::path& path);

} // namespace nvf
