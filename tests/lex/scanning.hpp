// A notation for the scanner's tokens: each as the name of its kind and its length, such as "ID1 TRANS1".
#pragma once

#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin::test {

namespace lex = tessarin::compiler::core;

inline std::string narrow(nvf::ustring_view text) {
  return nvf::encode_utf8(text);
}

inline std::string show(const std::vector<lex::LexToken>& tokens) {
  std::string text;
  for (const lex::LexToken& token : tokens) {
    if (!text.empty()) text += ' ';
    text += narrow(lex::kind_name(token.kind)) + std::to_string(token.length);
  }
  return text;
}

/// The tokens that `tokenizer` still gives, or the first `limit` of them.
inline std::vector<lex::LexToken> rest(lex::Tokenizer& tokenizer, std::size_t limit = SIZE_MAX) {
  std::vector<lex::LexToken> tokens;
  while (tokens.size() < limit) {
    const lex::LexToken token = tokenizer.next();
    if (token == lex::LexToken::INVALID_TOKEN) break;
    tokens.push_back(token);
  }
  return tokens;
}

inline std::vector<lex::LexToken> scanAll(nvf::ustring_view text, bool implicitEol = false) {
  const auto tokenizer = lex::Tokenizer::create();
  tokenizer->setBuffer(text.data(), text.size(), implicitEol);
  return rest(*tokenizer);
}

inline std::string scan(nvf::ustring_view text) {
  return show(scanAll(text));
}

/// The tokens of a text that is read from the given state on.
inline std::string scanFrom(const lex::State& state, nvf::ustring_view text) {
  const auto tokenizer = lex::Tokenizer::create();
  tokenizer->setBuffer(text.data(), text.size(), false);
  tokenizer->setState(state);
  return show(rest(*tokenizer));
}

inline std::string dump(const lex::State& state) {
  char16_t buffer[lex::State::dumpCapacity];
  const char16_t* end = state.dump(buffer);
  return narrow({static_cast<const char16_t*>(buffer), static_cast<std::size_t>(end - buffer)});
}

inline std::size_t lengthOf(const std::vector<lex::LexToken>& tokens) {
  std::size_t length = 0;
  for (const lex::LexToken& token : tokens) length += token.length;
  return length;
}

/// The lines of a text as the scanner divides it, each with its line end.
inline std::vector<nvf::ustring_view> linesOf(nvf::ustring_view text) {
  const auto isEnd = [](char16_t unit) { return unit >= u'\n' && unit <= u'\r'; };
  std::vector<nvf::ustring_view> lines;
  while (!text.empty()) {
    std::size_t end = 0;
    while (end < text.size() && !isEnd(text[end])) ++end;
    if (end + 1 < text.size() && text[end] == u'\r' && isEnd(text[end + 1])) ++end;
    if (end < text.size()) ++end;
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return lines;
}

/// The tokens of all lines, each tokenized alone with the state that the one before it left.
inline std::vector<lex::LexToken> scanByLine(nvf::ustring_view text) {
  const auto tokenizer = lex::Tokenizer::create();
  lex::State state;
  std::vector<lex::LexToken> tokens;
  std::vector<lex::LexToken> slots;
  for (const nvf::ustring_view line : linesOf(text)) {
    slots.resize(3 * line.size() + 6);
    const std::ptrdiff_t count =
        tokenizer->tokenizeLine(slots.data(), slots.size(), state, line.data(), line.size(), nullptr);
    if (count < 0) return {};
    tokens.insert(tokens.end(), slots.begin(), slots.begin() + count);
  }
  return tokens;
}

} // namespace tessarin::test
