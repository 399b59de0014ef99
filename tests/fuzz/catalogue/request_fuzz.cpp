// Requests from anywhere, line by line: the target, the fields Host, Accept-Language and Range, the
// length of a file. Each has an answer that a connection can carry, a range lies within its file,
// and what is found by its words or its id lies in the library.

#include "catalogue/catalogue.h"
#include "catalogue/ranges.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace velmora::catalogue;

void require(bool holds) {
    if (!holds)
        std::abort();
}

std::shared_ptr<const Library> smallLibrary() {
    Library::Items items;
    for (const char *path : {"a/one.lrc", "a/one.mp3", "a/two.flac", "b/two.mp3", "film.mp4"}) {
        auto item = std::make_shared<Item>();
        item->file = {path, 1000, 0};
        item->isLyric = item->format() == "lrc";
        item->tags = {stemOf(*item), u"Somebody", u"Album"};
        if (item->isLyric)
            item->own = std::make_shared<const Tags>();
        items.push_back(std::move(item));
    }
    return std::make_shared<const Library>(std::move(items));
}

// Over a folder in which nothing lies any more.
const Catalogue &catalogue() {
    static const std::unique_ptr<const Catalogue> made = [] {
        std::string folder =
            (std::filesystem::temp_directory_path() / "velmora-fuzz-XXXXXX").string();
        require(::mkdtemp(folder.data()) != nullptr);
        auto one = std::make_unique<Catalogue>(folder, "127.0.0.1:8420");
        std::filesystem::remove(folder);
        one->show(smallLibrary());
        return one;
    }();
    return *made;
}

void checkAnswer(std::string_view target, std::string_view host, std::string_view language) {
    constexpr std::size_t longestPage = std::size_t{1} << 20;
    const Answer answer = catalogue().answer(target, host, language);
    require(answer.status == 200 || answer.status == 403 || answer.status == 404);
    require(!answer.file && answer.bytes.size() < longestPage + 10 * target.size());
    for (const auto &[name, value] : answer.fields)
        require(value.find_first_of("\r\n") == std::string::npos);
}

void checkRange(std::string_view field, std::string_view length) {
    std::int64_t bytes = 0;
    std::from_chars(length.data(), length.data() + length.size(), bytes);
    if (bytes < 0)
        return;
    const PartAsked asked = partOf(field, bytes);
    require(asked.whole ? asked.possible && asked.part == Part{0, bytes}
                        : !asked.possible || (asked.part.bytes > 0 && asked.part.first >= 0 &&
                                              asked.part.bytes <= bytes - asked.part.first));
    contentRange(asked, bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char *>(data), size);
    std::array<std::string_view, 5> lines;
    for (std::string_view &line : lines) {
        line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    checkAnswer(lines[0], lines[1], lines[2]);
    checkAnswer(lines[0], "", lines[2]);
    checkRange(lines[3], lines[4]);
    for (const Item *item :
         catalogue().library()->searchSongs(searchWords(lines[0], "w", "&")).items)
        require(!item->isLyric);
    if (const Item *item = catalogue().library()->find(lines[0]))
        require(item->id() == lines[0]);
    return 0;
}
