// The scanner: turns UTF-16 text into tokens that are a kind and a length.
//
// It can run over a whole buffer (`setBuffer`, then `next`), or line by line (`tokenizeLine`) with a `State` kept by
// the caller. It never throws but from `lineColumn`, and never allocates: a lexical fault is a token of an error kind,
// often a marker of no length before the token that it is about. The lengths of the tokens add up to the length of the
// text, less one if the text ends in a code unit 0 that ends the input.
//
// Positions and lengths count UTF-16 code units from 0; surrogates are not interpreted. A tokenizer is used by one
// thread at a time.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/parser/lex/LexToken.hpp"
#include "tessarin/parser/lex/State.hpp"

#include <cstddef>
#include <memory>

namespace tessarin::compiler::core {

/// The scanner: cuts a text into lexical units, blanks and comments included, so that their lengths add up to the text.
/// Used by one thread at a time.
class TESSARIN_EXPORT Tokenizer {
public:
  /// The tokens that one step of scanning gives at the most.
  static constexpr std::size_t maxTokensPerStep = 3;

  /// A tokenizer without text, in the initial state.
  static std::unique_ptr<Tokenizer> create();
  /// True where the text is a legal name: a letter, then letters, digits and "_", all of them ASCII. Reserved words are
  /// names, too. Safe from any thread.
  static bool isCxId(const char16_t* text, std::size_t length) noexcept;
  /// True where the text is a reserved word. Safe from any thread.
  static bool isReservedWord(const char16_t* text, std::size_t length) noexcept;

  virtual ~Tokenizer();
  Tokenizer(const Tokenizer&) = delete;
  Tokenizer& operator=(const Tokenizer&) = delete;

  /// Tokenizes one line, with or without its line end, as if `state` had been reached before it. Writes the tokens to
  /// `out`, updates `state`, says in `hasCode`, which may be null, whether ordinary code starts a statement on the
  /// line, and returns the number of tokens. A line without a line end, even an empty one, is given one of no length.
  ///
  /// Stops where fewer than `maxTokensPerStep` of the `capacity` slots are left, so it takes that many slots to read
  /// anything, and two more than the line has tokens to be sure to read it whole. The result is
  /// - -1 where the tokens that fit end inside a line, and for any capacity below `maxTokensPerStep`: what stands in
  ///   `out` is of no use, `state` and `hasCode` are as they were, and a larger `out` may do;
  /// - otherwise the number of tokens up to the start of a line. Where `text` holds one line, that is all of it. Where
  ///   it holds several, the lengths of the tokens add up to what has been read, which depends on `capacity`.
  ///
  /// Only the line itself is looked at. The tokens are those that the whole text would give, except that code unit 26
  /// ends no more than its line, that a block comment which is too deep gets a line end, and that outside of models a
  /// continuation does not see what the next line begins with.
  virtual std::ptrdiff_t tokenizeLine(LexToken* out, std::size_t capacity, State& state, const char16_t* text,
                                      std::size_t length, bool* hasCode) = 0;

  /// Starts on a text, which is not copied and must outlive its use, in the initial state. With `implicitEol`, a text
  /// that does not end at the start of a line is given a line end of no length.
  virtual void setBuffer(const char16_t* text, std::size_t length, bool implicitEol) = 0;
  /// The next token; `LexToken::INVALID_TOKEN` once the input is exhausted.
  virtual LexToken next() = 0;

  /// Goes on as if `state` had been reached here; the place in the text stays.
  virtual void setState(const State& state) = 0;
  /// The state behind the token that `next` gave last.
  [[nodiscard]] virtual const State& state() const = 0;
  /// Sets a state in which the text is read as an expression.
  virtual void resetToExpression() = 0;
  /// Sets a state in which the text is read as the inside of an open "[".
  virtual void resetToArrayRow() = 0;

  /// The length of the text, less one once a code unit 0 at its end has ended it.
  [[nodiscard]] virtual std::size_t bufferSize() const = 0;
  /// The text that `setBuffer` was given.
  [[nodiscard]] virtual const char16_t* buffer() const = 0;
  /// Whether a block comment is open.
  [[nodiscard]] virtual bool inBlockComment() const = 0;
  /// The line and column, from 0, of an offset in the text; one behind the end counts as the end. Lines end with LF, CR
  /// or CR LF. Going forward takes linear time over all calls, for the count goes on where the last call has stopped.
  /// That shows in one case: where it has stopped between CR and LF, the LF ends another line. Throws
  /// `nvf::LineColumn::ValueTooLarge`.
  virtual nvf::LineColumn lineColumn(std::size_t offset) = 0;

protected:
  Tokenizer() = default;
};

} // namespace tessarin::compiler::core
