// What editors and reviewers wait for: the names of a file, and the difference of two, from text to answer and by
// themselves, in lines a second.
#include "tessarin/ide/Diff.hpp"
#include "tessarin/ide/Names.hpp"
#include "tessarin/ide/Stages.hpp"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace {

using namespace tessarin;

/// A component of so many lines: half of them members, half of them equations that use these. Of the version 1 every
/// hundredth value and equation is another one.
nvf::SourceBuffer modelOf(std::int64_t lines, int version) {
  const auto changed = [version](std::int64_t i) { return std::to_string(version == 1 && i % 100 == 0 ? i + 1 : i); };
  std::string text = "component m\n  variables\n";
  for (std::int64_t i = 0; i < lines / 2; ++i) text += "    x" + std::to_string(i) + " = {" + changed(i) + ", 'V'};\n";
  text += "  end\n  equations\n";
  for (std::int64_t i = 0; i < lines / 2; ++i) {
    text += "    der(x" + std::to_string(i) + ") == " + changed(i) + "*sin(x" + std::to_string(i / 2) + " + time);\n";
  }
  return {nvf::FileName("m.tsn"), nvf::decode_utf8(text + "  end\nend\n")};
}

void namesOfAFile(benchmark::State& state) {
  const auto file = ide::buildFile(modelOf(state.range(0), 0));
  for (auto _ : state) benchmark::DoNotOptimize(ide::namesOf(file));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(namesOfAFile)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void differenceOfTwoFiles(benchmark::State& state) {
  const auto before = ide::buildFile(modelOf(state.range(0), 0));
  const auto after = ide::buildFile(modelOf(state.range(0), 1));
  for (auto _ : state) benchmark::DoNotOptimize(ide::diff(before, after));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(differenceOfTwoFiles)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void differenceOfTwoTexts(benchmark::State& state) {
  const nvf::SourceBuffer before = modelOf(state.range(0), 0);
  const nvf::SourceBuffer after = modelOf(state.range(0), 1);
  for (auto _ : state) benchmark::DoNotOptimize(ide::diff(ide::buildFile(before), ide::buildFile(after)));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(differenceOfTwoTexts)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
