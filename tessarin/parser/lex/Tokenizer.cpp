#include "tessarin/parser/lex/Tokenizer.hpp"

#include "tessarin/parser/lex/TokenizerImpl.hpp"

#include <algorithm>

namespace tessarin::compiler::core {

Tokenizer::~Tokenizer() = default;

std::unique_ptr<Tokenizer> Tokenizer::create() {
  return std::make_unique<TokenizerImpl>();
}

bool Tokenizer::isCxId(const char16_t* text, std::size_t length) noexcept {
  return length != 0 && isLetter(text[0]) && std::all_of(text + 1, text + length, isNamePart);
}

bool Tokenizer::isReservedWord(const char16_t* text, std::size_t length) noexcept {
  return reserved_word(text, length) != noKind; // `ID` has no reserved text, so that it cannot come out either
}

} // namespace tessarin::compiler::core
