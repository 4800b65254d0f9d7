// LoadXML beside the bare parser and beside another library's DOM, over the same files in one run. The repetitions
// of all of them are shuffled, so that a busy machine slows each one down alike, and the medians are compared.

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <torva35/TORVA35.h>
#include "bench/ExamViewExport.h"
#include "bench/MedianReporter.h"
#include "bench/Yardsticks.h"

namespace TORVA35::bench {
namespace {

const int kSizes[] = {50, 1000, 32767};

struct Sample {
  std::string path;
  std::string bytes;
};
std::map<int, Sample> samples;

const Sample& SampleOf(const benchmark::State& state) {
  return samples.at(static_cast<int>(state.range(0)));
}

void Processed(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(SampleOf(state).bytes.size()) *
                          static_cast<std::int64_t>(state.iterations()));
}

void Expat(benchmark::State& state) {
  for (auto _ : state) ParseWithExpat(SampleOf(state).bytes, false);
  Processed(state);
}

void ExpatHandlers(benchmark::State& state) {
  for (auto _ : state) ParseWithExpat(SampleOf(state).bytes, true);
  Processed(state);
}

void Libxml2(benchmark::State& state) {
  for (auto _ : state) ParseWithLibxml2(SampleOf(state).path);
  Processed(state);
}

// Loaded and freed, as the other two free what they made.
void Load(benchmark::State& state, Long objectives) {
  const String path = FromUtf8(SampleOf(state).path);
  for (auto _ : state) {
    const auto test = New<clsTORVATest>();
    test->ImportObjectives(objectives);
    if (!test->LoadXML(path) || test->Questions()->Count() != state.range(0)) state.SkipWithError("not loaded");
  }
  Processed(state);
}

void LoadXML(benchmark::State& state) {
  Load(state, TORVATestImportObjectivesNone);
}

void LoadXMLObjectives(benchmark::State& state) {
  Load(state, TORVATestImportObjectivesLearning);
}

void Register() {
  const std::pair<const char*, void (*)(benchmark::State&)> all[] = {
      {"Expat", Expat},     {"ExpatHandlers", ExpatHandlers},         {"Libxml2", Libxml2},
      {"LoadXML", LoadXML}, {"LoadXMLObjectives", LoadXMLObjectives},
  };
  for (const auto& [name, function] : all) {
    for (int size : kSizes) {
      benchmark::RegisterBenchmark(name, function)
          ->Arg(size)
          ->Unit(benchmark::kMillisecond)
          ->MinTime(0.05)
          ->Repetitions(size < 10000 ? 21 : 7)
          ->ReportAggregatesOnly();
    }
  }
}

void PrintRatios(const MedianReporter& reporter) {
  std::printf("\nRatios of medians\n%10s %18s %22s %18s %30s\n", "questions", "LoadXML/Libxml2",
              "LoadXML/ExpatHandlers", "LoadXML/Expat", "LoadXMLObjectives/Libxml2");
  for (int size : kSizes) {
    const auto median = [&](const char* name) {
      return reporter.Median(std::string(name) + '/' + std::to_string(size));
    };
    std::printf("%10d %18.2f %22.2f %18.2f %30.2f\n", size, median("LoadXML") / median("Libxml2"),
                median("LoadXML") / median("ExpatHandlers"), median("LoadXML") / median("Expat"),
                median("LoadXMLObjectives") / median("Libxml2"));
  }
}

}  // namespace
}  // namespace TORVA35::bench

int main(int argc, char** argv) {
  using namespace TORVA35::bench;
  std::vector<char*> arguments(argv, argv + argc);
  std::string shuffled = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, shuffled.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return EXIT_FAILURE;

  const auto directory = std::filesystem::temp_directory_path() / ("torva35-bench-" + std::to_string(getpid()));
  std::filesystem::create_directory(directory);
  for (int size : kSizes) {
    const std::string path = directory / std::to_string(size);
    ExportShape shape;
    shape.questions = size;
    WriteExport(path, shape);
    samples[size] = {path, MakeExport(shape)};
  }

  Register();
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  PrintRatios(reporter);
  std::filesystem::remove_all(directory);
  xmlCleanupParser();
  return EXIT_SUCCESS;
}
