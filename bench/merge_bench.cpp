// Merge of a form with one test and with three versions of it, and the time for each question.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <map>
#include <utility>

#include "bench/MergeSetup.h"

namespace TORVA35::bench {
namespace {

// One engine for each shape, made when it is first needed.
Ref<clsTORVA> EngineOf(const benchmark::State& state) {
  static std::map<std::pair<int, int>, Ref<clsTORVA>> engines;
  const auto questions = static_cast<int>(state.range(0));
  const auto tests = static_cast<int>(state.range(1));
  Ref<clsTORVA>& engine = engines[{questions, tests}];
  if (engine == nullptr) engine = MakeEngine(questions, tests);
  return engine;
}

// Merged and freed, the copy of the form included.
void Merge(benchmark::State& state) {
  const Ref<clsTORVA> engine = EngineOf(state);
  for (auto _ : state) {
    if (!engine->Merge()) state.SkipWithError("not merged");
    Rewind(*engine);
  }
  state.counters["per_question"] =
      benchmark::Counter(static_cast<double>(state.range(0)),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Merge)
    ->ArgNames({"questions", "tests"})
    ->ArgsProduct({{50, 1000, 32767}, {1, 3}})
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

}  // namespace
}  // namespace TORVA35::bench

BENCHMARK_MAIN();
