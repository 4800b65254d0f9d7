// A host of the installed library that makes sheets: sheet_consumer EXAMVIEW_FILE... prints the key of each
// version.

#include <iostream>

#include <torva35/sheet/Export.h>

using namespace TORVA35;

int main(int argc, char** argv) {
  std::vector<sheet::Input> files;
  for (int i = 1; i < argc; ++i) files.push_back({argv[i], {}});
  const sheet::Result result = sheet::MakeSheet(files);
  for (const sheet::Version& version : result.versions) {
    std::cout << version.name << ':';
    for (std::size_t i = 0; i < result.rows.size(); ++i) {
      std::cout << ' ' << sheet::KeyText(result.rows[i], version.answers[i]);
    }
    std::cout << '\n';
  }
  const bool written =
      sheet::Json(result).size() > 2 && !sheet::StudentPage(result).empty() && !sheet::ReaderFiles(result).empty();
  return result.status == sheet::Status::kDone && written ? 0 : 1;
}
