// What .editorconfig files say about the layout of a source file.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/ide/Format.hpp"

#include <filesystem>
#include <string_view>

namespace tessarin::ide {

/// Whether a pattern of an .editorconfig file, such as `*.{tsn,txt}` or `models/**`, matches a path relative to the
/// file's directory, with "/" between its parts. `*` stands for any text without "/", `**` for any text, `?` for a
/// character, `[…]` for one of several, `{a,b}` for alternatives and `{1..9}` for a number. Takes at most
/// time in proportion to the product of the two lengths; patterns of more than 1024 bytes match nothing. Safe from any
/// thread.
[[nodiscard]] TESSARIN_EXPORT bool matchesEditorConfigPattern(std::string_view pattern, std::string_view path);

/// Sets the width and the indentation that the text of an .editorconfig file gives for a path relative to it; what it
/// does not name stays. Returns whether the file says that it is the topmost one. Safe from any thread.
TESSARIN_EXPORT bool applyEditorConfig(std::string_view text, std::string_view path, FormatOptions& options);

/// The options for a file by the .editorconfig files of its directory and those above, the nearest last, up to one
/// that says that it is the topmost one. `max_line_length` is the width, `indent_size` the indentation, or where that
/// is "tab" `tab_width`. Files that cannot be read count as empty. The file itself need not be there. Safe from any
/// thread.
[[nodiscard]] TESSARIN_EXPORT FormatOptions formatOptionsFor(const std::filesystem::path& file);

} // namespace tessarin::ide
