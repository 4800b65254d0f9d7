#pragma once

#include <string_view>

#include "tests/TempFile.h"
#include "torva35/base/Text.h"
#include "torva35/xml/DOMDocument.h"

namespace TORVA35 {

inline bool Load(DOMDocument& document, std::string_view bytes) {
  const TempFile file(bytes);
  return document.load(file.Path());
}

// The tree below a node in a form that a test can compare: name[attributes](children), texts in quotes.
inline String Shape(const IXMLDOMNode& node) {
  if (node.get_baseName().empty()) {
    const StringView quote = node.get_nodeName() == u"#text" ? u"'" : u"\"";
    return String(quote) + node.Text() + String(quote);
  }
  String shape = node.get_nodeName();
  for (Long i = 0; i < node.get_attributes().get_length(); ++i) {
    const IXMLDOMNode attribute = node.get_attributes().get_item(i);
    shape += u"[" + attribute.get_nodeName() + u"=" + attribute.Text() + u"]";
  }
  const IXMLDOMNodeList children = node.get_childNodes();
  if (children.get_length() == 0) return shape;
  shape += u"(";
  for (Long i = 0; i < children.get_length(); ++i) shape += Shape(children.get_item(i));
  return shape + u")";
}

inline String ShapeOf(std::string_view bytes) {
  DOMDocument document;
  return Load(document, bytes) ? Shape(document.selectSingleNode(u"a")) : u"refused";
}

}  // namespace TORVA35
