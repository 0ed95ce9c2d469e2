// The scanner's tokens as text: `ID1 WHITE1 …`, a kind and its length each.
#pragma once

#include "tessarin/parser/lex/Kind.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin::test {

namespace core = tessarin::compiler::core;

inline std::vector<core::LexToken> scan(std::u16string_view text, bool implicitEol = false) {
  const auto tokenizer = core::Tokenizer::create();
  tokenizer->setBuffer(text.data(), text.size(), implicitEol);
  std::vector<core::LexToken> tokens;
  for (auto token = tokenizer->next(); token.kind != core::Kind::EMPTY; token = tokenizer->next())
    tokens.push_back(token);
  return tokens;
}

inline std::string show(const std::vector<core::LexToken>& tokens) {
  std::string out;
  for (const core::LexToken& token : tokens) {
    if (!out.empty()) out += ' ';
    out += nvf::encode_utf8(core::kind_name(token.kind)) + std::to_string(token.length);
  }
  return out;
}

/// The tokens of the text line by line, the state being carried from one to the next.
inline std::vector<core::LexToken> scanByLine(std::u16string_view text) {
  const auto tokenizer = core::Tokenizer::create();
  core::State state;
  std::vector<core::LexToken> tokens;
  const auto isEnd = [](char16_t c) { return c >= 10 && c <= 13; };
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin;
    while (end < text.size() && !isEnd(text[end])) ++end;
    if (end < text.size()) end += text[end] == 13 && end + 1 < text.size() && isEnd(text[end + 1]) ? 2 : 1;
    std::vector<core::LexToken> line(3 * (end - begin) + 8);
    const auto count =
        tokenizer->tokenizeLine(line.data(), line.size(), state, text.data() + begin, end - begin, nullptr);
    if (count < 0) return {};
    tokens.insert(tokens.end(), line.begin(), line.begin() + count);
    begin = end;
  }
  return tokens;
}

} // namespace tessarin::test
