#include "SourceFiles.hpp"

#include "Printable.hpp"

#include <algorithm>

namespace tessarin::tool {

namespace fs = std::filesystem;

namespace {

/// Whether the entry is to be read: a file, or a link that leads nowhere, which its reader will report.
bool isSourceFile(const fs::directory_entry& entry) {
  std::error_code ignored;
  const fs::file_type type = entry.status(ignored).type();
  const bool mayBeRead = type == fs::file_type::regular || type == fs::file_type::not_found || //
                         type == fs::file_type::none || type == fs::file_type::unknown;
  return mayBeRead && entry.path().native().ends_with(".tsn");
}

} // namespace

FilesBelow filesBelow(const fs::path& directory) {
  FilesBelow found;
  std::vector<fs::path> open = {directory};
  while (!open.empty()) {
    const fs::path current = std::move(open.back());
    open.pop_back();
    std::error_code failure;
    for (fs::directory_iterator entry(current, failure); !failure && entry != fs::directory_iterator();
         entry.increment(failure)) {
      std::error_code unknown;
      if (entry->symlink_status(unknown).type() == fs::file_type::directory) {
        open.push_back(entry->path());
      } else if (isSourceFile(*entry)) {
        found.files.push_back(entry->path().native());
      } else if (unknown) { // it may be a folder with files
        found.unreadable.emplace_back(entry->path().native(), unknown);
      }
    }
    if (failure) found.unreadable.emplace_back(current.native(), failure);
  }
  std::sort(found.files.begin(), found.files.end());
  std::sort(found.unreadable.begin(), found.unreadable.end());
  return found;
}

std::vector<std::string> readableFilesBelow(const fs::path& directory, Console& console, Status& status) {
  FilesBelow below = filesBelow(directory);
  for (const auto& [path, failure] : below.unreadable) {
    console.report("tsn: '" + escaped(path) + "' cannot be read: " + failure.message() + "\n");
    status = Status::Usage;
  }
  return std::move(below.files);
}

std::string identityOf(const std::string& path) {
  const fs::path file(path);
  std::error_code failure;
  const fs::path directory = fs::canonical(file.has_parent_path() ? file.parent_path() : fs::path("."), failure);
  return failure ? path : (directory / file.filename()).native();
}

} // namespace tessarin::tool
