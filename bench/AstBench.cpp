// The services of the syntax tree on expressions of 1,000 to 1,000,000 nodes: copying, hashing, comparing, printing,
// rewriting and visiting, in nodes a second, and the bytes that a node takes. A node is an expression. And the names
// in an expression, some of them made to collide.
#include "tessarin/parser/ast/Expr.hpp"
#include "tessarin/parser/ast/ExprTransformVisitor.hpp"
#include "tessarin/parser/ast/Usage.hpp"

#include "AllocationCount.hpp"
#include "MadeNames.hpp"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace tessarin::compiler::core;

/// Makes expressions as models have them: sums and products of variables and numbers, calls, and now and then an array
/// or a value with a unit. The same seed gives the same tree.
class ExprMaker {
public:
  explicit ExprMaker(std::uint32_t seed) : random_(seed) {}

  /// A tree of `nodes` expressions, whose height grows with the logarithm of their number.
  Expr make(std::size_t nodes) {
    if (nodes <= 1) return leaf();
    if (nodes == 2) return OpExpr(OpExprType::UnaryMinus, leaf(), range_);
    const std::size_t below = nodes - 1;
    switch (pick(8)) {
    case 0: return call(below);
    case 1: return MatrixExpr({MatrixExpr::Row(parts(below, 4))}, range_);
    case 2: return UnitExpr(make(below), UnitLiteral(unit_, range_), range_);
    default: {
      constexpr OpExprType types[] = {OpExprType::Add, OpExprType::Sub, OpExprType::Mul, OpExprType::Div};
      return OpExpr(types[pick(4)], make(below / 2), make(below - below / 2), range_);
    }
    }
  }

private:
  std::size_t pick(std::size_t limit) { return random_() % limit; }
  nvf::CxId name() { return nvf::detail::CxIdCheck()(nvf::utf8_string_to_ustring("v" + std::to_string(pick(1000)))); }
  std::vector<Expr> parts(std::size_t nodes, std::size_t most) {
    const std::size_t count = std::min(nodes, 1 + pick(most));
    std::vector<Expr> result;
    for (std::size_t i = count; i != 0; --i) {
      result.push_back(make(nodes / i));
      nodes -= nodes / i;
    }
    return result;
  }
  Expr leaf() {
    if (pick(3) == 0) {
      return NumberLiteral(nvf::detail::NumberStringCheck()(nvf::utf8_string_to_ustring(std::to_string(pick(1000)))),
                           range_);
    }
    return Variable(Ident(name(), range_), {}, std::nullopt, range_);
  }
  Expr call(std::size_t nodes) {
    std::vector<Subscript> arguments;
    for (Expr& part : parts(nodes, 3)) arguments.emplace_back(std::move(part));
    return Variable(Ident(name(), range_), {}, Arguments(arguments, {}, range_), range_);
  }

  std::mt19937 random_;
  nvf::Range range_;
  nvf::ExprString unit_ = nvf::detail::CheckExprString()(u"m/s");
};

constexpr std::uint32_t seed = 1;

Expr makeTree(benchmark::State& state) {
  return ExprMaker(seed).make(static_cast<std::size_t>(state.range(0)));
}

void report(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void build(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(makeTree(state).id());
  report(state);
  const tessarin::bench::AllocationCount before = tessarin::bench::allocationCount();
  const Expr tree = makeTree(state);
  const tessarin::bench::AllocationCount after = tessarin::bench::allocationCount();
  state.counters["bytes/node"] = static_cast<double>(after.bytes - before.bytes) / static_cast<double>(state.range(0));
}

/// Of handles that share the tree.
void copy(benchmark::State& state) {
  const Expr tree = makeTree(state);
  std::vector<Expr> copies;
  const auto count = static_cast<std::size_t>(state.range(0));
  copies.reserve(count);
  for (auto _ : state) {
    for (std::size_t i = 0; i < count; ++i) copies.push_back(tree);
    copies.clear();
  }
  report(state);
}

/// For the first time; making a tree whose blocks know no hash is not counted.
void hash(benchmark::State& state) {
  const Expr tree = makeTree(state);
  for (auto _ : state) {
    state.PauseTiming();
    Expr fresh = tree;
    strip_annotation_inplace(fresh);
    state.ResumeTiming();
    benchmark::DoNotOptimize(hash_value(fresh));
    state.PauseTiming();
    fresh = Expr();
    state.ResumeTiming();
  }
  report(state);
}

/// Of equal trees that share nothing.
void compareEqual(benchmark::State& state) {
  const Expr a = makeTree(state);
  const Expr b = makeTree(state);
  for (auto _ : state) benchmark::DoNotOptimize(compare(a, b));
  report(state);
}

void print(benchmark::State& state) {
  const Expr tree = makeTree(state);
  for (auto _ : state) benchmark::DoNotOptimize(to_string(tree).size());
  report(state);
}

void rewrite(benchmark::State& state) {
  const Expr tree = makeTree(state);
  for (auto _ : state) {
    ExprTransformVisitor identity;
    benchmark::DoNotOptimize(expr_transform(tree, identity).id());
  }
  report(state);
}

void visit(benchmark::State& state) {
  const Expr tree = makeTree(state);
  std::size_t count = 0;
  VariableVisitFcns functions;
  functions.variable = [&count](const Variable& variable, VariableRecursion& recursion) {
    ++count;
    recursion(variable);
  };
  for (auto _ : state) visit_variables(tree, functions, VisitPredicateFlags::All);
  benchmark::DoNotOptimize(count);
  report(state);
}

/// The names in a row of as many variables.
void usedNames(benchmark::State& state, std::vector<std::u16string> (*names)(std::size_t)) {
  std::vector<Expr> row;
  for (const std::u16string& name : names(static_cast<std::size_t>(state.range(0)))) {
    row.emplace_back(Variable(nvf::detail::CxIdCheck()(nvf::ustring_view(name)), nvf::Range()));
  }
  const Expr matrix = MatrixExpr({row}, nvf::Range());
  for (auto _ : state) benchmark::DoNotOptimize(used_ids(matrix).size());
  report(state);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("nodes")->Unit(benchmark::kMicrosecond);
  for (int nodes = 1000; nodes <= 1'000'000; nodes *= 10) benchmark->Arg(nodes);
}

BENCHMARK(build)->Apply(sizes);
BENCHMARK(copy)->Apply(sizes);
BENCHMARK(hash)->Apply(sizes);
BENCHMARK(compareEqual)->Apply(sizes);
BENCHMARK(print)->Apply(sizes);
BENCHMARK(rewrite)->Apply(sizes);
BENCHMARK(visit)->Apply(sizes);
BENCHMARK_CAPTURE(usedNames, byChance, tessarin::bench::namesByChance)->RangeMultiplier(4)->Range(512, 32'768);
BENCHMARK_CAPTURE(usedNames, madeToCollide, tessarin::bench::namesMadeToCollide)
    ->RangeMultiplier(4)
    ->Range(512, 32'768);

} // namespace
