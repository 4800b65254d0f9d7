#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "model/clsTORVATest.h"
#include "tests/RecordingHost.h"
#include "tests/TempFile.h"

namespace TORVA35 {
namespace {

class RichText : public HostTest {
 protected:
  String Flattened(const std::string& content) {
    const TempFile file("<examview><question>" + content + "</question></examview>");
    EXPECT_TRUE(test->LoadXML(file.Path())) << content.substr(0, 200);
    return test->Questions()->Item(1)->QuestionText();
  }

  Ref<clsTORVATest> test = New<clsTORVATest>();
};

TEST_F(RichText, Elements) {
  const std::vector<std::pair<std::string, String>> rows = {
      {"<para><font>What is 2+2?</font></para>", u"What is 2+2?"},
      {"<para>One</para><para>Two</para>", u"One Two"},
      {"<para>x<sup>2</sup>y</para>", u"x 2 y"},
      {"<font>x<sup>2</sup>y</font>", u"x2y"},
      {"<para>a<equation/>b</para>", u"a equation b"},
      {"<para>a<equation>lost</equation>b<picture>lost<b>lost</b></picture></para>", u"a b"},
      {"<para>two\nlines\r</para>", u"twolines"},
      {"<variable data='x'>kept</variable><variable data='text'/>", u"kept"},
      {"<PARA>a</PARA><n:Para>b</n:Para><b><![CDATA[ ]]>c<![CDATA[]]></b>", u"a b c"},
      {"a&#13;b", u"a\rb"}};
  for (const auto& [content, text] : rows) EXPECT_EQ(Flattened("<text>" + content + "</text>"), text) << content;
}

// The rules to the letter, on a tree that a test makes.
struct Tree {
  std::string name;  // empty: a text
  std::string text;
  std::vector<Tree> children;
};

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t i = 0; (i = text.find(from, i)) != text.npos; i += to.size()) text.replace(i, from.size(), to);
}

std::string Literal(const Tree& node) {
  std::string result;
  const bool blank = node.name == "text" || node.name == "para" || node.name == "b";
  if (node.name.empty()) {
    result = node.text;
  } else if (node.name == "equation") {
    if (node.children.empty()) result = "equation";
  } else if (node.name != "other") {
    for (const Tree& child : node.children) result += Literal(child) + (blank ? " " : "");
  }
  ReplaceAll(result, "  ", " ");
  ReplaceAll(result, "  ", " ");
  ReplaceAll(result, "\n", "");
  return result;
}

std::string Xml(const Tree& node) {
  if (node.name.empty()) return "<![CDATA[" + node.text + "]]>";
  std::string result = "<" + node.name + ">";
  for (const Tree& child : node.children) result += Xml(child);
  return result + "</" + node.name + ">";
}

Tree RandomTree(std::mt19937& random, int depth) {
  static const char* const kNames[] = {"", "", "", "para", "b", "font", "sup", "equation", "other"};
  Tree node;
  if (depth > 0) node.name = kNames[random() % std::size(kNames)];
  if (node.name.empty()) {
    for (auto length = random() % 12; length > 0; --length) node.text += "a    \n"[random() % 6];
  } else {
    for (auto count = random() % 5; count > 0; --count) node.children.push_back(RandomTree(random, depth - 1));
  }
  return node;
}

TEST_F(RichText, EveryLevelCleansAgain) {
  std::mt19937 random(35);
  for (int i = 0; i < 3000; ++i) {
    Tree root{"text", "", {}};
    for (auto count = random() % 6; count > 0; --count) root.children.push_back(RandomTree(random, 6));
    EXPECT_EQ(Flattened(Xml(root)), Trim(FromUtf8(Literal(root)))) << Xml(root);
  }
}

TEST_F(RichText, AnyDepth) {
  std::string open, close;
  for (int i = 0; i < 300'000; ++i) {
    open += "<b><i/>";
    close += "</b>";
  }
  EXPECT_EQ(Flattened("<text>" + open + std::string(100'000, 'x') + close + "</text>"), String(100'000, u'x'));
}

}  // namespace
}  // namespace TORVA35
