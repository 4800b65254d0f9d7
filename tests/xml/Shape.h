#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/TempFile.h"
#include "torva35/base/Text.h"
#include "torva35/xml/DOMDocument.h"

#if __has_include(<iconv.h>)
#include <iconv.h>
#endif

namespace TORVA35 {

// Whether the system converts more encodings than its C library has built in. A cross compiler's comes without the
// others.
inline bool KnowsEncodings() {
#if __has_include(<iconv.h>)
  const iconv_t converter = iconv_open("UTF-8", "EUC-JP");
  if (converter == reinterpret_cast<iconv_t>(-1)) return false;
  iconv_close(converter);
#endif
  return true;
}

#define SKIP_WITHOUT_ENCODINGS() \
  if (!KnowsEncodings()) GTEST_SKIP() << "the system's converter has no modules for other encodings"

inline bool Load(DOMDocument& document, std::string_view bytes) {
  const TempFile file(bytes);
  return document.load(file.Path());
}

// Texts, one for each argument.
template <class... Text>
std::vector<std::string> Texts(const Text&... texts) {
  return {texts...};
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
