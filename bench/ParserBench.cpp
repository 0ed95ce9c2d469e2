// Scanning, parsing to a tree, and the same automaton without its actions, in one run. Rates are in UTF-16 code units a
// second. The measure of the actions is `parser` against `automaton` and `lexer` together.
#include "tessarin/foundation/message.hpp"
#include "tessarin/parser/lex/Lexer.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "AllocationCount.hpp"
#include "Corpus.hpp"
#include "SourceFiles.hpp"
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
using tessarin::bench::overFileSizes;
using tessarin::bench::rate;
using tessarin::bench::SourceFiles;
using tessarin::bench::sourceFiles;

/// The codes of the tokens of the files of one size.
struct Codes {
  std::vector<std::vector<TokenId::Value>> files;
  std::size_t tokens = 0; ///< of all files together
};

const Codes& codesOf(std::int64_t fileSize) {
  static std::map<std::int64_t, Codes> bySize;
  const auto [found, isNew] = bySize.try_emplace(fileSize);
  Codes& codes = found->second;
  if (!isNew) return codes;
  for (const nvf::SourceBuffer& buffer : sourceFiles(fileSize).buffers) {
    std::vector<TokenId::Value>& file = codes.files.emplace_back();
    Lexer lexer(buffer);
    do file.push_back(lexer.next().code());
    while (file.back() != TokenId::EOI);
    codes.tokens += file.size();
  }
  return codes;
}

void report(benchmark::State& state) {
  state.counters["units"] = rate(state, sourceFiles(state.range(0)).units);
  state.counters["tokens"] = rate(state, codesOf(state.range(0)).tokens);
}

void lexer(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) {
      Lexer lexer(buffer);
      while (lexer.next().code() != TokenId::EOI) {
      }
    }
  }
  report(state);
}

/// The automaton over the codes of tokens that have been scanned before.
void automaton(benchmark::State& state) {
  const Codes& codes = codesOf(state.range(0));
  for (auto _ : state) {
    for (const std::vector<TokenId::Value>& file : codes.files) {
      empty::Actions actions(file);
      benchmark::DoNotOptimize(empty::TSNParser(actions).parse());
    }
  }
  report(state);
}

/// From text to tree, and the end of the tree.
void parser(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  for (auto _ : state) {
    for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(Parser(buffer).parse().count());
  }
  report(state);

  const tessarin::bench::AllocationCount before = tessarin::bench::allocationCount();
  for (const nvf::SourceBuffer& buffer : corpus.buffers) benchmark::DoNotOptimize(Parser(buffer).parse().count());
  const tessarin::bench::AllocationCount after = tessarin::bench::allocationCount();
  // The files are ASCII: a code unit is a byte of a file.
  state.counters["bytes/unit"] = static_cast<double>(after.bytes - before.bytes) / static_cast<double>(corpus.units);
  state.counters["allocations/token"] =
      static_cast<double>(after.calls - before.calls) / static_cast<double>(codesOf(state.range(0)).tokens);
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
  state.counters["units"] = rate(state, text.size());
}

BENCHMARK(lexer)->Apply(overFileSizes);
BENCHMARK(automaton)->Apply(overFileSizes);
BENCHMARK(parser)->Apply(overFileSizes);
BENCHMARK(faultAtTheEnd)->Apply(overFileSizes);

} // namespace
