// Runs the tool, or another program, on files of a folder of its own.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin::test {

/// A new folder for temporary files, removed at the end.
class TemporaryFolder {
public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// Writes a file, and the folders that it needs.
  void write(const std::filesystem::path& name, std::string_view bytes) const;

private:
  std::filesystem::path path_;
};

/// What a run leaves.
struct ToolResult {
  int status; ///< the exit status, or 128 and the signal that ended the process
  std::string out;
  std::string error;
};

struct ToolOptions {
  std::string_view input = {};               ///< what standard input holds
  std::string outputFile = {};               ///< where standard output goes instead; `out` is empty then
  std::vector<std::string> environment = {}; ///< `NAME=value`; TERM and NO_COLOR are not inherited
  std::size_t stack = 0;                     ///< the size of the stack in bytes, where not 0
};

/// A terminal to which a process can write: the output file of a run.
class Terminal {
public:
  Terminal();
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }
  /// What has been written, up to some thousand bytes; waits until it is something.
  [[nodiscard]] std::string written() const;

private:
  int master_;
  int slave_ = -1;
  std::string name_;
};

/// Runs a program in `folder`; one whose name has no slash is looked for on the path. Throws `std::system_error` where
/// it cannot be started.
ToolResult runProgram(const std::string& program, const TemporaryFolder& folder,
                      const std::vector<std::string>& arguments, const ToolOptions& options = {});

/// Runs the tool in `folder`.
ToolResult runTool(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                   const ToolOptions& options = {});
/// Runs the tool behind a line of the shell, such as one that closes its standard input.
ToolResult runBehind(const TemporaryFolder& folder, const std::string& line, std::vector<std::string> arguments);

} // namespace tessarin::test
