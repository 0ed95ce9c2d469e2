// Where the files of a library are: how they are read, and how dotted names lead to them.
//
// A root is a directory that holds a library. Below it directories and files make dotted names, as packages on the disk
// do: `electrical/resistor.tsn` is `electrical.resistor`. A root is named by its user or marked by a file
// `.tessarin.json` in it, which may hold settings and may be empty.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/location.hpp"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tessarin::ide {

/// Reads files. Implemented over the disk below; an editor puts its unsaved buffers before it, and where there is no
/// disk the texts come from elsewhere. The functions may be called from the thread that uses the reader only, unless
/// the class says otherwise.
class TESSARIN_EXPORT FileReader {
public:
  FileReader() = default;
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;
  virtual ~FileReader();

  /// The text of the file, under this path; nothing where there is no file, or one that cannot be read or is not UTF-8.
  [[nodiscard]] virtual std::optional<nvf::SourceBuffer> read(const std::filesystem::path& path) const = 0;
  /// Whether there is a file, and whether there is a directory. What cannot be looked into is not there.
  /// @{
  [[nodiscard]] virtual bool isFile(const std::filesystem::path& path) const = 0;
  [[nodiscard]] virtual bool isDirectory(const std::filesystem::path& path) const = 0;
  /// @}
};

/// Reads from the disk. Safe from any thread.
class TESSARIN_EXPORT DiskReader final : public FileReader {
public:
  [[nodiscard]] std::optional<nvf::SourceBuffer> read(const std::filesystem::path& path) const override;
  [[nodiscard]] bool isFile(const std::filesystem::path& path) const override;
  [[nodiscard]] bool isDirectory(const std::filesystem::path& path) const override;
};

/// Texts in memory that stand before those of another reader, or alone. Paths are compared as they are written, without
/// `.` and `..`.
class TESSARIN_EXPORT MemoryReader final : public FileReader {
public:
  /// `behind` is asked for what is not in memory; it may be null.
  explicit MemoryReader(std::shared_ptr<const FileReader> behind = nullptr) : behind_(std::move(behind)) {}

  /// Puts a text in the place of the file's, or takes it away again.
  /// @{
  void set(const std::filesystem::path& path, nvf::ustring_view text);
  void reset(const std::filesystem::path& path);
  /// @}
  [[nodiscard]] std::optional<nvf::SourceBuffer> read(const std::filesystem::path& path) const override;
  [[nodiscard]] bool isFile(const std::filesystem::path& path) const override;
  /// Also where a file in memory is below it.
  [[nodiscard]] bool isDirectory(const std::filesystem::path& path) const override;

private:
  std::map<std::filesystem::path, nvf::SourceBuffer> texts_;
  std::shared_ptr<const FileReader> behind_;
};

/// What a dotted name leads to.
struct Entity {
  /// Nothing that is there, a directory, or a file.
  enum class Kind { None, Package, File };
  Kind kind = Kind::None;     ///< which of them
  std::filesystem::path path; ///< of the directory or the file, below the root; empty where there is nothing

  friend bool operator==(const Entity&, const Entity&) = default;
};

/// The file that marks a root.
inline constexpr const char* rootMark = ".tessarin.json";

/// The nearest directory at or above `path` that is marked as a root; nothing where there is none.
TESSARIN_EXPORT std::optional<std::filesystem::path> findRoot(const std::filesystem::path& path,
                                                              const FileReader& reader);

/// Directories of libraries in the order in which they are looked at. A plain value.
class TESSARIN_EXPORT Roots {
public:
  Roots() = default;
  /// These directories; nothing is checked.
  explicit Roots(std::vector<std::filesystem::path> directories) : directories_(std::move(directories)) {}

  /// The directories, in their order.
  [[nodiscard]] const std::vector<std::filesystem::path>& directories() const noexcept { return directories_; }
  /// What the dotted name leads to in the first root that has it. A file comes before a directory of its name.
  [[nodiscard]] Entity find(std::span<const nvf::CxId> name, const FileReader& reader) const;
  /// What the name leads to inside a package.
  [[nodiscard]] static Entity findIn(const Entity& package, const nvf::CxId& name, const FileReader& reader);
  /// The dotted name of a file; nothing where it is below no root, has no `.tsn` at its end, or has a directory or a
  /// name on its way that is no identifier.
  [[nodiscard]] std::optional<nvf::CxIdPath> nameOf(const std::filesystem::path& file) const;

private:
  std::vector<std::filesystem::path> directories_;
};

} // namespace tessarin::ide
