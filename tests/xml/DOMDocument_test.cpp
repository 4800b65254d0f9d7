#include "torva35/xml/DOMDocument.h"

#include <array>

#include "tests/xml/Shape.h"
#include "torva35/base/Error.h"

namespace TORVA35 {
namespace {

using namespace std::string_literals;

TEST(DOMDocument, NodesAreElementsTextsAndCdata) {
  EXPECT_EQ(ShapeOf("<a>\n  <b/>\t<c> x </c>\r\n</a>"), u"a(bc(' x '))");
  EXPECT_EQ(ShapeOf("<a>one<!-- c -->two<?pi?> three<b/>&#32;&#9;&#13;<b/></a>"), u"a('onetwo three'bb)");
  EXPECT_EQ(ShapeOf("<a>x<![CDATA[ ]]><![CDATA[]]>y</a>"), u"a('x'\" \"\"\"'y')");
  EXPECT_EQ(ShapeOf("<!DOCTYPE a [<!ENTITY e 'f<b/>g'>]><a>x&e;&lt;&#x41;</a>"), u"a('xf'b'g<A')");
  EXPECT_EQ(ShapeOf("<a p:x='1' y=' &amp; ' xmlns:p='u'><p:b/></a>"), u"a[p:x=1][y= & ][xmlns:p=u](p:b)");
  EXPECT_EQ(ShapeOf("<a xml:space='preserve'> <b/> </a>"), u"a[xml:space=preserve](b)");
}

TEST(DOMDocument, ListsAndMaps) {
  DOMDocument document;
  ASSERT_TRUE(Load(document, "<a><q n='1'>x<q n='2'>y<![CDATA[z]]> </q></q><Q/><q n='3' x:y:z='4'/></a>"));
  EXPECT_FALSE(document.selectSingleNode(u"q") || document.selectSingleNode(u"A"));
  EXPECT_EQ(document.getElementsByTagName(u"none").get_length(), 0);
  IXMLDOMNodeList list = document.getElementsByTagName(u"q");
  ASSERT_EQ(list.get_length(), 3);
  EXPECT_FALSE(list.get_item(-1) || list.get_item(3));
  EXPECT_THROW(list.get_item(3).get_nodeName(), Error);
  const IXMLDOMNode first = list.nextNode();
  EXPECT_EQ(*first.get_nodeTypedValue().As<String>(), u"xyz");
  EXPECT_TRUE(first.get_nodeValue().Is<NullValue>());
  EXPECT_EQ(list.nextNode().Text(), u"yz");
  const IXMLDOMNode third = list.nextNode();
  EXPECT_FALSE(list.nextNode());
  const auto attributes = third.get_attributes();
  EXPECT_EQ(attributes.get_length(), 2);
  EXPECT_EQ(*attributes.getNamedItem(u"x:y:z").get_nodeValue().As<String>(), u"4");
  EXPECT_EQ(attributes.get_item(1).get_baseName(), u"y:z");  // after the first colon
  EXPECT_FALSE(attributes.getNamedItem(u"N") || attributes.get_item(2));
  const IXMLDOMNodeList children = first.get_childNodes();
  EXPECT_EQ(children.get_item(1).get_nodeName(), u"q");
  EXPECT_EQ(children.get_item(0).Text(), u"x");
  EXPECT_EQ(children.get_item(0).get_baseName(), u"");
  const auto none = document.getElementsByTagName(u"Q").get_item(0).get_attributes();
  EXPECT_TRUE(none && none.get_length() == 0);
}

TEST(DOMDocument, KeepsPlacesOfElementsOnly) {
  DOMDocument document;
  for (const bool keep : {false, true}) {
    document.KeepPlaces(keep);
    ASSERT_TRUE(Load(document, "<a>\n \xC3\xA9<b c='d'/></a>"));
    const IXMLDOMNode text = document.selectSingleNode(u"a").FirstChild(), b = text.NextSibling();
    EXPECT_EQ(b.Line(), keep ? 2 : 0);
    EXPECT_EQ(b.Column(), keep ? 3 : 0);
    EXPECT_EQ(text.Line() + b.get_attributes().get_item(0).Column(), 0);
    EXPECT_FALSE(b.FirstChild() || b.NextSibling() || document.selectSingleNode(u"a").NextSibling());
  }
}

std::string Utf16Bytes(StringView text, bool big) {
  std::string bytes;
  for (char16_t unit : text) {
    const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
    bytes += big ? high : low;
    bytes += big ? low : high;
  }
  return bytes;
}

// The text so many times: "@" in it is the count from 0, and "$" the one before.
std::string Repeated(int count, std::string_view text) {
  std::string result;
  for (int i = 0; i < count; ++i) {
    for (const char c : text) {
      result += c == '@' ? std::to_string(i) : c == '$' ? std::to_string(i - 1) : std::string(1, c);
    }
  }
  return result;
}

TEST(DOMDocument, Encodings) {
  SKIP_WITHOUT_ENCODINGS();
  std::vector<std::pair<std::string, String>> rows = {
      {"<a>\xC3\xA9</a>", u"é"},
      {"\xEF\xBB\xBF<a>\xE2\x82\xAC</a>", u"€"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", u"é"},
      {"<?xml version='1.0' encoding='windows-1252'?><a>\x80\xE9</a>", u"€é"},
      {"<?xml version='1.0' encoding='ISO-8859-15'?><a>\xA4</a>", u"€"},
      {"<?xml version='1.0' encoding='KOI8-R'?><a>\xC1</a>", u"а"},
      {"<?xml version='1.0' encoding='UTF8'?><a>\xC3\xA9</a>", u"é"},
      {"<?xml version='1.0' encoding='Shift_JIS'?><a>\x93\xFA\x83\x5C</a>", u"日ソ"},
      {"<?xml version='1.0' encoding='EUC-JP'?><a>\xC6\xFC</a>", u"日"},
      {"<?xml version='1.0' encoding='GB2312'?><a>\xBA\xBA</a>", u"汉"},
      {"<?xml version='1.0' encoding='gbk'?><a>\x9C\x79</a>", u"測"},
      {"<?xml version='1.0' encoding='Big5'?><a>\xB4\xFA</a>", u"測"},
      {"<?xml version='1.0' encoding='EUC-KR'?><a>\xC7\xD1</a>", u"한"},
      // A letter and the point that another converter would join to it.
      {"<?xml version='1.0' encoding='windows-1255'?><a>\xE0\xC7</a>", u"\u05D0\u05B7"},
      // A byte order mark beats the declaration.
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='windows-1252'?><a>Caf\xC3\xA9</a>", u"Café"},
      {Utf16Bytes(u"\uFEFF<?xml version='1.0' encoding='UTF-8'?><a>é</a>", false), u"é"},
      {"<\0\0\0a\0\0\0>\0\0\0\xE9\0\0\0<\0\0\0/\0\0\0a\0\0\0>\0\0\0"s, u"é"},
      {"\0\0\0<\0\0\0a\0\0\0>\0\0\0\xE9\0\0\0<\0\0\0/\0\0\0a\0\0\0>"s, u"é"},
      {"<?xml version='1.0' encoding='US-ASCII'?><a>x</a>", u"x"},
      // Characters that lie across the ends of the reader's buffers.
      {Utf16Bytes(u"\uFEFF<a>x" + FromUtf8(Repeated(70'000, "\U0001F600")) + u"</a>", true),
       u"x" + FromUtf8(Repeated(70'000, "\U0001F600"))},
      {"<?xml version='1.0' encoding='EUC-JP'?><a>" + Repeated(70'000, "\xC6\xFC") + "</a>",
       String(70'000, u'日')},
      {Utf16Bytes(u"\uFEFF<a>é\U0001F600\U00010000</a>", false), u"é\U0001F600\U00010000"},
      {Utf16Bytes(u"\uFEFF<a>é\U0001F600</a>", true), u"é\U0001F600"},
      {Utf16Bytes(u"<?xml version='1.0' encoding='UTF-16'?><a>é</a>", false), u"é"}};
#if defined(__GLIBC__)  // characters of more than two bytes, and EBCDIC
  rows.insert(rows.end(),
              {{"<?xml version='1.0' encoding='EUC-JP'?><a>\xC6\xFC\x8F\xB0\xA1</a>", u"日丂"},
               {"<?xml version='1.0' encoding='GB18030'?><a>\xBA\xBA\x81\x30\x84\x36\x94\x39\xFC\x36</a>",
                u"汉¥\U0001F600"},
               {"\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95\x7E\x7D\xF1\x4B\xF0\x7D\x40\x85\x95\x83\x96"
                "\x84\x89\x95\x87\x7E\x7D\xC9\xC2\xD4\xF5\xF0\xF0\x7D\x6F\x6E\x4C\x81\x6E\x4A\x51\x4C\x61\x81\x6E",
                u"[é"}});
#endif
  for (const auto& [bytes, text] : rows) EXPECT_EQ(ShapeOf(bytes), u"a('" + text + u"')") << bytes.substr(0, 99);
}

TEST(DOMDocument, RefusesWithReasonAndPlace) {
  const auto rows = Texts(
      "", "<a>", "<a></b>", "<a/><a/>", "<a>&nope;</a>", "<a x='1' x='2'/>", "text", "PK\x03\x04\x14",
      "<a>\xFF</a>", "<a>\xC3</a>", "<a>\xED\xA0\x80</a>", "<a>&#xD800;</a>", "<a>\x01</a>", "<a>\0</a>"s,
      Utf16Bytes(u"\uFEFF<a>", false) + "\x00\xD8"s + Utf16Bytes(u"x</a>", false),
      Utf16Bytes(u"\uFEFF<a>", true) + "\xDC\x00"s + Utf16Bytes(u"</a>", true),
      "<?xml version='1.0' encoding='UTF-16'?><a/>", "<?xml version='1.0' encoding='no-such'?><a/>",
      "<?xml version='1.0' encoding='US-ASCII'?><a>\xE9</a>", "<?xml version='1.0' encoding='Big5'?><a>\xB4</a>",
      "<?xml version='1.0' encoding='ISO-2022-JP'?><a>\x1B$BF|\x1B(B</a>", "<?xml version='2.0'?><a/>",
      "<?xml version='1.'?><a/>");
  for (const std::string& bytes : rows) {
    DOMDocument document;
    EXPECT_FALSE(Load(document, bytes)) << bytes;
    EXPECT_FALSE(document.parseError().reason.empty()) << bytes;
    EXPECT_FALSE(document.selectSingleNode(u"a"));
  }
  DOMDocument document;
  for (const String& path : {String(u"/no/such/file"), String(u"/"), String(u""), String(u"/dev/null\0x", 11)}) {
    EXPECT_FALSE(document.load(path));
    EXPECT_EQ(document.parseError().line, 0) << ToUtf8(path);
  }
  EXPECT_THROW(document.load(5), Error);
  EXPECT_TRUE(Load(document, "<a/>"));
  EXPECT_TRUE(document.parseError().reason.empty());
}

// Line, column and byte: of a file, whatever its encoding, and a byte order mark is no character of line 1.
TEST(DOMDocument, ThePlaceIsThatInTheFile) {
  SKIP_WITHOUT_ENCODINGS();
  const std::string euc = "<?xml version='1.0' encoding='EUC-JP'?><a>\n\xC6\xFC";
  const std::string longText(200'000, 'x');
  const std::vector<std::pair<std::string, std::array<std::int64_t, 3>>> rows = {
      {"<a>\n  <b>\n</a>", {3, 3, 12}},
      {"\xEF\xBB\xBF<a></b>", {1, 6, 8}},
      {"\xEF\xBB\xBF<a>\n</b>", {2, 3, 9}},
      {Utf16Bytes(u"\uFEFF<a>é</b>", false), {1, 7, 14}},
      {Utf16Bytes(u"\uFEFF<a>", true) + "\xDC\x00"s, {1, 4, 8}},
      {euc + "\xC6\xFC</b>", {2, 5, 49}},
      {euc + "\xFF</a>", {2, 2, 45}},
      {euc + "\xC6", {2, 2, 45}},
      {euc + longText + "\n" + longText + "</b>", {3, 200'003, 400'048}},
      {"<?xml version='1.0'\r\nencoding='no-such'?><a/>", {2, 11, 31}}};
  for (const auto& [bytes, place] : rows) {
    DOMDocument document;
    EXPECT_FALSE(Load(document, bytes));
    const XmlParseError& error = document.parseError();
    EXPECT_EQ((std::array{error.line, error.column, error.byteOffset}), place) << bytes.substr(0, 100);
  }
}

TEST(DOMDocument, ExternalEntitiesAreNeverOpened) {
  const TempFile secret("secret");
  const std::string uri = ToUtf8(secret.Path());
  EXPECT_EQ(ShapeOf("<!DOCTYPE a [<!ENTITY e SYSTEM '" + uri + "'>]><a>x&e;y</a>"), u"a('xy')");
  EXPECT_EQ(ShapeOf("<!DOCTYPE a SYSTEM '" + uri + "'><a>x&e;y</a>"), u"a('xy')");
  // Nor is what follows one lost.
  EXPECT_EQ(ShapeOf("<!DOCTYPE a [<!ENTITY % p SYSTEM '" + uri + "'>%p;<!ENTITY e 'v'>]><a>x&e;&f;</a>"),
            u"a('xv')");
}

TEST(DOMDocument, ParameterEntities) {
  const std::string declared =
      "<!DOCTYPE a [<!ENTITY % p '<!ENTITY e \"v\"><!ATTLIST a b CDATA \"w\">'>%p;"
      "<!ENTITY f 'x'>]><a c='&f;'>&f;";
  EXPECT_EQ(ShapeOf(declared + "&e;</a>"), u"a[c=x][b=w]('xv')");
  const std::string standalone = "<?xml version='1.1' standalone='yes'?>" + declared;
  EXPECT_EQ(ShapeOf(standalone + "</a>"), u"a[c=x][b=w]('x')");
  EXPECT_EQ(ShapeOf(standalone + "&e;</a>"), u"refused");  // what stands alone depends on none of them
  for (const char* row : {"<!ENTITY % p '<!ENTITY e >'>%p;", "<!ENTITY % p '&#37;p;'>%p;", "%p;",
                          "<!ENTITY % p ''>%p;%q;", "<!ENTITY % p SYSTEM 'q'>%p;%q;"}) {
    EXPECT_EQ(ShapeOf("<!DOCTYPE a [" + std::string(row) + "]><a/>"), u"refused") << row;
  }
  EXPECT_EQ(ShapeOf("<!DOCTYPE a [<!ENTITY % p ''>%p;]><a>&e;</a>"), u"refused");
}

TEST(DOMDocument, HostileShapesLoadOrAreRefused) {
  constexpr int kDepth = 1'000'000;
  DOMDocument document;
  ASSERT_TRUE(Load(document, Repeated(kDepth, "<a>") + "x" + Repeated(kDepth, "</a>")));
  EXPECT_EQ(document.getElementsByTagName(u"a").get_length(), Long{kDepth});
  EXPECT_EQ(document.selectSingleNode(u"a").Text(), u"x");
  ASSERT_TRUE(Load(document, "<a" + Repeated(100'000, " a@=''") + "/>"));
  EXPECT_EQ(document.selectSingleNode(u"a").get_attributes().get_length(), 100'000);
  EXPECT_FALSE(Load(document, "<!DOCTYPE a [<!ENTITY e-1 'ha'>" +
                                  Repeated(12, "<!ENTITY e@ '&e$;&e$;&e$;&e$;&e$;&e$;&e$;&e$;&e$;&e$;'>") +
                                  "]><a>&e11;</a>"));

  // Each entity leads to the next one, so that they would be expanded as deep as there are entities.
  const auto chain = [](int count) {
    return "<!DOCTYPE a [<!ENTITY e-1 'x'>" + Repeated(count, "<!ENTITY e@ '&e$;'>") + "]>";
  };
  const auto parameterChain = [](int count) {
    return "<!DOCTYPE a [<!ENTITY % e-1 '<!ENTITY x \"y\">'>" + Repeated(count, "<!ENTITY % e@ '&#37;e$;'>") +
           "%e" + std::to_string(count - 1) + ";]><a>&x;</a>";
  };
  ASSERT_TRUE(Load(document, parameterChain(1000)));
  EXPECT_EQ(document.selectSingleNode(u"a").Text(), u"y");
  EXPECT_FALSE(Load(document, parameterChain(1001)));
  ASSERT_TRUE(Load(document, chain(1000) + "<a b='&e999;'>&e999;</a>"));
  EXPECT_EQ(document.selectSingleNode(u"a").Text(), u"x");
  EXPECT_FALSE(Load(document, chain(50'000) + "<a/>"));
  EXPECT_EQ(document.parseError().reason, u"too many entities that refer to others");
}

std::string WithDefaults(const std::string& declared, int elements) {
  return "<!DOCTYPE a [<!ATTLIST b " + declared + ">]><a>\n" + Repeated(elements, "<b></b>\n") + "</a>";
}

TEST(DOMDocument, DeclaredAttributesAreLimited) {
  const std::string long1000 = "x CDATA '" + std::string(995, 'v') + "'";  // 1,000 bytes with its name and marks
  // As many bytes in names alone, and as many declarations.
  const std::string empty = Repeated(900, " xxx@ CDATA ''"), implied = Repeated(10'001, " x@ CDATA #IMPLIED");
  DOMDocument document;
  EXPECT_TRUE(Load(document, WithDefaults(long1000, 8'388)));
  EXPECT_EQ(document.getElementsByTagName(u"b").get_item(8'387).get_attributes().get_item(0).Text().size(), 995u);
  EXPECT_FALSE(Load(document, WithDefaults(long1000, 8'389)));
  EXPECT_EQ(document.parseError().reason, u"too much from declared attributes");
  EXPECT_EQ(document.parseError().line, 8'390);
  EXPECT_EQ(document.parseError().column, 4);  // after the tag
  EXPECT_TRUE(Load(document, "<!--" + std::string(1 << 20, ' ') + "-->" + WithDefaults(long1000, 8'389)));
  EXPECT_FALSE(Load(document, WithDefaults(empty, 2'000)));
  EXPECT_FALSE(Load(document, WithDefaults(implied, 1)));
  EXPECT_EQ(document.parseError().reason, u"too many declarations");

  // The parser goes through them at each element.
  const std::string unused = Repeated(9'999, " x@ CDATA #IMPLIED");
  EXPECT_TRUE(Load(document, WithDefaults(unused, 10'001)));
  EXPECT_FALSE(Load(document, WithDefaults(unused, 10'002)));
  EXPECT_EQ(document.parseError().reason, u"too many elements with declared attributes");
}

}  // namespace
}  // namespace TORVA35
