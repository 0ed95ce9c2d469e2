// What names mean across files: a library whose files are read when a name leads to them.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/ide/Names.hpp"
#include "tessarin/ide/Root.hpp"

#include <filesystem>
#include <map>
#include <memory>
#include <vector>

namespace tessarin::ide {

/// What a reference means.
struct Meaning {
  /// Open for a reason, a declaration in a file, a whole file, or a package.
  enum class Kind { Unknown, Declaration, File, Package };
  Kind kind = Kind::Unknown;  ///< which of them
  Unknown reason{};           ///< why it is open
  std::filesystem::path path; ///< of the file or the package that is meant
  Index declaration =
      noIndex; ///< the declaration in that file; of a whole file that of its component, domain or function
};

/// The files of roots with their names. A file is read once, when it is asked for or a name leads to it. For one thread
/// at a time.
class TESSARIN_EXPORT Library {
public:
  /// Files of these roots, read by `reader`, which is not null.
  Library(Roots roots, std::shared_ptr<const FileReader> reader);
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library();

  /// Where it looks.
  [[nodiscard]] const Roots& roots() const noexcept { return roots_; }
  /// The names of a file, also of one below no root; null where there is no file or it has a fault. They live until
  /// `forget`.
  [[nodiscard]] const Names* names(const std::filesystem::path& file);
  /// What each reference of a file means, at its position among the references; empty where the file has no names.
  /// Takes time that grows as the number of references and the depth of bases.
  [[nodiscard]] const std::vector<Meaning>& meanings(const std::filesystem::path& file);
  /// What a dotted name means: a package, a file, or a member of a model in a file.
  [[nodiscard]] Meaning find(const nvf::CxIdPath& name);
  /// Drops what is known of all files, since some have changed.
  void forget();

private:
  struct File;

  File& file(const std::filesystem::path& path);
  Meaning meaningOf(const Entity& entity);
  /// What a reference of role type, base or import means, whose path leads from one file to another one.
  Meaning typeOf(File& file, Index reference);
  /// What an import of all names brings under the name; where none does, open for that reason, or for an import that is
  /// not known.
  Meaning imported(File& file, const Reference& reference, Unknown otherwise);
  /// The member of that name, in the model of a file or in its bases.
  Meaning member(const std::filesystem::path& path, const nvf::CxId& name);
  /// What a name means that is by itself and that its file does not declare.
  Meaning leading(File& file, const Reference& reference);
  /// What the name means as a part of what is known of the step before it.
  Meaning step(const Meaning& parent, const Reference& reference);

  Roots roots_;
  std::shared_ptr<const FileReader> reader_;
  std::map<std::filesystem::path, std::unique_ptr<File>> files_;
};

} // namespace tessarin::ide
