#pragma once

#include <string>

#include <torva35/TORVA35.h>

namespace merge_exam {

/// Writes the merged form as one self-contained HTML page, which is well-formed XML too: the bubble sheet as
/// drawings, the answer key, and the question order of each version. The key shows at the tick of a box, from the
/// start when showKey is True; in print only when it shows. Returns False when the file cannot be written.
bool WriteHtmlPage(const TORVA35::clsTORVA& oEngine, bool showKey, const std::string& path);

}  // namespace merge_exam
