#include "run_tool.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace tessarin::test {

namespace {

void require(bool succeeded, const char* what) {
  if (!succeeded) throw std::system_error(errno, std::generic_category(), what);
}

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  pointers.reserve(strings.size() + 1);
  for (std::string& string : strings) pointers.push_back(string.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& additions) {
  std::vector<std::string> environment;
  for (char** variable = environ; *variable != nullptr; ++variable) environment.emplace_back(*variable);
  std::erase_if(environment, [](const std::string& v) { return v.starts_with("TERM=") || v.starts_with("NO_COLOR="); });
  environment.insert(environment.end(), additions.begin(), additions.end());
  return environment;
}

/// The limit on the stack that child processes get while this lives.
class StackLimit {
public:
  explicit StackLimit(std::size_t size) {
    require(getrlimit(RLIMIT_STACK, &former_) == 0, "getrlimit");
    rlimit limit = former_;
    if (size != 0) limit.rlim_cur = size;
    require(setrlimit(RLIMIT_STACK, &limit) == 0, "setrlimit");
  }
  ~StackLimit() { setrlimit(RLIMIT_STACK, &former_); }
  StackLimit(const StackLimit&) = delete;
  StackLimit& operator=(const StackLimit&) = delete;

private:
  rlimit former_{};
};

} // namespace

TemporaryFolder::TemporaryFolder() {
  std::string name = std::filesystem::temp_directory_path() / "tsn-test-XXXXXX";
  require(mkdtemp(name.data()) != nullptr, "mkdtemp");
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void TemporaryFolder::write(const std::filesystem::path& name, std::string_view bytes) const {
  const std::filesystem::path file = path_ / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
}

ToolResult runProgram(const std::string& program, const TemporaryFolder& folder,
                      const std::vector<std::string>& arguments, const ToolOptions& options) {
  const TemporaryFolder streams;
  streams.write("in", options.input);
  const std::string in = streams.path() / "in";
  const std::string out = options.outputFile.empty() ? std::string(streams.path() / "out") : options.outputFile;
  const std::string error = streams.path() / "error";

  constexpr int writing = O_WRONLY | O_CREAT | O_TRUNC | O_NOCTTY;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, in.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), writing, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, error.c_str(), writing, 0600);
  posix_spawn_file_actions_addchdir_np(&actions, folder.path().c_str());

  std::vector<std::string> command = {program};
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = environmentWith(options.environment);
  pid_t process = 0;
  const int failure = [&] {
    const StackLimit limit(options.stack);
    return posix_spawnp(&process, program.c_str(), &actions, nullptr, pointersTo(command).data(),
                        pointersTo(environment).data());
  }();
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::system_error(failure, std::generic_category(), program);

  int status = 0;
  require(waitpid(process, &status, 0) == process, "waitpid");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
          options.outputFile.empty() ? contentsOf(out) : std::string(), contentsOf(error)};
}

Terminal::Terminal() : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
  require(master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0, "no terminal");
  name_ = ptsname(master_);
  slave_ = open(name_.c_str(), O_RDWR | O_NOCTTY); // so that what is written stays when the process ends
}

Terminal::~Terminal() {
  close(slave_);
  close(master_);
}

std::string Terminal::written() const {
  std::string text(4096, '\0');
  text.resize(static_cast<std::size_t>(std::max<ssize_t>(read(master_, text.data(), text.size()), 0)));
  return text;
}

ToolResult runTool(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                   const ToolOptions& options) {
  return runProgram(TSN_EXECUTABLE, folder, arguments, options);
}

ToolResult runBehind(const TemporaryFolder& folder, const std::string& line, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"-c", line + "; exec \"$0\" \"$@\"", TSN_EXECUTABLE});
  return runProgram("sh", folder, arguments);
}

} // namespace tessarin::test
