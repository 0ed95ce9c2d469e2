#include "docs/markdown.hpp"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace tessarin::test {

std::vector<FencedBlock> fencedBlocks(const std::filesystem::path& file) {
  constexpr std::string_view fence = "```";
  std::ifstream stream(file);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  std::vector<FencedBlock> blocks;
  std::string lead;
  bool inside = false;
  bool follows = false;
  std::size_t number = 0;
  for (std::string line; std::getline(stream, line);) {
    ++number;
    if (line.starts_with(fence)) {
      if (!inside) blocks.push_back({line.substr(fence.size()), lead, {}, number, follows});
      inside = !inside;
      follows = true;
    } else if (inside) {
      blocks.back().text += line + '\n';
    } else if (!line.empty()) {
      lead = line;
      follows = false;
    }
  }
  if (inside) throw std::runtime_error("a block of " + file.string() + " is not closed");
  return blocks;
}

void rewriteBlock(const std::filesystem::path& file, const FencedBlock& block, const std::string& text) {
  std::ifstream stream(file);
  const std::string former(std::istreambuf_iterator<char>(stream), {});
  // Found by its text, since blocks that were rewritten before have moved the lines.
  const std::string head = "```" + block.info + '\n';
  const std::size_t at = former.find(head + block.text + "```\n");
  if (at == std::string::npos) throw std::runtime_error("a block of " + file.string() + " has changed");
  std::ofstream(file) << std::string(former).replace(at + head.size(), block.text.size(), text);
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream stream{std::string(text)};
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

} // namespace tessarin::test
