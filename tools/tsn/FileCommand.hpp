// The shape of the commands that answer about one file, as text for people or as JSON for machines.
#pragma once

#include "Console.hpp"
#include "JsonWriter.hpp"
#include "Source.hpp"
#include "Status.hpp"

#include <CLI/App.hpp>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

namespace tessarin::tool {

/// The options that these commands share.
struct FileOptions {
  std::string path;
  bool json = false;
};

/// Adds the options to the command line. They are filled in when it is read.
std::shared_ptr<const FileOptions> addFileOptions(CLI::App& app);

/// How a question about a file is answered. Both functions may throw what the library throws.
struct FileAnswer {
  /// Writes the answer as text. What it has written when it throws stays.
  void (*text)(const Source& source, std::ostream& out);
  /// Finds the answer and returns what writes it. Nothing is written before the whole answer is found.
  std::function<void(JsonWriter&)> (*json)(const Source& source);
  /// Whether that writes the whole document, rather than the members of an object which also has the warnings.
  bool isWholeDocument = false;
};

/// Reads the file, writes the answer to standard output, and says what is wrong: as text to standard error, as JSON in
/// the document. A failure takes the place of the answer in the document.
Status answer(const FileOptions& options, const FileAnswer& how, Console& console);

} // namespace tessarin::tool
