// Files that are no regular ones.

#include "torva35/xml/DOMDocument.h"

#include <sys/stat.h>
#include <unistd.h>

#include "tests/xml/Shape.h"

namespace TORVA35 {
namespace {

TEST(DOMDocument, OnlyARegularFileIsRead) {
  const Folder folder;
  const std::string pipe = folder.File("pipe"), large = folder.File("large");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);  // which would keep its reader for ever
  Write(large, "");
  ASSERT_EQ(truncate(large.c_str(), 20LL << 30), 0);
  DOMDocument document;
  for (const auto& [path, reason] : {std::pair(pipe, u"not a file that can be read"),
                                     {"/dev/null", u"not a file that can be read"},
                                     {large, u"file too large"}}) {
    EXPECT_FALSE(document.load(FromUtf8(path)));
    EXPECT_EQ(document.parseError().reason, reason) << path;
  }
}

}  // namespace
}  // namespace TORVA35
