// Text from outside: every conversion answers, names survive, what is valid comes back the same.

#include "base/numbers.h"
#include "base/text.h"
#include "text/ansi_conversion.h"
#include "text/path_text.h"
#include "text/utf8_units.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace velmora;
using namespace velmora::platform;

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const char16_t *pages[] = {u"", u"936", u"932", u"950", u"1252", u"65001"};
    const AnsiConversion ansi([&] { return std::u16string(pages[data[0] % 6]); });
    const std::string bytes(reinterpret_cast<const char *>(data) + 1, size - 1);

    require(pathBytes(pathFromBytes(bytes)) == bytes);
    // A name goes to the command's text and back; no name is empty or holds a NUL byte.
    const bool name = !bytes.empty() && bytes.find('\0') == std::string::npos;
    require(decodeShortPath(shortPath(pathFromBytes(bytes))) ==
            (name ? std::optional(bytes) : std::nullopt));
    // What somebody else wrote as a short path is refused or is some name, whose own is read again.
    if (const auto other = decodeShortPath(pathFromBytes(bytes)))
        require(decodeShortPath(shortPath(pathFromBytes(*other))) == other);

    // Units of any kind, halves of pairs among them, as a window or another program may give them.
    std::u16string units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * 2);
    require(encodeUtf8Units(units).size() == utf8UnitsByteCount(units));
    require(ansi.byteCount(units) == ansi.encode(units).size());
    require(fromUtf8(toUtf8(units)).size() >= units.size());

    const std::u16string text = ansi.decode(bytes);
    require(ansi.byteCount(text) == ansi.encode(text).size());
    const std::u16string path = ansi.decodePath(bytes);
    if (data[0] % 6 == 0) // what was read from a list is written so that it reads the same
        require(ansi.decodePath(ansi.encode(path)) == path);
    require(ansi.decodeTogether({bytes, bytes}, (data[0] & 8) != 0).size() == 2);

    // A path is a folder and a name, whichever separator it has.
    require(std::u16string(folderPart(path)).append(baseName(path)) == path);
    require(baseName(path).find(pathSeparatorOf(path)) == std::u16string_view::npos);
    require(typedFolder(path, u"") == path);
    require(typedFolder(path, u"/h").size() <= path.size() + 1);

    const std::u16string plain = fromUtf8(bytes);
    require(fromUtf8(toUtf8(plain)) == plain);
    leadingInt32(plain);
    strictInt32(plain);
    require(upper(upper(plain)) == upper(plain));
    return 0;
}
