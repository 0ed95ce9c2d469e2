#include "tessarin/ide/Root.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>

namespace tessarin::ide {

namespace fs = std::filesystem;

FileReader::~FileReader() = default;

// ---- the disk ----

std::optional<nvf::SourceBuffer> DiskReader::read(const fs::path& path) const {
  if (!isFile(path)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (!file && !file.eof()) return std::nullopt;
  try {
    return nvf::SourceBuffer(nvf::FileName(path), nvf::decode_utf8(bytes));
  } catch (const nvf::InvalidUtf8&) {
    return std::nullopt;
  }
}

bool DiskReader::isFile(const fs::path& path) const {
  std::error_code none;
  return fs::is_regular_file(path, none);
}

bool DiskReader::isDirectory(const fs::path& path) const {
  std::error_code none;
  return fs::is_directory(path, none);
}

// ---- memory ----

void MemoryReader::set(const fs::path& path, nvf::ustring_view text) {
  texts_.insert_or_assign(path.lexically_normal(), nvf::SourceBuffer(nvf::FileName(path), text));
}

void MemoryReader::reset(const fs::path& path) {
  texts_.erase(path.lexically_normal());
}

std::optional<nvf::SourceBuffer> MemoryReader::read(const fs::path& path) const {
  const auto found = texts_.find(path.lexically_normal());
  if (found != texts_.end()) return found->second;
  return behind_ == nullptr ? std::nullopt : behind_->read(path);
}

bool MemoryReader::isFile(const fs::path& path) const {
  return texts_.contains(path.lexically_normal()) || (behind_ != nullptr && behind_->isFile(path));
}

bool MemoryReader::isDirectory(const fs::path& path) const {
  // What lies below a directory comes right behind it in the order of paths.
  const fs::path normal = (path / "").lexically_normal().parent_path();
  const auto below = texts_.upper_bound(normal);
  if (below != texts_.end()) {
    const auto [end, ignored] = std::mismatch(normal.begin(), normal.end(), below->first.begin(), below->first.end());
    if (end == normal.end()) return true;
  }
  return behind_ != nullptr && behind_->isDirectory(path);
}

// ---- roots ----

std::optional<fs::path> findRoot(const fs::path& path, const FileReader& reader) {
  for (fs::path directory = path.lexically_normal();;) {
    if (reader.isFile(directory / rootMark)) return directory;
    const fs::path parent = directory.parent_path();
    if (parent == directory || parent.empty()) return std::nullopt;
    directory = parent;
  }
}

Entity Roots::findIn(const Entity& package, const nvf::CxId& name, const FileReader& reader) {
  if (package.kind != Entity::Kind::Package) return {};
  const std::string text = nvf::narrow(name.view());
  Entity entity{Entity::Kind::File, package.path / (text + ".tsn")};
  if (reader.isFile(entity.path)) return entity;
  entity = {Entity::Kind::Package, package.path / text};
  if (reader.isDirectory(entity.path)) return entity;
  return {};
}

Entity Roots::find(std::span<const nvf::CxId> name, const FileReader& reader) const {
  for (const fs::path& directory : directories_) {
    Entity entity{Entity::Kind::Package, directory};
    for (const nvf::CxId& step : name) entity = findIn(entity, step, reader);
    if (entity.kind != Entity::Kind::None) return entity;
  }
  return {};
}

std::optional<nvf::CxIdPath> Roots::nameOf(const fs::path& file) const {
  if (file.extension() != ".tsn") return std::nullopt;
  for (const fs::path& directory : directories_) {
    const fs::path below = file.lexically_normal().lexically_relative(directory.lexically_normal());
    std::vector<nvf::CxId> ids;
    bool isName = !below.empty() && *below.begin() != "..";
    for (auto step = below.begin(); isName && step != below.end(); ++step) {
      const bool isLast = std::next(step) == below.end();
      const std::string bytes = (isLast ? step->stem() : *step).string();
      const nvf::ustring text(bytes.begin(), bytes.end());
      isName = nvf::is_identifier(text);
      if (isName) ids.push_back(nvf::detail::CxIdCheck()(nvf::ustring_view(text)));
    }
    if (isName) return nvf::CxIdPath(ids);
  }
  return std::nullopt;
}

} // namespace tessarin::ide
