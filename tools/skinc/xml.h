#pragma once

// A reader for the XML that drawings are written in: elements, attributes, comments and the five
// named entities. Text between elements is skipped; document types and CDATA are refused.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::skinc {

struct XmlAttribute {
    std::string name;
    std::string value;
    int line = 0;
};

struct XmlElement {
    std::string name;
    std::vector<XmlAttribute> attributes;
    std::vector<XmlElement> children;
    int line = 0;

    // Null when absent.
    const XmlAttribute *find(std::string_view attribute) const;
};

// The root element. Throws CompileError; nesting is limited to 64 levels.
XmlElement parseXml(const std::string &file, std::string_view text);

} // namespace velmora::skinc
