#include "Html.h"

#include <algorithm>

#include <torva35/TORVA35.h>

namespace TORVA35::sheet {

std::string Escaped(std::string_view text) {
  const bool plain = std::all_of(text.begin(), text.end(), [](char unit) {
    return unit >= ' ' && unit != '&' && unit != '<' && unit != '>' && unit != '"' && unit != '\x7F';
  });
  if (plain) return std::string(text);
  String escaped;
  for (const char16_t unit : FromUtf8(text)) {
    if (unit == u'&') {
      escaped += u"&amp;";
    } else if (unit == u'<') {
      escaped += u"&lt;";
    } else if (unit == u'>') {
      escaped += u"&gt;";
    } else if (unit == u'"') {
      escaped += u"&quot;";
    } else if (unit == u'\t' || unit == u'\n' || unit == u'\r') {
      escaped += u' ';
    } else {
      escaped += unit < 0x20 || unit >= 0xFFFE ? u'\uFFFD' : unit;
    }
  }
  return ToUtf8(escaped);
}

std::string Document(std::string_view language, std::string_view title, std::string_view style,
                     std::string_view body) {
  std::string html = "<!DOCTYPE html>\n<html lang=\"";
  html.append(language).append("\" xml:lang=\"").append(language);
  html +=
      "\" xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n<meta charset=\"utf-8\"/>\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n<title>";
  html.append(Escaped(title)).append("</title>\n<style>").append(style).append("</style>\n</head>\n<body>\n");
  return html.append(body).append("</body>\n</html>\n");
}

}  // namespace TORVA35::sheet
