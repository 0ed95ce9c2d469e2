#include "SourceFiles.hpp"

#include "Corpus.hpp"

#include <map>
#include <string_view>

namespace tessarin::bench {

namespace {

SourceFiles makeSourceFiles(std::int64_t fileSize) {
  constexpr std::uint32_t seed = 1;
  constexpr std::size_t totalSize = 4'000'000;
  SourceFiles files;
  for (const CorpusFile& file :
       fileSize == 0 ? makeMixedCorpus(seed) : makeCorpus(seed, static_cast<std::size_t>(fileSize), totalSize)) {
    files.buffers.emplace_back(nvf::FileName(file.name + ".tsn"), std::u16string_view(file.text));
    files.units += file.text.size();
  }
  return files;
}

} // namespace

const SourceFiles& sourceFiles(std::int64_t fileSize) {
  static std::map<std::int64_t, SourceFiles> bySize;
  const auto [found, isNew] = bySize.try_emplace(fileSize);
  if (isNew) found->second = makeSourceFiles(fileSize);
  return found->second;
}

benchmark::Counter rate(const benchmark::State& state, std::size_t n) {
  return {static_cast<double>(n) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate};
}

void overFileSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("file")->Unit(benchmark::kMillisecond);
  for (int size = 10'000; size <= 10'000'000; size *= 10) benchmark->Arg(size);
}

} // namespace tessarin::bench
