#include "torva35_c.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "torva35/sheet/Export.h"
#include "torva35/sheet/Page.h"
#include "torva35/sheet/Sheet.h"

namespace sheet = TORVA35::sheet;
namespace fs = std::filesystem;

namespace {

constexpr int32_t kAllObjectives = 15;

struct WrongCall {
  const char* why;
};

// Thrown by a callback that cancels, through the call that makes the sheet.
struct Cancelled {};

// A file whose content was given: its path exists only while the sheet is made.
struct Source {
  sheet::Input input;
  std::string content;
  bool hasContent = false;
};

torva35_text View(const std::string& text) {
  return {text.c_str(), text.size()};
}

std::string Text(const char* data, size_t size) {
  if (size == TORVA35_WHOLE) return data == nullptr ? std::string() : std::string(data);
  if (data == nullptr && size > 0) throw WrongCall{"a text is null, and its size is not 0"};
  return data == nullptr ? std::string() : std::string(data, size);
}

std::string Text(const torva35_text& text) {
  return Text(text.data, text.size);
}

// A path as the system would take it as a whole.
std::string Path(const char* data, size_t size) {
  std::string path = Text(data, size);
  if (path.empty()) throw WrongCall{"the path is empty"};
  if (path.find('\0') != path.npos) throw WrongCall{"the path has a NUL in it"};
  return path;
}

// What the caller's structure has of one that may have grown since, and zero for the rest. What is asked for with
// a member that came later must not be passed over.
template <class Struct>
Struct Known(const Struct* given) {
  Struct known{};
  if (given == nullptr) return known;
  if (given->struct_size < sizeof given->struct_size) throw WrongCall{"struct_size is not set"};
  const char* const bytes = reinterpret_cast<const char*>(given);
  if (given->struct_size > sizeof known &&
      std::any_of(bytes + sizeof known, bytes + given->struct_size, [](char byte) { return byte != 0; })) {
    throw WrongCall{"a structure has members that this version of the library does not know"};
  }
  std::memcpy(&known, given, std::min(given->struct_size, sizeof known));
  return known;
}

// A folder of our own for contents, gone when the object goes.
class Scratch {
 public:
  Scratch() = default;
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() {
    std::error_code ignored;
    if (!folder_.empty()) fs::remove_all(folder_, ignored);
  }

  // Gives the path of a file with this content.
  std::string Write(const Source& source) {
    if (folder_.empty()) Make();
    const fs::path path = folder_ / std::to_string(++count_);
    std::ofstream file(path, std::ios::binary);
    file.write(source.content.data(), static_cast<std::streamsize>(source.content.size()));
    file.close();
    if (!file) throw fs::filesystem_error("cannot write", path, std::make_error_code(std::errc::io_error));
    return TORVA35::ToUtf8(path.u16string());
  }

 private:
  void Make() {
    std::random_device random;
    for (;;) {
      const fs::path folder = fs::temp_directory_path() / ("torva35-" + std::to_string(random()));
      if (!fs::create_directory(folder)) continue;
      folder_ = folder;
      fs::permissions(folder_, fs::perms::owner_all);
      return;
    }
  }

  fs::path folder_;
  int count_ = 0;
};

sheet::PageOptions PageOptions(const torva35_page& page, const sheet::Result& result) {
  sheet::PageOptions options;
  const std::string language = Text(page.language);
  if (!language.empty()) options.language = language;
  if (page.id_digits < 0 || page.id_digits > sheet::kMostIdDigits) throw WrongCall{"id_digits is out of range"};
  if (page.name_letters < 0 || page.name_letters > sheet::kMostNameLetters) {
    throw WrongCall{"name_letters is out of range"};
  }
  if (page.version < 0 || static_cast<size_t>(page.version) > result.versions.size()) {
    throw WrongCall{"there is no such version"};
  }
  if (page.reserved != 0) throw WrongCall{"a reserved member is not 0"};
  options.idDigits = page.id_digits;
  options.nameLetters = page.name_letters;
  options.version = page.version;
  return options;
}

// Makes something of a result for a page, under the page's own title if it has one.
template <class Make>
auto ForPage(sheet::Result& result, const torva35_page* given, Make make) {
  const torva35_page page = Known(given);
  const sheet::PageOptions options = PageOptions(page, result);
  struct TitleInPlace {
    TitleInPlace(std::string& its, std::string given) : title(its), other(std::move(given)) { Swap(); }
    ~TitleInPlace() { Swap(); }
    void Swap() {
      if (!empty) title.swap(other);
    }
    std::string& title;
    std::string other;
    const bool empty = other.empty();
  } const title(result.title, Text(page.title));
  return make(result, options);
}

sheet::Options MakeOptions(const torva35_options* given) {
  const torva35_options known = Known(given);
  sheet::Options options;
  options.title = Text(known.title);
  if (known.version_names == nullptr && known.version_name_count > 0) throw WrongCall{"version_names is null"};
  for (size_t i = 0; i < known.version_name_count; ++i) {
    options.versionNames.push_back(Text(known.version_names[i]));
  }
  options.state = Text(known.state);
  if (known.max_questions < 0 || known.max_questions > 0x7FFFFFFF)
    throw WrongCall{"max_questions is out of range"};
  if (known.objectives < 0 || known.objectives > kAllObjectives) throw WrongCall{"objectives is out of range"};
  if (known.reserved != 0) throw WrongCall{"a reserved member is not 0"};
  options.maxQuestions = static_cast<long>(known.max_questions);
  options.objectives = known.objectives;
  options.oddOnly = known.odd_only != 0;
  options.renumber = known.renumber != 0;
  return options;
}

torva35_finding ViewOf(const sheet::Finding& finding) {
  return {sizeof(torva35_finding),
          static_cast<int32_t>(finding.severity),
          finding.file,
          finding.number,
          finding.line,
          finding.column,
          View(finding.kind),
          View(finding.id),
          View(finding.text)};
}

void SetCallbacks(const torva35_callbacks& callbacks, sheet::Options& options) {
  if (callbacks.ask != nullptr) {
    options.ask = [callbacks](const sheet::Dialog& dialog) {
      std::vector<torva35_text> buttons;
      for (const std::string& button : dialog.buttons) buttons.push_back(View(button));
      const torva35_dialog view{sizeof view,       View(dialog.title), View(dialog.text),
                                View(dialog.file), buttons.data(),     buttons.size()};
      const int button = callbacks.ask(callbacks.user, &view);
      if (button < 0 || static_cast<size_t>(button) >= buttons.size()) throw Cancelled();
      return button;
    };
  }
  if (callbacks.progress != nullptr) {
    options.progress = [callbacks](const sheet::Progress& progress) {
      const torva35_progress view{sizeof view, View(progress.step), View(progress.file), progress.done,
                                  progress.total};
      if (callbacks.progress(callbacks.user, &view) != 0) throw Cancelled();
    };
  }
}

}  // namespace

struct torva35_exam {
  std::vector<Source> sources;
  sheet::Result result;
  bool isMade = false;
  bool isMaking = false;  // a callback may run
  std::vector<sheet::OutputFile> readerFiles;
  // What the functions of these names gave last.
  std::string error, key, json, csv, studentPage, teacherPage;
};

namespace {

constexpr const char* kNullHandle = "the handle is null";

// Does a call on a handle, and turns what it throws into its code and sentence.
template <class Call>
torva35_code Run(torva35_exam* exam, Call call) noexcept {
  if (exam == nullptr) return TORVA35_WRONG_CALL;
  const auto fail = [&](torva35_code code, const char* why) {
    try {
      exam->error = why;
    } catch (...) {
      exam->error.clear();
    }
    return code;
  };
  try {
    if (exam->isMaking) throw WrongCall{"a callback has called the handle that calls it"};
    return call(*exam);
  } catch (const WrongCall& wrong) {
    return fail(TORVA35_WRONG_CALL, wrong.why);
  } catch (const Cancelled&) {
    return fail(TORVA35_CANCELLED, "cancelled");
  } catch (const std::bad_alloc&) {
    return fail(TORVA35_NO_MEMORY, "out of memory");
  } catch (const std::length_error&) {
    return fail(TORVA35_NO_MEMORY, "a size is beyond all memory");
  } catch (const fs::filesystem_error& error) {
    return fail(TORVA35_FILE, error.what());
  } catch (const std::exception& error) {
    return fail(TORVA35_INTERNAL, error.what());
  } catch (...) {
    return fail(TORVA35_INTERNAL, "unknown failure");
  }
}

// Runs a call that fills a text, `kept` being where the handle keeps it.
template <class Make>
torva35_code Give(torva35_exam* exam, torva35_text* text, std::string torva35_exam::*kept, Make make) noexcept {
  return Run(exam, [&](torva35_exam& owner) {
    if (text == nullptr) throw WrongCall{"there is no place for the text"};
    if (!owner.isMade) throw WrongCall{"no sheet has been made"};
    owner.*kept = make(owner);
    *text = View(owner.*kept);
    return TORVA35_OK;
  });
}

template <class List>
auto& At(List& list, size_t position) {
  if (position >= list.size()) throw WrongCall{"there is no such position"};
  return list[position];
}

void NeedSheet(const torva35_exam& exam) {
  if (!exam.isMade || exam.result.status != sheet::Status::kDone) throw WrongCall{"there is no sheet"};
}

}  // namespace

extern "C" {

const char* torva35_version(void) {
  return TORVA35_VERSION;
}

torva35_exam* torva35_exam_new(void) {
  return new (std::nothrow) torva35_exam;
}

void torva35_exam_free(torva35_exam* exam) {
  if (exam == nullptr || exam->isMaking) return;
  delete exam;
}

torva35_code torva35_exam_add_file(torva35_exam* exam, const char* path, size_t path_size, const char* name,
                                   size_t name_size) {
  return Run(exam, [&](torva35_exam& to) {
    Source source;
    source.input = {Path(path, path_size), Text(name, name_size)};
    if (source.input.name.empty()) source.input.name = source.input.path;
    to.sources.push_back(std::move(source));
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_add_content(torva35_exam* exam, const void* content, size_t content_size,
                                      const char* name, size_t name_size) {
  return Run(exam, [&](torva35_exam& to) {
    if (content == nullptr && content_size > 0) throw WrongCall{"the content is null"};
    if (content_size == TORVA35_WHOLE) throw WrongCall{"a content has a size"};
    Source source;
    source.hasContent = true;
    source.content.assign(static_cast<const char*>(content), content_size);
    source.input.name = Text(name, name_size);
    if (source.input.name.empty()) source.input.name = "file " + std::to_string(to.sources.size() + 1);
    to.sources.push_back(std::move(source));
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_make(torva35_exam* exam, const torva35_options* options,
                               const torva35_callbacks* callbacks) {
  return Run(exam, [&](torva35_exam& owner) {
    sheet::Options made = MakeOptions(options);
    const torva35_callbacks called = Known(callbacks);
    SetCallbacks(called, made);
    if (owner.sources.empty()) throw WrongCall{"no file has been added"};
    owner.isMade = false;
    owner.readerFiles.clear();
    owner.result = {};
    struct Making {
      explicit Making(bool& its) : isMaking(its) { isMaking = true; }
      ~Making() { isMaking = false; }
      bool& isMaking;
    } const making(owner.isMaking);
    Scratch scratch;
    std::vector<sheet::Input> inputs;
    for (const Source& source : owner.sources) {
      inputs.push_back(source.input);
      if (source.hasContent) inputs.back().path = scratch.Write(source);
    }
    owner.result = sheet::MakeSheet(inputs, made);
    for (const sheet::Finding& finding : owner.result.findings) {
      if (called.report == nullptr) break;
      const torva35_finding view = ViewOf(finding);
      called.report(called.user, &view);
    }
    owner.isMade = true;
    if (owner.result.status == sheet::Status::kDone) return TORVA35_OK;
    owner.error = "there is no sheet";
    for (const sheet::Finding& finding : owner.result.findings) {
      if (finding.severity != sheet::Severity::kError) continue;
      owner.error = finding.text;
      if (finding.file >= 0) owner.error = inputs[static_cast<size_t>(finding.file)].name + ": " + owner.error;
      break;
    }
    switch (owner.result.status) {
      case sheet::Status::kRefused:
        return TORVA35_REFUSED;
      case sheet::Status::kCancelled:
        return TORVA35_CANCELLED;
      default:
        return TORVA35_FAILED;
    }
  });
}

torva35_code torva35_exam_error(const torva35_exam* exam, torva35_text* text) {
  if (text == nullptr) return TORVA35_WRONG_CALL;
  *text = exam == nullptr ? torva35_text{kNullHandle, std::strlen(kNullHandle)} : View(exam->error);
  return TORVA35_OK;
}

size_t torva35_exam_finding_count(const torva35_exam* exam) {
  return exam == nullptr || !exam->isMade ? 0 : exam->result.findings.size();
}

size_t torva35_exam_version_count(const torva35_exam* exam) {
  return exam == nullptr || !exam->isMade ? 0 : exam->result.versions.size();
}

size_t torva35_exam_row_count(const torva35_exam* exam) {
  return exam == nullptr || !exam->isMade ? 0 : exam->result.rows.size();
}

size_t torva35_exam_reader_file_count(const torva35_exam* exam) {
  return exam == nullptr || !exam->isMade ? 0 : exam->readerFiles.size();
}

int32_t torva35_exam_worst(const torva35_exam* exam) {
  int32_t worst = -1;
  if (exam == nullptr || !exam->isMade) return worst;
  for (const sheet::Finding& finding : exam->result.findings) {
    worst = std::max(worst, static_cast<int32_t>(finding.severity));
  }
  return worst;
}

torva35_code torva35_exam_finding_at(torva35_exam* exam, size_t position, torva35_finding* finding) {
  return Run(exam, [&](torva35_exam& owner) {
    if (finding == nullptr) throw WrongCall{"there is no place for the finding"};
    if (!owner.isMade) throw WrongCall{"no sheet has been made"};
    const size_t size = finding->struct_size;
    if (size < sizeof size) throw WrongCall{"struct_size is not set"};
    const torva35_finding view = ViewOf(At(owner.result.findings, position));
    std::memset(finding, 0, size);
    std::memcpy(finding, &view, std::min(size, sizeof view));
    finding->struct_size = size;
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_title(torva35_exam* exam, torva35_text* text) {
  return Run(exam, [&](torva35_exam& owner) {
    if (text == nullptr) throw WrongCall{"there is no place for the text"};
    NeedSheet(owner);
    *text = View(owner.result.title);
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_version_name(torva35_exam* exam, size_t version, torva35_text* text) {
  return Run(exam, [&](torva35_exam& owner) {
    if (text == nullptr) throw WrongCall{"there is no place for the text"};
    NeedSheet(owner);
    *text = View(At(owner.result.versions, version).name);
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_row_number(torva35_exam* exam, size_t row, int64_t* number) {
  return Run(exam, [&](torva35_exam& owner) {
    if (number == nullptr) throw WrongCall{"there is no place for the number"};
    NeedSheet(owner);
    *number = At(owner.result.rows, row).number;
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_key(torva35_exam* exam, size_t version, size_t row, torva35_text* text) {
  return Give(exam, text, &torva35_exam::key, [&](const torva35_exam& owner) {
    NeedSheet(owner);
    const sheet::Row& asked = At(owner.result.rows, row);
    return sheet::KeyText(asked, At(At(owner.result.versions, version).answers, row));
  });
}

torva35_code torva35_exam_points(torva35_exam* exam, size_t version, size_t row, double* points) {
  return Run(exam, [&](torva35_exam& owner) {
    if (points == nullptr) throw WrongCall{"there is no place for the points"};
    NeedSheet(owner);
    *points = At(At(owner.result.versions, version).answers, row).points;
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_json(torva35_exam* exam, torva35_text* text) {
  return Give(exam, text, &torva35_exam::json,
              [](const torva35_exam& owner) { return sheet::Json(owner.result); });
}

torva35_code torva35_exam_csv(torva35_exam* exam, torva35_text* text) {
  return Give(exam, text, &torva35_exam::csv, [](const torva35_exam& owner) {
    NeedSheet(owner);
    return sheet::Csv(owner.result);
  });
}

torva35_code torva35_exam_student_page(torva35_exam* exam, const torva35_page* page, torva35_text* text) {
  return Give(exam, text, &torva35_exam::studentPage, [&](torva35_exam& owner) {
    NeedSheet(owner);
    return ForPage(owner.result, page, sheet::StudentPage);
  });
}

torva35_code torva35_exam_teacher_page(torva35_exam* exam, const torva35_page* page, torva35_text* text) {
  return Give(exam, text, &torva35_exam::teacherPage,
              [&](torva35_exam& owner) { return ForPage(owner.result, page, sheet::TeacherPage); });
}

torva35_code torva35_exam_save_lmf(torva35_exam* exam, const char* path, size_t path_size) {
  return Run(exam, [&](torva35_exam& owner) {
    const std::string where = Path(path, path_size);
    NeedSheet(owner);
    if (owner.result.lmf->Save(TORVA35::FromUtf8(where))) return TORVA35_OK;
    owner.error = where + ": cannot be written";
    return TORVA35_FILE;
  });
}

torva35_code torva35_exam_make_reader_files(torva35_exam* exam, const torva35_page* page) {
  return Run(exam, [&](torva35_exam& owner) {
    NeedSheet(owner);
    owner.readerFiles = ForPage(owner.result, page, sheet::ReaderFiles);
    return TORVA35_OK;
  });
}

torva35_code torva35_exam_reader_file(torva35_exam* exam, size_t position, torva35_text* path,
                                      torva35_text* content) {
  return Run(exam, [&](torva35_exam& owner) {
    if (path == nullptr || content == nullptr) throw WrongCall{"there is no place for the text"};
    const sheet::OutputFile& file = At(owner.readerFiles, position);
    *path = View(file.path);
    *content = View(file.content);
    return TORVA35_OK;
  });
}

}  // extern "C"
