// What users see of the texts that the repository holds: hashes of the tokens, of the parse tree with its places, of
// the printed file and of its digest, or the message of the fault. Work on speed changes none of them.
#include "bench/Corpus.hpp"
#include "files.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <map>
#include <sstream>

namespace tessarin::test {
namespace {

using namespace compiler::core;

/// FNV-1a over what it is fed.
class Hash {
public:
  void add(std::string_view bytes) noexcept {
    for (const char byte : bytes) value_ = (value_ ^ static_cast<unsigned char>(byte)) * 0x100000001b3U;
  }
  [[nodiscard]] std::string hex() const {
    std::ostringstream text;
    text << std::hex << std::setw(16) << std::setfill('0') << value_;
    return text.str();
  }

private:
  std::uint64_t value_ = 0xcbf29ce484222325U;
};

std::string hashOf(std::string_view text) {
  Hash hash;
  hash.add(text);
  return hash.hex();
}

template <class Value>
std::string digestOf(const Value& value) {
  Hash hash;
  DigestSink sink = [&hash](const char* bytes, unsigned long count) { hash.add({bytes, count}); };
  incorporate_data(sink, value);
  return hash.hex();
}

/// The line of one text.
std::string pinOf(const nvf::SourceBuffer& buffer) {
  Hash tokens;
  Parser parser(buffer);
  parser.tokenListener([&tokens](const Token& token) {
    std::ostringstream shown;
    shown << token;
    tokens.add(shown.str());
  });
  const Parsed parsed = parse(std::move(parser));
  std::ostringstream pin;
  Hash warnings;
  for (const nvf::Message& warning : parsed.warnings) warnings.add(describe(warning));
  pin << "tokens " << tokens.hex() << " warnings " << warnings.hex();
  if (parsed.fatal) pin << " fatal " << parsed.fatal->text;
  if (parsed.fault) pin << " fault " << describe(*parsed.fault);
  if (parsed.fatal || parsed.fault) return pin.str();
  const std::string file = resultOf([&] {
    const TSNFile built = ASTBuilder().buildTSNFile(parsed.tree, FileSource::open);
    const std::string digest =
        built.index() == 0 ? digestOf(std::get<0>(built).model()) : digestOf(std::get<1>(built).tsnFunction());
    return "file " + hashOf(printed(built)) + " digest " + digest;
  });
  std::ostringstream listing;
  listing << parsed.tree; // behind the builder, which has read a tree that nobody had looked into
  pin << " tree " << hashOf(listing.str()) << " " << file;
  return pin.str();
}

std::map<std::string, std::string> pins() {
  namespace fs = std::filesystem;
  const fs::path data = TESSARIN_TEST_DATA;
  const fs::path root = data.parent_path().parent_path();
  std::map<std::string, std::string> result;
  for (const fs::path& directory : {root / "examples", root / "fuzz" / "corpus", data / "models"}) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
      if (!entry.is_regular_file()) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
      const std::string name = fs::relative(entry.path(), root).generic_string();
      // A code unit for each byte, since the texts of the fuzzers are not all UTF-8; their first byte is no text.
      nvf::ustring units;
      for (const char byte : text) units += static_cast<unsigned char>(byte);
      if (directory.filename() == "corpus") units.erase(0, 1);
      result[name] = pinOf({nvf::FileName(entry.path().filename()), nvf::ustring_view(units)});
    }
  }
  for (const std::uint32_t seed : {1U, 2U, 3U, 4U}) {
    const bench::CorpusFile file = bench::makeFile(seed, 20'000);
    result["generated-" + std::to_string(seed)] =
        pinOf(nvf::SourceBuffer(nvf::FileName(file.name + ".tsn"), nvf::ustring_view(file.text)));
  }
  return result;
}

TEST(Pinned, NothingThatUsersSeeHasChanged) {
  const std::filesystem::path path = std::filesystem::path(TESSARIN_TEST_DATA) / "pinned.txt";
  const std::map<std::string, std::string> now = pins();
  if (std::getenv("TESSARIN_UPDATE_GOLDEN") != nullptr) {
    std::ofstream file(path);
    for (const auto& [name, pin] : now) file << name << ": " << pin << '\n';
    return;
  }
  std::map<std::string, std::string> pinned;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const std::size_t colon = line.find(": ");
    ASSERT_NE(colon, std::string::npos) << line;
    pinned[line.substr(0, colon)] = line.substr(colon + 2);
  }
  ASSERT_FALSE(pinned.empty()) << path;
  for (const auto& [name, pin] : now) {
    // A text that has come since is pinned by the next update.
    if (const auto known = pinned.find(name); known != pinned.end()) {
      EXPECT_EQ(pin, known->second) << name;
    }
  }
}

} // namespace
} // namespace tessarin::test
