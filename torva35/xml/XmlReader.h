#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string_view>
#include <vector>

#include "torva35/xml/DOMDocument.h"
#include "torva35/xml/XmlTree.h"

struct XML_ParserStruct;

namespace TORVA35 {

/// Finds a surrogate without its partner in the bytes of a UTF-16 file, which the parser lets through.
class SurrogateCheck {
 public:
  /// How many of these bytes may go to the parser: all, or those in front of the first lone surrogate.
  std::size_t Accept(std::string_view bytes);

 private:
  enum class Units { kUnknown, kLittle, kBig, kOther };

  Units units_ = Units::kUnknown;
  unsigned char half_ = 0;  // the first byte of a unit that the next bytes complete
  bool haveHalf_ = false;
  bool afterLead_ = false;  // the unit in front was the first of a pair
};

/// Reads one file through the parser into a tree.
struct XmlReader {
 public:
  explicit XmlReader(XmlTree& tree) : tree_(tree) {}
  ~XmlReader();

  /// Parses the file; an empty reason says that all went well. Exhausted memory is raised.
  XmlParseError Read(const String& fileName);

 private:
  struct Callbacks;
  struct FreeParser {
    void operator()(XML_ParserStruct* parser) const;
  };

  void StartParser();
  XmlParseError ReadAll();
  void BeginElement(std::string_view name, const char** attributes);
  void AllowDefault(std::string_view name, std::string_view value);
  void Declare();
  void DeclareEntity(std::string_view value);
  void EndElement();
  void Characters(std::string_view characters);
  void BeginCdata();
  void EndCdata();
  void FlushText();
  void Append(XmlNode node);
  XmlParseError Stopped(String reason) const;

  XmlTree& tree_;
  std::unique_ptr<XML_ParserStruct, FreeParser> parser_;
  int file_ = -1;

  struct Open {
    std::uint32_t node;
    std::uint32_t lastChild;  // 0 while it has none
  };
  std::vector<Open> open_;      // from the document down to the element that is being read
  std::size_t textBegin_ = 0;   // where the text that is being collected begins
  std::exception_ptr failure_;  // raised in a callback, thrown again behind the parser's frames
  SurrogateCheck surrogates_;
  std::int64_t bytesRead_ = 0;
  std::int64_t defaultBytes_ = 0;  // of attributes that stand in no tag
  int declared_ = 0;               // entities and attributes
  int nested_ = 0;                 // entities that refer to others
};

}  // namespace TORVA35
