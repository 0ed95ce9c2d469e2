// From text to the syntax tree, beside scanning and parsing the same text in the same run. Rates are in UTF-16 code
// units a second.
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "AllocationCount.hpp"
#include "SourceFiles.hpp"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <variant>
#include <vector>

namespace {

using namespace tessarin::compiler::core;
using tessarin::bench::overFileSizes;
using tessarin::bench::rate;
using tessarin::bench::SourceFiles;
using tessarin::bench::sourceFiles;

void parse(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(Parser(buffer).parse().count());
  }
  state.counters["units"] = rate(state, corpus.units);
}

TSNFile build(const nvf::SourceBuffer& buffer) {
  return ASTBuilder().buildTSNFile(Parser(buffer).parse(), FileSource::open);
}

void parseAndBuild(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(build(buffer).index());
  }
  state.counters["units"] = rate(state, corpus.units);

  const tessarin::bench::AllocationCount before = tessarin::bench::allocationCount();
  for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(build(buffer).index());
  const tessarin::bench::AllocationCount after = tessarin::bench::allocationCount();
  state.counters["bytes/unit"] = static_cast<double>(after.bytes - before.bytes) / static_cast<double>(corpus.units);
}

void print(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  std::vector<TSNFile> files;
  for (const nvf::SourceBuffer& buffer : corpus.buffers) files.push_back(build(buffer));
  for (auto _ : state) {
    for (const TSNFile& file : files) {
      benchmark::DoNotOptimize(std::visit([](const auto& kind) { return kind.string(0, 2).size(); }, file));
    }
  }
  state.counters["units"] = rate(state, corpus.units);
}

BENCHMARK(parse)->Apply(overFileSizes);
BENCHMARK(parseAndBuild)->Apply(overFileSizes);
BENCHMARK(print)->Apply(overFileSizes);

} // namespace
