// What is to be opened, as it comes from outside: the words of a command line, and the addresses
// that another program sends. A word that is refused is complained of in one line; what stands for
// a file comes back as an absolute path, and its address stands for that path again.

#include "open/arguments.h"
#include "platform/backends/bus/metadata.h"
#include "platform/backends/bus/opened_files.h"
#include "text/file_uris.h"
#include "text/path_text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace velmora;

void require(bool holds) {
    if (!holds)
        std::abort();
}

// One on each line.
std::vector<std::string> wordsOf(const std::string &text) {
    std::vector<std::string> words;
    std::size_t at = 0;
    while (at <= text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return words;
}

void tryAddress(const std::string &address) {
    for (const std::u16string &path : platform::bus::openedFiles(address)) {
        require(!path.empty() && path.front() == u'/');
        const std::string bytes = platform::pathBytes(path);
        require(platform::bus::openedFiles(platform::bus::fileUri(bytes)) ==
                std::vector<std::u16string>{path});
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    const std::vector<std::string> words = wordsOf(text);
    std::string complaint;
    // What is dropped comes as such a list.
    for (const std::string &path : platform::localPaths(text, "this-host"))
        require(path.front() == '/' && path.find('\0') == std::string::npos);
    const auto request = open_tool::readWords(words, complaint);
    require(request.has_value() == complaint.empty());
    if (request) {
        require(std::isfinite(request->amount.number));
        require(request->files.size() <= words.size());
    }
    for (const std::string &word : words) {
        if (const auto amount = open_tool::readAmount(word))
            require(std::isfinite(amount->number));
        tryAddress(word);
        // No word of a command line has a NUL in it.
        if (word.find('\0') == std::string::npos)
            if (const auto address = open_tool::addressOf(word, "/here"))
                tryAddress(*address);
    }
    return 0;
}
