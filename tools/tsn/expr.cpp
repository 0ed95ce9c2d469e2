// tsn expr: one expression from the command line.

#include "tessarin/foundation/digest.hpp"
#include "tessarin/parser/builder/StringEntries.hpp"

#include "Command.hpp"
#include "Dump.hpp"
#include "JsonWriter.hpp"
#include "Outcome.hpp"
#include "Report.hpp"
#include "TerminalBuffer.hpp"

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <variant>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

struct ExprOptions {
  std::string text;
  bool user = false;
  bool digest = false;
  bool json = false;
};

/// The lines that the library puts before an expression in order to parse it. Places are told without them.
constexpr std::size_t linesBefore = 2;

/// What has come of the text: an expression, or a failure.
struct Outcome {
  std::optional<core::Expr> expr;
  std::optional<Failure> failure;
};

Outcome parse(const std::string& text) {
  Outcome outcome;
  // The one warning that there can be is that the model around the expression has no file of its name.
  // Values are read back, as from a file.
  const core::ASTBuilder builder(nvf::DefaultValueTokensToValue{});
  outcome.failure = observe([](const nvf::Message&) {},
                            [&] { outcome.expr = core::str_to_astexpr(nvf::decode_utf8(text), builder); });
  if (outcome.failure) {
    if (auto* finding = std::get_if<Finding>(&*outcome.failure); finding != nullptr && finding->line) {
      *finding->line -= std::min(*finding->line, linesBefore);
    }
  }
  return outcome;
}

void writeText(const Outcome& outcome, const ExprOptions& options, Console& console) {
  if (outcome.failure) {
    console.report(Report("<expression>", std::nullopt, console.errorHasColours()).failure(*outcome.failure));
  } else if (options.digest) {
    console.out() << nvf::digest_hex(*outcome.expr) << '\n';
  } else {
    writeText(console, [&](std::ostream& out) {
      out << nvf::encode_utf8(options.user ? core::to_user_string(*outcome.expr) : core::to_string(*outcome.expr))
          << '\n';
    });
  }
}

void writeJson(const Outcome& outcome, Console& console) {
  console.beginDocument();
  JsonWriter json(console.out());
  json.beginObject();
  if (outcome.failure) {
    writeJsonMember(json, *outcome.failure);
  } else {
    json.key("expr").beginObject();
    json.key("text").string(core::to_string(*outcome.expr));
    json.key("user").string(core::to_user_string(*outcome.expr));
    json.key("digest").word(nvf::digest_hex(*outcome.expr));
    json.key("tree");
    JsonSink sink(json, linesBefore);
    dump(sink, *outcome.expr);
    json.endObject();
  }
  json.key("warnings").beginArray().endArray().endObject();
  console.out() << '\n';
  console.endDocument();
}

} // namespace

Action expr(CLI::App& app) {
  const auto options = std::make_shared<ExprOptions>();
  app.add_option("TEXT", options->text, "the expression; behind -- where it begins with -")->required()->type_name("");
  CLI::Option* user = app.add_flag("--user", options->user, "print it as the user wrote it, where that is known");
  CLI::Option* digest = app.add_flag("--digest", options->digest, "print the bytes of its digest in hexadecimal");
  CLI::Option* json = app.add_flag("--json", options->json, "answer with one line of JSON: texts, digest and tree");
  user->excludes(digest)->excludes(json);
  digest->excludes(json);
  return [options](Console& console) {
    const Outcome outcome = parse(options->text);
    if (options->json) {
      writeJson(outcome, console);
    } else {
      writeText(outcome, *options, console);
    }
    return statusOf(outcome.failure);
  };
}

} // namespace tessarin::tool
