// Parsing for tests: source text in, the tree or the fault with the warnings out, and both as compact text.
#pragma once

#include "tessarin/foundation/message.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessarin::test {

/// Fatal diagnostics are exceptions while this lives.
class ThrowingTerminate {
public:
  ThrowingTerminate() : former_(nvf::set_terminate_handler(nvf::throw_fatal_error)) {}
  ~ThrowingTerminate() { nvf::set_terminate_handler(former_); }
  ThrowingTerminate(const ThrowingTerminate&) = delete;
  ThrowingTerminate& operator=(const ThrowingTerminate&) = delete;

private:
  nvf::TerminateHandler former_;
};

inline nvf::SourceBuffer bufferOf(std::string_view utf8, std::string_view fileName = "c.tsn") {
  const nvf::ustring text = nvf::decode_utf8(utf8);
  return {nvf::FileName(std::string(fileName)), nvf::ustring_view(text)};
}

/// What a parse has led to.
struct Parsed {
  compiler::core::ParseTree tree; ///< the default one where there is a fault
  std::optional<nvf::Message> fault;
  std::optional<nvf::FatalDiagnostic> fatal;
  std::vector<nvf::Message> warnings;
};

inline Parsed parse(compiler::core::Parser parser) {
  const ThrowingTerminate terminate;
  Parsed result;
  const nvf::ScopedWarningSink sink([&result](const nvf::Message& warning) { result.warnings.push_back(warning); });
  try {
    result.tree = parser.parse();
  } catch (const nvf::LocationException& e) {
    result.fault = e.message();
  } catch (const nvf::MessageException& e) {
    result.fault = e.message();
  } catch (const nvf::FatalError& e) {
    result.fatal = e.diagnostic();
  }
  return result;
}

inline Parsed parse(std::string_view utf8, std::string_view fileName = "c.tsn") {
  return parse(compiler::core::Parser(bufferOf(utf8, fileName)));
}

/// A message as `Id(argument, …) at line:column`, without the string that says where; lines and columns from 1, with
/// `firstLine` lines taken off.
inline std::string describe(const nvf::Message& message, std::size_t firstLine = 0) {
  std::string text = message.id().id;
  const std::size_t shownFrom = message.location() ? 1 : 0;
  for (std::size_t i = shownFrom; i < message.id().arguments.size(); ++i) {
    const auto& argument = message.id().arguments[i];
    text += i == shownFrom ? "(" : ", ";
    if (const auto* number = std::get_if<long>(&argument)) text += std::to_string(*number);
    if (const auto* string = std::get_if<nvf::ustring>(&argument)) text += nvf::encode_utf8(*string);
  }
  if (message.id().arguments.size() > shownFrom) text += ")";
  if (const auto& location = message.location()) {
    const nvf::LineColumn& place = location->lineColumn();
    text += " at " + std::to_string(place.line() + 1 - firstLine) + ":" + std::to_string(place.column() + 1);
  }
  return text;
}

/// A leaf as a word: names and numbers as they are written, other tokens as messages show them, with the text of those
/// that are more than their code.
inline std::string wordOf(const compiler::core::Token& token) {
  using compiler::core::TokenId;
  std::string text = nvf::encode_utf8(token.text().view());
  switch (token.code()) {
  case TokenId::ID: return text.empty() ? "ID" : text;
  case TokenId::NUMBER:
  case TokenId::STRING: return text; // a string with its quotes
  case TokenId::STRING_LITERAL: return "literal:" + text;
  default: return std::string(TokenId::displayString(token.code()));
  }
}

/// A tree as `(Kind child…)`, on one line where it fits.
inline std::string expressionOf(const compiler::core::ParseTree& tree, std::size_t indent = 0) {
  if (tree.type() == 0) return wordOf(tree.token());
  const std::string head = std::string("(") + compiler::core::NonTerminal::name(tree.code());
  std::vector<std::string> children;
  std::size_t width = indent + head.size() + 1;
  for (std::size_t i = 0; i < tree.count(); ++i) {
    children.push_back(expressionOf(tree.child(i), indent + 2));
    width += children.back().find('\n') == std::string::npos ? children.back().size() + 1 : 1000;
  }
  constexpr std::size_t maxWidth = 110;
  const std::string separator = width <= maxWidth ? " " : "\n" + std::string(indent + 2, ' ');
  std::string text = head;
  for (const std::string& child : children) text += separator + child;
  return text + ")";
}

} // namespace tessarin::test
