#include <velmio/xml_helpers.hpp>

#include "support/test_support.h"
#include "vessel_test_support.h"

#include <clocale>
#include <cwchar>
#include <string>
#include <utility>

using namespace velmio::test;

namespace {
xmlNode *root(const Doc &doc) { return xmlDocGetRootElement(doc.get()); }
}  // namespace

TEST(XmlHelpers, LookupFromRootSearchesItsChildrenOtherNodesThemselvesAndLaterSiblings) {
    Doc doc = parseXml("<Root>Offsets<!--Offsets--><offsets value=\"1\"/><Group><Offsets value=\"2\"/></Group>"
                       "<Offsets value=\"3\"/></Root>");
    // Text and comment nodes of the same name are skipped; case is ignored.
    xmlNode *first = VELM::getNode(root(doc), L"OFFSETS");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(attribute(first, "value"), "1");
    xmlNode *group = VELM::getNode2(root(doc), "group");
    ASSERT_NE(group, nullptr);
    // A non-root start node is itself a candidate, then its later siblings.
    EXPECT_EQ(VELM::getNode(group, L"Group"), group);
    EXPECT_EQ(attribute(VELM::getNode(group, L"Offsets"), "value"), "3");
    EXPECT_EQ(attribute(VELM::getNode(group->children, L"Offsets"), "value"), "2");
    EXPECT_EQ(VELM::getNode(root(doc), L"Missing"), nullptr);
    EXPECT_EQ(VELM::getNode(nullptr, L"Offsets"), nullptr);
    EXPECT_EQ(VELM::getNode(root(doc), nullptr), nullptr);
}

TEST(XmlHelpers, ReadsResetTheResultAndTellWhetherTheElementExists) {
    Doc doc = parseXml("<Root><NoValue/><Int value=\"12abc\"/><Text value=\"abc\"/><Real value=\"2.5e1x\"/>"
                       "<Empty value=\"\"/></Root>");
    int i;
    double d;
    wchar_t s[16];
    const std::pair<const wchar_t *, bool> names[] = {{L"Missing", false}, {L"novalue", true}};
    for (const auto &[name, found] : names) {
        i = 7, d = 7.0, std::wcscpy(s, L"stale");
        EXPECT_EQ(VELM::ReadElementInt(root(doc), name, &i) != nullptr, found);
        EXPECT_EQ(VELM::ReadElementDouble(root(doc), name, &d) != nullptr, found);
        EXPECT_EQ(VELM::ReadElementString(root(doc), name, s, 16) != nullptr, found);
        EXPECT_EQ(i, 0);
        EXPECT_EQ(d, 0.0);
        EXPECT_STREQ(s, L"");
    }

    // Malformed numbers read as atoi and atof make of their leading part.
    VELM::ReadElementInt(root(doc), L"Int", &i);
    EXPECT_EQ(i, 12);
    VELM::ReadElementInt(root(doc), L"Text", &i);
    EXPECT_EQ(i, 0);
    VELM::ReadElementDouble(root(doc), L"Real", &d);
    EXPECT_EQ(d, 25.0);
    EXPECT_NE(VELM::ReadElementString(root(doc), L"Empty", s, 16), nullptr);
    EXPECT_STREQ(s, L"");
}

TEST(XmlHelpers, StringReadsNeverWritePastTheBuffer) {
    const std::string longValue(1000, 'x');
    Doc doc = parseXml("<Root><Name value=\"" + longValue + "\"/><Short value=\"h\xC3\xA9\"/></Root>");
    wchar_t small[9];
    small[8] = L'#';
    VELM::ReadElementString(root(doc), L"Name", small, 8);
    EXPECT_EQ(std::wcslen(small), 7u);
    EXPECT_EQ(small[8], L'#');

    // The form without a length stops at its documented capacity.
    std::wstring big(VELM::kXmlTextCapacity + 8, L'#');
    VELM::ReadElementString(root(doc), L"Name", big.data());
    EXPECT_EQ(std::wcslen(big.c_str()), VELM::kXmlTextCapacity - 1);
    EXPECT_EQ(big[VELM::kXmlTextCapacity], L'#');

    VELM::ReadElementString(root(doc), L"Short", small, 8);
    EXPECT_STREQ(small, L"h\u00e9");

    wchar_t copy[4];
    VELM::CopyString(copy, 4, "abcdef");
    EXPECT_STREQ(copy, L"abc");
    VELM::CopyString(copy, 4, nullptr);
    EXPECT_STREQ(copy, L"");
    VELM::CopyString(nullptr, 4, "abc");  // ignored
}

TEST(XmlHelpers, WritesUpdateOneElementWithFixedFormats) {
    Doc doc(VELM::CreateXmlFile(L"Root", 2.0f));
    ASSERT_TRUE(doc);
    xmlNode *r = root(doc);
    VELM::WriteElementDouble(r, L"Latency", 0.5);
    VELM::WriteElementDouble(r, L"latency", 1e-7);  // same element, six decimals lose it
    VELM::WriteElementInt(r, L"Count", -12);
    VELM::WriteElementString(r, L"Model", L"A\u00e9");
    xmlNode *bare = VELM::WriteElementString(r, L"Serial", nullptr);
    ASSERT_NE(bare, nullptr);
    EXPECT_EQ(dump(r),
              "<Root Version=\"2.00\">\n"
              "  <Latency value=\"0.000000\"/>\n"
              "  <Count value=\"-12\"/>\n"
              "  <Model value=\"A\xC3\xA9\"/>\n"
              "  <Serial/>\n"
              "</Root>");
    EXPECT_EQ(VELM::WriteElementDouble(nullptr, L"Latency", 1.0), nullptr);
    EXPECT_EQ(VELM::CreateNode(r, nullptr), nullptr);
}

TEST(XmlHelpers, NumbersIgnoreTheCallersLocale) {
    if (!std::setlocale(LC_NUMERIC, "de_DE.utf8")) GTEST_SKIP() << "no German locale installed";
    Doc doc(VELM::CreateXmlFile(L"Root", 1.5f));
    VELM::WriteElementDouble(root(doc), L"Value", 1.25);
    double d = 0.0;
    VELM::ReadElementDouble(root(doc), L"Value", &d);
    const std::string text = dump(root(doc));
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(text, "<Root Version=\"1.50\">\n  <Value value=\"1.250000\"/>\n</Root>");
    EXPECT_EQ(d, 1.25);
}

TEST(XmlHelpers, TextsThatXmlCannotCarryStillGiveAReadableFile) {
    TempDir dir;
    Doc doc(VELM::CreateXmlFile(L"Root", 2.0f));
    VELM::WriteElementString(root(doc), L"Comment", L"bell\x07 tab\t");
    const std::wstring path = dir.wfile("out.xml");
    const int written = VELM::SaveXmlFile(doc.get(), path.c_str());
    const std::string text = readText(dir.file("out.xml"));
    EXPECT_EQ(written, static_cast<int>(text.size()));
    EXPECT_EQ(text,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Root Version=\"2.00\">\n"
              "  <Comment value=\"bell\xEF\xBF\xBD tab&#9;\"/>\n"
              "</Root>\n");
    Doc back(VELM::OpenXmlFile(path.c_str()));
    ASSERT_TRUE(back);
    wchar_t comment[32];
    VELM::ReadElementString(xmlDocGetRootElement(back.get()), L"Comment", comment, 32);
    EXPECT_STREQ(comment, L"bell\ufffd tab\t");
}

TEST(XmlHelpers, FileFunctionsRefuseWhatTheyCannotUse) {
    TempDir dir;
    writeText(dir.file("bad.xml"), "not <xml");
    EXPECT_EQ(VELM::OpenXmlFile(dir.wfile("bad.xml").c_str()), nullptr);
    EXPECT_EQ(VELM::OpenXmlFile(dir.wfile("missing.xml").c_str()), nullptr);
    EXPECT_EQ(VELM::SaveXmlFile(nullptr, dir.wfile("x.xml").c_str()), -1);
    Doc doc(VELM::CreateXmlFile(L"Root", 2.0f));
    EXPECT_EQ(VELM::SaveXmlFile(doc.get(), dir.wfile("no/such/dir/x.xml").c_str()), -1);
    EXPECT_EQ(VELM::CreateXmlFile(nullptr, 2.0f), nullptr);
    EXPECT_EQ(VELM::CopyNode(nullptr, 1), nullptr);
    VELM::FreeXmlDoc(nullptr);
    VELM::DeleteNode(nullptr);
}
