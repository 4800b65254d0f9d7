#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <new>
#include <set>
#include <string>
#include <tuple>

#include <nlohmann/json.hpp>

#include "Layout.h"
#include "torva35/sheet/Export.h"

namespace TORVA35::sheet {
namespace {

using Json = nlohmann::ordered_json;

// A reader brings each picture to this size first: a page of A4 at 150 dots per inch.
constexpr int kPictureWidth = 1240;
constexpr int kPictureHeight = 1754;
// The picture of the corner mark, at that size: modules of six pixels, with a white rim of one module.
constexpr int kModulePixels = 6;

const Bytef* Bytes(const std::string& text) {
  return reinterpret_cast<const Bytef*>(text.data());
}

std::string BigEndian(std::uint32_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFF);
  return bytes;
}

std::string Chunk(const std::string& type, const std::string& content) {
  const std::string both = type + content;
  return BigEndian(static_cast<std::uint32_t>(content.size())) + both +
         BigEndian(static_cast<std::uint32_t>(crc32_z(0, Bytes(both), both.size())));
}

// A picture of grey values.
std::string Png(int width, int height, const std::string& pixels) {
  std::string lines;
  for (int y = 0; y < height; ++y) {
    lines += '\0';
    lines += pixels.substr(static_cast<std::size_t>(y) * static_cast<std::size_t>(width),
                           static_cast<std::size_t>(width));
  }
  const auto length = static_cast<uLong>(lines.size());  // a picture as small as ours has no more
  uLongf size = compressBound(length);
  std::string data(size, '\0');
  if (compress(reinterpret_cast<Bytef*>(data.data()), &size, Bytes(lines), length) != Z_OK) throw std::bad_alloc();
  data.resize(size);
  const std::string header = BigEndian(static_cast<std::uint32_t>(width)) +
                             BigEndian(static_cast<std::uint32_t>(height)) + std::string("\x08\0\0\0\0", 5);
  return "\x89PNG\r\n\x1a\n" + Chunk("IHDR", header) + Chunk("IDAT", data) + Chunk("IEND", "");
}

std::string MarkPicture() {
  constexpr int kModules = kMark / kMarkModule;
  constexpr int kSide = (kModules + 2) * kModulePixels;
  std::string pixels;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      // Modules from the outer edge of the mark: -1 the rim, 0 the black ring, 1 the white one.
      const int ring = std::min({x, y, kSide - 1 - x, kSide - 1 - y}) / kModulePixels - 1;
      pixels += ring == -1 || ring == 1 ? '\xFF' : '\0';
    }
  }
  return Png(kSide, kSide, pixels);
}

std::string Config() {
  return Json{{"dimensions",
               {{"processing_width", kPictureWidth},
                {"processing_height", kPictureHeight},
                {"display_width", kPictureWidth},
                {"display_height", kPictureHeight}}},
              // A mark is at least so much darker than the bubbles beside it. On a page without marks what is
              // lighter than middle grey is none ("black"), however grey the paper is.
              {"threshold_params",
               {{"MIN_JUMP", 50}, {"MIN_GAP", 100}, {"JUMP_DELTA", 40}, {"PAGE_TYPE_FOR_THRESHOLD", "black"}}},
              {"outputs", {{"show_image_level", 0}, {"filter_out_multimarked_files", false}}}}
             .dump(2, ' ', false, Json::error_handler_t::replace) +
         '\n';
}

// The names under which a reader knows the strips of an item.
std::vector<std::string> FieldsOf(const Item& item) {
  if (item.strips.size() == 1) return {item.field};
  std::vector<std::string> fields;
  for (std::size_t i = 1; i <= item.strips.size(); ++i) fields.push_back(item.field + "_" + std::to_string(i));
  return fields;
}

// The bubbles of a page. Positions count from the middle of the upper left corner mark, in tenths of a millimeter.
class TemplateWriter {
 public:
  explicit TemplateWriter(const SheetPage& page) {
    for (const Block& block : page.blocks) {
      for (const Item& item : block.items) {
        if (!item.strips.empty()) Add(block, item);
      }
    }
    Flush();
  }

  bool Empty() const { return blocks_.empty(); }

  std::string Text() const {
    const Json marks = {{"relativePath", "corner-mark.png"},
                        {"min_matching_threshold", 0.4},
                        {"max_matching_variation", 0.4},
                        {"marker_rescale_range", {76, 124}},
                        {"marker_rescale_steps", 16}};
    Json document = {{"pageDimensions", {kSheetWidth - kMark, kSheetHeight - kMark}},
                     {"bubbleDimensions", {kBubbleInside, kBubbleInside}},
                     {"emptyValue", ""},
                     {"preProcessors", Json::array({{{"name", "CropOnMarkers"}, {"options", marks}}})},
                     {"customLabels", joined_},
                     {"outputColumns", columns_},
                     {"fieldBlocks", blocks_}};
    return document.dump(1, ' ', false, Json::error_handler_t::replace) + '\n';
  }

 private:
  // Strips of the same bubbles that stand equally far apart make one block.
  struct Run {
    std::vector<std::string> fields;
    std::vector<std::string> values;
    std::string empty;
    bool upright = false;
    int pitch = 0, gap = 0, x = 0, y = 0;
  };

  void Add(const Block& block, const Item& item) {
    const std::vector<std::string> fields = FieldsOf(item);
    columns_.push_back(item.field);
    if (fields.size() > 1) joined_[item.field] = fields;
    for (std::size_t i = 0; i < fields.size(); ++i) AddStrip(block, fields[i], item.strips[i]);
  }

  void AddStrip(const Block& block, const std::string& field, const Strip& strip) {
    Run next;
    next.fields = {field};
    for (const Bubble& bubble : strip.bubbles) next.values.push_back(bubble.value);
    next.empty = block.kind == BlockKind::kStudent ? "_" : block.kind == BlockKind::kName ? " " : "";
    next.upright = strip.upright;
    next.pitch = strip.pitch;
    next.x = strip.bubbles[0].x;
    next.y = strip.bubbles[0].y;
    if (!run_.fields.empty() && run_.values == next.values && run_.empty == next.empty &&
        run_.upright == next.upright && run_.pitch == next.pitch) {
      const auto count = static_cast<int>(run_.fields.size());
      const int along = next.upright ? next.x - run_.x : next.y - run_.y;
      const int across = next.upright ? next.y - run_.y : next.x - run_.x;
      if (across == 0 && along > 0 && (count == 1 || along == run_.gap * count)) {
        if (count == 1) run_.gap = along;
        run_.fields.push_back(field);
        return;
      }
    }
    Flush();
    run_ = std::move(next);
  }

  void Flush() {
    if (run_.fields.empty()) return;
    const std::string name =
        run_.fields.size() == 1 ? run_.fields[0] : run_.fields.front() + "-" + run_.fields.back();
    const int corner = kMark / 2 + kBubbleInside / 2;
    blocks_[name] = {{"origin", {run_.x - corner, run_.y - corner}},
                     {"fieldLabels", run_.fields},
                     {"bubbleValues", run_.values},
                     {"direction", run_.upright ? "vertical" : "horizontal"},
                     {"bubblesGap", run_.pitch},
                     {"labelsGap", run_.gap}};
    if (!run_.empty.empty()) blocks_[name]["emptyValue"] = run_.empty;
    run_ = {};
  }

  Json blocks_ = Json::object();
  Json joined_ = Json::object();
  std::vector<std::string> columns_;
  Run run_;
};

// The key and points of the rows of a page. A row without a key has no place in it, and so gives no points.
std::string Evaluation(const SheetPage& page, const Version& version) {
  Json questions = Json::array();
  Json answers = Json::array();
  std::map<std::tuple<double, double, double>, Json> groups;
  for (const Block& block : page.blocks) {
    for (const Item& item : block.items) {
      if (item.row < 0 || item.strips.empty() || static_cast<std::size_t>(item.row) >= version.answers.size())
        continue;
      const Answer& answer = version.answers[static_cast<std::size_t>(item.row)];
      std::vector<std::string> values;
      for (const Strip& strip : item.strips) {
        for (const Bubble& bubble : strip.bubbles) values.push_back(bubble.value);
      }
      std::vector<std::string> right;
      for (const int mark : answer.marks) {
        if (mark >= 1 && static_cast<std::size_t>(mark) <= values.size()) {
          right.push_back(values[static_cast<std::size_t>(mark - 1)]);
        }
      }
      if (right.empty() || right.size() != answer.marks.size()) continue;
      questions.push_back(item.field);
      if (right.size() > 1 && !answer.all) {
        answers.push_back(right);
      } else {
        std::string together;
        for (const std::string& value : right) together += value;
        answers.push_back(together);
      }
      groups[{answer.points, answer.incorrectPoints, answer.noResponsePoints}].push_back(item.field);
    }
  }
  const auto marking = [](const std::tuple<double, double, double>& points) {
    return Json{
        {"correct", std::get<0>(points)}, {"incorrect", std::get<1>(points)}, {"unmarked", std::get<2>(points)}};
  };
  // The most common points are those of all rows that are in no group of their own.
  const auto common = std::max_element(groups.begin(), groups.end(), [](const auto& left, const auto& right) {
    return left.second.size() < right.second.size();
  });
  Json schemes = {{"DEFAULT", marking(common == groups.end() ? std::tuple(1.0, 0.0, 0.0) : common->first)}};
  for (auto group = groups.begin(); group != groups.end(); ++group) {
    if (group == common) continue;
    // A reader warns of points for wrong answers, unless the name says that they are meant.
    const std::string name =
        (std::get<1>(group->first) > 0 ? "BONUS_" : "POINTS_") + std::to_string(schemes.size());
    schemes[name] = {{"questions", group->second}, {"marking", marking(group->first)}};
  }
  return Json{{"source_type", "custom"},
              {"options", {{"questions_in_order", questions}, {"answers_in_order", answers}}},
              {"marking_schemes", schemes}}
             .dump(1, ' ', false, Json::error_handler_t::replace) +
         '\n';
}

// A name for a folder on every system: letters, digits, "-" and "_".
std::string FolderName(const std::string& name) {
  std::string folder;
  for (const char unit : name.substr(0, 40)) {
    const bool safe = (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'Z') ||
                      (unit >= 'a' && unit <= 'z') || unit == '-' || unit == '_';
    folder += safe ? unit : '_';
  }
  return folder;
}

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char unit) {
    return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit - 'A' + 'a') : unit;
  });
  return text;
}

// The folders of the versions: names of devices and names that differ in case only are no two folders everywhere.
std::vector<std::string> FolderNames(const Result& result) {
  if (result.versions.size() == 1 && result.versions[0].name.empty()) return {"all"};
  std::set<std::string> taken = {"con", "prn", "aux", "nul"};
  for (char digit = '0'; digit <= '9'; ++digit) {
    taken.insert(std::string("com") + digit);
    taken.insert(std::string("lpt") + digit);
  }
  std::vector<std::string> folders;
  for (std::size_t i = 0; i < result.versions.size(); ++i) {
    std::string folder = FolderName(result.versions[i].name);
    if (folder.find_first_not_of("_-") == std::string::npos) folder = "version-" + std::to_string(i + 1);
    const std::string base = folder;
    for (int n = 2; !taken.insert(LowerCase(folder)).second; ++n) folder = base + "-" + std::to_string(n);
    folders.push_back(folder);
  }
  return folders;
}

}  // namespace

std::vector<OutputFile> ReaderFiles(const Result& result, const PageOptions& options) {
  std::vector<OutputFile> files;
  const std::vector<SheetPage> pages = LayOut(result, options);
  const std::vector<std::string> folders = FolderNames(result);
  const std::string mark = MarkPicture();
  const std::string config = Config();
  for (std::size_t p = 0; p < pages.size(); ++p) {
    const TemplateWriter writer(pages[p]);
    if (writer.Empty()) continue;  // boxes for points only: there is nothing to read
    const std::string text = writer.Text();
    for (std::size_t v = 0; v < result.versions.size(); ++v) {
      std::string folder = folders[v] + "/";
      if (pages.size() > 1) folder += "page-" + std::to_string(p + 1) + "/";
      files.push_back({folder + "template.json", text});
      files.push_back({folder + "evaluation.json", Evaluation(pages[p], result.versions[v])});
      files.push_back({folder + "config.json", config});
      files.push_back({folder + "corner-mark.png", mark});
    }
  }
  return files;
}

}  // namespace TORVA35::sheet
