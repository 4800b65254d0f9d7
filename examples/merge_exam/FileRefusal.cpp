#include "merge_exam/FileRefusal.h"

#include <algorithm>
#include <fstream>
#include <string_view>

#include <torva35/TORVA35.h>
#include "merge_exam/TextTable.h"

namespace merge_exam {

using namespace TORVA35;
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
  std::ifstream file(path, std::ios::binary);
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

bool EndsWith(const std::string& path, std::string_view ending) {
  return path.size() >= ending.size() &&
         EqualNoCase(FromUtf8(std::string_view(path).substr(path.size() - ending.size())), FromUtf8(ending));
}

// What the file is when it is no XML at all, or nothing.
std::string ForeignKind(const std::string& path, std::string_view bytes) {
  if (bytes.empty()) return "an empty file";
  for (const Signature& signature : kSignatures) {
    if (bytes.starts_with(signature.bytes)) return std::string(signature.name);
  }
  if (!IsUtf16(bytes) && HasBinaryBytes(bytes)) {
    const bool bank = EndsWith(path, ".bnk") || EndsWith(path, ".tst");
    return bank ? "an ExamView bank or test in its binary format, which ExamView can export as XML"
                : "a binary file";
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  const std::size_t begin = bytes.find_first_not_of(" \t\r\n");
  const bool markup = IsUtf16(bytes) || (begin != bytes.npos && bytes[begin] == '<');
  return markup ? "" : "a text without any markup";
}

}  // namespace

std::string WhyRefused(const std::string& path, FileKind kind) {
  DOMDocument document;
  const bool wellFormed = document.load(FromUtf8(path));
  const XmlParseError& error = document.parseError();
  if (!wellFormed) {
    if (error.line == 0) return OneLine(error.reason);
    const std::string foreign = ForeignKind(path, FirstBytes(path));
    if (!foreign.empty()) return "not XML but " + foreign;
    return "not well-formed XML: " + OneLine(error.reason) + " at line " + std::to_string(error.line) +
           ", column " + std::to_string(error.column);
  }
  const bool examView = kind == FileKind::kExamView;
  const String wanted = examView ? u"examview" : u"lmf";
  const IXMLDOMNode root = document.Root();
  if (root.get_nodeName() != wanted) {
    return std::string(examView ? "not an ExamView export" : "not an LMF file") + ": its root element is <" +
           OneLine(root.get_nodeName()) + ">, not <" + ToUtf8(wanted) + ">";
  }
  if (examView) return "an ExamView export without a question that could be read";
  return clsLmf().Open(FromUtf8(path)) ? "an LMF file without a scored question that could be read"
                                       : "an LMF file that is damaged or of an unknown version";
}

}  // namespace merge_exam
