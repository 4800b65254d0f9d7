// Merge of a form with one test and with three versions of it, and the time for each question.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "bench/ExamViewExport.h"
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

// A file loaded and merged on each thread: threads share nothing, so two should do close to twice the work of one.
void LoadAndMerge(benchmark::State& state) {
  static std::mutex making;
  static const std::string path = std::filesystem::temp_directory_path() / "torva35-bench-threads.xml";
  Ref<clsTORVA> engine;
  {
    const std::lock_guard lock(making);
    WriteExport(path, {.questions = 1000});
    engine = MakeEngine(1000, 1);
  }
  for (auto _ : state) {
    const auto test = New<clsTORVATest>();
    if (!test->LoadXML(FromUtf8(path)) || !engine->Merge()) state.SkipWithError("not loaded and merged");
    Rewind(*engine);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(LoadAndMerge)->Threads(1)->Threads(2)->UseRealTime()->Repetitions(7)->ReportAggregatesOnly();

}  // namespace
}  // namespace TORVA35::bench

BENCHMARK_MAIN();
