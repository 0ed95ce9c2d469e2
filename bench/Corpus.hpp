// Generated source text for benchmarks and tests: valid model files that look like written ones, each different from
// the others in its names, its numbers, its comments and the order of its sections.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tessarin::bench {

struct CorpusFile {
  std::string name; ///< of the model; the file's name is this with ".tsn"
  std::u16string text;
};

/// A model file of `size` code units or a little more: the model goes on until the size is reached and then closes what
/// is open. The same arguments give the same text on every machine.
CorpusFile makeFile(std::uint32_t seed, std::size_t size);

/// Different files of about `fileSize` code units each, about `totalSize` together; one at least.
std::vector<CorpusFile> makeCorpus(std::uint32_t seed, std::size_t fileSize, std::size_t totalSize);

/// Different files of 1 kB to 10 MB, many of the smaller and few of the larger sizes, about 20 MB together.
std::vector<CorpusFile> makeMixedCorpus(std::uint32_t seed);

} // namespace tessarin::bench
