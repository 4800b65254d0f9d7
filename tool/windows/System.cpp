#include "../System.h"

#include <windows.h>

// After the system's header, on which it relies.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <vector>

#include <torva35/TORVA35.h>

namespace tool {
namespace {

UINT pageBefore = 0;

HANDLE HandleOf(Stream stream) {
  switch (stream) {
    case Stream::kInput:
      return GetStdHandle(STD_INPUT_HANDLE);
    case Stream::kOutput:
      return GetStdHandle(STD_OUTPUT_HANDLE);
    default:
      return GetStdHandle(STD_ERROR_HANDLE);
  }
}

struct Range {
  char32_t first;
  char32_t last;
};

// Marks that stand over the character before, and signs that are not seen.
constexpr Range kNoColumn[] = {
    {0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},   {0x610, 0x61A},   {0x64B, 0x65F},   {0x6D6, 0x6DC},
    {0x900, 0x902},   {0xE31, 0xE31},   {0xE34, 0xE3A},   {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F},
    {0x202A, 0x202E}, {0x2060, 0x2064}, {0x20D0, 0x20F0}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}};
// Those of East Asia, and pictures.
constexpr Range kTwoColumns[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0x4DBF},   {0x4E00, 0xA4CF},
                                 {0xA960, 0xA97C},   {0xAC00, 0xD7A3},  {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},
                                 {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF},
                                 {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <std::size_t count>
bool IsIn(const Range (&ranges)[count], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [&](const Range& range) { return character >= range.first && character <= range.last; });
}

}  // namespace

void PrepareStreams() {
  // What is written and read is bytes; a line does not end differently here.
  for (FILE* const stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  pageBefore = GetConsoleOutputCP();
  if (pageBefore != 0 && SetConsoleOutputCP(CP_UTF8) != 0) {
    std::atexit([] { SetConsoleOutputCP(pageBefore); });
  }
  // For the line that shows how far the work is.
  DWORD mode = 0;
  const HANDLE error = HandleOf(Stream::kError);
  if (GetConsoleMode(error, &mode) != 0) SetConsoleMode(error, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void PutArgumentsInUtf8(int& argc, char**& argv) {
  static std::vector<std::string> arguments;
  static std::vector<char*> pointers;
  int count = 0;
  LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return;
  for (int i = 0; i < count; ++i) {
    const std::wstring argument = wide[i];
    arguments.push_back(TORVA35::ToUtf8(TORVA35::String(argument.begin(), argument.end())));
  }
  LocalFree(wide);
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  argc = count;
  argv = pointers.data();
}

bool IsTerminal(Stream stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

std::size_t TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (GetConsoleScreenBufferInfo(HandleOf(Stream::kOutput), &info) == 0) return 0;
  return static_cast<std::size_t>(info.srWindow.Right) - static_cast<std::size_t>(info.srWindow.Left) + 1;
}

int CharacterColumns(char32_t character) {
  if (character < 0x20 || (character >= 0x7F && character < 0xA0)) return -1;
  if (IsIn(kNoColumn, character)) return 0;
  return IsIn(kTwoColumns, character) ? 2 : 1;
}

std::string MakeTemporaryFile() {
  const std::wstring folder = std::filesystem::temp_directory_path().wstring();
  wchar_t name[MAX_PATH];
  // The folder is the user's own, and so is what is made in it.
  return GetTempFileNameW(folder.c_str(), L"tor", 0, name) != 0 ? Utf8Of(name) : std::string();
}

void KeepBefore(const std::filesystem::path& file, const std::filesystem::path& name, std::error_code& error) {
  // Who has the file open has all its names open.
  std::filesystem::copy_file(file, name, error);
}

std::filesystem::path PathOf(const std::string& utf8) {
  return TORVA35::FromUtf8(utf8);
}

std::string Utf8Of(const std::filesystem::path& path) {
  return TORVA35::ToUtf8(path.u16string());
}

}  // namespace tool
