// Our side of the comparison with other parsers: the texts of the benchmark as files, and the best rate over files, in
// million code units a second.
//
//   peers_ours write SIZE SEED FILE      writes a generated model of about so many code units
//   peers_ours read|tree|syntax TIMES FILE...   reads the texts only; text to parse tree; text to syntax tree
#include "tessarin/foundation/warning.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "Corpus.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace tessarin;
using namespace tessarin::compiler::core;

void write(std::size_t size, std::uint32_t seed, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  for (const char16_t unit : bench::makeFile(seed, size).text) file.put(static_cast<char>(unit));
}

void run(const std::string& mode, int times, std::span<char*> paths) {
  std::vector<nvf::ustring> texts;
  std::size_t units = 0;
  for (const char* path : paths) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    nvf::ustring& text = texts.emplace_back();
    for (const char byte : bytes) text += static_cast<unsigned char>(byte);
    units += text.size();
  }
  const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
  double best = 0;
  for (; times > 0; --times) {
    const auto start = std::chrono::steady_clock::now();
    for (const nvf::ustring& text : texts) {
      const nvf::SourceBuffer buffer(nvf::FileName(std::string("peer.tsn")), nvf::ustring_view(text));
      if (mode == "tree") static_cast<void>(Parser(buffer).parse());
      if (mode == "syntax") static_cast<void>(ASTBuilder().buildTSNFile(Parser(buffer).parse(), FileSource::open));
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    best = std::max(best, static_cast<double>(units) / taken.count());
  }
  std::printf("%.2f\n", best / 1e6);
}

} // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "write" && argc == 5) {
    write(std::stoul(argv[2]), static_cast<std::uint32_t>(std::stoul(argv[3])), argv[4]);
  } else if ((mode == "read" || mode == "tree" || mode == "syntax") && argc > 3) {
    run(mode, std::stoi(argv[2]), std::span(argv, static_cast<std::size_t>(argc)).subspan(3));
  } else {
    return 2;
  }
}
