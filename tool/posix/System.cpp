#include "../System.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <utility>

namespace tool {
namespace {

int Descriptor(Stream stream) {
  switch (stream) {
    case Stream::kInput:
      return STDIN_FILENO;
    case Stream::kOutput:
      return STDOUT_FILENO;
    default:
      return STDERR_FILENO;
  }
}

// A file that is opened must not become a standard stream that the caller has closed. These fail when they are
// used.
void FillStandardStreams() {
  for (const auto& [stream, mode] :
       {std::pair{STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}}) {
    if (fcntl(stream, F_GETFD) < 0) open("/dev/null", mode);
  }
}

}  // namespace

void PrepareStreams() {
  FillStandardStreams();
  std::setlocale(LC_CTYPE, "C.UTF-8");  // for the width of characters in the terminal
  std::signal(SIGPIPE, SIG_IGN);
}

void PutArgumentsInUtf8(int&, char**&) {}

bool IsTerminal(Stream stream) {
  return isatty(Descriptor(stream)) != 0;
}

std::size_t TerminalWidth() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

int CharacterColumns(char32_t character) {
  return wcwidth(static_cast<wchar_t>(character));
}

std::string MakeTemporaryFile() {
  std::string path = std::filesystem::temp_directory_path().string() + "/torva35-XXXXXX";
  const int file = mkstemp(path.data());
  if (file < 0) return {};
  close(file);
  return path;
}

void KeepBefore(const std::filesystem::path& file, const std::filesystem::path& name, std::error_code& error) {
  std::filesystem::create_hard_link(file, name, error);
  if (error) std::filesystem::copy_file(file, name, error);
}

std::filesystem::path PathOf(const std::string& utf8) {
  return utf8;
}

std::string Utf8Of(const std::filesystem::path& path) {
  return path.string();
}

}  // namespace tool
