#include "tessarin/ide/Library.hpp"

#include "tessarin/foundation/message.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/ide/Stages.hpp"

#include <array>
#include <exception>
#include <new>
#include <optional>
#include <set>
#include <span>
#include <utility>

namespace tessarin::ide {

namespace fs = std::filesystem;

struct Library::File {
  fs::path path;
  bool isThere = false;       // whether there is a file
  std::optional<Names> names; // nothing where the file has a fault
  std::map<Index, Meaning> types;
  std::optional<std::vector<Meaning>> meanings;
};

namespace {

Meaning unknown(Unknown reason) {
  Meaning meaning;
  meaning.reason = reason;
  return meaning;
}

Meaning declarationIn(const fs::path& path, Index declaration) {
  Meaning meaning;
  meaning.kind = Meaning::Kind::Declaration;
  meaning.path = path;
  meaning.declaration = declaration;
  return meaning;
}

bool leadsToAnotherFile(Role role) noexcept {
  return role == Role::Type || role == Role::Base || role == Role::Import;
}

} // namespace

Library::Library(Roots roots, std::shared_ptr<const FileReader> reader)
    : roots_(std::move(roots)), reader_(std::move(reader)) {}

Library::~Library() = default;

void Library::forget() {
  files_.clear();
}

Library::File& Library::file(const fs::path& path) {
  std::unique_ptr<File>& file = files_[path.lexically_normal()];
  if (file != nullptr) return *file;
  file = std::make_unique<File>();
  file->path = path.lexically_normal();
  if (const auto source = reader_->read(path)) {
    file->isThere = true;
    const nvf::ScopedWarningSink silence([](const nvf::Message&) {});
    try {
      file->names = namesOf(buildFile(*source));
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception&) {
      file->names = std::nullopt; // what is wrong with it is told by who checks it
    }
  }
  return *file;
}

const Names* Library::names(const fs::path& path) {
  const File& found = file(path);
  return found.names ? &*found.names : nullptr;
}

Meaning Library::meaningOf(const Entity& entity) {
  if (entity.kind == Entity::Kind::None) return unknown(Unknown::Outside);
  Meaning meaning;
  meaning.path = entity.path.lexically_normal();
  meaning.kind = Meaning::Kind::Package;
  if (entity.kind == Entity::Kind::Package) return meaning;
  const Names* known = names(entity.path);
  if (known == nullptr) return unknown(Unknown::FaultyFile);
  meaning.kind = Meaning::Kind::File;
  meaning.declaration = known->main;
  return meaning;
}

Meaning Library::typeOf(File& file, Index reference) {
  const auto known = file.types.find(reference);
  if (known != file.types.end()) return known->second;
  const Names& names = *file.names;
  std::vector<Index> path{reference};
  while (names.references[path.back()].parent != noIndex) path.push_back(names.references[path.back()].parent);
  Meaning meaning;
  for (; !path.empty(); path.pop_back()) {
    const Reference& one = names.references[path.back()];
    if (one.parent != noIndex) {
      meaning = step(meaning, one);
    } else if (one.target != noIndex) {
      // What an import has brought by its name.
      meaning = typeOf(file, names.declarations[one.target].type);
    } else {
      meaning = meaningOf(roots_.find(std::array{one.name}, *reader_));
      const bool isFound = meaning.kind != Meaning::Kind::Unknown || meaning.reason != Unknown::Outside;
      if (!isFound && one.role != Role::Import) meaning = imported(file, one, Unknown::Outside);
    }
  }
  file.types.emplace(reference, meaning);
  return meaning;
}

Meaning Library::imported(File& file, const Reference& reference, Unknown otherwise) {
  for (const Index import : file.names->openImports) {
    const Meaning package = typeOf(file, import);
    if (package.kind != Meaning::Kind::Package) {
      if (otherwise == Unknown::NotDeclared || otherwise == Unknown::Outside) otherwise = Unknown::MaybeImported;
      continue;
    }
    Meaning found = step(package, reference);
    // A file with a fault is found as well.
    if (found.kind != Meaning::Kind::Unknown || found.reason != Unknown::NoSuchMember) return found;
  }
  return unknown(otherwise);
}

Meaning Library::member(const fs::path& path, const nvf::CxId& name) {
  std::set<fs::path> seen;
  for (fs::path at = path;;) {
    if (!seen.insert(at).second) return unknown(Unknown::Cycle);
    File& owner = file(at);
    if (!owner.names) return unknown(Unknown::FaultyFile);
    const Names& names = *owner.names;
    if (names.model == noIndex) return unknown(Unknown::NoSuchMember); // a function has no members
    if (const Index found = names.declared(name, names.model); found != noIndex)
      return declarationIn(owner.path, found);
    if (names.base == noIndex) return unknown(Unknown::NoSuchMember);
    const Meaning base = typeOf(owner, names.base);
    if (base.kind != Meaning::Kind::File) return unknown(Unknown::MaybeInherited);
    at = base.path;
  }
}

Meaning Library::step(const Meaning& parent, const Reference& reference) {
  switch (parent.kind) {
  case Meaning::Kind::Unknown: return unknown(Unknown::MemberOfUnknown);
  case Meaning::Kind::Package: {
    const Entity package{Entity::Kind::Package, parent.path};
    const Entity found = Roots::findIn(package, reference.name, *reader_);
    return found.kind == Entity::Kind::None ? unknown(Unknown::NoSuchMember) : meaningOf(found);
  }
  case Meaning::Kind::File: return member(parent.path, reference.name);
  case Meaning::Kind::Declaration: break;
  }
  File& owner = file(parent.path);
  const Declaration& declaration = owner.names->declarations[parent.declaration];
  if (declaration.type == noIndex) return unknown(Unknown::MemberOfValue);
  const Meaning type = typeOf(owner, declaration.type);
  if (type.kind == Meaning::Kind::File) return member(type.path, reference.name);
  return unknown(type.kind == Meaning::Kind::Unknown ? Unknown::MemberOfUnknown : Unknown::NoSuchMember);
}

Meaning Library::leading(File& file, const Reference& reference) {
  const Names& names = *file.names;
  if (reference.reason == Unknown::BuiltIn || reference.reason == Unknown::ElementIndex ||
      reference.role == Role::Word || reference.role == Role::Mode) {
    return unknown(reference.reason);
  }
  Unknown reason = reference.isLastStep ? Unknown::NotDeclared : Unknown::Outside;
  if (names.scopes[reference.scope].isInModel && names.base != noIndex) {
    const Meaning base = typeOf(file, names.base);
    const Meaning inherited =
        base.kind == Meaning::Kind::File ? member(base.path, reference.name) : unknown(Unknown::MaybeInherited);
    if (inherited.kind != Meaning::Kind::Unknown) return inherited;
    // Bases that are known to the last one and have no such member say nothing of the name.
    if (inherited.reason != Unknown::NoSuchMember) reason = inherited.reason;
  }
  const Meaning brought = imported(file, reference, reason);
  if (brought.kind != Meaning::Kind::Unknown) return brought;
  const Entity found = roots_.find(std::array{reference.name}, *reader_);
  // A package by itself is no value.
  if (found.kind == Entity::Kind::File || (found.kind == Entity::Kind::Package && !reference.isLastStep)) {
    return meaningOf(found);
  }
  return reference.reason == Unknown::Word ? unknown(Unknown::Word) : brought;
}

const std::vector<Meaning>& Library::meanings(const fs::path& path) {
  File& owner = file(path);
  if (owner.meanings) return *owner.meanings;
  owner.meanings.emplace();
  if (!owner.names) return *owner.meanings;
  const Names& names = *owner.names;
  owner.meanings->reserve(names.references.size());
  for (Index i = 0; i < names.references.size(); ++i) {
    const Reference& reference = names.references[i];
    Meaning meaning;
    if (leadsToAnotherFile(reference.role)) {
      // A step adds to what the steps before it mean.
      meaning = reference.parent == noIndex ? typeOf(owner, i) : step((*owner.meanings)[reference.parent], reference);
      owner.types.emplace(i, meaning);
    } else if (reference.target != noIndex) {
      const Declaration& target = names.declarations[reference.target];
      meaning = target.kind == DeclarationKind::Import ? typeOf(owner, target.type)
                                                       : declarationIn(owner.path, reference.target);
    } else if (reference.parent != noIndex) {
      meaning = step((*owner.meanings)[reference.parent], reference);
    } else {
      meaning = leading(owner, reference);
    }
    owner.meanings->push_back(std::move(meaning));
  }
  return *owner.meanings;
}

Meaning Library::find(const nvf::CxIdPath& name) {
  Meaning meaning;
  bool isFirst = true;
  for (const nvf::CxId& id : name) {
    Reference reference;
    reference.name = id;
    meaning = isFirst ? meaningOf(roots_.find(std::array{id}, *reader_)) : step(meaning, reference);
    isFirst = false;
  }
  return meaning;
}

} // namespace tessarin::ide
