// The fenced blocks of a Markdown file.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin::test {

/// A block between two fences.
struct FencedBlock {
  std::string info;     ///< what stands behind the opening fence: the language, and more words for the tests
  std::string lead;     ///< the last line before the block that is not blank
  std::string text;     ///< the lines of the block, each with its line end
  std::size_t line = 0; ///< the line of the opening fence, from 1
  bool follows = false; ///< nothing but blank lines stands between this block and the one before
};

/// The blocks of a file in their order. Throws `std::runtime_error` where the file cannot be read or a fence is open at
/// its end.
std::vector<FencedBlock> fencedBlocks(const std::filesystem::path& file);

/// Puts other text between the fences of a block, in the file.
void rewriteBlock(const std::filesystem::path& file, const FencedBlock& block, const std::string& text);

/// The lines of a text, without their ends.
std::vector<std::string> linesOf(std::string_view text);

} // namespace tessarin::test
