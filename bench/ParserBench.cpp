// Scanning, parsing to a tree, and the same automaton without its actions, in one run. Rates are in UTF-16 code units a
// second. The measure of the actions is `parser` against `automaton` and `lexer` together.
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/message.hpp"
#include "tessarin/parser/lex/Lexer.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "AllocationCount.hpp"
#include "Corpus.hpp"
#include "empty_grammar.hpp"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace tessarin::compiler::core;
using tessarin::bench::CorpusFile;

/// Files of one size with their tokens.
struct Corpus {
  std::vector<nvf::SourceBuffer> buffers;
  std::vector<std::vector<TokenId::Value>> codes;
  std::size_t units = 0;
  std::size_t tokens = 0;
};

const Corpus& corpusOf(std::int64_t fileSize) {
  static std::map<std::int64_t, Corpus> corpora;
  const auto [found, isNew] = corpora.try_emplace(fileSize);
  Corpus& corpus = found->second;
  if (!isNew) return corpus;
  constexpr std::uint32_t seed = 1;
  constexpr std::size_t totalSize = 4'000'000;
  for (const CorpusFile& file : tessarin::bench::makeCorpus(seed, static_cast<std::size_t>(fileSize), totalSize)) {
    const nvf::SourceBuffer& buffer =
        corpus.buffers.emplace_back(nvf::FileName(file.name + ".tsn"), std::u16string_view(file.text));
    std::vector<TokenId::Value>& codes = corpus.codes.emplace_back();
    Lexer lexer(buffer);
    do codes.push_back(lexer.next().code());
    while (codes.back() != TokenId::EOI);
    corpus.units += file.text.size();
    corpus.tokens += codes.size();
  }
  return corpus;
}

void report(benchmark::State& state, const Corpus& corpus) {
  const auto rate = [&state](std::size_t n) {
    return benchmark::Counter(static_cast<double>(n) * static_cast<double>(state.iterations()),
                              benchmark::Counter::kIsRate);
  };
  state.counters["units"] = rate(corpus.units);
  state.counters["tokens"] = rate(corpus.tokens);
}

void lexer(benchmark::State& state) {
  const Corpus& corpus = corpusOf(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) {
      Lexer lexer(buffer);
      while (lexer.next().code() != TokenId::EOI) {
      }
    }
  }
  report(state, corpus);
}

/// The automaton over the codes of tokens that have been scanned before.
void automaton(benchmark::State& state) {
  const Corpus& corpus = corpusOf(state.range(0));
  for (auto _ : state) {
    for (const std::vector<TokenId::Value>& codes : corpus.codes) {
      empty::Actions actions(codes);
      benchmark::DoNotOptimize(empty::TSNParser(actions).parse());
    }
  }
  report(state, corpus);
}

/// From text to tree, and the end of the tree.
void parser(benchmark::State& state) {
  const Corpus& corpus = corpusOf(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(Parser(buffer).parse().count());
  }
  report(state, corpus);

  const tessarin::bench::AllocationCount before = tessarin::bench::allocationCount();
  for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(Parser(buffer).parse().count());
  const tessarin::bench::AllocationCount after = tessarin::bench::allocationCount();
  // The files are ASCII: a code unit is a byte of a file.
  state.counters["bytes/unit"] = static_cast<double>(after.bytes - before.bytes) / static_cast<double>(corpus.units);
  state.counters["allocations/token"] =
      static_cast<double>(after.calls - before.calls) / static_cast<double>(corpus.tokens);
}

/// A file whose fault stands at its end: the tree of all before it is thrown away.
void faultAtTheEnd(benchmark::State& state) {
  const CorpusFile file = tessarin::bench::makeFile(1, static_cast<std::size_t>(state.range(0)));
  const std::u16string text = file.text + u"\n)";
  const nvf::SourceBuffer buffer(nvf::FileName(file.name + ".tsn"), std::u16string_view(text));
  for (auto _ : state) {
    try {
      benchmark::DoNotOptimize(Parser(buffer).parse().count());
      state.SkipWithError("the faulty text has been parsed");
    } catch (const nvf::LocationException& e) {
      benchmark::DoNotOptimize(e.what());
    }
  }
  state.counters["units"] = benchmark::Counter(
      static_cast<double>(text.size()) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void fileSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("file")->Unit(benchmark::kMillisecond);
  for (int size = 10'000; size <= 10'000'000; size *= 10) benchmark->Arg(size);
}

BENCHMARK(lexer)->Apply(fileSizes);
BENCHMARK(automaton)->Apply(fileSizes);
BENCHMARK(parser)->Apply(fileSizes);
BENCHMARK(faultAtTheEnd)->Apply(fileSizes);

} // namespace
