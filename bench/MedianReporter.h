#pragma once

#include <benchmark/benchmark.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

namespace TORVA35::bench {

/// Prints the medians of the repetitions, and keeps them, so that one run can end with ratios.
class MedianReporter : public benchmark::ConsoleReporter {
 public:
  MedianReporter() : ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    std::vector<Run> medians;
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      if (!run.error_occurred)
        times_[run.run_name.function_name + '/' + run.run_name.args] = run.GetAdjustedCPUTime();
      medians.push_back(run);
    }
    if (!medians.empty()) ConsoleReporter::ReportRuns(medians);
  }

  /// CPU time of the benchmark ("function/arguments"), in the unit in which it reports; no number when it did not
  /// run. The time of a single repetition where there was only one.
  double Median(const std::string& name) const {
    const auto found = times_.find(name);
    return found == times_.end() ? std::numeric_limits<double>::quiet_NaN() : found->second;
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace TORVA35::bench
