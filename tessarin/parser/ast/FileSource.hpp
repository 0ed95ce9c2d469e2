// Where a model or a function file came from, as its caller says.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"

#include <iosfwd>

namespace tessarin::compiler::core {

/// A mark that a model or a function carries for its caller; nothing in this library looks at it.
enum class FileSource : int { open = 0, closed = 1 };

/// Writes "open" or "closed"; for any other value it writes nothing and sets the stream's bad bit.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, FileSource source);
/// "open" or "closed", or the number of any other value.
TESSARIN_EXPORT nvf::ustring dump_text(FileSource source);
/// Reads one word and sets the value of that name, or -1 for any other word. Safe from any thread.
TESSARIN_EXPORT std::istream& operator>>(std::istream& stream, FileSource& source);

} // namespace tessarin::compiler::core
