#include "tessarin/parser/lex/Lexer.hpp"

#include "tessarin/foundation/messages.hpp"

#include <array>
#include <cstddef>
#include <utility>

namespace tessarin::compiler::core {

namespace {

/// The words that are keywords to the parser and names to the scanner.
constexpr std::pair<ustring_view, TokenId::Value> softKeywords[] = {{u"value", TokenId::VALUE}};

TokenId::Value codeOfName(ustring_view name) noexcept {
  for (const auto& [word, code] : softKeywords) {
    if (word == name) return code;
  }
  return TokenId::ID;
}

/// The texts of the reserved words by kind, interned once.
const Token::Text& textOfWord(Kind kind) {
  static const auto texts = [] {
    std::array<Token::Text, kindCount> result;
    for (std::size_t i = 0; i < kindCount; ++i) result[i] = Token::Text(kind_image(static_cast<Kind>(i)));
    return result;
  }();
  return texts[static_cast<std::size_t>(kind)];
}

} // namespace

MarkupListener::~MarkupListener() = default;

Lexer::Lexer(const nvf::FileBuffer<char16_t, nvf::FileBufferDisplay<char16_t>>& buffer)
    : fileName_(buffer.fileName()), tokenizer_(Tokenizer::create()), text_(buffer.text().begin(), buffer.text().end()) {
  tokenizer_->setBuffer(text_.empty() ? nullptr : text_.data(), text_.size(), false);
}

Lexer::Lexer(const nvf::AsciiString& text, nvf::FileName name)
    : Lexer(nvf::SourceBuffer(name, ustring_view(text.text()))) {}

Lexer::~Lexer() = default;

void Lexer::markupNotify(std::size_t offset, std::size_t length) {
  const std::shared_ptr<MarkupListener> listener = markupListener_; // it may be replaced while it is told
  if (listener == nullptr) return;
  const auto begin = text_.begin() + static_cast<std::ptrdiff_t>(offset);
  listener->notify(ustring(begin, begin + static_cast<std::ptrdiff_t>(length)), tokenizer_->lineColumn(offset));
}

Token Lexer::next() {
  try {
    return read();
  } catch (const nvf::LineColumn::ValueTooLarge&) {
    using kelvane::tessarin::compiler::core::parse::LineColumnTooLarge;
    throw nvf::MessageException(nvf::Message(LineColumnTooLarge(ustring(fileName_))));
  }
}

/// Passes over a stretch that the parser does not see and the listener does.
void Lexer::drop(std::size_t length) {
  const std::size_t start = std::exchange(position_, position_ + length);
  markupNotify(start, length);
}

/// The length of a continuation: the dots, the comment if there is one, and the line end.
std::size_t Lexer::readContinuation(const LexToken& dots) {
  LexToken behind = tokenizer_->next();
  std::size_t length = dots.length + behind.length;
  if (TokenId::convert(behind.kind) == TokenId::COMMENT) {
    behind = tokenizer_->next();
    length += behind.length;
  }
  return length;
}

Token Lexer::read() {
  for (;;) {
    const LexToken lexed = tokenizer_->next();
    const std::size_t start = position_;
    TokenId::Value code = TokenId::convert(lexed.kind);
    switch (code) {
    case TokenId::WHITE: position_ += lexed.length; continue;
    case TokenId::COMMENT:
    case TokenId::BLOCK_COMMENT:
    case TokenId::CODEPAD_COMMENT:
    case TokenId::CXOK_COMMENT:
    // Unknown characters, "pre" and the markers of keywords inside brackets vanish here without a fault: intended.
    case TokenId::INTERNAL_ERROR: drop(lexed.length); continue;
    case TokenId::DOTDOTDOT: drop(readContinuation(lexed)); continue;
    case TokenId::EOI:
      if (!incompleteCommentSeen_ && tokenizer_->inBlockComment()) {
        incompleteCommentSeen_ = true;
        code = TokenId::INCOMPLETE_COMMENT;
        position_ = text_.size() - (!text_.empty() && text_.back() == 0 ? 1 : 0);
      }
      break;
    case TokenId::ID: code = codeOfName({text_.data() + start, lexed.length}); break;
    default: break;
    }
    position_ += lexed.length;
    const nvf::Location location(fileName_, tokenizer_->lineColumn(start));
    if (TokenId::isReservedKeyword(code)) return {code, location, textOfWord(lexed.kind)};
    return {code, location, text_.data() + start, lexed.length};
  }
}

} // namespace tessarin::compiler::core
