// What the parser pulls tokens from: filters the scanner's stream and gives the tokens text and place.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/lex/MarkupListener.hpp"
#include "tessarin/parser/lex/Token.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include <cstddef>
#include <memory>
#include <vector>

namespace tessarin::compiler::core {

/// Reads one text to its end. Used by one thread at a time; the tokens outlive it.
class TESSARIN_EXPORT Lexer {
public:
  /// Copies the text of the buffer.
  explicit Lexer(const nvf::FileBuffer<char16_t, nvf::FileBufferDisplay<char16_t>>& buffer);
  /// Copies the text; `name` is the file name in all locations.
  Lexer(const nvf::AsciiString& text, nvf::FileName name);
  ~Lexer();
  Lexer(const Lexer&) = delete;
  Lexer& operator=(const Lexer&) = delete;

  /// The next token; at the end of the text `EOI`, again and again, preceded once by `INCOMPLETE_COMMENT` if a block
  /// comment is open there. Blanks, comments, continuations and whatever has no token are dropped.
  ///
  /// Warns of names that are too long. Throws `nvf::MessageException` with the message LineColumnTooLarge where a token
  /// is too far right or down for a `nvf::LineColumn`.
  Token next();

  /// Sends the comments to a copy of `listener` from now on. A listener may replace itself while it is told.
  void markupListener(const MarkupListener& listener) { markupListener_ = listener.clone(); }
  /// Shows a stretch of the text to the listener, if there is one.
  void markupNotify(std::size_t offset, std::size_t length);

  /// The file name in the locations of all tokens.
  [[nodiscard]] const nvf::FileName& fileName() const noexcept { return fileName_; }

  /// The scanner of the text. Whoever moves it or changes its state changes what `next` gives.
  /// @{
  [[nodiscard]] Tokenizer& tokenizer() noexcept { return *tokenizer_; }
  [[nodiscard]] const Tokenizer& tokenizer() const noexcept { return *tokenizer_; }
  /// @}

  /// Whether a bracket is open behind the token that was read last.
  [[nodiscard]] bool areParensUnbalanced() const { return tokenizer_->state().parenDepth != 0; }

private:
  Token read();
  void drop(std::size_t length);
  [[nodiscard]] std::size_t readContinuation(const LexToken& dots);

  nvf::FileName fileName_;
  std::unique_ptr<Tokenizer> tokenizer_;
  std::size_t position_ = 0; // where the next token starts
  bool incompleteCommentSeen_ = false;
  std::shared_ptr<MarkupListener> markupListener_;
  std::vector<char16_t> text_;
};

} // namespace tessarin::compiler::core
