// Any bytes as an LMF file.

#include <fstream>
#include <iterator>

#include "fuzz/TestReading.h"
#include "tests/LmfText.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/model/basPublic.h"

using namespace TORVA35;

namespace {

std::string Bytes(const String& path) {
  std::ifstream file(ToUtf8(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto host = fuzz::FreshHost();
  const fuzz::InputFile file({reinterpret_cast<const char*>(data), size});
  const auto lmf = New<clsLmf>();
  if (!lmf->Open(file.Path())) {
    fuzz::Require(LmfText(*lmf) == LmfText(clsLmf()), "a file that is refused leaves nothing");
    return 0;
  }

  const String saved = fuzz::OutputPath();
  fuzz::Require(lmf->Save(saved), "what was opened can be saved");
  const std::string bytes = Bytes(saved);
  const auto again = New<clsLmf>();
  fuzz::Require(again->Open(saved), "what was saved opens");
  fuzz::Require(LmfText(*again) == LmfText(*lmf), "and is equal");
  fuzz::Require(again->Save(saved) && Bytes(saved) == bytes, "to the byte");

  const auto built = New<clsTORVATest>();
  const bool whole = basPublic::BuildTestFromLMF(built, lmf);
  fuzz::Require(whole || host->failures > 0, "a test that is not whole is reported");
  const auto loaded = New<clsTORVATest>();
  const bool good = loaded->LoadLMF(file.Path());
  fuzz::Require(good == (whole && loaded->Questions()->Count() > 0), "a load succeeds when it brings questions");
  fuzz::Require(loaded->Questions()->Count() == built->Questions()->Count(), "the same test twice");
  fuzz::ReadTest(loaded, static_cast<Long>(size % 8));
  return 0;
}
