// A directory of a package.
#pragma once

#include "tessarin/packages/PackageEntity.hpp"

#include <memory>
#include <vector>

namespace tessarin::compiler::core {

/// Directories may nest to any depth.
class TESSARIN_EXPORT Directory final : public PackageEntityShim<Directory> {
public:
  /// What is in a directory; several directories may share an entity.
  using Entities = std::vector<std::shared_ptr<PackageEntity>>;

  /// No pointer may be null. An empty name stands for the place where the directory is written.
  Directory(ustring name, Entities entities);
  Directory(const Directory&) = default;
  Directory(Directory&&) noexcept = default;
  Directory& operator=(const Directory&) = default;
  Directory& operator=(Directory&&) noexcept = default;
  ~Directory() override;

  [[nodiscard]] ustring name() const override { return name_; }
  /// In the order given; directories below are not looked into.
  /// @{
  [[nodiscard]] const Entities& entities() const noexcept { return entities_; }
  [[nodiscard]] std::size_t numberEntities() const noexcept { return entities_.size(); }
  /// @}

  /// Whether the names are the same, and the entities are equivalent one by one.
  [[nodiscard]] bool localIsEquivalent(const Directory& other) const;

private:
  ustring name_;
  Entities entities_;
};

} // namespace tessarin::compiler::core
