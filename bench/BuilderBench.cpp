// From text to the syntax tree, beside scanning and parsing the same text in the same run. Rates are in UTF-16 code
// units a second.
#include "tessarin/foundation/location.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "AllocationCount.hpp"
#include "Corpus.hpp"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <variant>
#include <vector>

namespace {

using namespace tessarin::compiler::core;
using tessarin::bench::CorpusFile;

struct Corpus {
  std::vector<nvf::SourceBuffer> buffers;
  std::size_t units = 0;
};

/// Files of one size.
const Corpus& corpusOf(std::int64_t fileSize) {
  static std::map<std::int64_t, Corpus> corpora;
  const auto [found, isNew] = corpora.try_emplace(fileSize);
  Corpus& corpus = found->second;
  if (!isNew) return corpus;
  constexpr std::uint32_t seed = 1;
  constexpr std::size_t totalSize = 4'000'000;
  for (const CorpusFile& file : tessarin::bench::makeCorpus(seed, static_cast<std::size_t>(fileSize), totalSize)) {
    corpus.buffers.emplace_back(nvf::FileName(file.name + ".tsn"), std::u16string_view(file.text));
    corpus.units += file.text.size();
  }
  return corpus;
}

void report(benchmark::State& state, const Corpus& corpus) {
  state.counters["units"] = benchmark::Counter(
      static_cast<double>(corpus.units) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void parse(benchmark::State& state) {
  const Corpus& corpus = corpusOf(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(Parser(buffer).parse().count());
  }
  report(state, corpus);
}

TSNFile build(const nvf::SourceBuffer& buffer) {
  return ASTBuilder().buildTSNFile(Parser(buffer).parse(), FileSource::open);
}

void parseAndBuild(benchmark::State& state) {
  const Corpus& corpus = corpusOf(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(build(buffer).index());
  }
  report(state, corpus);

  const tessarin::bench::AllocationCount before = tessarin::bench::allocationCount();
  for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(build(buffer).index());
  const tessarin::bench::AllocationCount after = tessarin::bench::allocationCount();
  state.counters["bytes/unit"] = static_cast<double>(after.bytes - before.bytes) / static_cast<double>(corpus.units);
}

void print(benchmark::State& state) {
  const Corpus& corpus = corpusOf(state.range(0));
  std::vector<TSNFile> files;
  for (const nvf::SourceBuffer& buffer : corpus.buffers) files.push_back(build(buffer));
  for (auto _ : state) {
    for (const TSNFile& file : files) {
      benchmark::DoNotOptimize(std::visit([](const auto& kind) { return kind.string(0, 2).size(); }, file));
    }
  }
  report(state, corpus);
}

void fileSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("file")->Unit(benchmark::kMillisecond);
  for (int size = 10'000; size <= 10'000'000; size *= 10) benchmark->Arg(size);
}

BENCHMARK(parse)->Apply(fileSizes);
BENCHMARK(parseAndBuild)->Apply(fileSizes);
BENCHMARK(print)->Apply(fileSizes);

} // namespace
