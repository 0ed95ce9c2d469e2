// The one implementation of the scanner. Private to the lexical stage.
#pragma once

#include "tessarin/parser/lex/CharClass.hpp"
#include "tessarin/parser/lex/LineCounter.hpp"
#include "tessarin/parser/lex/StateMachine.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include <array>
#include <cstddef>

namespace tessarin::compiler::core {

/// Scans in steps: a step looks at the text and at the state and queues the tokens that belong together, such as a
/// comment and the line end behind it. Each token changes the state only when it is delivered, so that a step sees the
/// state as it was before all of its own tokens.
class TokenizerImpl final : public Tokenizer {
public:
  std::ptrdiff_t tokenizeLine(LexToken* out, std::size_t capacity, State& state, const char16_t* text,
                              std::size_t length, bool* hasCode) override;
  void setBuffer(const char16_t* text, std::size_t length, bool implicitEol) override;
  LexToken next() override;
  void setState(const State& state) override { state_ = state; }
  [[nodiscard]] const State& state() const override { return state_; }
  void resetToExpression() override;
  void resetToArrayRow() override;
  [[nodiscard]] std::size_t bufferSize() const override { return end_; }
  [[nodiscard]] const char16_t* buffer() const override { return text_; }
  [[nodiscard]] bool inBlockComment() const override { return state_.commentDepth != 0; }
  nvf::LineColumn lineColumn(std::size_t offset) override;

private:
  /// The tokens of a step that have not been delivered.
  class Queue {
  public:
    [[nodiscard]] bool empty() const noexcept { return read_ == count_; }
    void clear() noexcept { read_ = count_ = 0; }
    void push(const LexToken& token) noexcept { tokens_[count_++] = token; }
    LexToken pop() noexcept { return tokens_[read_++]; }

  private:
    std::array<LexToken, maxTokensPerStep> tokens_;
    std::size_t read_ = 0;
    std::size_t count_ = 0;
  };

  void start(const char16_t* text, std::size_t length, const State& state, bool implicitEol) noexcept;
  LexToken deliver() noexcept;

  // Steps. Each of the scan functions begins at `position_`, which is also `tokenStart_`, and queues at least one
  // token, except where it says so.
  /// Leaves the queue empty at the end of the input.
  void scan() noexcept;
  /// False, and nothing queued, where the line does not begin with a comment that takes a whole line.
  bool scanLineStart() noexcept;
  void scanCommentLine(std::size_t first) noexcept;
  void scanUnit() noexcept;
  void scanOperator(CharClass charClass) noexcept;
  void scanWord() noexcept;
  void scanNumber() noexcept;
  void scanDot() noexcept;
  void scanQuote() noexcept;
  void scanString(char16_t quote, Kind closed, Kind unterminated) noexcept;
  void scanBang() noexcept;
  void scanBlanks() noexcept;
  void scanBadCharacters() noexcept;
  /// Queues nothing where a code unit 0 ends the input.
  void scanComment() noexcept;
  void scanContinuation() noexcept;
  void scanLineEnd() noexcept;
  void scanArguments() noexcept;
  void scanArgument() noexcept;

  /// Queues the token from `tokenStart_` to `position_`.
  void push(Kind kind) noexcept {
    queue_.push({position_ - tokenStart_, kind});
    tokenStart_ = position_;
  }
  /// Queues a token of no length.
  void pushMarker(Kind kind) noexcept { queue_.push({0, kind}); }

  // Looking at the text.
  [[nodiscard]] ustring_view rest() const noexcept { return {text_ + position_, end_ - position_}; }
  [[nodiscard]] bool follows(std::size_t offset, char16_t unit) const noexcept {
    return offset < end_ && text_[offset] == unit;
  }
  /// The first offset from `offset` on whose code unit does not fulfil the predicate, or the end.
  template <class Predicate>
  [[nodiscard]] std::size_t skip(std::size_t offset, Predicate predicate) const noexcept {
    while (offset < end_ && predicate(text_[offset])) ++offset;
    return offset;
  }
  [[nodiscard]] std::size_t skipBlanks(std::size_t offset) const noexcept { return skip(offset, isBlank); }
  [[nodiscard]] std::size_t findLineEnd(std::size_t offset) const noexcept {
    return skip(offset, [](char16_t unit) { return !isLineEnd(unit); });
  }
  [[nodiscard]] std::size_t behindLineEnd(std::size_t offset) const noexcept;
  [[nodiscard]] bool atLineEnd(std::size_t offset) const noexcept { return offset == end_ || isLineEnd(text_[offset]); }
  [[nodiscard]] bool isBlockMark(std::size_t offset, char16_t brace) const noexcept;
  [[nodiscard]] bool beginsContinuation(std::size_t offset) const noexcept {
    return follows(offset, u'.') && follows(offset + 1, u'.') && follows(offset + 2, u'.');
  }
  [[nodiscard]] bool beginsElement(std::size_t offset) const noexcept;
  [[nodiscard]] bool isTranspose() const noexcept;
  [[nodiscard]] bool isPragma() const noexcept;
  [[nodiscard]] Kind functionKind() const noexcept;
  /// Whether an element of an array has just been read, so that the next one may follow without a comma.
  [[nodiscard]] bool behindElement() const noexcept {
    return state_.inArray() && (state_.lState == LState::SAW_INDXNM || state_.lState == LState::SAW_EXPR);
  }

  State state_;
  StatementCode statementCode_ = StatementCode::Nothing;
  bool implicitEol_ = false;
  const char16_t* text_ = nullptr; // not owned
  std::size_t position_ = 0;
  std::size_t end_ = 0;
  std::size_t tokenStart_ = 0;
  Queue queue_;
  LineCounter lines_;
};

} // namespace tessarin::compiler::core
