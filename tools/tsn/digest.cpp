// tsn digest: the expressions of a file with what identifies them.

#include "tessarin/foundation/digest.hpp"

#include "tessarin/ide/FileWalk.hpp"
#include "tessarin/ide/Stages.hpp"

#include "Command.hpp"
#include "Dump.hpp"
#include "FileCommand.hpp"
#include "Printable.hpp"

#include <vector>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

/// The expressions that stand in no other one, in the order of `walk`.
std::vector<core::Expr> expressionsOf(const Source& source) {
  struct Collector final : ide::FileVisitor {
    std::vector<core::Expr> found;
    void expression(const core::Expr& expr) override { found.push_back(expr); }
  };
  Collector collector;
  ide::walk(ide::buildFile(source.buffer()), collector);
  return std::move(collector.found);
}

/// Writes `[text, user text, digest, [line, column, end line, end column]]`, places from 0.
void writeRow(JsonWriter& json, const core::Expr& expr) {
  json.beginArray();
  json.string(core::to_string(expr)).string(core::to_user_string(expr)).word(nvf::digest_hex(expr));
  writeJson(json, core::expr_range(expr));
  json.endArray();
}

constexpr FileAnswer digestAnswer{
    .text =
        [](const Source& source, std::ostream& out) {
          for (const core::Expr& expr : expressionsOf(source)) {
            out << nvf::digest_hex(expr) << "  " << escaped(core::to_string(expr)) << '\n';
          }
        },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return [expressions = expressionsOf(source)](JsonWriter& json) {
        json.key("exprs").beginArray();
        for (const core::Expr& expr : expressions) writeRow(json, expr);
        json.endArray();
      };
    },
};

} // namespace

Action digest(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, digestAnswer, console); };
}

} // namespace tessarin::tool
