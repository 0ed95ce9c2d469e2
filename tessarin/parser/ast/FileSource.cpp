#include "tessarin/parser/ast/FileSource.hpp"

#include <algorithm>
#include <istream>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>

namespace tessarin::compiler::core {

namespace {
/// The words by value.
constexpr std::string_view words[] = {"open", "closed"};
} // namespace

std::ostream& operator<<(std::ostream& stream, FileSource source) {
  const auto value = static_cast<std::size_t>(source);
  if (value < std::size(words)) return stream << words[value];
  stream.setstate(std::ios::badbit);
  return stream;
}

nvf::ustring dump_text(FileSource source) {
  const auto value = static_cast<std::size_t>(source);
  return nvf::widen(value < std::size(words) ? std::string(words[value]) : std::to_string(static_cast<int>(source)));
}

std::istream& operator>>(std::istream& stream, FileSource& source) {
  std::string word;
  stream >> word;
  const auto* const found = std::find(std::begin(words), std::end(words), word);
  source = static_cast<FileSource>(found == std::end(words) ? -1 : static_cast<int>(found - std::begin(words)));
  return stream;
}

} // namespace tessarin::compiler::core
