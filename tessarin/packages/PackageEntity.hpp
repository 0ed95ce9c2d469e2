// A package: a tree of directories that holds model files and function files.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <iosfwd>

namespace tessarin::compiler::core {

class Directory;
class ModelFile;
class TSNFunctionFile;

/// Does something with each class of a package.
template <class Result>
class ASTVisitor {
public:
  ASTVisitor() = default;
  ASTVisitor(const ASTVisitor&) = default;
  ASTVisitor(ASTVisitor&&) noexcept = default;
  ASTVisitor& operator=(const ASTVisitor&) = default;
  ASTVisitor& operator=(ASTVisitor&&) noexcept = default;
  virtual ~ASTVisitor() = default;

  /// What is done with a class, called by its `accept`. That for a directory decides itself whether to go further down.
  /// @{
  virtual Result visit(const Directory& directory) = 0;
  virtual Result visit(const ModelFile& file) = 0;
  virtual Result visit(const TSNFunctionFile& file) = 0;
  /// @}
};

/// A directory or a file. Entities are not changed once they are made: several threads may read one.
class TESSARIN_EXPORT PackageEntity {
public:
  virtual ~PackageEntity();
  /// The name on the disk.
  [[nodiscard]] virtual ustring name() const = 0;
  /// The entity as text, with everything below it: `indent` blanks at the head of its lines, `step` more at each level.
  [[nodiscard]] virtual ustring string(std::size_t indent, std::size_t step) const = 0;
  /// Whether the other entity is of the same class and has the same contents.
  [[nodiscard]] virtual bool isEquivalent(const PackageEntity& other) const = 0;
  /// Calls the visitor's function for the class of this entity.
  virtual void accept(ASTVisitor<void>& visitor) const = 0;

protected:
  PackageEntity() = default;
  PackageEntity(const PackageEntity&) = default;
  PackageEntity(PackageEntity&&) noexcept = default;
  PackageEntity& operator=(const PackageEntity&) = default;
  PackageEntity& operator=(PackageEntity&&) noexcept = default;
};

/// Writes `string(0, 2)` in the local encoding as it goes: memory for the text does not grow with its length.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const PackageEntity& entity);

namespace detail {
TESSARIN_EXPORT ustring textOf(const PackageEntity& entity, std::size_t indent, std::size_t step);
} // namespace detail

/// The base of the class `T` of entities, which has `localIsEquivalent(const T&)`.
template <class T>
class PackageEntityShim : public PackageEntity {
public:
  /// The text that a `TsnFilePrinter` writes.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const final {
    return detail::textOf(*this, indent, step);
  }
  /// By the class of the other, then by `localIsEquivalent`.
  [[nodiscard]] bool isEquivalent(const PackageEntity& other) const final {
    const auto* same = dynamic_cast<const T*>(&other);
    return same != nullptr && static_cast<const T&>(*this).localIsEquivalent(*same);
  }
  /// Calls `visit` for a `T`.
  void accept(ASTVisitor<void>& visitor) const final { visitor.visit(static_cast<const T&>(*this)); }
};

} // namespace tessarin::compiler::core
