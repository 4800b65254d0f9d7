#include "Survey.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace TORVA35::sheet {
namespace {

using Loss = Survey::Loss;

struct Place {
  long line = 0;
  long column = 0;
};

Place PlaceOf(const IXMLDOMNode& node) {
  return {static_cast<long>(node.Line()), static_cast<long>(node.Column())};
}

std::string NameOf(const IXMLDOMNode& node) {
  return ToUtf8(Lower(node.get_baseName()));
}

bool OneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

String AttributeOf(const IXMLDOMNode& element, StringView name) {
  const IXMLDOMNode attribute = element.get_attributes().getNamedItem(name);
  return attribute ? attribute.Text() : String();
}

// With one blank for each run of white space.
String InOneLine(StringView text) {
  String line;
  for (const char16_t unit : text) {
    const bool blank = unit <= u' ';
    if (!blank || (!line.empty() && line.back() != u' ')) line += blank ? u' ' : unit;
  }
  return String(Trim(line));
}

bool HasChoiceName(std::string_view name) {
  return name.size() == 8 && name.starts_with("choice-") && name[7] >= 'a' && name[7] <= 'h';
}

// Walks the rich text of a question and notes what the library's plain text of it lacks or spoils.
class RichText {
 public:
  explicit RichText(std::vector<Loss>& losses) : losses_(losses) {}

  // where: "the text", "choice C".
  void Walk(const IXMLDOMNode& node, const std::string& where) {
    const std::string name = NameOf(node);
    if (name == "equation") {
      return Add("equation", node, where,
                 node.FirstChild() ? "an equation is not read" : "an equation is read as the word \"equation\"");
    }
    if (name == "sup" && node.FirstChild()) {
      Add("superscript", node, where, "a superscript is read as plain text");
    } else if (name == "sub") {
      return Add("subscript", node, where, "a subscript is not read");
    } else if (name == "variable") {
      if (!node.FirstChild()) return Add("variable", node, where, "a variable is not read");
    } else if (!OneOf(name, {"text", "para", "b", "i", "u", "font", "sup"}) && !HasChoiceName(name)) {
      return AddUnknown(name, node, where);
    }
    // These have a blank after each of their children; the others join them.
    const bool joins = !OneOf(name, {"text", "para", "b", "i", "u"});
    std::string_view before;  // characters with nothing but breaks after them
    bool isBroken = false;
    for (IXMLDOMNode child = node.FirstChild(); child; child = child.NextSibling()) {
      const std::string childName = NameOf(child);
      if (childName.empty()) {
        if (joins && isBroken && Meet(before, child.Utf8())) AddJoined(node, where);
        before = child.Utf8();
        WalkCharacters(before, node, where);
      } else {
        if (!IsBreak(childName)) before = {};
        Walk(child, where);
      }
      isBroken = IsBreak(childName);
    }
  }

 private:
  static bool IsBreak(std::string_view name) { return OneOf(name, {"tab", "br"}); }

  // Whether words would, one after the other.
  static bool Meet(std::string_view before, std::string_view after) {
    return !before.empty() && !after.empty() && static_cast<unsigned char>(before.back()) > ' ' &&
           static_cast<unsigned char>(after.front()) > ' ';
  }

  // A line feed goes, and nothing takes its place: words on both sides of it are joined.
  void WalkCharacters(std::string_view text, const IXMLDOMNode& element, const std::string& where) {
    for (std::size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1)) {
      if (Meet(text.substr(0, at), text.substr(at + 1))) return AddJoined(element, where);
    }
  }

  void AddJoined(const IXMLDOMNode& element, const std::string& where) {
    Add("line-break", element, where, "words at a line break are joined", Severity::kNote);
  }

  void AddUnknown(const std::string& name, const IXMLDOMNode& node, const std::string& where) {
    if (name.find("pict") != name.npos || name.find("image") != name.npos || name.find("img") != name.npos ||
        name == "graphic" || name == "object") {
      return Add("picture", node, where, "a picture is not read");
    }
    if (name.find("table") != name.npos) return Add("table", node, where, "a table is not read");
    if (IsBreak(name)) return;
    Add("not-read", node, where, "an element <" + name + "> is not read");
  }

  // One for each kind of loss, with all the places where a reader would look.
  void Add(const char* kind, const IXMLDOMNode& node, const std::string& where, const std::string& what,
           Severity severity = Severity::kWarning) {
    const auto [seen, fresh] = seen_.emplace(what, Seen{losses_.size(), where});
    if (fresh) {
      const Place place = PlaceOf(node);
      losses_.push_back({severity, kind, place.line, place.column, what + " (" + where + ")"});
    } else if (seen->second.where != where) {
      seen->second.where = where;
      std::string& text = losses_[seen->second.loss].text;
      text.insert(text.size() - 1, ", " + where);
    }
  }

  std::vector<Loss>& losses_;
  struct Seen {
    std::size_t loss;
    std::string where;  // the last one
  };
  std::map<std::string, Seen> seen_;
};

class ElementSurvey {
 public:
  ElementSurvey(Survey& survey, const IXMLDOMNode& node) : survey_(survey), node_(node) {
    const Place place = PlaceOf(node);
    element_.line = place.line;
    element_.column = place.column;
    // In steps, since each is cut.
    const String id = Cut(AttributeOf(node, u"question-id"), kIdUnits);
    element_.id = ToUtf8(Cut(id + AttributeOf(node, u"bank-id"), kIdUnits));
    element_.type = ToUtf8(AttributeOf(node, u"type"));
  }

  Survey::Element Take() {
    for (IXMLDOMNode child = node_.FirstChild(); child; child = child.NextSibling()) {
      const std::string name = ToUtf8(Lower(child.get_nodeName()));
      if (name == "text") {
        element_.text = ToUtf8(InOneLine(child.Text()));
        rich_.Walk(child, "the text");
      } else if (name == "choices") {
        WalkChoices(child);
      } else if (name == "info") {
        for (IXMLDOMNode property = child.FirstChild(); property; property = property.NextSibling()) {
          WalkProperty(property);
        }
      } else if (name == "answer") {
        element_.keys.push_back(ValueOf(child));
      } else if (name != "bi-display-mode") {
        AddNotRead(name, child);
      }
    }
    return std::move(element_);
  }

 private:
  static constexpr std::size_t kIdUnits = 50;
  static constexpr std::size_t kAnswerUnits = 50;

  void WalkChoices(const IXMLDOMNode& choices) {
    for (IXMLDOMNode choice = choices.FirstChild(); choice; choice = choice.NextSibling()) {
      // The letters of a key go by the places of the choices.
      const std::string due = std::string("choice-") + static_cast<char>('a' + choices_);
      if (element_.misplaced.text.empty() && NameOf(choice) != due) {
        element_.misplaced = ValueOf(choice);
        element_.misplaced.text = due;
      }
      ++choices_;
      const std::string where = "choice " + std::to_string(choices_);
      if (!NameOf(choice).empty()) rich_.Walk(choice, where);
      if (InOneLine(choice.Text()).size() > kAnswerUnits) {
        Add(Severity::kNote, "cut", choice, "the text of " + where + " is cut to 50 characters");
      }
    }
  }

  void WalkProperty(const IXMLDOMNode& property) {
    const std::string name = ToUtf8(Lower(property.get_nodeName()));
    if (name == "points") return WalkPoints(property);
    if (OneOf(name, {"text-objective", "local-standard", "state-objective", "national-standard"})) {
      survey_.objectives = true;
    } else if (!OneOf(name, {"difficulty", "keywords", "miscellaneous", "notes", "reference", "topic",
                             "answer-space", "#text"})) {
      AddNotRead(name, property);
    }
  }

  void WalkPoints(const IXMLDOMNode& points) {
    const String method = AttributeOf(points, u"scoring-method");
    if (!method.empty()) {
      Add(Severity::kWarning, "partial-credit", points,
          "the scoring method \"" + ToUtf8(method) +
              "\" is not kept: the points are for all right answers together");
    }
    element_.points = ValueOf(points);
  }

  static Survey::Value ValueOf(const IXMLDOMNode& node) {
    const Place place = PlaceOf(node);
    return {ToUtf8(InOneLine(node.Text())), place.line, place.column};
  }

  void AddNotRead(const std::string& name, const IXMLDOMNode& child) {
    if (name.starts_with('#') && Trim(child.Text()).empty()) return;
    const bool known = name == "rationale" || name == "narrative";
    Add(Severity::kNote, known ? name == "rationale" ? "rationale" : "narrative" : "not-read", child,
        name.starts_with('#') ? std::string("characters beside the elements are not read")
                              : (known ? "the " + name : "an element <" + name + ">") + " is not read");
  }

  void Add(Severity severity, const char* kind, const IXMLDOMNode& node, std::string text) {
    const Place place = PlaceOf(node);
    element_.losses.push_back({severity, kind, place.line, place.column, std::move(text)});
  }

  Survey& survey_;
  const IXMLDOMNode& node_;
  Survey::Element element_;
  RichText rich_{element_.losses};
  int choices_ = 0;
};

// What stands beside the questions.
void SurveyTop(const IXMLDOMNode& root, Survey& survey) {
  for (IXMLDOMNode child = root.FirstChild(); child; child = child.NextSibling()) {
    const std::string name = NameOf(child);
    if (OneOf(name, {"", "header", "font-table", "preferences", "test-header", "test-footer", "instruction",
                     "mc-choice-sequence", "question"})) {
      continue;
    }
    const Place place = PlaceOf(child);
    const std::string called = ToUtf8(AttributeOf(child, u"name"));
    const std::string quoted = called.empty() ? "" : " \"" + called + '"';
    const bool group = name == "matching-group";
    const bool narrative = name.find("narrative") != name.npos;
    survey.losses.push_back({Severity::kNote,
                             group       ? "matching-group"
                             : narrative ? "narrative"
                                         : "not-read",
                             place.line, place.column,
                             group       ? "the matching group" + quoted + " is not read"
                             : narrative ? "the narrative" + quoted + " is not read"
                                         : "an element <" + name + "> is not read"});
  }
}

}  // namespace

Survey SurveyExport(const DOMDocument& document) {
  Survey survey;
  const IXMLDOMNodeList questions = document.getElementsByTagName(u"question");
  const Long count = questions.get_length();
  survey.elements.reserve(static_cast<std::size_t>(count));
  for (Long i = 0; i < count; ++i) survey.elements.push_back(ElementSurvey(survey, questions.get_item(i)).Take());
  SurveyTop(document.Root(), survey);

  const IXMLDOMNodeList letters = document.getElementsByTagName(u"mc-choice-sequence");
  if (letters.get_length() > 0 && letters.get_item(0).get_attributes().get_length() > 0) {
    survey.letters = ToUtf8(Upper(letters.get_item(0).get_attributes().get_item(0).Text()));
  }
  const IXMLDOMNodeList numbering = document.getElementsByTagName(u"question-numbering");
  if (numbering.get_length() > 0) survey.numbering = ToUtf8(AttributeOf(numbering.get_item(0), u"value"));
  return survey;
}

}  // namespace TORVA35::sheet
