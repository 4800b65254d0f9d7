#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "torva35/platform/InputFile.h"
#include "torva35/xml/DOMDocument.h"
#include "torva35/xml/XmlDecoder.h"
#include "torva35/xml/XmlTree.h"

struct XML_ParserStruct;

namespace TORVA35 {

/// Reads one file through the parser into a tree.
struct XmlReader {
 public:
  /// A longer file is refused.
  static constexpr std::int64_t kLargestFileBytes = 1 << 30;

  /// Is told of the bytes of a file, in order, before they are parsed.
  using Listener = std::function<void(std::string_view)>;

  /// The road of every file into a document: what `DOMDocument::load` does, for a file that is open already.
  /// Exhausted memory leaves as `std::bad_alloc`.
  static bool Load(DOMDocument& document, InputFile file, Listener listener = {});

  XmlReader(XmlTree& tree, InputFile file, Listener listener)
      : tree_(tree), file_(std::move(file)), listener_(std::move(listener)) {}

 private:
  struct Callbacks;
  struct FreeParser {
    void operator()(XML_ParserStruct* parser) const;
  };

  XmlParseError Read();
  void StartParser();
  XmlParseError ReadAll();
  void ReserveRest();
  std::int64_t NextChunk() const;
  bool Parse(char* buffer, std::size_t size, bool atEnd);
  void BeginElement(std::string_view name, const char** attributes);
  void AllowDefault(std::string_view name, std::string_view value);
  void BeginDocument(std::string_view version);
  void Declare();
  void DeclareAttribute(std::string_view element);
  void PassDeclared(std::uint32_t name);
  void DeclareEntity(std::string_view value);
  bool OpenExternal(XML_ParserStruct* parser, bool isParameter);
  void SkipEntity(bool isParameter);
  void EndElement();
  void Characters(std::string_view characters);
  void BeginCdata();
  void EndCdata();
  void FlushText();
  std::uint32_t Append(std::uint32_t name);
  XmlParseError Stopped(String reason);
  std::int64_t SourceOffset(std::int64_t parsed);

  XmlTree& tree_;
  InputFile file_;
  Listener listener_;
  XmlDecoder decoder_;
  std::unique_ptr<XML_ParserStruct, FreeParser> parser_;
  // Of a file that is not UTF-8: what is still to be converted, and what the parser gets.
  std::string source_;
  std::string utf8_;

  struct Open {
    std::uint32_t node;
    std::uint32_t lastChild;  // 0 while it has none
  };
  std::vector<Open> open_;      // from the document down to the element that is being read
  std::size_t textBegin_ = 0;   // where the text that is being collected begins
  std::exception_ptr failure_;  // raised in a callback, thrown again once the parser has returned
  std::int64_t bytesRead_ = 0;
  std::int64_t bytesParsed_ = 0;
  std::int64_t defaultBytes_ = 0;  // of attributes that stand in no tag
  int declared_ = 0;               // entities and attributes
  int nested_ = 0;                 // entities that refer to others
  bool hasExternal_ = false;       // whether what is declared outside the document might be missing
  // How many attributes are declared for an element of this name, by the name's number; and how many of all
  // elements the parser has gone through.
  std::unique_ptr<std::vector<std::uint32_t>> declaredFor_;
  std::int64_t attributesPassed_ = 0;
};

}  // namespace TORVA35
