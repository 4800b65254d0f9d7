#include "torva35/base/Text.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <vector>

namespace TORVA35 {
namespace {

TEST(Text, TrimTakesSpacesOnly) {
  EXPECT_EQ(Trim(u"  a b \t "), u"a b \t");
  EXPECT_EQ(Trim(u"   "), u"");
  EXPECT_EQ(Trim(u"\u00A0a\n"), u"\u00A0a\n");
}

TEST(Text, CaseMapsSingleUnitsOnly) {
  EXPECT_EQ(Upper(u"aéßÿıǆ\u00A0÷"), u"AÉßŸIǄ\u00A0÷");
  EXPECT_EQ(Lower(u"AÉΣŸẞ\u00A0×"), u"aéσÿß\u00A0×");
  EXPECT_TRUE(EqualNoCase(u"Straße ΟΔΟΣ", u"sTRAßE οδος"));
  EXPECT_FALSE(EqualNoCase(u"ß", u"ss"));
  // Deseret letters have case, but as surrogate pairs they have none.
  EXPECT_FALSE(EqualNoCase(u"\U00010400", u"\U00010428"));
}

TEST(Text, LeadingNumber) {
  const std::vector<std::pair<String, Single>> rows = {
      {u"2.5 pts", 2.5f},    {u"pts", 0},         {u"", 0},
      {u" 1 2\t3\n4", 1234}, {u"-.5", -0.5f},     {u"+7", 7},
      {u"--7", 0},           {u"1e2x", 100},      {u"1e", 1},
      {u"1e+", 1},           {u"1 E - 2", 0.01f}, {u"&H1F", 0},
      {u"1d2", 1},           {u"1.2.3", 1.2f},    {u"1\r2", 1},
      {u"1e-999", 0},        {u"0e99999", 0},     {u"3.4028235e38", 3.4028235e38f},
      {u"1,5", 1},           {u" \t-5", -5},      {u"0.0000001e8", 10}};
  for (const auto& [text, number] : rows) EXPECT_EQ(LeadingNumber(text), number) << ToUtf8(text);
  for (StringView text :
       {u"3.4028236e38", u"1e39", u"-1e39", u"1e9223372036854775807", u"1e99999999999999999999"}) {
    EXPECT_THROW(LeadingNumber(text), Error) << ToUtf8(text);
  }
}

TEST(Text, ValuesAsText) {
  const std::vector<std::pair<TaggedValue, String>> rows = {
      {true, u"True"},       {Integer{-3}, u"-3"}, {0.1f, u"0.1"},   {0.1, u"0.1"},
      {100000.0, u"100000"}, {1e20, u"1E+20"},     {1e15, u"1E+15"}, {999999999999999.0, u"999999999999999"},
      {0.00001, u"0.00001"}, {9e-6, u"9E-06"},     {2.50, u"2.5"},   {-0.0, u"0"},
      {u"x", u"x"}};
  for (const auto& [value, text] : rows) EXPECT_EQ(TextOf(value), text);
  EXPECT_THROW(TextOf(Null), Error);
  EXPECT_THROW(TextOf(Ref<Object>()), Error);
}

TEST(Text, BooleanOf) {
  for (StringView text : {u"true", u"TRUE", u"-1", u"0.5", u"1e3", u" \ttrue\n", u" 7 "}) {
    EXPECT_TRUE(BooleanOf(text)) << ToUtf8(text);
  }
  for (StringView text : {u"False", u"0", u"0.0", u" false"}) EXPECT_FALSE(BooleanOf(text)) << ToUtf8(text);
  for (StringView text : {u"", u"odd", u"1x", u"yes", u"t rue", u"0 0", u" "}) {
    EXPECT_THROW(BooleanOf(text), Error) << ToUtf8(text);
  }
}

TEST(Text, NumberOfTakesOneNumber) {
  const std::vector<std::pair<TaggedValue, Double>> rows = {{u"7", 7},      {u" 7 ", 7}, {u"\t-2.5e1\n", -25},
                                                            {u"1e+2", 100}, {true, -1},  {Empty, 0}};
  for (const auto& [value, number] : rows) EXPECT_EQ(NumberOf(value), number);
  for (StringView text : {u"", u" ", u"1 2", u"- 7", u"0 0", u"1 .5", u"1e 2", u"1 e2", u"7x", u"7\r"}) {
    EXPECT_THROW(NumberOf(text), Error) << ToUtf8(text);
  }
}

TEST(Text, Utf8BothWays) {
  const String text = u"a\u00E9\u07FF\u0800\u20AC\U0001F600";
  EXPECT_EQ(ToUtf8(text), "a\xC3\xA9\xDF\xBF\xE0\xA0\x80\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  String appended;
  AppendUtf8(appended, ToUtf8(text));
  EXPECT_EQ(appended, text);
  EXPECT_EQ(FromUtf8(ToUtf8(String{u'a', 0xD800})), u"a\uFFFD");
  EXPECT_EQ(FromUtf8("\xC0\x80|\xED\xA0\x80|\xE0\x9F\xBF|\xF5|\xE2\x82"),
            u"\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD|\uFFFD\uFFFD");
}

}  // namespace
}  // namespace TORVA35
