#include <string>

#include "Html.h"
#include "Layout.h"
#include "Words.h"
#include "torva35/sheet/Page.h"

namespace TORVA35::sheet {
namespace {

// Holds no "<" and no "&", so that XML can hold it as it is. --u is a tenth of a millimeter: on paper that long,
// on a wide screen as long as makes letters readable; on a narrow one the blocks leave their places and stand one
// below the other. Places are translations, since those are not rounded to whole pixels.
constexpr char kStyle[] = R"(
:root { --ink: #1c2430; --form: #a83a62; --soft: #f8f0f3; --u: .48px; color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0; padding: 1.5rem 0; background: #e9ecf0; color: var(--ink);
       font: 16px/1.3 system-ui, "Segoe UI", "DejaVu Sans", Arial, sans-serif; }
.sheet { position: relative; width: calc(1850 * var(--u)); height: calc(2530 * var(--u));
         margin: 0 auto 1.5rem; background: #fff; outline: calc(60 * var(--u)) solid #fff; }
.sheet + .sheet { margin-top: 5rem; }
.at { position: absolute; left: 0; top: 0; margin: 0;
      transform: translate(calc(var(--x) * var(--u)), calc(var(--y) * var(--u)));
      width: calc(var(--w) * var(--u)); height: calc(var(--h) * var(--u)); }
.block .at { z-index: 1; }
svg { display: block; width: calc(var(--w) * var(--u)); height: calc(var(--h) * var(--u)); font-family: inherit; }
h1 { font-size: calc(46 * var(--u)); line-height: 1.15; overflow: hidden; overflow-wrap: anywhere;
     display: -webkit-box; -webkit-box-orient: vertical; -webkit-line-clamp: 2; max-height: 2.3em; }
h1.at { height: auto; }
.page { text-align: end; font-size: calc(34 * var(--u)); font-weight: 600; overflow: hidden; }
.page span { display: block; white-space: nowrap; overflow: hidden; text-overflow: ellipsis; }
.blanks { display: flex; gap: calc(30 * var(--u)); font-size: calc(32 * var(--u)); align-items: end; }
.blanks span { flex: 2; border-bottom: 1px solid var(--ink); }
.blanks span:first-child { flex: 5; }
.how { font-size: calc(28 * var(--u)); white-space: nowrap; overflow: hidden; }
.label { display: flex; align-items: center; font-size: calc(29 * var(--u)); line-height: 1.15; overflow: hidden;
         overflow-wrap: anywhere; }
.ask.at { font-size: calc(29 * var(--u)); line-height: 1.2; height: auto; max-height: 2.4em; overflow: hidden;
          display: -webkit-box; -webkit-box-orient: vertical; -webkit-line-clamp: 2; }
.frame { fill: none; stroke: var(--form); stroke-width: 3; }
.stripe { fill: var(--soft); }
.ring { fill: #fff; stroke: var(--form); stroke-width: 2.8; }
.filled .ring { fill: #000; stroke: #000; }
.write { fill: #fff; stroke: var(--form); stroke-width: 3; }
text { fill: var(--ink); font-size: 30px; }
.title { font-weight: 600; fill: var(--form); }
.number { font-size: 32px; font-weight: 600; text-anchor: end; }
.l { font-size: 27px; text-anchor: middle; fill: var(--form); }
.l2 { font-size: 22px; }
.filled .l { fill: #fff; }
@media screen and (max-width: 59rem) {
  :root { --u: .6px; }
  body { padding: 0; background: #fff; }
  .sheet, .sheet + .sheet { display: flex; flex-wrap: wrap; align-items: flex-start; gap: .9rem; width: auto; height: auto;
           margin: 0; padding: 1rem .75rem; outline: none; border-bottom: 6px solid #e9ecf0; }
  .sheet > .at { position: relative; transform: none; width: 100%; height: auto; }
  .sheet > .mark { display: none; }
  .sheet > .block { width: auto; max-width: 100%; overflow-x: auto; }
  h1 { font-size: 1.4rem; -webkit-line-clamp: none; max-height: none; }
  .page, .blanks, .how { font-size: 1rem; }
  .page { text-align: start; }
  .how { white-space: normal; }
}
@page { margin: 12mm; }
@media print {
  :root { --u: .1mm; }
  body { padding: 0; background: none; }
  .sheet, .sheet + .sheet { margin: 0; outline: none; break-inside: avoid; }
  .sheet + .sheet { break-before: page; }
  .sheet * { -webkit-print-color-adjust: exact; print-color-adjust: exact; }
}
)";

// name="12"
std::string Attribute(const char* name, int value) {
  return std::string(" ") + name + "=\"" + std::to_string(value) + '"';
}

std::string Place(const Box& box) {
  return " style=\"--x:" + std::to_string(box.x) + ";--y:" + std::to_string(box.y) +
         ";--w:" + std::to_string(box.width) + ";--h:" + std::to_string(box.height) + '"';
}

std::string TextAt(int x, int y, const char* cssClass, std::string_view text) {
  return std::string("<text class=\"") + cssClass + '"' + Attribute("x", x) + Attribute("y", y) + '>' +
         Escaped(text) + "</text>";
}

std::string Rectangle(const Box& box, const char* cssClass, int radius = 0) {
  return std::string("<rect class=\"") + cssClass + '"' + Attribute("x", box.x) + Attribute("y", box.y) +
         Attribute("width", box.width) + Attribute("height", box.height) +
         (radius ? Attribute("rx", radius) : "") + "/>";
}

std::string Begin(const Box& box, const std::string& attributes) {
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" + std::to_string(box.x) + ' ' +
         std::to_string(box.y) + ' ' + std::to_string(box.width) + ' ' + std::to_string(box.height) + '"' +
         attributes + '>';
}

// A black square, a white ring in it, and a black one around that.
std::string CornerMark(int x, int y) {
  const Box box{x, y, kMark, kMark};
  const auto square = [](int side) {
    return "h" + std::to_string(side) + "v" + std::to_string(side) + "h-" + std::to_string(side) + "z";
  };
  const int hole = kMark - 2 * kMarkModule;
  return Begin(box, " class=\"mark at\"" + Place(box) + " aria-hidden=\"true\"") +
         "<path fill-rule=\"evenodd\" d=\"M" + std::to_string(x) + ' ' + std::to_string(y) + square(kMark) + 'm' +
         std::to_string(kMarkModule) + ' ' + std::to_string(kMarkModule) + square(hole) + 'm' +
         std::to_string(kMarkModule) + ' ' + std::to_string(kMarkModule) + square(hole - 2 * kMarkModule) +
         "\"/></svg>\n";
}

class StudentPages {
 public:
  StudentPages(const Result& result, const PageOptions& options)
      : result_(result), words_(WordsOf(options.language)), pages_(LayOut(result, options)) {
    if (const int printed = PrintedVersion(result, options); printed >= 0) {
      version_ = result.versions[static_cast<std::size_t>(printed)].name;
    }
  }

  std::string Html() const {
    const std::string title = result_.title.empty() ? words_.untitled : result_.title;
    std::string body;
    for (std::size_t i = 0; i < pages_.size(); ++i) {
      const std::string page = Filled(words_.pageOf, std::to_string(i + 1), std::to_string(pages_.size()));
      body += "<section class=\"sheet\" aria-label=\"" + Escaped(page) + "\">\n";
      for (const int y : {0, kSheetHeight - kMark}) {
        for (const int x : {0, kSheetWidth - kMark}) body += CornerMark(x, y);
      }
      body += "<h1 class=\"at\" dir=\"auto\"" + Place(kTitleBox) + ">" + Escaped(title) +
              "</h1>\n<p class=\"page at\"" + Place(kPageBox) + "><span>" + Escaped(page) + "</span>";
      if (!version_.empty()) {
        body += "<span>" + Escaped(words_.version) + " <bdi>" + Escaped(version_) + "</bdi></span>";
      }
      body += "</p>\n<p class=\"blanks at\"" + Place(kBlanksBox) + "><span>" + Escaped(words_.name) +
              "</span><span>" + Escaped(words_.classOf) + "</span><span>" + Escaped(words_.date) +
              "</span></p>\n<p class=\"how at\"" + Place(kHowBox) + ">" + Escaped(words_.how) + "</p>\n";
      for (const Block& block : pages_[i].blocks) body += Drawn(block);
      body += "</section>\n";
    }
    return Document(words_.language, title, kStyle, body);
  }

 private:
  std::string TitleOf(const Block& block) const {
    switch (block.kind) {
      case BlockKind::kVersion:
        return words_.version;
      case BlockKind::kPage:
        return words_.page;
      case BlockKind::kStudent:
        return words_.student;
      case BlockKind::kName:
        return words_.nameGrid;
      case BlockKind::kNumbers:
        return std::string(words_.onPaper) + " → " + words_.onSheet;
      case BlockKind::kQuestions:
        return Filled(words_.questionsTo, block.items.front().caption, block.items.back().caption);
      case BlockKind::kHandGraded:
        return words_.handGraded;
    }
    return {};
  }

  std::string Drawn(const Block& block) const {
    const Box& box = block.box;
    const std::string title = TitleOf(block);
    std::string svg = Begin(box, " role=\"img\" aria-label=\"" + Escaped(title) + '"') + '\n' +
                      Rectangle({box.x + 2, box.y + 2, box.width - 4, box.height - 4}, "frame", 14);
    if (block.title > 0) svg += TextAt(box.x + 14, box.y + 36, "title", title);
    std::string texts;
    for (std::size_t i = 0; i < block.items.size(); ++i) {
      const Item& item = block.items[i];
      svg += '\n';
      if (i % 2 == 1) {
        svg += Rectangle({item.box.x + 4, item.box.y, item.box.width - 8, item.box.height}, "stripe");
      }
      switch (block.kind) {
        case BlockKind::kNumbers: {
          const int middle = item.box.x + (item.labelWidth + item.box.width) / 2;
          svg += TextAt(middle - 24, item.box.y + 36, "number", item.caption) +
                 TextAt(middle - 12, item.box.y + 36, "to", "→") +
                 TextAt(middle + 34, item.box.y + 36, "new", item.text);
          break;
        }
        case BlockKind::kHandGraded:
          svg += PointsBox(item);
          texts += Overlay({item.box.x + 14, item.box.y + 48, item.box.width - 420, item.box.height - 54}, box,
                           "ask", item.text);
          break;
        default:
          svg += Bubbles(block, item, texts);
      }
    }
    return "<div class=\"block at\"" + Place(box) + ">" + svg + "</svg>" + texts + "</div>\n";
  }

  // A text that may wrap, over a drawing. It begins at its left, where its bubble stands, also if it runs from
  // right to left.
  static std::string Overlay(Box at, const Box& block, const char* cssClass, const std::string& text) {
    at.x -= block.x;
    at.y -= block.y;
    return std::string("<span class=\"") + cssClass + " at\" dir=\"ltr\"" + Place(at) + "><bdi>" + Escaped(text) +
           "</bdi></span>";
  }

  // The box for the points that the teacher gives.
  std::string PointsBox(const Item& item) const {
    const int right = item.box.x + item.box.width;
    return TextAt(item.box.x + 14, item.box.y + 36, "name", item.caption) +
           Rectangle({right - 385, item.box.y + 20, 130, item.box.height - 40}, "write", 6) +
           TextAt(right - 240, item.box.y + item.box.height / 2 + 10, "hint",
                  Counted(words_, words_.ofPoints, item.points));
  }

  std::string Bubbles(const Block& block, const Item& item, std::string& texts) const {
    std::string svg;
    if (!item.caption.empty()) {
      // A question without answers has no bubbles.
      const int middle = item.strips.empty() ? item.box.y + item.box.height / 2 : item.strips[0].bubbles[0].y;
      svg += TextAt(item.box.x + block.number - 10, middle + 12, "number", item.caption);
    }
    for (const Strip& strip : item.strips) {
      if (strip.upright) {
        const Bubble& first = strip.bubbles[0];
        svg += Rectangle({first.x - 24, first.y - strip.pitch / 2 - 56, 48, 50}, "write", 4);
      }
      for (const Bubble& bubble : strip.bubbles) {
        if (bubble.filled) svg += "<g class=\"filled\">";
        svg += "<circle class=\"ring\"" + Attribute("cx", bubble.x) + Attribute("cy", bubble.y) +
               Attribute("r", kBubble / 2) + "/>";
        if (item.labelWidth == 0) {
          const bool narrow = CharacterCount(bubble.label) > 1;
          svg += TextAt(bubble.x, bubble.y + (narrow ? 8 : 10), narrow ? "l l2" : "l", bubble.label);
        } else {
          const int height = item.box.height / static_cast<int>(item.strips.size());
          texts += Overlay({bubble.x + kBubble / 2 + 6, bubble.y - height / 2, item.labelWidth, height}, block.box,
                           "label", bubble.label);
        }
        if (bubble.filled) svg += "</g>";
      }
    }
    return svg;
  }

  const Result& result_;
  const Words& words_;
  std::vector<SheetPage> pages_;
  std::string version_;
};

}  // namespace

std::string StudentPage(const Result& result, const PageOptions& options) {
  return StudentPages(result, options).Html();
}

}  // namespace TORVA35::sheet
