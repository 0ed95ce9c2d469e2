// tsn uses: what the equations of a file use.

#include "tessarin/ide/FileWalk.hpp"
#include "tessarin/ide/Stages.hpp"
#include "tessarin/parser/ast/Usage.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"
#include "Printable.hpp"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

using Texts = std::vector<nvf::ustring>;

/// An equation, or the predicate or the action of an assertion, with the texts of what it uses in order.
struct Row {
  nvf::ustring text;
  Texts variables;
  Texts identifiers;
};

Row rowOf(const core::Expr& expr) {
  Row row{core::to_string(expr), {}, {}};
  for (const core::Variable& variable : core::used_variables(expr, core::VisitPredicateFlags::All)) {
    row.variables.push_back(core::to_string(core::Expr(variable)));
  }
  for (const nvf::CxId& id : core::used_ids(expr)) row.identifiers.emplace_back(id.view());
  std::sort(row.variables.begin(), row.variables.end());
  std::sort(row.identifiers.begin(), row.identifiers.end());
  return row;
}

std::vector<Row> rowsOf(const Source& source) {
  struct Collector final : ide::FileVisitor {
    std::vector<Row> rows;
    void equation(const core::EqnItem& item) override {
      if (const auto* expr = item.getIf<core::Expr>()) {
        rows.push_back(rowOf(*expr));
        return;
      }
      const auto& assertion = item.get<core::EqnAssertion>();
      rows.push_back(rowOf(assertion.predicate()));
      if (assertion.action()) rows.push_back(rowOf(*assertion.action()));
    }
  };
  Collector collector;
  ide::walk(ide::buildFile(source.buffer()), collector);
  return std::move(collector.rows);
}

void writeTexts(std::ostream& out, std::string_view title, const Texts& texts) {
  out << "  " << title << ':';
  for (const nvf::ustring& text : texts) out << ' ' << escaped(text);
  out << '\n';
}

void writeTexts(JsonWriter& json, const Texts& texts) {
  json.beginArray();
  for (const nvf::ustring& text : texts) json.string(text);
  json.endArray();
}

constexpr FileAnswer usesAnswer{
    .text =
        [](const Source& source, std::ostream& out) {
          for (const Row& row : rowsOf(source)) {
            out << escaped(row.text) << '\n';
            writeTexts(out, "variables", row.variables);
            writeTexts(out, "identifiers", row.identifiers);
          }
        },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return [rows = rowsOf(source)](JsonWriter& json) {
        json.key("uses").beginArray();
        for (const Row& row : rows) {
          json.beginArray().string(row.text);
          writeTexts(json, row.variables);
          writeTexts(json, row.identifiers);
          json.endArray();
        }
        json.endArray();
      };
    },
};

} // namespace

Action uses(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, usesAnswer, console); };
}

} // namespace tessarin::tool
