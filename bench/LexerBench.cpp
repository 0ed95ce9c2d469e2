// Scanner, lexer and interning on generated files. Rates are in UTF-16 code units per second. The pass of bare table
// lookups over the same text is the yardstick of the machine: read the others as a multiple of it.
#include "tessarin/foundation/table_string.hpp"
#include "tessarin/parser/lex/Lexer.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include "SourceFiles.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace tessarin::compiler::core;
using tessarin::bench::rate;
using tessarin::bench::SourceFiles;
using tessarin::bench::sourceFiles;

void tableLookup(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  std::array<unsigned char, 128> table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<unsigned char>(i * 37 % 38);
  for (auto _ : state) {
    std::size_t sum = 0;
    for (const nvf::SourceBuffer& buffer : corpus.buffers) {
      for (const char16_t unit : buffer.text()) sum += unit < table.size() ? table[unit] : 38U;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["units"] = rate(state, corpus.units);
}

void scanner(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  const auto tokenizer = Tokenizer::create();
  std::size_t tokens = 0;
  for (auto _ : state) {
    tokens = 0;
    for (const nvf::SourceBuffer& buffer : corpus.buffers) {
      tokenizer->setBuffer(buffer.text().data(), buffer.text().size(), false);
      while (tokenizer->next() != LexToken::INVALID_TOKEN) ++tokens;
    }
  }
  state.counters["units"] = rate(state, corpus.units);
  state.counters["units/token"] = static_cast<double>(corpus.units) / static_cast<double>(tokens);
}

void scannerByLine(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  const auto tokenizer = Tokenizer::create();
  std::array<LexToken, 1000> tokens;
  for (auto _ : state) {
    std::ptrdiff_t count = 0;
    for (const nvf::SourceBuffer& buffer : corpus.buffers) {
      State lineState;
      for (std::size_t begin = 0; begin < buffer.text().size();) {
        const std::size_t end = buffer.text().find(u'\n', begin) + 1;
        count += tokenizer->tokenizeLine(tokens.data(), tokens.size(), lineState, buffer.text().data() + begin,
                                         end - begin, nullptr);
        begin = end;
      }
    }
    benchmark::DoNotOptimize(count);
  }
  state.counters["units"] = rate(state, corpus.units);
}

void lexer(benchmark::State& state) {
  const SourceFiles& corpus = sourceFiles(state.range(0));
  std::size_t tokens = 0;
  for (auto _ : state) {
    tokens = 0;
    for (const nvf::SourceBuffer& buffer : corpus.buffers) {
      Lexer lexer(buffer);
      while (lexer.next().code() != TokenId::EOI) ++tokens;
    }
  }
  state.counters["units"] = rate(state, corpus.units);
  state.counters["tokens"] = rate(state, tokens);
}

/// The names and numbers of a mixed corpus, in the order of the text.
std::vector<std::u16string> wordsOfCorpus() {
  std::vector<std::u16string> words;
  const auto tokenizer = Tokenizer::create();
  for (const nvf::SourceBuffer& buffer : sourceFiles(100'000).buffers) {
    tokenizer->setBuffer(buffer.text().data(), buffer.text().size(), false);
    std::size_t position = 0;
    for (LexToken token = tokenizer->next(); token != LexToken::INVALID_TOKEN; token = tokenizer->next()) {
      if (token.kind == Kind::ID || token.kind == Kind::FLOAT)
        words.emplace_back(buffer.text().substr(position, token.length));
      position += token.length;
    }
  }
  return words;
}

/// Texts that are in the table after the first pass, by one and by two threads on the same words.
void internKnown(benchmark::State& state) {
  static const std::vector<std::u16string> words = wordsOfCorpus();
  for (auto _ : state) {
    for (const std::u16string& word : words) {
      benchmark::DoNotOptimize(nvf::BasicTableString<char16_t>(word.data(), word.size()).data());
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(words.size()));
}

/// Texts that nobody has interned.
void internNew(benchmark::State& state) {
  static std::atomic<std::uint64_t> counter = 0;
  constexpr std::int64_t perIteration = 1000;
  for (auto _ : state) {
    std::uint64_t number = counter.fetch_add(perIteration);
    for (std::int64_t i = 0; i < perIteration; ++i, ++number) {
      std::array<char16_t, 12> text;
      for (std::size_t digit = 0; digit < text.size(); ++digit) {
        text[digit] = static_cast<char16_t>(u'a' + (number >> (5U * digit) & 31U));
      }
      benchmark::DoNotOptimize(nvf::BasicTableString<char16_t>(text.data(), text.size()).data());
    }
  }
  state.SetItemsProcessed(state.iterations() * perIteration);
}

/// 0 stands for the corpus of all sizes.
void fileSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("file")->Unit(benchmark::kMillisecond)->Arg(0);
  for (int size = 1000; size <= 10'000'000; size *= 10) benchmark->Arg(size);
}

BENCHMARK(tableLookup)->Apply(fileSizes);
BENCHMARK(scanner)->Apply(fileSizes);
BENCHMARK(scannerByLine)->Apply(fileSizes);
BENCHMARK(lexer)->Apply(fileSizes);
BENCHMARK(internKnown)->Threads(1)->Threads(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(internNew)->Threads(1)->Threads(2)->UseRealTime()->Iterations(1000);

} // namespace
