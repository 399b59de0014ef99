#include "xml.h"

#include "error.h"

namespace velmora::skinc {

namespace {

constexpr int maxDepth = 64;

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool isNameChar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == ':' || c == '.';
}

class Reader {
public:
    Reader(const std::string &file, std::string_view text) : file_(file), text_(text) {}

    XmlElement document() {
        skipMisc();
        if (atEnd())
            fail("no root element");
        XmlElement root = element(0);
        skipMisc();
        if (!atEnd())
            fail("something follows the root element");
        return root;
    }

private:
    [[noreturn]] void fail(const std::string &what) const {
        throw CompileError(file_, line_, what);
    }
    bool atEnd() const { return at_ >= text_.size(); }
    char peek() const { return atEnd() ? '\0' : text_[at_]; }
    bool starts(std::string_view with) const { return text_.substr(at_).starts_with(with); }

    char take() {
        const char c = peek();
        if (c == '\n')
            ++line_;
        ++at_;
        return c;
    }

    void expect(char c) {
        if (atEnd() || peek() != c)
            fail(std::string("expected '") + c + "'");
        take();
    }

    void skipSpace() {
        while (!atEnd() && isSpace(peek()))
            take();
    }

    void skipUntil(std::string_view end, const char *what) {
        while (!starts(end)) {
            if (atEnd())
                fail(std::string(what) + " never ends");
            take();
        }
        for (std::size_t i = 0; i < end.size(); ++i)
            take();
    }

    // Text, comments and processing instructions; stops at an element or a closing tag.
    void skipMisc() {
        while (!atEnd())
            if (starts("<!--"))
                skipUntil("-->", "a comment");
            else if (starts("<?"))
                skipUntil("?>", "an instruction");
            else if (starts("<!"))
                fail("document types and CDATA are not part of a drawing");
            else if (peek() == '<')
                return;
            else
                take();
    }

    std::string name() {
        std::string result;
        while (!atEnd() && isNameChar(peek()))
            result += take();
        if (result.empty())
            fail("expected a name");
        return result;
    }

    char entity() {
        static constexpr struct {
            std::string_view text;
            char value;
        } entities[] = {
            {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
        for (const auto &known : entities) {
            if (starts(known.text)) {
                at_ += known.text.size();
                return known.value;
            }
        }
        fail("unknown entity");
    }

    XmlAttribute attribute() {
        XmlAttribute result;
        result.line = line_;
        result.name = name();
        skipSpace();
        expect('=');
        skipSpace();
        const char quote = peek();
        if (quote != '"' && quote != '\'')
            fail("the value of '" + result.name + "' is not quoted");
        take();
        while (!atEnd() && peek() != quote) {
            if (peek() == '<')
                fail("'<' inside a value");
            result.value += peek() == '&' ? entity() : take();
        }
        expect(quote);
        return result;
    }

    XmlElement element(int depth) {
        if (depth >= maxDepth)
            fail("nested too deeply");
        XmlElement result;
        result.line = line_;
        expect('<');
        result.name = name();
        while (true) {
            skipSpace();
            if (peek() == '>' || peek() == '/' || atEnd())
                break;
            XmlAttribute next = attribute();
            if (result.find(next.name))
                fail("attribute '" + next.name + "' stands twice");
            result.attributes.push_back(std::move(next));
        }
        if (peek() == '/') {
            take();
            expect('>');
            return result;
        }
        expect('>');
        children(result, depth);
        return result;
    }

    void children(XmlElement &parent, int depth) {
        while (true) {
            skipMisc();
            if (atEnd())
                fail("<" + parent.name + "> of line " + std::to_string(parent.line) +
                     " is never closed");
            if (!starts("</")) {
                parent.children.push_back(element(depth + 1));
                continue;
            }
            take();
            take();
            if (name() != parent.name)
                fail("closing tag does not match <" + parent.name + "> of line " +
                     std::to_string(parent.line));
            skipSpace();
            expect('>');
            return;
        }
    }

    const std::string &file_;
    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
};

} // namespace

const XmlAttribute *XmlElement::find(std::string_view attribute) const {
    for (const XmlAttribute &candidate : attributes)
        if (candidate.name == attribute)
            return &candidate;
    return nullptr;
}

XmlElement parseXml(const std::string &file, std::string_view text) {
    return Reader(file, text).document();
}

} // namespace velmora::skinc
