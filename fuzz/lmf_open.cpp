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

// What a file with this text and a right checksum opens as.
String Opened(std::string_view body) {
  const fuzz::InputFile file(WithChecksum(body));
  const auto lmf = New<clsLmf>();
  return lmf->Open(file.Path()) ? LmfText(*lmf) : u"refused";
}

// A file that stands as Save writes it is read without the parser, and one with an empty line is not.
void OpenBothWays(std::string_view body) {
  constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  if (!body.starts_with(kDeclaration)) return;
  const std::string other = std::string(kDeclaration) + "\n" + std::string(body.substr(kDeclaration.size()));
  fuzz::Require(Opened(body) == Opened(other), "both ways give the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto host = fuzz::FreshHost();
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  OpenBothWays(bytes.substr(0, bytes.find(lmf_file::kCheckBegin)));
  const fuzz::InputFile file(bytes);
  const auto lmf = New<clsLmf>();
  if (!lmf->Open(file.Path())) {
    fuzz::Require(LmfText(*lmf) == LmfText(clsLmf()), "a file that is refused leaves nothing");
    return 0;
  }

  const String saved = fuzz::OutputPath();
  fuzz::Require(lmf->Save(saved), "what was opened can be saved");
  const std::string savedBytes = Bytes(saved);
  const auto again = New<clsLmf>();
  fuzz::Require(again->Open(saved), "what was saved opens");
  fuzz::Require(LmfText(*again) == LmfText(*lmf), "and is equal");
  fuzz::Require(again->Save(saved) && Bytes(saved) == savedBytes, "to the byte");

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
