#include "torva35/lmf/clsLmf.h"

#include <new>

#include "torva35/base/Error.h"
#include "torva35/lmf/LmfFile.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {

clsLmf::clsLmf()
    : questions_(New<clsLmfQuestions>()), versions_(New<clsLmfVersions>()), objectives_(New<clsLmfObjectives>()) {}

Integer clsLmf::Prepare() {
  Kept(Objectives())->AddBuiltIn();
  return 0;
}

void clsLmf::Clear() {
  Kept(Questions())->RemoveAll();
  Kept(Versions())->Clear();
  Kept(Objectives())->RemoveAll();
  Description({});
  Notes({});
  Mode(0);
  PageCount(0);
}

bool clsLmf::Open(String sPath) {
  Clear();
  try {
    if (ReadLmf(sPath, *this)) return true;
  } catch (const std::bad_alloc&) {
    Clear();
    throw Error::OutOfMemory();
  } catch (...) {
    Clear();
    throw;
  }
  Clear();
  return false;
}

bool clsLmf::Save(String sPath) const {
  try {
    return WriteLmf(*this, sPath);
  } catch (const std::exception&) {
    // Exhausted memory, or a failure of a host's own objects.
    return false;
  }
}

}  // namespace TORVA35
