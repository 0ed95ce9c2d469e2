// tsn tokens: what the lexer gives to the parser, or what the scanner gives to the lexer.

#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/lex/Lexer.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"
#include "Printable.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

/// Calls `each` with the tokens that the parser would get, up to and with the first end of the input.
template <class Each>
void forEachToken(const Source& source, Each each) {
  core::Lexer lexer(source.buffer());
  core::TokenId::Value code{};
  do {
    const core::Token token = lexer.next();
    code = token.code();
    each(token);
  } while (code != core::TokenId::EOI);
}

/// Calls `each` with the tokenizer, each token of the scanner, and the offset of that token.
template <class Each>
void forEachLexToken(const Source& source, Each each) {
  const auto tokenizer = core::Tokenizer::create();
  const nvf::ustring_view text = source.text();
  tokenizer->setBuffer(text.data(), text.size(), false);
  std::size_t offset = 0;
  for (core::LexToken token = tokenizer->next(); token.kind != core::Kind::EMPTY; token = tokenizer->next()) {
    each(*tokenizer, token, offset);
    offset += token.length;
  }
}

/// Lines of a listing: the place, the kind and the text, in columns.
class Listing {
public:
  Listing(std::ostream& out, std::size_t kindWidth) : out_(out), kindWidth_(kindWidth) {}

  void line(const nvf::LineColumn& place, const std::string& kind, nvf::ustring_view text) {
    constexpr std::size_t placeWidth = 9;
    line_.clear();
    line_ += std::to_string(place.line() + 1) + ":" + std::to_string(place.column() + 1);
    if (line_.size() < placeWidth) line_.resize(placeWidth, ' ');
    line_ += ' ';
    line_ += kind;
    if (!text.empty()) {
      line_.append(kindWidth_ - kind.size() + 1, ' ');
      line_ += escaped(text);
    }
    line_ += '\n';
    out_.write(line_.data(), static_cast<std::streamsize>(line_.size()));
  }

private:
  std::ostream& out_;
  std::size_t kindWidth_;
  std::string line_;
};

std::size_t longestTokenName() {
  std::size_t longest = 0;
  for (auto code = core::TokenId::first; code <= core::TokenId::last; ++code) {
    longest = std::max(longest, core::TokenId::toString(core::TokenId::Value{code}).size());
  }
  return longest;
}

std::size_t longestKindName() {
  std::size_t longest = 0;
  for (std::size_t kind = 0; kind < core::kindCount; ++kind) {
    longest = std::max(longest, core::kind_name(core::Kind{static_cast<std::int32_t>(kind)}).size());
  }
  return longest;
}

constexpr FileAnswer lexerAnswer{
    .text =
        [](const Source& source, std::ostream& out) {
          Listing listing(out, longestTokenName());
          forEachToken(source, [&](const core::Token& token) {
            const std::string name(core::TokenId::toString(token.code()));
            listing.line(token.location().lineColumn(), name, token.text().view());
          });
        },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      std::vector<core::Token> tokens;
      forEachToken(source, [&](const core::Token& token) { tokens.push_back(token); });
      return [tokens = std::move(tokens)](JsonWriter& json) {
        json.key("tokens").beginArray();
        for (const core::Token& token : tokens) {
          const nvf::LineColumn& place = token.location().lineColumn();
          json.beginArray().word(core::TokenId::toString(token.code())).string(token.text().view());
          json.number(place.line()).number(place.column()).endArray();
        }
        json.endArray();
      };
    },
};

/// The place of a token of the scanner. Throws the message of the lexer where there is none.
nvf::LineColumn placeOf(core::Tokenizer& tokenizer, std::size_t offset, const nvf::FileName& file) {
  try {
    return tokenizer.lineColumn(offset);
  } catch (const nvf::LineColumn::ValueTooLarge&) {
    using TooLarge = kelvane::tessarin::compiler::core::parse::LineColumnTooLarge;
    throw nvf::MessageException(nvf::Message(TooLarge(nvf::ustring(file))));
  }
}

constexpr FileAnswer scannerAnswer{
    .text =
        [](const Source& source, std::ostream& out) {
          Listing listing(out, longestKindName());
          const auto line = [&](core::Tokenizer& tokenizer, const core::LexToken& token, std::size_t offset) {
            listing.line(placeOf(tokenizer, offset, source.buffer().fileName()),
                         nvf::narrow(core::kind_name(token.kind)), source.text().substr(offset, token.length));
          };
          forEachLexToken(source, line);
        },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      std::vector<core::LexToken> tokens;
      forEachLexToken(source,
                      [&](core::Tokenizer&, const core::LexToken& token, std::size_t) { tokens.push_back(token); });
      return [tokens = std::move(tokens)](JsonWriter& json) {
        json.beginArray();
        for (const core::LexToken& token : tokens) {
          json.beginArray().string(core::kind_name(token.kind)).number(token.length).endArray();
        }
        json.endArray();
      };
    },
    .isWholeDocument = true,
};

} // namespace

Action tokens(CLI::App& app) {
  const auto options = addFileOptions(app);
  const auto scanner = std::make_shared<bool>(false);
  app.add_flag("--scanner", *scanner, "the scanner's raw tokens, blanks and comments included");
  return [options, scanner](Console& console) {
    return answer(*options, *scanner ? scannerAnswer : lexerAnswer, console);
  };
}

} // namespace tessarin::tool
