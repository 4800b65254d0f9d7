#include "torva35/platform/FileReplacement.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "torva35/platform/windows/Windows.h"

namespace TORVA35 {
namespace {

constexpr const wchar_t* kEnding = L".tmp";

// What the system takes for a renaming that no reader of the old file hinders; older headers lack it.
constexpr auto kRenameInformation = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
constexpr DWORD kReplaceIfExists = 1;
constexpr DWORD kPosixSemantics = 2;
struct RenameInformation {
  DWORD flags;
  HANDLE folder;
  DWORD nameSize;  // in bytes
  wchar_t name[1];
};

// The whole path, and where symbolic links lead, so that the link stays and its target is replaced.
std::wstring Resolved(const std::wstring& path) {
  std::wstring name(32768, L'\0');
  const auto room = static_cast<DWORD>(name.size());
  const windows::Handle file(CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                         nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  DWORD size = file ? GetFinalPathNameByHandleW(file.Get(), name.data(), room, 0) : 0;
  if (size == 0 || size >= room) size = GetFullPathNameW(path.c_str(), room, name.data(), nullptr);
  return size == 0 || size >= room ? path : name.substr(0, size);
}

// Who may do what with the file: empty where the system does not say, as on a disk without such rights.
std::vector<char> AccessRights(const std::wstring& path) {
  DWORD size = 0;
  GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<char> rights(size);
  if (size != 0 && GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size) == 0) {
    rights.clear();
  }
  return rights;
}

// The process of a temporary file, by its name: "PREFIX-PROCESS-COUNT.tmp".
DWORD ProcessOf(const std::wstring& name, const std::wstring& prefix) {
  return static_cast<DWORD>(std::wcstoul(name.c_str() + prefix.size(), nullptr, 10));
}

bool IsGone(DWORD process) {
  const HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, process);
  if (handle == nullptr) return GetLastError() == ERROR_INVALID_PARAMETER;
  const bool ended = WaitForSingleObject(handle, 0) == WAIT_OBJECT_0;
  CloseHandle(handle);
  return ended;
}

}  // namespace

class FileReplacement::Work {
 public:
  explicit Work(const String& path);
  ~Work();
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;

  void Write(std::string_view bytes);
  bool Commit();

 private:
  Work() = default;
  bool Begin(const std::wstring& path);
  bool Create();
  void RemoveLeftovers() const;
  std::wstring TemporaryPrefix() const;
  bool Rename() const;
  bool RenameOnOldSystem();

  std::wstring folder_;     // with what stands between it and a name
  std::wstring name_;       // of the file that is replaced
  std::wstring temporary_;  // the whole path, empty when there is none
  DWORD attributes_ = FILE_ATTRIBUTE_NORMAL;
  std::vector<char> rights_;
  bool replaces_ = false;  // there is an old file
  windows::Handle file_;
  bool failed_ = false;
};

FileReplacement::FileReplacement(const String& path) : work_(std::make_unique<Work>(path)) {}

FileReplacement::~FileReplacement() = default;

void FileReplacement::Write(std::string_view bytes) {
  work_->Write(bytes);
}

bool FileReplacement::Commit() {
  return work_->Commit();
}

// Through the other constructor, so that the destructor runs when this one is left by an exception.
FileReplacement::Work::Work(const String& path) : Work() {
  // A path cannot hold a NUL; cut off there it would name another file.
  failed_ = path.find(u'\0') != path.npos || !Begin(Resolved(windows::SystemPath(path)));
}

FileReplacement::Work::~Work() {
  file_.Close();
  if (!temporary_.empty()) DeleteFileW(temporary_.c_str());
}

bool FileReplacement::Work::Begin(const std::wstring& path) {
  const std::size_t slash = path.find_last_of(L"\\/:");
  name_ = slash == path.npos ? path : path.substr(slash + 1);
  folder_ = slash == path.npos ? L"" : path.substr(0, slash + 1);
  if (name_.empty()) return false;

  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    if (GetLastError() != ERROR_FILE_NOT_FOUND) return false;
  } else {
    // A device would be gone for everybody; a link is here only where it leads to no file.
    constexpr DWORD kNever =
        FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_REPARSE_POINT;
    if ((attributes & kNever) != 0) return false;
    replaces_ = true;
    attributes_ = attributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                                FILE_ATTRIBUTE_NOT_CONTENT_INDEXED);
    rights_ = AccessRights(path);
  }
  RemoveLeftovers();
  return Create();
}

std::wstring FileReplacement::Work::TemporaryPrefix() const {
  // The name itself might leave no room for more.
  return L".lmf-" + std::to_wstring(std::hash<std::wstring>()(name_)) + L'-';
}

bool FileReplacement::Work::Create() {
  static std::atomic<unsigned> count{0};
  SECURITY_ATTRIBUTES security{sizeof security, rights_.empty() ? nullptr : rights_.data(), FALSE};
  do {
    std::wstring path = folder_ + TemporaryPrefix() + std::to_wstring(GetCurrentProcessId()) + L'-' +
                        std::to_wstring(++count) + kEnding;
    // Shared with nobody, as a sign that somebody is at work.
    file_.Take(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, &security, CREATE_NEW, attributes_, nullptr));
    if (file_) temporary_ = std::move(path);
    // What an ended process of the same number has left stays in its place.
  } while (!file_ && GetLastError() == ERROR_FILE_EXISTS);
  return static_cast<bool>(file_);
}

// What saves of this file have left whose processes were killed.
void FileReplacement::Work::RemoveLeftovers() const {
  const std::wstring prefix = TemporaryPrefix();
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((folder_ + prefix + L'*' + kEnding).c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    // Not those that are still open somewhere, such as on another machine.
    if (IsGone(ProcessOf(entry.cFileName, prefix))) DeleteFileW((folder_ + entry.cFileName).c_str());
  } while (FindNextFileW(search, &entry) != 0);
  FindClose(search);
}

void FileReplacement::Work::Write(std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 30;  // for one call
  while (!failed_ && !bytes.empty()) {
    DWORD written = 0;
    failed_ = WriteFile(file_.Get(), bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kMost)), &written,
                        nullptr) == 0 ||
              written == 0;
    bytes.remove_prefix(written);
  }
}

bool FileReplacement::Work::Commit() {
  if (failed_ || FlushFileBuffers(file_.Get()) == 0) return false;
  if (Rename()) {
    temporary_.clear();
    // The name reaches the disk with the file.
    return FlushFileBuffers(file_.Get()) != 0;
  }
  // Whoever keeps the old file to himself keeps it now, too.
  const DWORD error = GetLastError();
  if (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION) return false;
  return file_.Close() && RenameOnOldSystem();
}

// In a single step, and while others read the old file.
bool FileReplacement::Work::Rename() const {
  const std::wstring target = folder_ + name_;
  const std::size_t size = target.size() * sizeof(wchar_t);
  std::vector<std::max_align_t> memory((sizeof(RenameInformation) + size) / sizeof(std::max_align_t) + 1);
  auto* const information = reinterpret_cast<RenameInformation*>(memory.data());
  information->flags = kReplaceIfExists | kPosixSemantics;
  information->nameSize = static_cast<DWORD>(size);
  std::memcpy(&information->name, target.c_str(), size);
  return SetFileInformationByHandle(file_.Get(), kRenameInformation, information,
                                    static_cast<DWORD>(sizeof *information + size)) != 0;
}

// On systems, and on disks, that do not know the other way: in a single step unless somebody reads the old file.
// Should the process end within the call that takes two steps, the old file is there under a name that ends in
// ".old".
bool FileReplacement::Work::RenameOnOldSystem() {
  const std::wstring target = folder_ + name_;
  const std::wstring old = temporary_ + L".old";
  if (MoveFileExW(temporary_.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
    if (!replaces_) return false;
    if (ReplaceFileW(target.c_str(), temporary_.c_str(), old.c_str(),
                     REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_IGNORE_ACL_ERRORS, nullptr, nullptr) == 0) {
      if (GetLastError() == ERROR_UNABLE_TO_MOVE_REPLACEMENT_2) MoveFileExW(old.c_str(), target.c_str(), 0);
      return false;
    }
    DeleteFileW(old.c_str());
  }
  temporary_.clear();
  return true;
}

}  // namespace TORVA35
