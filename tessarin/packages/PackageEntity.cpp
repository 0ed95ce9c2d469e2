#include "tessarin/packages/PackageEntity.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/packages/Directory.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/Printer.hpp"

#include <algorithm>
#include <iterator>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

PackageEntity::~PackageEntity() = default;
ModelFile::~ModelFile() = default;
TSNFunctionFile::~TSNFunctionFile() = default;

// ---- names and equivalence ----

namespace {
constexpr std::u16string_view extension = u".tsn";
} // namespace

ustring ModelFile::name() const {
  return model().name().string().append(extension);
}
ustring TSNFunctionFile::name() const {
  return tsnFunction().name().string().append(extension);
}

bool ModelFile::localIsEquivalent(const ModelFile& other) const {
  return model() == other.model() && importStmts() == other.importStmts() &&
         localTSNFunctions() == other.localTSNFunctions();
}
bool TSNFunctionFile::localIsEquivalent(const TSNFunctionFile& other) const {
  return tsnFunction() == other.tsnFunction() && importStmts() == other.importStmts() &&
         localTSNFunctions() == other.localTSNFunctions();
}
bool Directory::localIsEquivalent(const Directory& other) const {
  if (name_ != other.name_ || numberEntities() != other.numberEntities()) return false;
  return nvf::with_stack([&] {
    return std::equal(entities_.begin(), entities_.end(), other.entities_.begin(),
                      [](const auto& a, const auto& b) { return a->isEquivalent(*b); });
  });
}

// ---- directories ----

Directory::Directory(ustring name, Entities entities) : name_(std::move(name)), entities_(std::move(entities)) {}

Directory::~Directory() {
  // Directories that die with this one hand over what they hold, so that none is destroyed inside another.
  Entities dying = std::move(entities_);
  while (!dying.empty()) {
    const std::shared_ptr<PackageEntity> entity = std::move(dying.back());
    dying.pop_back();
    auto* directory = entity.use_count() == 1 ? dynamic_cast<Directory*>(entity.get()) : nullptr;
    if (directory == nullptr) continue;
    std::move(directory->entities_.begin(), directory->entities_.end(), std::back_inserter(dying));
    directory->entities_.clear();
  }
}

// ---- text ----

namespace {

/// Appends the text of entities to one buffer.
class TextPrinter final : public ASTVisitor<void> {
public:
  TextPrinter(Printer& out, std::size_t indent, std::size_t step) noexcept : out_(out), indent_(indent), step_(step) {}

  void visit(const Directory& directory) override {
    out_.blanks(indent_) << directory.name() << u"\n\n";
    indent_ += step_;
    nvf::with_stack([&] {
      for (const auto& entity : directory.entities()) {
        entity->accept(*this);
        out_ << u"\n";
      }
    });
    indent_ -= step_;
  }
  void visit(const ModelFile& file) override { print(file, file.model()); }
  void visit(const TSNFunctionFile& file) override { print(file, file.tsnFunction()); }

private:
  template <class File, class Item>
  void print(const File& file, const Item& item) {
    out_.blanks(indent_) << u"% " << file.name() << u"\n";
    for (const ImportStmt& import : file.importStmts()) {
      out_.print(import, indent_);
      out_ << u";\n";
    }
    print(item);
    // In the order of their names, so that the text depends on the contents only.
    for (const TSNFunction* function : inOrderOfName(file.localTSNFunctions())) print(*function);
  }
  template <class Item>
  void print(const Item& item) {
    out_.print(item, indent_, step_);
    out_ << u"\n";
  }

  Printer& out_;
  std::size_t indent_;
  const std::size_t step_;
};

} // namespace

ustring detail::textOf(const PackageEntity& entity, std::size_t indent, std::size_t step) {
  return printed([&](Printer& out) {
    TextPrinter printer(out, indent, step);
    entity.accept(printer);
  });
}

std::ostream& operator<<(std::ostream& stream, const PackageEntity& entity) {
  return printTo(stream, [&](Printer& out) {
    TextPrinter printer(out, 0, 2);
    entity.accept(printer);
  });
}

} // namespace tessarin::compiler::core
