#include "Refusal.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

#include <torva35/TORVA35.h>

namespace TORVA35::sheet {

using namespace std::string_view_literals;

namespace {

struct Signature {
  std::string_view bytes;
  std::string_view name;
};

// Files that are easily taken for an export, by their first bytes.
constexpr Signature kSignatures[] = {
    {"PK\x03\x04"sv, "a ZIP archive or an Office document"},
    {"PK\x05\x06"sv, "an empty ZIP archive"},
    {"{\\rtf"sv, "an RTF document"},
    {"%PDF-"sv, "a PDF document"},
    {"\x1F\x8B"sv, "a gzip archive"},
    {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, "an old Word document or another OLE file"},
    {"7z\xBC\xAF\x27\x1C"sv, "a 7z archive"},
    {"Rar!\x1A\x07"sv, "a RAR archive"},
    {"BZh"sv, "a bzip2 archive"},
    {"\xFD"
     "7zXZ\0"sv,
     "an xz archive"},
    {"\x89PNG\r\n"sv, "a PNG image"},
    {"\xFF\xD8\xFF"sv, "a JPEG image"},
    {"GIF8"sv, "a GIF image"},
    {"\x7F"
     "ELF"sv,
     "a program"},
    {"MZ"sv, "a program"},
};

std::string FirstBytes(const std::string& path) {
  std::string bytes(512, '\0');
  std::ifstream file(std::filesystem::path(FromUtf8(path)), std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

bool IsUtf16(std::string_view bytes) {
  return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF") || bytes.starts_with("<\0"sv) ||
         bytes.starts_with("\0<"sv);
}

bool HasBinaryBytes(std::string_view bytes) {
  return std::any_of(bytes.begin(), bytes.end(), [](unsigned char byte) {
    return byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\f' && byte != '\r';
  });
}

// A bank or test of ExamView's own, or a package of them, says so near its beginning, or in its name. A text may
// speak of ExamView anywhere else.
bool IsBank(const std::string& path, std::string_view bytes, bool binary) {
  constexpr std::size_t kTitleBytes = 64;
  const String begin = FromUtf8(binary ? bytes : bytes.substr(0, kTitleBytes));
  const String ending = std::filesystem::path(FromUtf8(path)).extension().u16string();
  const bool named = EqualNoCase(ending, u".bnk") || EqualNoCase(ending, u".tst") ||
                     EqualNoCase(ending, u".ebk") || EqualNoCase(ending, u".eqb");
  const String lower = Lower(begin);
  const bool said = lower.find(u"examview") != lower.npos || lower.find(u"question bank") != lower.npos;
  return named || said;
}

// What the file is when it is no XML at all, or nothing.
std::string ForeignKind(const std::string& path, std::string_view bytes) {
  if (bytes.empty()) return "an empty file";
  for (const Signature& signature : kSignatures) {
    if (bytes.starts_with(signature.bytes)) return std::string(signature.name);
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  const std::size_t begin = bytes.find_first_not_of(" \t\r\n");
  const bool markup = IsUtf16(bytes) || (begin != bytes.npos && bytes[begin] == '<');
  const bool binary = !IsUtf16(bytes) && HasBinaryBytes(bytes);
  if ((binary || !markup) && IsBank(path, bytes, binary))
    return "an ExamView question bank: export the test as XML";
  if (binary) return "a binary file";
  return markup ? "" : "a text without any markup";
}

}  // namespace

std::string WhyRefused(const std::string& path) {
  DOMDocument document;
  if (!document.load(FromUtf8(path))) {
    const XmlParseError& error = document.parseError();
    if (error.line == 0) return ToUtf8(error.reason);
    const std::string foreign = ForeignKind(path, FirstBytes(path));
    if (!foreign.empty()) return "not XML but " + foreign;
    return "not well-formed XML: " + ToUtf8(error.reason) + " at line " + std::to_string(error.line) +
           ", column " + std::to_string(error.column);
  }
  const String root = document.Root().get_nodeName();
  if (root == u"examview") return "an ExamView export without a question that could be read";
  if (root == u"lmf") {
    return clsLmf().Open(FromUtf8(path)) ? "an LMF file without a scored question that could be read"
                                         : "an LMF file that is damaged or of an unknown version";
  }
  const bool lmf = EqualNoCase(std::filesystem::path(FromUtf8(path)).extension().u16string(), u".lmf");
  return (lmf ? "not an LMF file: its root element is <" : "not an ExamView export: its root element is <") +
         ToUtf8(root) + (lmf ? ">, not <lmf>" : ">, not <examview>");
}

}  // namespace TORVA35::sheet
