#include "include/vornak_host.h"

#include "tests/support/leased_file.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace vornak::test {
namespace {

using namespace std::string_literals;

class XmlNodeTest : public testing::Test {
protected:
    XMLNode open(std::string_view document)
    {
        return XMLNode::openFileHelper(files_.write("a.xml", document).c_str(), &error_);
    }

    TempDir files_;
    int error_ = -1;
};

TEST_F(XmlNodeTest, TellsWellFormedDocumentsFromOthers)
{
    const std::string accepted[] = {
        "<a></a>\n", "<a><![CDATA[<<]]></a>", "<a><?php x ?></a>",
        "<?xml version='1.0'?><!DOCTYPE a [<!ELEMENT a ANY>]><!-- c --><a b='1'>text</a>"};
    for (const std::string &document : accepted) {
        EXPECT_EQ(open(document).nChildNode("a"), 1) << document;
        EXPECT_EQ(error_, 0) << document;
    }
    for (const std::string &document :
         {""s, "text"s, "<!-- nothing but a comment -->"s, "<a>"s, "<a><b></a></b>"s, "<a b=1/>"s,
          "<a b='1/>"s, "<"s, "<a/><!-- open"s, "PK\x03\x04\0\0\x08\0"s, "\xff\xfe"s}) {
        EXPECT_TRUE(open(document).isEmpty()) << document;
        EXPECT_NE(error_, 0) << document;
    }
}

TEST_F(XmlNodeTest, ReportsFilesThatCannotBeRead)
{
    const std::string fifo = files_ / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::string paths[] = {
        files_ / "missing.xml", files_ / "missing/a.xml", files_.path(), fifo, "/dev/zero", ""};
    for (const std::string &path : paths) {
        int error = 0;
        EXPECT_TRUE(XMLNode::openFileHelper(path.c_str(), &error).isEmpty()) << path;
        EXPECT_NE(error, 0) << path;
        EXPECT_TRUE(XMLNode::openFileHelper(path.c_str(), nullptr).isEmpty()) << path;
    }
}

TEST_F(XmlNodeTest, WaitsForTheHolderOfALeaseThoughSignalsInterrupt)
{
    const std::string path = files_.write("a.xml", "<a/>");
    const LeasedFile lease(path);
    if (!lease) GTEST_SKIP() << "the file system of " << path << " has no leases";
    EXPECT_FALSE(XMLNode::openFileHelper(path.c_str(), &error_, "a").isEmpty());
    EXPECT_EQ(error_, 0);
}

TEST_F(XmlNodeTest, ReadsFilesWhoseSizeIsNotKnownBeforehand)
{
    int error = 0;
    XMLNode::openFileHelper("/proc/self/status", &error); // of size 0 and not XML
    EXPECT_NE(error, 0);
    const std::string large = "<a b='" + std::string(300'000, 'x') + "'/>";
    EXPECT_EQ(std::string_view(open(large).getChildNode("a").getAttribute("b")).size(), 300'000u);
}

TEST_F(XmlNodeTest, ReturnsTheTaggedChildOfTheDocument)
{
    const std::string path = files_.write("a.xml", "<a n='1'><b/></a>");
    EXPECT_STREQ(XMLNode::openFileHelper(path.c_str(), nullptr, "a").getAttribute("n"), "1");
    EXPECT_TRUE(XMLNode::openFileHelper(path.c_str(), &error_, "b").isEmpty());
    EXPECT_EQ(error_, 0);
}

/// `ascii`, with '~' for the letter é, as text of `width`-byte units.
std::string encode(std::string_view ascii, int width, bool bigEndian)
{
    std::string text;
    for (const char c : ascii) {
        std::string unit(width, '\0');
        unit[bigEndian ? width - 1 : 0] = c == '~' ? '\xe9' : c;
        text += unit;
    }
    return text;
}

TEST_F(XmlNodeTest, HandsOutUtf8WhateverTheEncodingOfTheFile)
{
    const std::string document = "<a n='~|x'/>";
    for (const std::string &content :
         {"\xef\xbb\xbf<a n='\xc3\xa9|x'/>"s, "\xff\xfe" + encode(document, 2, false),
          "\xfe\xff" + encode(document, 2, true), encode(document, 2, false),
          "\xff\xfe\0\0"s + encode(document, 4, false),
          "<?xml version='1.0' encoding='ISO-8859-1'?>" + encode(document, 1, false)}) {
        const XMLNode node = open(content).getChildNode("a");
        EXPECT_EQ(error_, 0) << content;
        EXPECT_STREQ(node.getAttribute("n"), "\xc3\xa9|x") << content;
    }
    EXPECT_STREQ(open("<a n='\xff\xc3'/>").getChildNode("a").getAttribute("n"), "\xff\xc3");
}

TEST_F(XmlNodeTest, FindsAttributes)
{
    const XMLNode node = open("<a n='first' N='upper' e='' s=' 1\t2\n3&#9;'  n='second' "
                              "r='&lt;&amp;&#65;&#xe9;&unknown;'/>")
                             .getChildNode("a");
    const struct {
        const char *name;
        int index;
        const char *value;
    } cases[] = {
        {"n", 0, "first"},     {"n", 1, "second"},     {"n", 2, nullptr},
        {"n", -1, nullptr},    {"N", 0, "upper"},      {"N", 1, nullptr},
        {"e", 0, ""},          {"x", 0, nullptr},      {"", 0, nullptr},
        {nullptr, 0, nullptr}, {"s", 0, " 1\t2\n3\t"}, {"r", 0, "<&A\xc3\xa9&unknown;"},
    };
    for (const auto &c : cases)
        EXPECT_STREQ(node.getAttribute(c.name, c.index), c.value) << c.name << c.index;

    EXPECT_STREQ(node.getAttribute("n"), "first");
    int iterator = 0;
    EXPECT_STREQ(node.getAttribute("n", &iterator), "first");
    EXPECT_STREQ(node.getAttribute("n", &iterator), "second");
    EXPECT_EQ(iterator, 2);
    EXPECT_EQ(node.getAttribute("n", &iterator), nullptr);
    EXPECT_EQ(iterator, 2);
}

TEST_F(XmlNodeTest, FindsChildrenInAnyOrderOfQuestions)
{
    const XMLNode node = open("<r>t<a n='0'/><b n='1'/><a n='2'/><!-- a --><a n='3'><a n='x'/></a>"
                              "<![CDATA[a]]><b n='4'/><?a n='y'?></r>")
                             .getChildNode("r");
    const struct {
        const char *name;
        int index;
        const char *n; // null: no such child
    } cases[] = {
        {"a", 0, "0"},      {"a", 1, "2"},         {"a", 2, "3"},     {"a", 3, nullptr},
        {"a", 0, "0"},      {"b", 1, "4"},         {"a", 2, "3"},     {"a", 2, "3"},
        {"a", 1, "2"},      {"b", 0, "1"},         {"b", 2, nullptr}, {"b", 1, "4"},
        {"a", -1, nullptr}, {nullptr, 0, nullptr}, {"", 0, nullptr},  {"A", 0, nullptr},
    };
    for (const auto &c : cases)
        EXPECT_STREQ(node.getChildNode(c.name, c.index).getAttribute("n"), c.n)
            << c.name << c.index;
    EXPECT_EQ(node.nChildNode("a"), 3);
    EXPECT_EQ(node.nChildNode("b"), 2);
    EXPECT_EQ(node.nChildNode("c"), 0);
    EXPECT_EQ(node.nChildNode(nullptr), 0);
}

TEST_F(XmlNodeTest, TheEmptyNodeHasNothing)
{
    XMLNode node = XMLNode::emptyXMLNode;
    EXPECT_TRUE(node.isEmpty());
    EXPECT_TRUE(node.getChildNode("a").isEmpty());
    EXPECT_EQ(node.nChildNode("a"), 0);
    EXPECT_EQ(node.getAttribute("a"), nullptr);
    EXPECT_EQ(node.getAttribute("a", 0), nullptr);
}

TEST_F(XmlNodeTest, HandlesKeepTheDocument)
{
    XMLNode root = open("<a n='outer'><b n='inner'/></a>");
    XMLNode outer = root.getChildNode("a");
    XMLNode inner = outer.getChildNode("b");
    XMLNode copy = outer;
    root = XMLNode::emptyXMLNode;
    outer = inner; // gives up one of two handles to "a"
    EXPECT_STREQ(copy.getAttribute("n"), "outer");
    EXPECT_STREQ(copy.getChildNode("b").getAttribute("n"), "inner");

    copy = std::move(inner);
    const XMLNode &self = copy;
    copy = self;
    outer = root;
    EXPECT_TRUE(outer.isEmpty());
    EXPECT_STREQ(copy.getAttribute("n"), "inner"); // the last handle
}

TEST_F(XmlNodeTest, TakesManyChildrenInOrder)
{
    constexpr int kChildren = 300'000;
    std::string document = "<r>";
    for (int i = 0; i < kChildren; ++i) document += "<a n='" + std::to_string(i) + "'/><b/>";
    const XMLNode node = open(document + "</r>").getChildNode("r");
    ASSERT_EQ(node.nChildNode("a"), kChildren);
    for (int i = 0; i < kChildren; ++i)
        ASSERT_EQ(node.getChildNode("a", i).getAttribute("n"), std::to_string(i));
}

} // namespace
} // namespace vornak::test
