#include "tessarin/parser/lex/Tokenizer.hpp"

#include "tessarin/foundation/identifier.hpp"
#include "tessarin/parser/lex/TokenizerImpl.hpp"

namespace tessarin::compiler::core {

Tokenizer::~Tokenizer() = default;

std::unique_ptr<Tokenizer> Tokenizer::create() {
  return std::make_unique<TokenizerImpl>();
}

bool Tokenizer::isCxId(const char16_t* text, std::size_t length) noexcept {
  return nvf::is_identifier({text, length});
}

bool Tokenizer::isReservedWord(const char16_t* text, std::size_t length) noexcept {
  return reserved_word(text, length) != noKind; // `ID` has no reserved text, so that it cannot come out either
}

} // namespace tessarin::compiler::core
