#include "torva35/xml/XmlReader.h"

// Declares the limits on entity expansion.
#define XML_DTD
#include <expat.h>
#include <fcntl.h>
#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include "torva35/base/Error.h"
#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

constexpr std::int64_t kChunk = 1 << 16;
constexpr std::int64_t kLargestChunk = 1 << 28;
// How many times longer than the file its text may become by entities, and its attributes by the values that are
// declared for them; small files may always reach 8 MiB. The parser itself watches over the entities only.
constexpr int kMaximumAmplification = 10;
constexpr std::int64_t kAlwaysAllowed = 8 << 20;
// Entities and attributes that a document may declare: at every element the parser goes through all attributes
// that are declared for it.
constexpr int kMostDeclared = 10'000;
// How many of the entities may refer to others, and so how deep they nest: the parser calls itself for each level.
constexpr int kMostNested = 1'000;
// Offsets into the tree are 32 bits wide.
constexpr std::size_t kLargest = 0xFFFF0000;

// Why a document is not read to its end, though the parser finds no fault with it.
struct Refusal {
  const char16_t* reason;
};
constexpr Refusal kTooLarge{u"document too large"};
constexpr Refusal kTooManyDeclared{u"too many declarations"};
constexpr Refusal kTooManyNested{u"too many entities that refer to others"};
constexpr Refusal kTooMuchDefaulted{u"too much from declared attributes"};

void NeedRoom(std::size_t size) {
  if (size > kLargest) throw kTooLarge;
}

// Fills the map of a single-byte code page from the system's converter.
int XMLCALL UnknownEncoding(void*, const XML_Char* name, XML_Encoding* encoding) {
  const iconv_t converter = iconv_open("UTF-32LE", name);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how it fails.
  if (converter == reinterpret_cast<iconv_t>(-1)) return XML_STATUS_ERROR;
  bool singleByte = true;
  for (int byte = 0; byte < 256; ++byte) {
    char in = static_cast<char>(byte);
    unsigned char out[8] = {};
    char* from = &in;
    char* to = reinterpret_cast<char*>(out);
    std::size_t fromLeft = 1;
    std::size_t toLeft = sizeof(out);
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    const bool converted = iconv(converter, &from, &fromLeft, &to, &toLeft) != static_cast<std::size_t>(-1);
    if (!converted && errno == EINVAL) singleByte = false;  // the beginning of a longer sequence
    const int code = out[0] | out[1] << 8 | out[2] << 16;
    encoding->map[byte] = converted && toLeft == 4 && code <= 0xFFFF ? code : -1;
  }
  iconv_close(converter);
  encoding->data = nullptr;
  encoding->convert = nullptr;
  encoding->release = nullptr;
  return singleByte ? XML_STATUS_OK : XML_STATUS_ERROR;
}

// By hand: the search for a set of characters is a function call for every character.
bool IsWhite(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; });
}

XmlParseError Unreadable(int error) {
  XmlParseError result;
  result.reason = FromUtf8(std::strerror(error));
  return result;
}

}  // namespace

std::size_t SurrogateCheck::Accept(std::string_view bytes) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  if (units_ == Units::kUnknown && bytes.size() >= 2) {
    // By the byte order mark, or by the "<" that begins a document without one.
    const unsigned first = static_cast<unsigned>(at(0)) << 8 | at(1);
    units_ = first == 0xFFFE || first == 0x3C00   ? Units::kLittle
             : first == 0xFEFF || first == 0x003C ? Units::kBig
                                                  : Units::kOther;
  }
  if (units_ == Units::kUnknown || units_ == Units::kOther) return bytes.size();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (!haveHalf_) {
      half_ = at(i);
      haveHalf_ = true;
      continue;
    }
    haveHalf_ = false;
    const unsigned char high = units_ == Units::kLittle ? at(i) : half_;
    const bool lead = high >= 0xD8 && high < 0xDC;
    const bool trail = high >= 0xDC && high < 0xE0;
    if (trail != afterLead_) return i == 0 ? 0 : i - 1;
    afterLead_ = lead;
  }
  return bytes.size();
}

// Each one catches what it raises, since nothing may pass through the parser's frames.
struct XmlReader::Callbacks {
  template <class Body>
  static void Run(void* data, Body&& body) noexcept {
    auto& reader = *static_cast<XmlReader*>(data);
    if (reader.failure_) return;
    try {
      body(reader);
    } catch (...) {
      reader.failure_ = std::current_exception();
      XML_StopParser(reader.parser_.get(), XML_FALSE);
    }
  }

  static void XMLCALL Start(void* data, const XML_Char* name, const XML_Char** attributes) {
    Run(data, [&](XmlReader& reader) { reader.BeginElement(name, attributes); });
  }
  static void XMLCALL End(void* data, const XML_Char*) {
    Run(data, [&](XmlReader& reader) { reader.EndElement(); });
  }
  static void XMLCALL Text(void* data, const XML_Char* text, int length) {
    Run(data, [&](XmlReader& reader) { reader.Characters({text, static_cast<std::size_t>(length)}); });
  }
  static void XMLCALL StartCdata(void* data) {
    Run(data, [&](XmlReader& reader) { reader.BeginCdata(); });
  }
  static void XMLCALL EndCdata(void* data) {
    Run(data, [&](XmlReader& reader) { reader.EndCdata(); });
  }
  static void XMLCALL Attribute(void* data, const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*,
                                int) {
    Run(data, [&](XmlReader& reader) { reader.Declare(); });
  }
  static void XMLCALL Entity(void* data, const XML_Char*, int, const XML_Char* value, int length, const XML_Char*,
                             const XML_Char*, const XML_Char*, const XML_Char*) {
    // An external one has no value, and is never opened.
    Run(data, [&](XmlReader& reader) { reader.DeclareEntity({value, static_cast<std::size_t>(length)}); });
  }
};

void XmlReader::FreeParser::operator()(XML_ParserStruct* parser) const {
  XML_ParserFree(parser);
}

XmlReader::~XmlReader() {
  if (file_ >= 0) close(file_);
}

XmlParseError XmlReader::Read(const String& fileName) {
  // A path cannot hold a NUL; cut off there it would name another file.
  if (fileName.find(u'\0') != fileName.npos) return Unreadable(ENOENT);
  file_ = open(ToUtf8(fileName).c_str(), O_RDONLY | O_CLOEXEC);
  if (file_ < 0) return Unreadable(errno);
  StartParser();
  try {
    return ReadAll();
  } catch (const Refusal& refusal) {
    return Stopped(refusal.reason);
  }
}

void XmlReader::StartParser() {
  parser_.reset(XML_ParserCreate(nullptr));
  if (parser_ == nullptr) throw std::bad_alloc();
  XML_Parser parser = parser_.get();
  XML_SetUserData(parser, this);
  XML_SetElementHandler(parser, Callbacks::Start, Callbacks::End);
  XML_SetCharacterDataHandler(parser, Callbacks::Text);
  XML_SetCdataSectionHandler(parser, Callbacks::StartCdata, Callbacks::EndCdata);
  XML_SetAttlistDeclHandler(parser, Callbacks::Attribute);
  XML_SetEntityDeclHandler(parser, Callbacks::Entity);
  XML_SetUnknownEncodingHandler(parser, UnknownEncoding, nullptr);
  XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, kMaximumAmplification);
  XML_SetBillionLaughsAttackProtectionActivationThreshold(parser, kAlwaysAllowed);
  Append({XmlTree::kDocument, 0, 0, 0, 0, 0});
  open_.push_back({0, 0});
}

XmlParseError XmlReader::ReadAll() {
  for (;;) {
    // The parser begins an unfinished token anew with each chunk: as much again keeps a long one from taking
    // quadratic time.
    const std::int64_t unfinished = bytesRead_ - XML_GetCurrentByteIndex(parser_.get());
    const auto chunk = static_cast<int>(std::clamp(unfinished, kChunk, kLargestChunk));
    void* buffer = XML_GetBuffer(parser_.get(), chunk);
    if (buffer == nullptr) throw std::bad_alloc();
    ssize_t count;
    do {
      count = read(file_, buffer, static_cast<std::size_t>(chunk));
    } while (count < 0 && errno == EINTR);
    if (count < 0) return Unreadable(errno);
    bytesRead_ += count;
    const auto size = static_cast<std::size_t>(count);
    const std::size_t good = surrogates_.Accept({static_cast<const char*>(buffer), size});
    const XML_Status status = XML_ParseBuffer(parser_.get(), static_cast<int>(good), count == 0);
    if (failure_) std::rethrow_exception(failure_);
    if (status != XML_STATUS_OK) {
      const XML_Error code = XML_GetErrorCode(parser_.get());
      if (code == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
      return Stopped(FromUtf8(XML_ErrorString(code)));
    }
    if (good < size) return Stopped(u"surrogate without its partner");
    if (count == 0) break;
  }
  tree_.nodes[0].textEnd = static_cast<std::uint32_t>(tree_.text.size());
  return {};
}

XmlParseError XmlReader::Stopped(String reason) const {
  XmlParseError result;
  result.reason = std::move(reason);
  result.line = static_cast<std::int64_t>(XML_GetCurrentLineNumber(parser_.get()));
  result.column = static_cast<std::int64_t>(XML_GetCurrentColumnNumber(parser_.get())) + 1;
  result.byteOffset = XML_GetCurrentByteIndex(parser_.get());
  return result;
}

void XmlReader::BeginElement(std::string_view name, const char** attributes) {
  FlushText();
  const auto text = static_cast<std::uint32_t>(tree_.text.size());
  Append({tree_.Intern(name), 0, 0, static_cast<std::uint32_t>(tree_.attributes.size()), text, text});
  open_.push_back({static_cast<std::uint32_t>(tree_.nodes.size() - 1), 0});
  const char** const defaults = attributes + XML_GetSpecifiedAttributeCount(parser_.get());
  for (; *attributes != nullptr; attributes += 2) {
    if (attributes >= defaults) AllowDefault(attributes[0], attributes[1]);
    const auto begin = static_cast<std::uint32_t>(tree_.values.size());
    tree_.values.append(attributes[1]);
    NeedRoom(tree_.values.size());
    tree_.attributes.push_back(
        {tree_.Intern(attributes[0]), begin, static_cast<std::uint32_t>(tree_.values.size())});
  }
}

// Counts the attribute at the length that it would have in the file, so that many empty ones count, too.
void XmlReader::AllowDefault(std::string_view name, std::string_view value) {
  defaultBytes_ += static_cast<std::int64_t>(name.size() + value.size() + std::string_view(" =''").size());
  if (defaultBytes_ > std::max(kAlwaysAllowed, kMaximumAmplification * bytesRead_)) throw kTooMuchDefaulted;
}

void XmlReader::Declare() {
  if (++declared_ > kMostDeclared) throw kTooManyDeclared;
}

void XmlReader::DeclareEntity(std::string_view value) {
  Declare();
  if (value.find('&') != value.npos && ++nested_ > kMostNested) throw kTooManyNested;
}

void XmlReader::EndElement() {
  FlushText();
  tree_.nodes[open_.back().node].textEnd = static_cast<std::uint32_t>(tree_.text.size());
  open_.pop_back();
}

void XmlReader::FlushText() {
  const std::string_view collected = std::string_view(tree_.text).substr(textBegin_);
  if (IsWhite(collected)) {
    tree_.text.resize(textBegin_);
    return;
  }
  Append({XmlTree::kText, 0, 0, static_cast<std::uint32_t>(tree_.attributes.size()),
          static_cast<std::uint32_t>(textBegin_), static_cast<std::uint32_t>(tree_.text.size())});
  textBegin_ = tree_.text.size();
}

void XmlReader::Characters(std::string_view characters) {
  tree_.text.append(characters);
  NeedRoom(tree_.text.size());
}

void XmlReader::BeginCdata() {
  FlushText();
}

void XmlReader::EndCdata() {
  Append({XmlTree::kCdata, 0, 0, static_cast<std::uint32_t>(tree_.attributes.size()),
          static_cast<std::uint32_t>(textBegin_), static_cast<std::uint32_t>(tree_.text.size())});
  textBegin_ = tree_.text.size();
}

// Hangs the node behind its elder siblings.
void XmlReader::Append(XmlNode node) {
  const auto index = static_cast<std::uint32_t>(tree_.nodes.size());
  tree_.nodes.push_back(node);
  NeedRoom(tree_.nodes.size());
  if (open_.empty()) return;
  Open& parent = open_.back();
  if (parent.lastChild != 0) tree_.nodes[parent.lastChild].next = index;
  parent.lastChild = index;
  ++tree_.nodes[parent.node].children;
}

}  // namespace TORVA35
