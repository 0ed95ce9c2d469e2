#include "LibraryOptions.hpp"

namespace tessarin::tool {

namespace fs = std::filesystem;

void addLibraryOptions(CLI::App& app, LibraryOptions& options) {
  app.add_option("--root", options.roots,
                 "a directory below which directories and files make dotted names; may be given several times (by "
                 "default the nearest directory upwards that has a file .tessarin.json, or else this one)")
      ->type_name("DIR");
}

std::unique_ptr<ide::Library> openLibrary(const LibraryOptions& options, const fs::path& start) {
  const auto reader = std::make_shared<ide::DiskReader>();
  std::vector<fs::path> roots(options.roots.begin(), options.roots.end());
  if (roots.empty()) {
    // Paths are told as the user would write them: relative to where the tool runs.
    const std::optional<fs::path> marked = findRoot(fs::absolute(start), *reader);
    const fs::path otherwise = fs::is_directory(start) ? start : fs::path(".");
    roots.push_back(marked ? marked->lexically_proximate(fs::current_path()) : otherwise);
  }
  return std::make_unique<ide::Library>(ide::Roots(std::move(roots)), reader);
}

} // namespace tessarin::tool
