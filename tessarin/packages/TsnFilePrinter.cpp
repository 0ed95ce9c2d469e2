#include "tessarin/packages/TsnFilePrinter.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/stack.hpp"
#include "tessarin/packages/Directory.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/NewFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include <exception>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace tessarin::compiler::core {

namespace {

namespace messages = kelvane::tessarin::compiler::core::ast;

/// The error about a path.
template <class Msg>
nvf::MessageException errorAt(const std::filesystem::path& path) {
  return nvf::MessageException(nvf::Message(Msg(path.native())));
}

/// Whether the text names an entry of a directory, and not a place elsewhere.
bool isEntryName(const std::string& name) {
  static constexpr std::string_view separators("/\0", 2);
  return !name.empty() && name != "." && name != ".." && name.find_first_of(separators) == std::string::npos;
}

} // namespace

TsnFilePrinter::TsnFilePrinter(const std::filesystem::path& root) : current_(root) {}
TsnFilePrinter::~TsnFilePrinter() = default;

void TsnFilePrinter::printFile(const PackageEntity& entity) {
  entity.accept(*this);
}

std::filesystem::path TsnFilePrinter::pathOf(const PackageEntity& entity) const {
  const std::string name = nvf::ustring_to_local_encoded_string(entity.name());
  std::filesystem::path path = current_ / name;
  if (!isEntryName(name)) throw errorAt<messages::FailToOpenFile>(path);
  return path;
}

void TsnFilePrinter::visit(const Directory& directory) {
  std::filesystem::path outer = current_;
  if (!directory.name().empty()) {
    current_ = pathOf(directory);
    bool isNew = false;
    try {
      isNew = create_directory(current_);
    } catch (const std::filesystem::filesystem_error&) {
      std::throw_with_nested(errorAt<messages::FailToOpenFile>(current_)); // the nested error says why
    }
    if (!isNew) throw errorAt<messages::CodeGenExistingDir>(current_);
  }
  nvf::with_stack([&] {
    for (const auto& entity : directory.entities()) entity->accept(*this);
  });
  // Not so after an exception, intended.
  current_ = std::move(outer);
}

void TsnFilePrinter::visit(const ModelFile& file) {
  write(file);
}
void TsnFilePrinter::visit(const TSNFunctionFile& file) {
  write(file);
}

void TsnFilePrinter::write(const PackageEntity& file) const {
  const std::filesystem::path path = pathOf(file);
  const std::string text = nvf::ustring_to_local_encoded_string(file.string(0, 2));
  try {
    if (writeNewFile(path, text)) return;
    std::error_code ignored; // what cannot be looked at is no file
    if (!is_regular_file(path, ignored)) {
      throw std::filesystem::filesystem_error("cannot write", path, std::make_error_code(std::errc::file_exists));
    }
  } catch (const std::filesystem::filesystem_error&) {
    std::throw_with_nested(errorAt<messages::FailToOpenFile>(path)); // the nested error says why
  }
  throw errorAt<messages::CodeGenExistingFile>(path);
}

} // namespace tessarin::compiler::core
