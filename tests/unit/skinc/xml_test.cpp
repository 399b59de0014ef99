#include "faults.h"
#include "xml.h"

#include <gmock/gmock.h>

namespace velmora::skinc {
namespace {

using testing::HasSubstr;

std::string fault(const std::string &text) {
    return faultOf([&] { parseXml("f.svg", text); });
}

TEST(Xml, ReadsElementsAttributesAndTheirLines) {
    const XmlElement root = parseXml("f", "<svg a='1'\n b=\"2\">\n<g/><g>\n<path d=''/></g></svg>");
    EXPECT_EQ(root.name, "svg");
    ASSERT_EQ(root.attributes.size(), 2U);
    EXPECT_EQ(root.find("b")->value, "2");
    EXPECT_EQ(root.find("b")->line, 2);
    EXPECT_EQ(root.find("c"), nullptr);
    ASSERT_EQ(root.children.size(), 2U);
    ASSERT_EQ(root.children[1].children.size(), 1U);
    EXPECT_EQ(root.children[1].children[0].line, 4);
}

TEST(Xml, SkipsDeclarationCommentsAndText) {
    const XmlElement root =
        parseXml("f", "<?xml version='1.0'?>\n<!-- <no/> -->\n<svg>text<!-- x --></svg>\n");
    EXPECT_TRUE(root.children.empty());
    EXPECT_EQ(root.line, 3);
}

TEST(Xml, ResolvesTheNamedEntities) {
    EXPECT_EQ(parseXml("f", "<a b='&lt;&amp;&gt;&quot;&apos;'/>").find("b")->value, "<&>\"'");
    EXPECT_THAT(fault("<a b='&nbsp;'/>"), HasSubstr("unknown entity"));
}

TEST(Xml, NamesTheLineOfAnElementThatIsNeverClosed) {
    EXPECT_EQ(fault("<svg>\n<g>\n"), "f.svg:3: <g> of line 2 is never closed");
}

TEST(Xml, RefusesWhatIsNotWellFormed) {
    EXPECT_THAT(fault(""), HasSubstr("no root element"));
    EXPECT_THAT(fault("<a></b>"), HasSubstr("does not match"));
    EXPECT_THAT(fault("<a b=1/>"), HasSubstr("not quoted"));
    EXPECT_THAT(fault("<a b='1' b='2'/>"), HasSubstr("stands twice"));
    EXPECT_THAT(fault("<a b='<'/>"), HasSubstr("'<' inside a value"));
    EXPECT_THAT(fault("<a b='1"), HasSubstr("expected"));
    EXPECT_THAT(fault("<a/><b/>"), HasSubstr("follows the root"));
    EXPECT_THAT(fault("<!-- x"), HasSubstr("a comment never ends"));
    EXPECT_THAT(fault("<!DOCTYPE svg><a/>"), HasSubstr("document types"));
    EXPECT_THAT(fault("< a/>"), HasSubstr("expected a name"));
    EXPECT_THAT(fault("<a"), HasSubstr("expected"));
}

TEST(Xml, EndsOnNestingWithoutABottom) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<g>";
    EXPECT_THAT(fault(deep), HasSubstr("nested too deeply"));
}

} // namespace
} // namespace velmora::skinc
