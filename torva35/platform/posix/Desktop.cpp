#include "torva35/platform/Desktop.h"

#include <cstdio>
#include <string>

#include "torva35/base/Text.h"

namespace TORVA35 {

void ShowSystemMessageBox(const String& sText, const String& sTitle, Long) {
  const std::string line = ToUtf8(sTitle) + "\n" + ToUtf8(sText) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void SetSystemMousePointer() {}

}  // namespace TORVA35
