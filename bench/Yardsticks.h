#pragma once

#include <expat.h>
#include <libxml/parser.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

/// What a load is measured against: two well-known ways through the same bytes.
namespace TORVA35::bench {

[[noreturn]] inline void Fail(const std::string& what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  std::exit(EXIT_FAILURE);
}

/// The bare parser: no tree, no texts; with or without the calls to handlers, which do nothing.
inline void ParseWithExpat(const std::string& bytes, bool handlers) {
  const XML_Parser parser = XML_ParserCreate(nullptr);
  if (handlers) {
    XML_SetElementHandler(
        parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
  }
  if (XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) != XML_STATUS_OK) Fail("expat");
  XML_ParserFree(parser);
}

/// A whole DOM of another library, built and freed.
inline void ParseWithLibxml2(const std::string& path) {
  xmlDoc* document = xmlReadFile(path.c_str(), nullptr, XML_PARSE_HUGE);
  if (document == nullptr) Fail("libxml2");
  xmlFreeDoc(document);
}

}  // namespace TORVA35::bench
