#include "tessarin/ide/LineWriter.hpp"

#include <algorithm>
#include <utility>

namespace tessarin::ide {

nvf::ustring_view trimmed(nvf::ustring_view text) noexcept {
  while (!text.empty() && (text.front() == u' ' || text.front() == u'\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == u' ' || text.back() == u'\t')) text.remove_suffix(1);
  return text;
}

std::size_t columnsOf(nvf::ustring_view text) noexcept {
  std::size_t columns = 0;
  for (const char16_t unit : text) columns += unit < 0xdc00 || unit >= 0xe000 ? 1U : 0U; // not the second of a pair
  return columns;
}

void LineWriter::end(const Block& block, std::size_t columns, nvf::ustring_view comment) {
  if (!(block == block_)) {
    const std::size_t done = lines_.empty() ? 0 : lines_.back().end;
    nvf::ustring line = code_.substr(done);
    code_.resize(done);
    flush();
    code_ = std::move(line);
    block_ = block;
  }
  lines_.push_back({code_.size(), columns, comment});
}

void LineWriter::flush() {
  // A long line does not push the comments of the others to the right.
  const std::size_t longest = width_ * 6 / 10;
  std::size_t column = 0;
  for (const Line& line : lines_) {
    if (!line.comment.empty() && line.columns <= longest) column = std::max(column, line.columns);
  }
  std::size_t begin = 0;
  for (const Line& line : lines_) {
    text_.append(code_, begin, line.end - begin);
    begin = line.end;
    if (!line.comment.empty()) {
      const bool isAligned = line.columns <= longest;
      if (line.columns > 0) text_.append(isAligned ? column - line.columns + 1 : 1, u' ');
      text_.append(line.comment);
    }
    text_.append(lineEnd_);
  }
  lines_.clear();
  code_.clear();
}

void LineWriter::blank() {
  flush();
  text_.append(lineEnd_);
}

void LineWriter::raw(nvf::ustring_view text) {
  flush();
  text_.append(text).append(lineEnd_);
}

void LineWriter::tail(nvf::ustring_view text) {
  flush();
  text_.append(text);
}

nvf::ustring LineWriter::take() {
  flush();
  return std::move(text_);
}

} // namespace tessarin::ide
