#include "tessarin/parser/parse/Parser.hpp"

#include "tessarin/parser/parse/ParseTreeBuilder.hpp"

#include "grammar.hpp"

#include <exception>
#include <stdexcept>
#include <utility>

namespace tessarin::compiler::core {

Parser::Parser(const nvf::SourceBuffer& buffer) : state_(std::make_unique<ParserState>(buffer)) {}
Parser::Parser(const nvf::AsciiString& text, nvf::FileName name)
    : Parser(nvf::SourceBuffer(name, nvf::ustring_view(text.text()))) {}
Parser::Parser(Parser&&) noexcept = default;
Parser& Parser::operator=(Parser&&) noexcept = default;
Parser::~Parser() = default;

void Parser::markupListener(const MarkupListener& listener) {
  impl().lexer.markupListener(listener);
}
void Parser::tokenListener(std::function<void(const Token&)> listener) {
  ParserState& state = impl();
  state.tokenListener =
      listener ? std::make_shared<const std::function<void(const Token&)>>(std::move(listener)) : nullptr;
}

ParseTree Parser::parse() {
  ParserState& state = impl();
  if (state.fault) std::rethrow_exception(state.fault);
  if (state.whole) return *state.whole;
  try {
    state.trees.reserveFor(state.lexer.tokenizer().bufferSize());
    Actions actions(state);
    TSNParser(actions).parse();
    state.whole = fold(std::make_shared<const FlatTree>(std::exchange(state.trees, FlatTree())), state.result);
  } catch (...) {
    state.fault = std::current_exception();
    throw;
  }
  return *state.whole;
}

ParserState& Parser::impl() {
  if (!state_) throw std::logic_error("a parser is used that has been moved from");
  return *state_;
}

} // namespace tessarin::compiler::core
