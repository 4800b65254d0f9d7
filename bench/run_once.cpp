// One operation, once, for tools that watch a process: run_once OPERATION ARGUMENT
//
// Preparations are not counted: callgrind, started with --instr-atstart=no, counts `Measure` alone. Built with a
// counting allocator, the program itself prints what the operation took from the heap and how far the resident
// memory of the process grew.

#include <unistd.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>

#include <torva35/TORVA35.h>
#include "bench/CountingMalloc.h"
#include "bench/MergeSetup.h"
#include "bench/Yardsticks.h"

namespace TORVA35::bench {

#ifndef TORVA35_COUNT_MEMORY
void StartCounting() {}
HeapUse StopCounting() {
  return {};
}
#endif

namespace {

/// Prepares, and returns what is to be measured. The argument is the path of a file, or a number of questions.
using Operation = std::function<std::function<void()>(const std::string& argument)>;

void NeedTrue(bool result) {
  if (!result) Fail("the operation gave False");
}

int CountOf(const std::string& argument) {
  const int count = std::atoi(argument.c_str());
  if (count < 2) Fail("a number of questions above 1 is needed");
  return count;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) Fail(path + " cannot be read");
  return {std::istreambuf_iterator<char>(file), {}};
}

std::function<void()> Load(const std::string& path, Long objectives) {
  const auto test = New<clsTORVATest>();
  test->ImportObjectives(objectives);
  return [test, file = FromUtf8(path)] { NeedTrue(test->LoadXML(file)); };
}

std::function<void()> Merge(const std::string& argument, int tests) {
  return [engine = MakeEngine(CountOf(argument), tests)] { NeedTrue(engine->Merge()); };
}

// Every third question goes.
std::function<void()> RemoveInvalid(const std::string& argument) {
  const auto engine = MakeEngine(CountOf(argument), 1);
  const auto questions = engine->Tests()->Item(1)->Questions();
  for (Long i = 1; i <= questions->Count(); i += 3) questions->Item(i)->QuestionType(TORVATestQuestionTypeEssay);
  return [engine] { NeedTrue(engine->RemoveInvalid()); };
}

std::function<void()> AddSequence(const std::string& argument) {
  const auto engine = MakeEngine(CountOf(argument), 2);
  return [engine] { NeedTrue(engine->Tests()->Item(1)->AddSequence(engine->Tests()->Item(2))); };
}

// The end of the copy is not counted.
std::function<void()> Copy(const std::string& argument) {
  return [test = MakeTest(CountOf(argument)), copy = Ref<clsTORVATest>()]() mutable {
    copy = test->Copy();
    Need(copy);
  };
}

// The data file of a merge, beside which a Save or an Open is measured.
struct DataFile {
  explicit DataFile(const std::string& argument) : engine(MakeEngine(CountOf(argument), 3)) {
    NeedTrue(engine->Merge());
  }
  ~DataFile() { std::remove(ToUtf8(path).c_str()); }
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;

  Ref<clsTORVA> engine;
  String path =
      FromUtf8((std::filesystem::temp_directory_path() / ("torva35-once-" + std::to_string(getpid()))).string());
};

std::function<void()> Save(const std::string& argument) {
  return [data = std::make_shared<DataFile>(argument)] { NeedTrue(data->engine->MIVLMF()->Save(data->path)); };
}

std::function<void()> Open(const std::string& argument) {
  const auto data = std::make_shared<DataFile>(argument);
  NeedTrue(data->engine->MIVLMF()->Save(data->path));
  return [data, lmf = New<clsLmf>()] { NeedTrue(lmf->Open(data->path)); };
}

std::function<void()> LoadLmf(const std::string& argument) {
  const auto data = std::make_shared<DataFile>(argument);
  NeedTrue(data->engine->MIVLMF()->Save(data->path));
  return [data, test = New<clsTORVATest>()] { NeedTrue(test->LoadLMF(data->path)); };
}

const std::map<std::string, Operation>& Operations() {
  static const std::map<std::string, Operation> operations = {
      {"expat", [](const auto& file) { return [bytes = ReadFile(file)] { ParseWithExpat(bytes, false); }; }},
      {"expat-handlers",
       [](const auto& file) { return [bytes = ReadFile(file)] { ParseWithExpat(bytes, true); }; }},
      {"libxml2", [](const auto& file) { return [file] { ParseWithLibxml2(file); }; }},
      {"load", [](const auto& file) { return Load(file, TORVATestImportObjectivesNone); }},
      {"load-objectives", [](const auto& file) { return Load(file, TORVATestImportObjectivesLearning); }},
      {"merge", [](const auto& count) { return Merge(count, 1); }},
      {"merge-versions", [](const auto& count) { return Merge(count, 3); }},
      {"remove-invalid", RemoveInvalid},
      {"valid-versions",
       [](const auto& count) {
         return [engine = MakeEngine(CountOf(count), 3)] { NeedTrue(engine->ValidTestVersions()); };
       }},
      {"add-sequence", AddSequence},
      {"copy", Copy},
      {"save", Save},
      {"open", Open},
      {"load-lmf", LoadLmf},
  };
  return operations;
}

// Resident memory of the process, in bytes: its peak, or what there is now. The peak begins anew with each call of
// ForgetPeak.
long long Resident(const char* line) {
  std::ifstream status("/proc/self/status");
  for (std::string text; std::getline(status, text);) {
    if (text.rfind(line, 0) == 0) return std::atoll(text.c_str() + std::string(line).size()) * 1024;
  }
  return 0;
}

void ForgetPeak() {
  std::ofstream("/proc/self/clear_refs") << 5;
}

void Measure(const std::function<void()>& operation) {
  ForgetPeak();
  const long long before = Resident("VmRSS:");
  StartCounting();
  CALLGRIND_START_INSTRUMENTATION;
  operation();
  CALLGRIND_STOP_INSTRUMENTATION;
  const HeapUse use = StopCounting();
  if (use.allocations == 0) return;
  std::printf("allocations %lld allocated %lld peak-heap %lld peak-resident %lld\n",
              static_cast<long long>(use.allocations), static_cast<long long>(use.allocated),
              static_cast<long long>(use.peak), Resident("VmHWM:") - before);
}

}  // namespace
}  // namespace TORVA35::bench

int main(int argc, char** argv) {
  using namespace TORVA35::bench;
  const auto found = argc == 3 ? Operations().find(argv[1]) : Operations().end();
  if (found == Operations().end()) {
    std::fprintf(stderr, "usage: run_once OPERATION FILE|QUESTIONS\noperations:");
    for (const auto& [name, operation] : Operations()) std::fprintf(stderr, " %s", name.c_str());
    std::fprintf(stderr, "\n");
    return EXIT_FAILURE;
  }
  Measure(found->second(argv[2]));
  return EXIT_SUCCESS;
}
