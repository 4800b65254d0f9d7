#include "torva35/xml/XmlReader.h"

// Declares the limits on entity expansion.
#define XML_DTD
#include <expat.h>

#include <algorithm>
#include <new>
#include <string>

#include "torva35/base/Error.h"
#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

constexpr std::int64_t kChunkBytes = 1 << 16;
constexpr std::int64_t kLargestChunkBytes = 1 << 28;
// What is read, and taken room for, at once.
constexpr std::int64_t kLargestRestBytes = 1 << 26;
// Bytes for a byte of the file: a usual export takes less than two.
constexpr std::size_t kMostReserved = 4;
// How many times longer than the file its text may become by entities, and its attributes by the values that are
// declared for them; small files may always reach 8 MiB. The parser itself watches over the entities only.
constexpr int kMaximumAmplification = 10;
constexpr std::int64_t kAlwaysAllowedBytes = 8 << 20;
// Entities and attributes that a document may declare.
constexpr int kMostDeclared = 10'000;
// How many of the entities may refer to others, and so how deep they nest: the parser calls itself for each level.
constexpr int kMostNested = 1'000;
// At each element the parser goes through all attributes that are declared for it, whether it has them or not.
constexpr std::int64_t kMostAttributesPassed = 100'000'000;
// Offsets into the tree are 32 bits wide.
constexpr std::size_t kLargestBytes = 0xFFFF0000;

// Why a document is not read to its end, though the parser finds no fault with it.
struct Refusal {
  const char16_t* reason;
};
constexpr Refusal kTooLarge{u"document too large"};
constexpr Refusal kTooManyDeclared{u"too many declarations"};
constexpr Refusal kTooManyNested{u"too many entities that refer to others"};
constexpr Refusal kTooMuchDefaulted{u"too much from declared attributes"};
constexpr Refusal kTooManyPassed{u"too many elements with declared attributes"};
constexpr Refusal kUnknownVersion{u"unknown version of XML"};
constexpr Refusal kUndefinedEntity{u"undefined entity"};
constexpr const char16_t* kFileTooLarge = u"file too large";

void NeedRoom(std::size_t size) {
  if (size > kLargestBytes) throw kTooLarge;
}

// Nearly all white text is a line feed and the indentation of the next line.
constexpr std::string_view kIndentation = "\n                                                               ";

// By hand: the search for a set of characters is a function call for every character.
bool IsWhite(std::string_view text) {
  if (text.front() == '\n' && kIndentation.starts_with(text)) return true;
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; });
}

XmlParseError Unreadable(String reason) {
  XmlParseError result;
  result.reason = std::move(reason);
  return result;
}

}  // namespace

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
  static void XMLCALL Declaration(void* data, const XML_Char* version, const XML_Char*, int) {
    Run(data, [&](XmlReader& reader) { reader.BeginDocument(version); });
  }
  static void XMLCALL Attribute(void* data, const XML_Char* element, const XML_Char*, const XML_Char*,
                                const XML_Char*, int) {
    Run(data, [&](XmlReader& reader) { reader.DeclareAttribute(element); });
  }
  static void XMLCALL Entity(void* data, const XML_Char*, int, const XML_Char* value, int length, const XML_Char*,
                             const XML_Char*, const XML_Char*, const XML_Char*) {
    // An external one has no value, and is never opened.
    Run(data, [&](XmlReader& reader) { reader.DeclareEntity({value, static_cast<std::size_t>(length)}); });
  }
  static int XMLCALL External(XML_Parser parser, const XML_Char* context, const XML_Char*, const XML_Char*,
                              const XML_Char*) {
    bool opened = false;
    // Without a context it is a parameter entity, or the part of the document type that stands outside.
    Run(XML_GetUserData(parser),
        [&](XmlReader& reader) { opened = reader.OpenExternal(parser, context == nullptr); });
    return opened ? XML_STATUS_OK : XML_STATUS_ERROR;
  }
  static void XMLCALL Skipped(void* data, const XML_Char*, int isParameter) {
    Run(data, [&](XmlReader& reader) { reader.SkipEntity(isParameter != 0); });
  }
};

void XmlReader::FreeParser::operator()(XML_ParserStruct* parser) const {
  XML_ParserFree(parser);
}

bool XmlReader::Load(DOMDocument& document, InputFile file, Listener listener) {
  document.parseError_ = {};
  document.tree_.reset();
  document.building_ = std::make_unique<XmlTree>();
  document.building_->keepsPlaces = document.keepsPlaces_;
  document.reader_ = std::make_unique<XmlReader>(*document.building_, std::move(file), std::move(listener));
  document.parseError_ = document.reader_->Read();
  document.reader_.reset();
  if (document.parseError_.reason.empty()) document.tree_ = std::move(document.building_);
  document.building_.reset();
  return document.tree_ != nullptr;
}

XmlParseError XmlReader::Read() {
  if (!file_.Problem().empty()) return Unreadable(file_.Problem());
  if (file_.Size() > kLargestFileBytes) return Unreadable(kFileTooLarge);
  StartParser();
  try {
    return ReadAll();
  } catch (const Refusal& refusal) {
    return Stopped(refusal.reason);
  }
}

void XmlReader::StartParser() {
  // The encoding is the decoder's business; given here, it stands whatever the document declares.
  parser_.reset(XML_ParserCreate("UTF-8"));
  if (parser_ == nullptr) throw std::bad_alloc();
  XML_Parser parser = parser_.get();
  XML_SetUserData(parser, this);
  XML_SetElementHandler(parser, Callbacks::Start, Callbacks::End);
  XML_SetCharacterDataHandler(parser, Callbacks::Text);
  XML_SetCdataSectionHandler(parser, Callbacks::StartCdata, Callbacks::EndCdata);
  XML_SetAttlistDeclHandler(parser, Callbacks::Attribute);
  XML_SetEntityDeclHandler(parser, Callbacks::Entity);
  XML_SetXmlDeclHandler(parser, Callbacks::Declaration);
  XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
  XML_SetExternalEntityRefHandler(parser, Callbacks::External);
  XML_SetSkippedEntityHandler(parser, Callbacks::Skipped);
  XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, kMaximumAmplification);
  XML_SetBillionLaughsAttackProtectionActivationThreshold(parser, kAlwaysAllowedBytes);
  tree_.nodes.push_back({XmlTree::kDocument, 0, 0, 0, 0, 0});
  open_.push_back({0, 0});
}

XmlParseError XmlReader::ReadAll() {
  for (bool atEnd = false; !atEnd;) {
    const auto chunk = static_cast<int>(NextChunk());
    auto* buffer = static_cast<char*>(XML_GetBuffer(parser_.get(), chunk));
    if (buffer == nullptr) throw std::bad_alloc();
    const std::size_t size = file_.ReadAt(bytesRead_, buffer, static_cast<std::size_t>(chunk));
    if (!file_.Problem().empty()) return Unreadable(file_.Problem());
    if (listener_) listener_({buffer, size});
    atEnd = size < static_cast<std::size_t>(chunk);
    if (bytesRead_ == 0) {
      XmlParseError error = decoder_.Begin({buffer, size}, atEnd);
      if (!error.reason.empty()) return error;
    }
    bytesRead_ += static_cast<std::int64_t>(size);
    if (bytesRead_ > kLargestFileBytes) return Unreadable(kFileTooLarge);
    const bool parsed = Parse(buffer, size, atEnd);
    if (failure_) std::rethrow_exception(failure_);
    if (!parsed) {
      const XML_Error code = XML_GetErrorCode(parser_.get());
      if (code == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
      return Stopped(FromUtf8(XML_ErrorString(code)));
    }
    if (!atEnd && bytesRead_ == static_cast<std::int64_t>(size)) ReserveRest();
  }
  tree_.nodes[0].textEnd = static_cast<std::uint32_t>(tree_.text.size());
  return {};
}

// The bytes to read next. They all come at once where the parser takes them as they are, but for the first ones,
// which tell the encoding: it counts lines in whatever is not the end of a document, which is a tenth of its work.
std::int64_t XmlReader::NextChunk() const {
  const std::int64_t rest = file_.Size() - bytesRead_;
  if (bytesRead_ > 0 && decoder_.IsUtf8() && rest >= 0 && rest < kLargestRestBytes) return rest + 1;
  // The parser begins an unfinished token anew with each chunk: as much again keeps a long one from taking
  // quadratic time.
  const std::int64_t unfinished = bytesParsed_ - XML_GetCurrentByteIndex(parser_.get());
  return std::clamp(unfinished, kChunkBytes, kLargestChunkBytes);
}

// Takes the room for the whole tree at once, by what the first chunk has become: it then neither moves while it
// grows nor leaves half of its room empty. A large file may turn out otherwise, and gets its room as it needs it.
void XmlReader::ReserveRest() {
  if (file_.Size() > kLargestRestBytes) return;
  const double growth = 1.05 * static_cast<double>(file_.Size()) / static_cast<double>(bytesRead_);
  const auto grown = [&](std::size_t size) {
    return static_cast<std::size_t>(static_cast<double>(size) * growth);
  };
  const std::size_t nodes = grown(tree_.nodes.size());
  const std::size_t attributes = grown(tree_.attributes.size());
  const std::size_t text = grown(tree_.text.size());
  const std::size_t values = grown(tree_.values.size());
  const std::size_t bytes = nodes * sizeof(XmlNode) + attributes * sizeof(XmlAttribute) + text + values;
  if (growth < 1 || bytes > kMostReserved * static_cast<std::size_t>(file_.Size())) return;
  tree_.nodes.reserve(nodes);
  tree_.attributes.reserve(attributes);
  tree_.text.reserve(text);
  tree_.values.reserve(values);
}

// Gives the parser the next bytes of the file, which stand in a buffer of its own.
bool XmlReader::Parse(char* buffer, std::size_t size, bool atEnd) {
  if (decoder_.IsUtf8()) {
    bytesParsed_ += static_cast<std::int64_t>(size);
    return XML_ParseBuffer(parser_.get(), static_cast<int>(size), atEnd) == XML_STATUS_OK;
  }
  source_.append(buffer, size);
  utf8_.clear();
  source_.erase(0, decoder_.Convert(source_, atEnd, utf8_));
  bytesParsed_ += static_cast<std::int64_t>(utf8_.size());
  return XML_Parse(parser_.get(), utf8_.data(), static_cast<int>(utf8_.size()), atEnd) == XML_STATUS_OK;
}

XmlParseError XmlReader::Stopped(String reason) {
  XmlParseError result;
  result.reason = std::move(reason);
  result.line = static_cast<std::int64_t>(XML_GetCurrentLineNumber(parser_.get()));
  result.column = static_cast<std::int64_t>(XML_GetCurrentColumnNumber(parser_.get())) + 1;
  // The parser counts a byte order mark as a character.
  if (decoder_.HasMark() && result.line == 1 && result.column > 1) --result.column;
  result.byteOffset = SourceOffset(XML_GetCurrentByteIndex(parser_.get()));
  return result;
}

// The place in the file of a place in its UTF-8. A file that is not UTF-8 is converted once more up to there, so
// that only those that are refused pay for it.
std::int64_t XmlReader::SourceOffset(std::int64_t parsed) {
  if (decoder_.IsUtf8()) return parsed;
  std::int64_t offset = 0;
  while (parsed > 0) {
    source_.resize(static_cast<std::size_t>(kChunkBytes));
    source_.resize(file_.ReadAt(offset, source_.data(), source_.size()));
    utf8_.clear();
    const std::size_t used =
        decoder_.Convert(source_, source_.size() < kChunkBytes, utf8_, static_cast<std::size_t>(parsed));
    if (used == 0) break;
    offset += static_cast<std::int64_t>(used);
    parsed -= static_cast<std::int64_t>(utf8_.size());
  }
  return offset;
}

void XmlReader::BeginElement(std::string_view name, const char** attributes) {
  FlushText();
  const std::uint32_t number = tree_.Intern(name);
  if (declaredFor_ != nullptr) PassDeclared(number);
  const std::uint32_t node = Append(number);
  ++tree_.elementCounts[number];
  open_.push_back({node, 0});
  if (tree_.keepsPlaces) {
    tree_.places.push_back({node, static_cast<std::uint32_t>(XML_GetCurrentLineNumber(parser_.get())),
                            static_cast<std::uint32_t>(XML_GetCurrentColumnNumber(parser_.get())) + 1});
  }
  if (declaredFor_ != nullptr) {
    const char** defaults = attributes + XML_GetSpecifiedAttributeCount(parser_.get());
    for (; *defaults != nullptr; defaults += 2) AllowDefault(defaults[0], defaults[1]);
  }
  for (; *attributes != nullptr; attributes += 2) {
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
  if (defaultBytes_ > std::max(kAlwaysAllowedBytes, kMaximumAmplification * bytesRead_)) throw kTooMuchDefaulted;
}

void XmlReader::BeginDocument(std::string_view version) {
  if (version.size() < 3 || !version.starts_with("1.") ||
      version.find_first_not_of("0123456789", 2) != version.npos) {
    throw kUnknownVersion;
  }
}

void XmlReader::Declare() {
  if (++declared_ > kMostDeclared) throw kTooManyDeclared;
}

void XmlReader::DeclareAttribute(std::string_view element) {
  Declare();
  if (declaredFor_ == nullptr) declaredFor_ = std::make_unique<std::vector<std::uint32_t>>();
  const std::uint32_t number = tree_.Intern(element);
  if (number >= declaredFor_->size()) declaredFor_->resize(number + 1);
  ++(*declaredFor_)[number];
}

void XmlReader::PassDeclared(std::uint32_t name) {
  if (name >= declaredFor_->size()) return;
  attributesPassed_ += (*declaredFor_)[name];
  if (attributesPassed_ > kMostAttributesPassed) throw kTooManyPassed;
}

void XmlReader::DeclareEntity(std::string_view value) {
  Declare();
  if (value.find_first_of("&%") != value.npos && ++nested_ > kMostNested) throw kTooManyNested;
}

// In the place of what stands outside the document there is nothing. The parser has to be given that nothing: left
// alone with a parameter entity, it would no longer take what is declared after it.
bool XmlReader::OpenExternal(XML_ParserStruct* parser, bool isParameter) {
  if (!isParameter) return true;
  hasExternal_ = true;
  const std::unique_ptr<XML_ParserStruct, FreeParser> empty(
      XML_ExternalEntityParserCreate(parser, nullptr, nullptr));
  if (empty == nullptr) throw std::bad_alloc();
  if (XML_Parse(empty.get(), "", 0, XML_TRUE) == XML_STATUS_OK) return true;
  if (XML_GetErrorCode(empty.get()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  return false;
}

// An entity that is not declared. A file outside the document may have declared it, which then
// contributes nothing either; but without a parameter entity the parser would no longer take what is declared
// after it.
void XmlReader::SkipEntity(bool isParameter) {
  if (isParameter || !hasExternal_) throw kUndefinedEntity;
}

void XmlReader::EndElement() {
  FlushText();
  tree_.nodes[open_.back().node].textEnd = static_cast<std::uint32_t>(tree_.text.size());
  open_.pop_back();
}

void XmlReader::FlushText() {
  if (tree_.text.size() == textBegin_) return;
  if (IsWhite(std::string_view(tree_.text).substr(textBegin_))) {
    tree_.text.resize(textBegin_);
    return;
  }
  Append(XmlTree::kText);
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
  Append(XmlTree::kCdata);
  textBegin_ = tree_.text.size();
}

// Makes a node of what has been collected the last child so far of its parent.
std::uint32_t XmlReader::Append(std::uint32_t name) {
  const auto index = static_cast<std::uint32_t>(tree_.nodes.size());
  tree_.nodes.push_back({name, 0, 0, static_cast<std::uint32_t>(tree_.attributes.size()),
                         static_cast<std::uint32_t>(textBegin_), static_cast<std::uint32_t>(tree_.text.size())});
  NeedRoom(tree_.nodes.size());
  Open& parent = open_.back();
  if (parent.lastChild != 0) tree_.nodes[parent.lastChild].next = index;
  parent.lastChild = index;
  ++tree_.nodes[parent.node].children;
  return index;
}

}  // namespace TORVA35
