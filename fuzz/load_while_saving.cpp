// One file that a thread saves while another loads it. The input says what is put there, and in what order.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "fuzz/Fuzz.h"
#include "tests/LmfText.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/xml/DOMDocument.h"

using namespace TORVA35;

namespace {

// A model for a number and some text; the same one for the same two.
void Fill(clsLmf& lmf, Long number, std::string_view text) {
  lmf.Prepare();
  lmf.Description(Decimal(number));
  lmf.Notes(FromUtf8(text));
  for (Long i = 1; i <= number; ++i) {
    const auto question = New<clsLmfQuestion>();
    question->Text(FromUtf8(text.substr(text.size() / static_cast<std::size_t>(i + 1))));
    lmf.Questions()->Add(question);
  }
}

String TextOfModel(Long number, std::string_view text) {
  clsLmf lmf;
  Fill(lmf, number, text);
  return LmfText(lmf);
}

// Puts a file there that has lost or changed a byte, in one step as a save does.
void PutDamaged(const String& path, std::uint8_t where) {
  const std::string name = ToUtf8(path), other = name + "-damaged";
  std::ifstream file(name, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  bytes[bytes.size() * where / 256] ^= 1;
  std::ofstream(other, std::ios::binary) << bytes;
  std::filesystem::rename(other, name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto host = fuzz::FreshHost();
  fuzz::Decisions steps({reinterpret_cast<const char*>(data), std::min<std::size_t>(size, 24)});
  const std::string text(reinterpret_cast<const char*>(data), size);
  const Long numbers[] = {0, steps.Below(4) + 1, steps.Below(40) + 5};
  String right[3];
  for (int i = 0; i < 3; ++i) right[i] = TextOfModel(numbers[i], text);

  const String path = fuzz::OutputPath();
  const auto save = [&](Long number) {
    clsLmf lmf;
    Fill(lmf, number, text);
    fuzz::Require(lmf.Save(path), "a save");
  };
  save(numbers[0]);
  std::atomic<bool> isDamaged = false;  // or has been, so that a load may be refused
  std::atomic<bool> saving = true;
  std::thread saver([&] {
    const auto threadHost = fuzz::FreshHost();
    while (!steps.IsEmpty()) {
      const std::uint8_t step = steps.Byte();
      if (step % 4 == 3) {
        isDamaged = true;
        PutDamaged(path, steps.Byte());
      } else {
        save(numbers[step % 3]);
      }
    }
    basError::goErr() = nullptr;
    saving = false;
  });
  for (bool more = true; more;) {
    more = saving;  // one more round when all is saved
    clsLmf lmf;
    if (lmf.Open(path)) {
      const String got = LmfText(lmf);
      fuzz::Require(got == right[0] || got == right[1] || got == right[2], "what is opened was saved");
    } else {
      fuzz::Require(isDamaged, "a whole file opens");
    }
    DOMDocument document;
    if (document.load(path)) {
      fuzz::Require(document.getElementsByTagName(u"question").get_length() <= numbers[2],
                    "a document of its own");
    } else {
      fuzz::Require(isDamaged, "a whole file loads", ToUtf8(document.parseError().reason));
    }
  }
  saver.join();
  return 0;
}
