#include "tessarin/ide/Outline.hpp"

#include "tessarin/ide/Blocks.hpp"
#include "tessarin/ide/FileWalk.hpp"
#include "tessarin/ide/Statements.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include <algorithm>
#include <map>
#include <variant>

namespace tessarin::ide {

namespace core = compiler::core;

namespace {

OutlineEntry entryOf(const core::Ident& ident) {
  return {ident.string(), ident.range()};
}

/// Gathers the members of a model by kind.
class MemberCollector : public FileVisitor {
public:
  void declarations(const core::DeclarationBlock& block) override {
    std::vector<OutlineEntry>& entries = members_[block.type()];
    for (const core::DeclarationItem& item : block.declarations()) {
      if (const auto* ident = item.getIf<core::Ident>()) {
        entries.push_back(entryOf(*ident));
      } else if (const auto* element = item.getIf<core::ObjectArrayElementDecl>()) {
        entries.push_back(entryOf(element->LHS().id()));
      } else {
        core::opt_ident_vector_handler(core::id_list_value(item).ids(), [&](const core::Ident& name, unsigned long) {
          entries.push_back(entryOf(name));
        });
      }
    }
  }
  void modechart(const core::ModechartDeclaration& chart) override { modecharts_.push_back(entryOf(chart.id())); }

  [[nodiscard]] Outline::Members take() {
    Outline::Members result;
    for (auto& [type, entries] : members_) {
      result.emplace_back(core::DeclarationBlock::typeString(type), std::move(entries));
    }
    if (!modecharts_.empty()) result.emplace_back(u"modecharts", std::move(modecharts_));
    return result;
  }

private:
  std::map<core::MemberType::Value, std::vector<OutlineEntry>> members_;
  std::vector<OutlineEntry> modecharts_;
};

OutlineFunction functionEntry(const core::TSNFunction& function) {
  OutlineFunction entry{entryOf(function.name()), {}, {}};
  for (const core::Ident& input : function.inputs()) entry.inputs.push_back(input.string());
  for (const core::Ident& output : function.outputs()) entry.outputs.push_back(output.string());
  return entry;
}

OutlineEntry nameEntry(const core::Name& name) {
  const auto& ids = name.ids();
  if (ids.size() == 0) return {name.string(), {}};
  return {name.string(), {ids[0].range().begin(), ids[ids.size() - 1].range().end()}};
}

struct MainPart {
  Outline& outline;

  void operator()(const core::ModelFile& file) const {
    const core::Model& model = file.model();
    outline.type = model.type() == core::ModelType::DDOMAIN ? u"domain" : u"component";
    outline.main = entryOf(model.name());
    if (const auto& base = model.baseClassName()) outline.base = nameEntry(base->name());
  }
  void operator()(const core::TSNFunctionFile& file) const {
    outline.type = u"function";
    outline.main = entryOf(file.tsnFunction().name());
    outline.functions.push_back(functionEntry(file.tsnFunction()));
  }
};

nvf::Range rangeIn(const nvf::FileName& file, const Statements& text, std::size_t begin, std::size_t end) {
  const auto place = [&](std::size_t offset) {
    const std::size_t line = text.lineOf(offset);
    return nvf::Location(file, nvf::LineColumn(line, text.columnOf(offset)));
  };
  return {place(begin), place(end)};
}

/// A range of another text with the same lines, as far as this one has them.
std::pair<std::size_t, std::size_t> offsetsOf(const Statements& text, const nvf::Range& range) {
  const auto offset = [&](const nvf::Location& location) {
    return text.offsetOf(location.lineColumn().line(), location.lineColumn().column());
  };
  return {offset(range.begin()), offset(range.end())};
}

/// The text with the words of structure that were mended for the check. Nothing else moves on their lines.
nvf::ustring mended(const nvf::SourceBuffer& source, const CheckResult& checked) {
  nvf::ustring text(source.text());
  if (checked.repairs.empty()) return text;
  const Statements lines(source.text());
  std::vector<std::pair<std::pair<std::size_t, std::size_t>, nvf::ustring>> edits;
  for (const Repair& repair : checked.repairs) {
    const auto [begin, end] = offsetsOf(lines, repair.range);
    switch (repair.kind) {
    case Repair::Kind::InsertedEnd: edits.push_back({{begin, begin}, u";end;"}); break;
    case Repair::Kind::DroppedEnd: edits.push_back({{begin, end}, nvf::ustring(end - begin, u' ')}); break;
    case Repair::Kind::ReplacedWord: edits.push_back({{begin, end}, repair.text}); break;
    case Repair::Kind::ReplacedHead: break;
    }
  }
  std::stable_sort(edits.begin(), edits.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  for (const auto& [where, word] : edits) text.replace(where.first, where.second - where.first, word);
  return text;
}

} // namespace

Outline outlineOf(const core::TSNFile& file) {
  Outline outline;
  MemberCollector members;
  walk(file, members);
  outline.members = members.take();
  std::visit(
      [&outline](const auto& kind) {
        for (const core::ImportStmt& import : kind.importStmts()) {
          nvf::ustring name = import.importName().string();
          if (import.isUnqualified()) name += u".*";
          outline.imports.push_back({std::move(name), {import.location(), import.location()}});
        }
        MainPart{outline}(kind);
        for (const core::TSNFunction* function : inOrderOfName(kind.localTSNFunctions())) {
          outline.functions.push_back(functionEntry(*function));
        }
      },
      file);
  return outline;
}

std::vector<OutlineSection> sectionsOf(const nvf::SourceBuffer& source, const CheckResult& checked) {
  const nvf::ustring text = mended(source, checked);
  const Statements statements(text);
  const Statements original(source.text());
  const Blocks blocks = blocksOf(statements);
  std::vector<OutlineSection> sections;
  std::vector<std::size_t> depths(blocks.all.size());
  for (std::size_t i = 0; i < blocks.all.size(); ++i) {
    const Block& block = blocks.all[i];
    depths[i] = block.parent == Block::none ? 0 : depths[block.parent] + 1;
    const Statement& opener = statements.all()[block.opener];
    if (!opener.startsLine) continue;
    const CodeToken& word = statements.tokens()[opener.firstToken];
    if (word.kind != block.kind) continue; // an `if`, a `let` or a modechart inside a statement
    const Statement& closer =
        statements.all()[block.closer == Block::none ? statements.all().size() - 1 : block.closer];
    const std::size_t end = statements.tokens()[closer.lastToken - 1].end;
    const nvf::Range range = rangeIn(source.fileName(), original, original.offsetOf(opener.line, opener.column),
                                     original.offsetOf(closer.lastLine, end - statements.lineBegin(closer.lastLine)));
    sections.push_back({nvf::ustring(compiler::core::keyword::name(block.kind)), range, depths[i]});
  }
  return sections;
}

} // namespace tessarin::ide
