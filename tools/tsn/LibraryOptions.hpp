// The options of the commands that look at a library.
#pragma once

#include "tessarin/ide/Library.hpp"

#include <CLI/App.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessarin::tool {

/// The roots that the command line names.
struct LibraryOptions {
  std::vector<std::string> roots;
};

/// Adds `--root`. `options` is filled in when the command line is read, and has to live until then.
void addLibraryOptions(CLI::App& app, LibraryOptions& options);

/// The library of these roots; where none is named, of the root that is marked at or above `start`, or else of the
/// directory `start` itself, and of the working directory where it is a file.
std::unique_ptr<ide::Library> openLibrary(const LibraryOptions& options, const std::filesystem::path& start);

} // namespace tessarin::tool
