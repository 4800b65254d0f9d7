// Calls of the C interface in any order, over a few handles and none, with good and bad arguments and callbacks
// that do what they must not.

#include <array>
#include <cstring>
#include <optional>
#include <string>

#include "bindings/c/torva35_c.h"
#include "fuzz/Fuzz.h"

using namespace TORVA35;
using fuzz::Decisions;
using fuzz::Require;

namespace {

std::string Exam(const char* version, const char* order) {
  std::string text = std::string("<examview type='test'><header><title>T</title><version>") + version +
                     "</version></header><preferences><mc-choice-sequence value='abcd_fghj'/></preferences>";
  for (; *order != 0; ++order) {
    text += std::string("<question type='mc' question-id='") + *order + "'><text>Q" + *order +
            "</text><choices columns='1'><choice-a>1</choice-a><choice-b>2</choice-b></choices><answer>" +
            (*order == 'x' ? "Z" : "B") + "</answer></question>";
  }
  return text + "</examview>";
}

// What a handle is expected to know.
struct Handle {
  torva35_exam* exam = nullptr;
  int files = 0;
  bool isMade = false;
  bool hasSheet = false;
};

class Caller {
 public:
  explicit Caller(std::string_view input) : decisions_(input) {}
  ~Caller() {
    for (const Handle& handle : handles_) torva35_exam_free(handle.exam);
  }
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  void Run() {
    while (!decisions_.IsEmpty()) Call(handles_[static_cast<std::size_t>(decisions_.Below(kHandles))]);
  }

 private:
  static constexpr int kHandles = 3;

  void Call(Handle& handle) {
    switch (decisions_.Below(12)) {
      case 0:
        return NewOrFree(handle);
      case 1:
      case 2:
        return Add(handle);
      case 3:
      case 4:
        return Make(handle);
      case 5:
        return Findings(handle);
      case 6:
        return Pages(handle);
      case 7:
        return ReaderFiles(handle);
      case 8:
        return Save(handle);
      default:
        return Texts(handle);
    }
  }

  void NewOrFree(Handle& handle) {
    torva35_exam_free(handle.exam);
    handle = {};
    if (!decisions_.OneIn(4)) handle.exam = torva35_exam_new();
  }

  // Checks what each call owes, and whether this one had to succeed.
  torva35_code Check(const Handle& handle, torva35_code code, std::optional<bool> expected = {}) {
    Require(code >= TORVA35_OK && code < TORVA35_INTERNAL, "a code that bad calls may give");
    Require(handle.exam != nullptr || code == TORVA35_WRONG_CALL, "without a handle, a wrong call");
    if (expected)
      Require((code == TORVA35_OK) == (*expected && handle.exam != nullptr), "it succeeds when it should");
    torva35_text why{};
    Require(torva35_exam_error(handle.exam, &why) == TORVA35_OK, "there is always a sentence");
    Require(code == TORVA35_OK || why.size > 0, "which is about the failure");
    return code;
  }

  // A place for a text that comes back, sometimes none; `Given` says whether it was filled as it should be.
  torva35_text* Place() {
    text_ = {nullptr, kUntouched};
    return decisions_.OneIn(16) ? nullptr : &text_;
  }
  void Given(const Handle& handle, torva35_text* place, torva35_code code, bool expected) {
    Check(handle, code, expected && place != nullptr);
    if (code != TORVA35_OK) return Require(text_.size == kUntouched, "a failure leaves the text alone");
    Require(text_.data != nullptr && text_.data[text_.size] == 0, "a NUL after the text");
  }

  void Add(Handle& handle) {
    static const std::string contents[] = {
        Exam("A", "123"),    Exam("B", "321"), Exam("C", "12"), Exam("D", "12x"), Exam("", "1"), "<lmf", "",
        std::string(3, '\0')};
    const std::string& content = contents[decisions_.Below(std::size(contents))];
    static constexpr const char* kNames[] = {nullptr, "name", "", "a/b:c\\.xml", "\xff"};
    const char* const name = kNames[decisions_.Below(std::size(kNames))];
    torva35_code code = TORVA35_OK;
    switch (decisions_.Below(8)) {
      case 0:
        code = torva35_exam_add_file(handle.exam, "/no/such/file", TORVA35_WHOLE, name, TORVA35_WHOLE);
        break;
      case 1:
        code = torva35_exam_add_file(handle.exam, nullptr, decisions_.Byte() % 2, name, TORVA35_WHOLE);
        Require(code == TORVA35_WRONG_CALL, "no path");
        break;
      case 2:
        code = torva35_exam_add_content(handle.exam, content.data(), TORVA35_WHOLE, nullptr, 0);
        Require(code == TORVA35_WRONG_CALL, "no size");
        break;
      default:
        code = torva35_exam_add_content(handle.exam, content.data(), content.size(), name, TORVA35_WHOLE);
    }
    if (Check(handle, code) == TORVA35_OK) ++handle.files;
  }

  // Within a callback: nothing may happen to the handle that is being worked on.
  int CallBack() {
    if (decisions_.OneIn(4)) {
      Require(torva35_exam_make(making_, nullptr, nullptr) == TORVA35_WRONG_CALL, "no call into the same handle");
      Require(torva35_exam_json(making_, &text_) == TORVA35_WRONG_CALL, "no call into the same handle");
      Require(torva35_exam_finding_count(making_) == 0 && torva35_exam_worst(making_) == -1, "nothing to see yet");
      torva35_exam_free(making_);
    }
    if (decisions_.OneIn(4)) {
      torva35_exam* const other = torva35_exam_new();
      torva35_exam_add_content(other, "", 0, nullptr, 0);
      Require(torva35_exam_make(other, nullptr, nullptr) == TORVA35_REFUSED, "other handles work");
      torva35_exam_free(other);
    }
    return decisions_.OneIn(8) ? decisions_.Byte() - 100 : 0;
  }

  void Make(Handle& handle) {
    const torva35_callbacks callbacks{
        decisions_.OneIn(32) ? 0 : sizeof callbacks, this,
        [](void* user, const torva35_dialog*) { return static_cast<Caller*>(user)->CallBack(); },
        [](void* user, const torva35_progress*) { return static_cast<Caller*>(user)->CallBack(); },
        [](void* user, const torva35_finding* finding) {
          static_cast<Caller*>(user)->CallBack();
          Require(finding->text.data[finding->text.size] == 0, "a NUL after the text");
        }};
    const torva35_text names[] = {{"X", 1}, {nullptr, 0}, {"Y", TORVA35_WHOLE}};
    torva35_options options{};
    options.struct_size = decisions_.OneIn(32) ? decisions_.Byte() % sizeof options : sizeof options;
    if (decisions_.OneIn(4)) {
      options.version_names = decisions_.OneIn(4) ? nullptr : names;
      options.version_name_count = static_cast<std::size_t>(decisions_.Below(4));
      options.max_questions = decisions_.Byte() - 4;
      options.objectives = decisions_.Byte() - 4;
      options.odd_only = decisions_.Byte();
      options.renumber = decisions_.Byte();
      options.reserved = decisions_.OneIn(8) ? 1 : 0;
    }
    making_ = handle.exam;
    const torva35_code code =
        Check(handle, torva35_exam_make(handle.exam, decisions_.OneIn(2) ? &options : nullptr,
                                        decisions_.OneIn(2) ? &callbacks : nullptr));
    Require(code != TORVA35_OK || handle.files > 0, "no sheet of no file");
    if (code == TORVA35_WRONG_CALL) return;
    handle.hasSheet = code == TORVA35_OK;
    // A callback that cancels leaves no result; a button does.
    handle.isMade = code == TORVA35_CANCELLED ? torva35_exam_finding_count(handle.exam) > 0 : true;
    Require((torva35_exam_version_count(handle.exam) > 0) == handle.hasSheet, "a sheet has versions");
    Require(handle.hasSheet || code == TORVA35_CANCELLED || torva35_exam_worst(handle.exam) == TORVA35_ERROR,
            "no sheet without a reason");
  }

  void Findings(Handle& handle) {
    const std::size_t count = torva35_exam_finding_count(handle.exam);
    Require(count == 0 || handle.isMade, "findings of a result");
    Require((torva35_exam_worst(handle.exam) == -1) == (count == 0), "the worst of some");
    torva35_finding finding{};
    finding.struct_size = decisions_.OneIn(4) ? decisions_.Byte() % sizeof finding : sizeof finding;
    const bool whole = finding.struct_size == sizeof finding;
    const auto at = static_cast<std::size_t>(decisions_.Byte());
    const torva35_code code = Check(handle, torva35_exam_finding_at(handle.exam, at, &finding));
    if (whole) Require((code == TORVA35_OK) == (at < count), "a finding at each position");
    if (whole && code == TORVA35_OK) Require(std::strcmp(finding.kind.data, "failure") != 0, "no failure of ours");
    Check(handle, torva35_exam_finding_at(handle.exam, at, nullptr), false);
  }

  void Pages(Handle& handle) {
    torva35_page page{};
    page.struct_size = decisions_.OneIn(8) ? decisions_.Byte() % sizeof page : sizeof page;
    page.id_digits = decisions_.OneIn(4) ? decisions_.Byte() - 100 : 0;
    page.name_letters = decisions_.OneIn(4) ? decisions_.Byte() - 100 : 0;
    page.version = decisions_.Below(4) - 1;
    if (decisions_.OneIn(2)) page.title = {"other", TORVA35_WHOLE};
    if (decisions_.OneIn(2)) page.language = {"de", 2};
    const bool usual = decisions_.OneIn(2);
    torva35_text* const place = Place();
    if (decisions_.OneIn(2)) {
      const torva35_code code = torva35_exam_student_page(handle.exam, usual ? nullptr : &page, place);
      usual ? Given(handle, place, code, handle.hasSheet) : static_cast<void>(Check(handle, code));
    } else {
      const torva35_code code = torva35_exam_teacher_page(handle.exam, usual ? nullptr : &page, place);
      usual ? Given(handle, place, code, handle.isMade) : static_cast<void>(Check(handle, code));
    }
  }

  void ReaderFiles(Handle& handle) {
    if (decisions_.OneIn(2)) {
      Check(handle, torva35_exam_make_reader_files(handle.exam, nullptr), handle.hasSheet);
      Require((torva35_exam_reader_file_count(handle.exam) > 0) == handle.hasSheet, "files for a reader");
    }
    const auto at = static_cast<std::size_t>(decisions_.Byte());
    torva35_text* const place = Place();
    torva35_text content{};
    Given(handle, place, torva35_exam_reader_file(handle.exam, at, place, &content),
          at < torva35_exam_reader_file_count(handle.exam));
  }

  void Save(Handle& handle) {
    const bool there = !decisions_.OneIn(4);
    const std::string path = there ? ToUtf8(fuzz::OutputPath()) : "/no/such/folder/x";
    Check(handle, torva35_exam_save_lmf(handle.exam, path.data(), path.size()), handle.hasSheet && there);
  }

  void Texts(Handle& handle) {
    const auto version = static_cast<std::size_t>(decisions_.Below(4)),
               row = static_cast<std::size_t>(decisions_.Below(4));
    const bool hasVersion = version < torva35_exam_version_count(handle.exam);
    const bool hasRow = row < torva35_exam_row_count(handle.exam);
    torva35_text* const place = Place();
    switch (decisions_.Below(7)) {
      case 0:
        return Given(handle, place, torva35_exam_json(handle.exam, place), handle.isMade);
      case 1:
        return Given(handle, place, torva35_exam_csv(handle.exam, place), handle.hasSheet);
      case 2:
        return Given(handle, place, torva35_exam_title(handle.exam, place), handle.hasSheet);
      case 3:
        return Given(handle, place, torva35_exam_version_name(handle.exam, version, place), hasVersion);
      case 4:
        return Given(handle, place, torva35_exam_key(handle.exam, version, row, place), hasVersion && hasRow);
      case 5: {
        std::int64_t number = 0;
        Check(handle, torva35_exam_row_number(handle.exam, row, place == nullptr ? nullptr : &number),
              hasRow && place != nullptr);
        return;
      }
      default: {
        double points = 0;
        Check(handle, torva35_exam_points(handle.exam, version, row, place == nullptr ? nullptr : &points),
              hasVersion && hasRow && place != nullptr);
      }
    }
  }

  static constexpr std::size_t kUntouched = 12345678;

  Decisions decisions_;
  std::array<Handle, kHandles> handles_;
  torva35_exam* making_ = nullptr;
  torva35_text text_{};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::FreshHost();
  Caller({reinterpret_cast<const char*>(data), size}).Run();
  return 0;
}
