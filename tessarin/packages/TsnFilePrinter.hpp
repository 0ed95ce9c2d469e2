// Writes packages to the disk as source text.
#pragma once

#include "tessarin/packages/PackageEntity.hpp"

#include <filesystem>

namespace tessarin::compiler::core {

/// Writes entities below a directory. The first thing that exists already, or cannot be written, ends the run with a
/// `nvf::MessageException` of the ast family whose argument is its path: CodeGenExistingDir, CodeGenExistingFile, or
/// FailToOpenFile, in which a `std::filesystem::filesystem_error` is nested that says what the system has answered,
/// unless it is the name that leads out of its directory. What was written before stays on the disk.
///
/// - Nothing is overwritten, also not where another thread or process writes to the same place at the same time: one of
///   them gets the name, and the others are told that it exists.
/// - Nothing is written outside of the root: names are names of entries, and no link that stands where a file or a
///   directory should be made is followed, nor is a device or a pipe that stands there opened. Only whoever replaces a
///   directory by a link while the printer is at work in it leads it elsewhere.
/// - A file is there whole, or it is not there, as where the disk is full. It is written under another name, which
///   begins with ".tessarin-", in its directory first; a process that is killed meanwhile leaves that name behind.
///
/// A printer is used by one thread at a time; several may write below one root.
class TESSARIN_EXPORT TsnFilePrinter final : public ASTVisitor<void> {
public:
  /// `root` must be a directory.
  explicit TsnFilePrinter(const std::filesystem::path& root);
  TsnFilePrinter(const TsnFilePrinter&) = default;
  TsnFilePrinter(TsnFilePrinter&&) noexcept = default;
  TsnFilePrinter& operator=(const TsnFilePrinter&) = default;
  TsnFilePrinter& operator=(TsnFilePrinter&&) noexcept = default;
  ~TsnFilePrinter() override;

  /// Writes the entity into the current directory, which is the root. After an exception the current directory is the
  /// one where the run has stopped: begin again with a new printer.
  void printFile(const PackageEntity& entity);

  /// Makes the directory and writes what is in it. One without a name writes into the current directory.
  void visit(const Directory& directory) override;

  /// Writes the text of the file, which is `string(0, 2)`, under its name into the current directory.
  /// @{
  void visit(const ModelFile& file) override;
  void visit(const TSNFunctionFile& file) override;
  /// @}

private:
  [[nodiscard]] std::filesystem::path pathOf(const PackageEntity& entity) const;
  void write(const PackageEntity& file) const;

  std::filesystem::path current_;
};

} // namespace tessarin::compiler::core
