#pragma once

#include <vector>

#include "Findings.h"
#include "Reading.h"
#include "Recorder.h"
#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// Merges the versions into a form, and takes rows, keys and the LMF model from it. False when the merge failed.
bool Assemble(const Options& options, const std::vector<Source>& sources, Result& result, Recorder& recorder,
              Findings& findings);

}  // namespace TORVA35::sheet
