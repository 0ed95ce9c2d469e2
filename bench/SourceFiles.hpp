// The generated files as the stages take them, and what the benchmarks report of them.
#pragma once

#include "tessarin/foundation/location.hpp"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessarin::bench {

/// Generated files of one size in code units, or of all sizes.
struct SourceFiles {
  std::vector<nvf::SourceBuffer> buffers;
  std::size_t units = 0; ///< the code units of all files together
};

/// Files of `fileSize` code units each, some 4 million together; for 0, files of all sizes. Made at the first call.
const SourceFiles& sourceFiles(std::int64_t fileSize);

/// `n` for each iteration, as a rate.
benchmark::Counter rate(const benchmark::State& state, std::size_t n);

/// The arguments of a benchmark over files of 10 kB to 10 MB.
void overFileSizes(benchmark::internal::Benchmark* benchmark);

} // namespace tessarin::bench
