// Feeds any text to the scanner, as a whole and line by line, and to the lexer.
#include "tessarin/parser/lex/Lexer.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include "FuzzText.hpp"

#include <cstdlib>
#include <vector>

namespace {

using namespace tessarin::compiler::core;

void require(bool holds) {
  if (!holds) std::abort();
}

void scanWhole(std::u16string_view text) {
  const auto tokenizer = Tokenizer::create();
  tokenizer->setBuffer(text.data(), text.size(), false);
  std::size_t sum = 0;
  for (LexToken token = tokenizer->next(); token.kind != Kind::EMPTY; token = tokenizer->next()) {
    sum += token.length;
    (void)tokenizer->lineColumn(sum);
  }
  // A code unit 0 at the end ends the text in silence.
  require(sum == text.size() || (sum + 1 == text.size() && text.back() == 0));
}

void scanLines(std::u16string_view text) {
  const auto tokenizer = Tokenizer::create();
  State state;
  std::vector<LexToken> tokens;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find(u'\n'), text.size() - 1) + 1;
    tokens.resize(3 * length + 8);
    bool hasCode = false;
    (void)tokenizer->tokenizeLine(tokens.data(), tokens.size(), state, text.data(), length, &hasCode);
    text.remove_prefix(length);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = tessarin::fuzz::textOf(data, size);
  const nvf::ScopedWarningSink silent([](const nvf::Message&) {});
  scanWhole(text);
  scanLines(text);
  Lexer lexer(nvf::SourceBuffer(nvf::FileName("fuzz.tsn"), std::u16string_view(text)));
  while (lexer.next().code() != TokenId::EOI) {
  }
  return 0;
}
