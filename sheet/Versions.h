#pragma once

#include <vector>

#include "Findings.h"
#include "Reading.h"
#include "Recorder.h"
#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// Takes out of each version what a sheet cannot grade, and says so. False when nothing is left of one.
bool CleanUp(const Options& options, Result& result, std::vector<Source>& sources, Recorder& recorder,
             Findings& findings);

/// Gives the versions their names. False when they cannot be told apart.
bool NameVersions(const std::vector<Input>& inputs, const Options& options, const Result& result,
                  std::vector<Source>& sources, Findings& findings);

/// Makes the later versions versions of the first one. False when they are not the same test in another order.
bool JoinVersions(const Result& result, const std::vector<Source>& sources, Recorder& recorder,
                  Findings& findings);

}  // namespace TORVA35::sheet
