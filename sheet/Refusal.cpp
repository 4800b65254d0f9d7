#include "Refusal.h"

#include <torva35/TORVA35.h>

namespace TORVA35::sheet {

std::string WhyRefused(const std::string& path) {
  DOMDocument document;
  if (!document.load(FromUtf8(path))) {
    const XmlParseError& error = document.parseError();
    if (error.line == 0) return ToUtf8(error.reason);
    return "not well-formed XML: " + ToUtf8(error.reason) + " at line " + std::to_string(error.line) +
           ", column " + std::to_string(error.column);
  }
  const String root = document.Root().get_nodeName();
  if (root == u"examview") return "an ExamView export without a question that could be read";
  if (root != u"lmf") return "not an ExamView export: its root element is <" + ToUtf8(root) + ">, not <examview>";
  return clsLmf().Open(FromUtf8(path)) ? "an LMF file without a scored question that could be read"
                                       : "an LMF file that is damaged or of an unknown version";
}

}  // namespace TORVA35::sheet
