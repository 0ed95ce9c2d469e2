// Runs a fuzzer's body over files without libFuzzer, so that every build replays what fuzzing has found.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// The arguments are directories. A body that finds a fault ends the process.
int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(argv[i])) {
      std::cout << entry.path().string()
                << std::endl; // flushed: the last name is that of the file that ends the process
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++count;
    }
  }
  std::cout << count << " files\n";
  return count == 0 ? 1 : 0; // an empty corpus tests nothing
}
