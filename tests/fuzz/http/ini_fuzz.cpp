// INI files: the lines are the whole file, every value is a part of its line, and taking out the
// line of a key takes out that key and leaves the sections.

#include "base/text.h"
#include "text/ini_text.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora;
using namespace velmora::platform;

void require(bool holds) {
    if (!holds)
        std::abort();
}

std::vector<std::u16string> textsOf(std::string_view bytes) {
    std::vector<std::u16string> texts;
    std::size_t at = 0;
    for (const FileLine &line : linesOf(bytes)) {
        require(line.begin == at && line.end >= line.begin && line.next >= line.end);
        require(line.next > line.begin && line.next - line.end <= 2);
        at = line.next;
        texts.push_back(fromUtf8(bytes.substr(line.begin, line.end - line.begin)));
    }
    require(at == bytes.size());
    return texts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char *>(data), size);
    const std::vector<std::u16string> texts = textsOf(bytes);
    const IniText ini(texts);
    require(ini.endOf(u"a") <= texts.size());
    const IniText::Place *place = ini.find(u"a", u"k");
    if (place == nullptr)
        return 0;
    require(place->line < texts.size() && contains(texts[place->line], place->value));
    const FileLine line = linesOf(bytes)[place->line];
    bytes.erase(line.begin, line.next - line.begin);
    const IniText less(textsOf(bytes));
    const IniText::Place *next = less.find(u"A", u"K");
    require(next == nullptr || next->line >= place->line);
    // Taken out of what was read it leaves the same.
    IniText rest(texts);
    rest.remove(u"A", u"K");
    const IniText::Place *other = rest.find(u"a", u"k");
    require((other == nullptr) == (next == nullptr));
    require(other == nullptr || other->value == next->value);
    require(rest.keys(u"a") == less.keys(u"a"));
    return 0;
}
