// Formatting with its checks, the pieces that it stands on, and parsing beside them in the same run. Rates are in
// UTF-16 code units a second.
#include "tessarin/ide/Format.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "SourceFiles.hpp"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace tessarin;
using bench::overFileSizes;
using bench::rate;
using bench::sourceFiles;

template <class Work>
void overFiles(benchmark::State& state, const Work& work) {
  const bench::SourceFiles& corpus = sourceFiles(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) work(buffer);
  }
  state.counters["units"] = rate(state, corpus.units);
}

void pieces(benchmark::State& state) {
  overFiles(state, [](const nvf::SourceBuffer& buffer) {
    benchmark::DoNotOptimize(ide::Lossless(buffer.text()).pieces().size());
  });
}

void parse(benchmark::State& state) {
  overFiles(state, [](const nvf::SourceBuffer& buffer) {
    benchmark::DoNotOptimize(compiler::core::Parser(buffer).parse().count());
  });
}

/// Files as they are generated.
void format(benchmark::State& state) {
  overFiles(state,
            [](const nvf::SourceBuffer& buffer) { benchmark::DoNotOptimize(ide::format(buffer.text()).text.size()); });
}

/// Files that are formatted already, as most are.
void formatAgain(benchmark::State& state) {
  std::vector<nvf::ustring> texts;
  std::size_t units = 0;
  for (const nvf::SourceBuffer& buffer : sourceFiles(state.range(0)).buffers) {
    texts.push_back(ide::format(buffer.text()).text);
    units += texts.back().size();
  }
  for (auto _ : state) {
    for (const nvf::ustring& text : texts) benchmark::DoNotOptimize(ide::format(text).text.size());
  }
  state.counters["units"] = rate(state, units);
}

BENCHMARK(pieces)->Apply(overFileSizes);
BENCHMARK(parse)->Apply(overFileSizes);
BENCHMARK(format)->Apply(overFileSizes);
BENCHMARK(formatAgain)->Apply(overFileSizes);

} // namespace
