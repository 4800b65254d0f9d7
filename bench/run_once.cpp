// One operation, once, for tools that watch a process: run_once OPERATION FILE
//
// Only what happens inside `MeasuredOperation` is to be counted; scripts/count-instructions tells the tool so by
// this name. Built with a counting allocator, the program itself prints what the operation took from the heap and
// how far the resident memory of the process grew.

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "TORVA35.h"
#include "bench/CountingMalloc.h"
#include "bench/Yardsticks.h"

extern "C" __attribute__((noinline)) void MeasuredOperation(const std::function<void()>& operation) {
  operation();
}

namespace TORVA35::bench {
namespace {

using Arguments = std::vector<std::string>;
/// Prepares, and returns what is to be measured.
using Operation = std::function<void()> (*)(const Arguments& arguments);

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) Fail(path + " cannot be read");
  return {std::istreambuf_iterator<char>(file), {}};
}

const std::string& FileArgument(const Arguments& arguments) {
  if (arguments.size() != 1) Fail("one FILE is needed");
  return arguments[0];
}

std::function<void()> Load(const Arguments& arguments, Long objectives) {
  const auto test = New<clsTORVATest>();
  test->ImportObjectives(objectives);
  return [test, path = FromUtf8(FileArgument(arguments))] {
    if (!test->LoadXML(path)) Fail("not loaded");
  };
}

const std::map<std::string, Operation> kOperations = {
    {"nothing", [](const Arguments&) -> std::function<void()> { return [] {}; }},
    {"expat",
     [](const Arguments& arguments) -> std::function<void()> {
       return [bytes = ReadFile(FileArgument(arguments))] { ParseWithExpat(bytes, false); };
     }},
    {"expat-handlers",
     [](const Arguments& arguments) -> std::function<void()> {
       return [bytes = ReadFile(FileArgument(arguments))] { ParseWithExpat(bytes, true); };
     }},
    {"libxml2",
     [](const Arguments& arguments) -> std::function<void()> {
       return [path = FileArgument(arguments)] { ParseWithLibxml2(path); };
     }},
    {"load", [](const Arguments& arguments) { return Load(arguments, TORVATestImportObjectivesNone); }},
    {"load-objectives",
     [](const Arguments& arguments) { return Load(arguments, TORVATestImportObjectivesLearning); }},
};

#ifdef TORVA35_COUNT_MEMORY
long PeakKilobytes() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void Measure(const std::function<void()>& operation) {
  const long before = PeakKilobytes();
  StartCounting();
  MeasuredOperation(operation);
  const HeapUse use = StopCounting();
  std::printf("allocations %lld allocated %lld peak-heap %lld peak-resident %lld\n",
              static_cast<long long>(use.allocations), static_cast<long long>(use.allocated),
              static_cast<long long>(use.peak), static_cast<long long>(PeakKilobytes() - before) * 1024);
}
#else
void Measure(const std::function<void()>& operation) {
  MeasuredOperation(operation);
}
#endif

}  // namespace
}  // namespace TORVA35::bench

int main(int argc, char** argv) {
  using namespace TORVA35::bench;
  const Arguments arguments(argv + 1, argv + argc);
  const auto found = arguments.empty() ? kOperations.end() : kOperations.find(arguments[0]);
  if (found == kOperations.end()) {
    std::fprintf(stderr, "usage: run_once OPERATION FILE\noperations:");
    for (const auto& [name, operation] : kOperations) std::fprintf(stderr, " %s", name.c_str());
    std::fprintf(stderr, "\n");
    return EXIT_FAILURE;
  }
  Measure(found->second({arguments.begin() + 1, arguments.end()}));
  return EXIT_SUCCESS;
}
