#include "nvf/XmlDocument.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/HardTexts.h"
#include "support/OutputOf.h"

namespace nvf {
namespace {

std::string Repeated(std::string_view piece, std::size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    while (count-- > 0) text += piece;
    return text;
}

std::string Nested(std::size_t depth) {
    return Repeated("<a>", depth) + Repeated("</a>", depth);
}

using Texts = std::vector<const char*>;

const Texts kHardTexts(std::begin(test::kHardXmlTexts), std::end(test::kHardXmlTexts));

// A document that holds each text as the text of an element, one level deep and two, and as an
// attribute.
ref<XmlDocument> DocumentOf(const Texts& texts) {
    ref<XmlDocument> document = new XmlDocument;
    XmlElement root = document->createRootElement("Root", "http://example.com/ns");
    for (const char* text : texts) {
        XmlElement item = root.addChildElementUtf8("Item", text);
        item.setAttributeUtf8("a", text);
        root.addChildElement("Nest").addChildElementUtf8("Item", text);
    }
    return document;
}

// Prints text and attribute of every item in hexadecimal, a line each.
constexpr const char* kOtherReader =
    "python3 -c \"import sys, xml.etree.ElementTree as tree\n"
    "for item in tree.parse(sys.argv[1]).iter('{http://example.com/ns}Item'):\n"
    "  print((item.text or '').encode().hex(), item.get('a', '').encode().hex())\n\" ";

using test::OutputOf;

std::string HexOf(std::string_view text) {
    std::ostringstream hex;
    for (const unsigned char c : text)
        hex << "0123456789abcdef"[c >> 4] << "0123456789abcdef"[c & 15];
    return hex.str();
}

TEST(XmlDocument, AnotherReaderSeesTheSameTextsOrReplacementsOfForbiddenOnes) {
    if (OutputOf("python3 -c \"print(1)\" 2>&1") != "1\n") GTEST_SKIP() << "needs python3";
    Texts texts = kHardTexts;
    Texts written = kHardTexts;
    for (const test::ForbiddenText& forbidden : test::kForbiddenTexts) {
        texts.push_back(forbidden.text);
        written.push_back(forbidden.written);
    }
    const std::string file = testing::TempDir() + "XmlDocumentTest.xml";
    std::ofstream(file, std::ios::binary) << DocumentOf(texts)->toUtf8();
    std::string expected;
    for (const char* text : written) {
        expected += HexOf(text) + " " + HexOf(text) + "\n" + HexOf(text) + " \n";
    }
    EXPECT_EQ(OutputOf(kOtherReader + file), expected);
    std::filesystem::remove(file);
}

// Of other writers, who may write them as references, they are read and not written again.
TEST(XmlDocument, ForbiddenCharactersAreReadAndReplacedWhenWritten) {
    XmlDocument document;
    bool isReplaced = true;
    document.createRootElement("r", "").setTextUtf8(kHardTexts.back());
    document.toUtf8(&isReplaced);
    EXPECT_FALSE(isReplaced);
    ASSERT_TRUE(document.parse("<r a='&#x1F;'>&#1;</r>"));
    EXPECT_EQ(document.getRootElement().textUtf8(), "\x01");
    EXPECT_NE(document.toUtf8(&isReplaced).find("<r a=\"\uFFFD\">\uFFFD</r>"), std::string::npos);
    EXPECT_TRUE(isReplaced);
}

TEST(XmlDocument, TextInAnyEncodingAndNotationIsRead) {
    const auto expectText = [](const std::string& xml, const char* text) {
        XmlDocument document;
        EXPECT_TRUE(document.parse(xml)) << xml;
        EXPECT_EQ(document.getRootElement("r").valueText().toUtf8(), text) << xml;
    };
    expectText("\xEF\xBB\xBF<r>\xC3\xA4</r>", "\u00E4");
    expectText("<?xml version='1.0' encoding='ISO-8859-1'?><r>\xE4</r>", "\u00E4");
    expectText({"\xFF\xFE<\0r\0>\0\xE4\0<\0/\0r\0>\0", 18}, "\u00E4");
    expectText({"\xFE\xFF\0<\0r\0>\0\xE4\0<\0/\0r\0>", 18}, "\u00E4");
    expectText("<r>a<!-- no -->b<![CDATA[<&>]]><?no?>c</r>", "ab<&>c");
    expectText("<r>&#228;&#x1F600;&quot;&apos;</r>", "\u00E4\U0001F600\"'");
    expectText("<r>a\r\nb\rc</r>", "a\nb\nc");
    expectText("<r> <b/> </r>", "");
    expectText("<r>\xC3\x28\xFF</r>", "\uFFFD(\uFFFD");
}

TEST(XmlDocument, TextThatIsNotWellFormedIsRefused) {
    for (const std::string_view xml :
         {"", "text", "<r><b></r>", "<r a='1></r>", "<r a=1/>", "</r>", "<r", "<!-- open", "<r>&#1",
          "<r><![CDATA[</r>", "<r/><b>", "\xFF\xFE", "PK\3\4"}) {
        XmlDocument document;
        ASSERT_TRUE(document.parse("<before/>"));
        String error;
        EXPECT_FALSE(document.parse(xml, &error)) << xml;
        EXPECT_FALSE(error.isEmpty()) << xml;
        EXPECT_TRUE(document.getRootElement().isNull()) << xml;
        EXPECT_FALSE(document.parse(xml)) << xml;
    }
}

TEST(XmlDocument, EveryTruncationIsRefused) {
    std::string xml = DocumentOf(kHardTexts)->toUtf8();
    xml.resize(xml.rfind('>'));
    XmlDocument document;
    for (; !xml.empty(); xml.pop_back()) ASSERT_FALSE(document.parse(xml)) << xml.size();
}

TEST(XmlDocument, NestingIsBounded) {
    XmlDocument document;
    String error;
    for (const std::size_t depth :
         {std::size_t{1001}, std::size_t{100'000}, std::size_t{2'000'000}}) {
        EXPECT_FALSE(document.parse(Nested(depth), &error)) << depth;
        EXPECT_EQ(error.toUtf8(), "Elements are nested deeper than 1000 levels");
        EXPECT_TRUE(document.getRootElement().isNull());
        EXPECT_FALSE(document.parse(Repeated("<a>", depth)));
    }
    EXPECT_TRUE(document.parse(Repeated("<a>", 1000) + "text" + Repeated("</a>", 1000)));
    XmlElement root = document.getRootElement();
    root.removeChildElement(root.firstChildElement());
    EXPECT_TRUE(root.firstChildElement().isNull());
}

TEST(XmlDocument, HugeAttributeIsReadAsItIs) {
    const std::string value = Repeated("0123456789", 10'000'000);
    XmlDocument document;
    ASSERT_TRUE(document.parse("<r a='" + value + "' b='2'>x</r>"));
    EXPECT_TRUE(document.getRootElement().getAttributeUtf8("a", "") == value);
    EXPECT_EQ(document.getRootElement().getAttributeInt("a", -1), -1);
    EXPECT_EQ(document.getRootElement().getAttributeInt("b", -1), 2);
}

TEST(XmlDocument, EntitiesOfADocumentTypeAreNotExpanded) {
    XmlDocument document;
    ASSERT_TRUE(
        document.parse("<!DOCTYPE r [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">"
                       "<!ENTITY file SYSTEM \"file:///etc/passwd\">]><r k='&b;'>&b;&file;</r>"));
    EXPECT_EQ(document.getRootElement("r").textUtf8(), "&b;&file;");
    EXPECT_EQ(document.getRootElement("r").getAttributeUtf8("k", ""), "&b;");
}

TEST(XmlElement, AttributesConvertOrGiveTheDefault) {
    XmlDocument document;
    XmlElement e = document.createRootElement("r", "");
    for (const float value : {0.1f, -0.0f, FLT_MAX, FLT_MIN, 1e-45f, 299e36f}) {
        e.setAttributeFloat("f", value);
        EXPECT_EQ(e.getAttributeFloat("f", 7), value);
    }
    e.setAttributeInt("i", INT_MIN);
    e.setAttributeBool("b", true);
    e.setAttributeString("b", "False");
    EXPECT_EQ(e.getAttributeInt("i", 7), INT_MIN);
    EXPECT_FALSE(e.getAttributeBool("b", true));
    EXPECT_EQ(e.getAttributeInt("b", 7), 7);
    EXPECT_TRUE(e.getAttributeBool("i", true));
    EXPECT_EQ(e.getAttributeInt("none", 7), 7);
    EXPECT_EQ(document.toUtf8(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<r xmlns=\"\" f=\"2.99e+38\" i=\"-2147483648\" b=\"False\" />\n");
}

TEST(XmlElement, NoElementIsHarmless) {
    XmlElement none;
    none.setAttributeString("a", "b");
    none.setTextUtf8("x");
    none.removeChildElement(none);
    EXPECT_TRUE(none.addChildElement("a", "x").isNull());
    EXPECT_TRUE(none.firstChildElement("a").isNull() && none.nextSiblingElement().isNull());
    EXPECT_EQ(none.textUtf8(), "");
    EXPECT_EQ(none.name(), String());
    EXPECT_EQ(none.getAttributeUtf8("a", "default"), "default");
}

}  // namespace
}  // namespace nvf
