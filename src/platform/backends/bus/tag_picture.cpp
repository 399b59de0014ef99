#include "platform/backends/bus/tag_picture.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace velmora::platform::bus {

namespace {

constexpr std::uint8_t frontCover = 3;
// Of frames, blocks and atoms: more than any file has that somebody listens to.
constexpr int mostParts = 4096;
// What stands in a frame around its picture.
constexpr std::size_t mostDescription = 65'536;

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes)
        value = value << 8U | static_cast<std::uint8_t>(byte);
    return value;
}

std::uint64_t bigEndian(std::string_view bytes, std::size_t at, std::size_t count) {
    return at + count <= bytes.size() ? bigEndian(bytes.substr(at, count)) : 0;
}

std::uint64_t syncSafe(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes)
        value = value << 7U | (static_cast<std::uint8_t>(byte) & 0x7FU);
    return value;
}

struct Picture {
    std::string bytes;
    bool isFront = false;
};

// The best so far.
class Choice {
public:
    void offer(std::string_view bytes, bool isFront) {
        if (bytes.size() > mostPictureBytes || (!best_.bytes.empty() && !isFront))
            return;
        std::string copy(bytes);
        if (*endingOfPicture(copy) != '\0')
            best_ = {std::move(copy), isFront};
    }
    bool isSettled() const { return best_.isFront; }
    std::string take() { return std::move(best_.bytes); }

private:
    Picture best_;
};

// --- ID3 -----------------------------------------------------------------------------------------

constexpr std::size_t id3Head = 10;

// In an unsynchronised tag a zero follows each byte of ones, and is not meant.
std::string synchronised(std::string_view bytes) {
    std::string plain;
    plain.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        plain += bytes[i];
        if (bytes[i] == '\xFF' && i + 1 < bytes.size() && bytes[i + 1] == '\0')
            ++i;
    }
    return plain;
}

// Behind the end of a text in an encoding: one NUL, or two at an even place.
std::optional<std::size_t> behindText(std::string_view body, std::size_t at, bool wide) {
    for (const std::size_t step = wide ? 2 : 1; at + step <= body.size(); at += step)
        if (body[at] == '\0' && (!wide || body[at + 1] == '\0'))
            return at + step;
    return std::nullopt;
}

void takeId3Body(std::string_view body, int version, Choice &choice) {
    if (body.size() < 6)
        return;
    const bool wide = body[0] == 1 || body[0] == 2;
    // A kind of three letters in the oldest form, a text in the others.
    const auto kindEnd = version == 2 ? std::optional<std::size_t>(4) : behindText(body, 1, false);
    if (!kindEnd || *kindEnd >= body.size())
        return;
    const bool isFront = static_cast<std::uint8_t>(body[*kindEnd]) == frontCover;
    const auto begin = behindText(body, *kindEnd + 1, wide);
    if (begin)
        choice.offer(body.substr(*begin), isFront);
}

struct Id3Form {
    std::size_t head;
    std::size_t name;
    std::size_t size;
    std::string_view picture;
};

void takeId3Frame(std::string_view head, std::string_view body, int version, bool unsynced,
                  Choice &choice) {
    std::string plain;
    if (version >= 3) {
        constexpr unsigned compressed3 = 0x80;
        constexpr unsigned encrypted3 = 0x40;
        constexpr unsigned grouped3 = 0x20;
        constexpr unsigned grouped4 = 0x40;
        constexpr unsigned packed4 = 0x0C;
        constexpr unsigned unsynced4 = 0x02;
        constexpr unsigned length4 = 0x01;
        const auto flags = static_cast<std::uint8_t>(head[9]);
        if ((flags & (version == 3 ? compressed3 | encrypted3 : packed4)) != 0)
            return;
        std::size_t more = (flags & (version == 3 ? grouped3 : grouped4)) != 0 ? 1 : 0;
        if (version == 4 && (flags & length4) != 0)
            more += 4;
        body.remove_prefix(std::min(more, body.size()));
        if (version == 4 && (unsynced || (flags & unsynced4) != 0)) {
            plain = synchronised(body);
            body = plain;
        }
    }
    takeId3Body(body, version, choice);
}

void readId3(const ReadAt &readAt, std::string_view begin, Choice &choice) {
    constexpr unsigned unsyncedFlag = 0x80;
    constexpr unsigned extendedFlag = 0x40;
    constexpr Id3Form forms[] = {{6, 3, 3, "PIC"}, {10, 4, 4, "APIC"}, {10, 4, 4, "APIC"}};
    const int version = static_cast<std::uint8_t>(begin[3]);
    if (version < 2 || version > 4)
        return;
    const Id3Form &form = forms[version - 2];
    const auto flags = static_cast<std::uint8_t>(begin[5]);
    const bool unsynced = (flags & unsyncedFlag) != 0;
    const std::size_t size =
        std::min<std::uint64_t>(syncSafe(begin.substr(6, 4)), 4 * mostPictureBytes);
    std::string tag = readAt(id3Head, size);
    // In the older forms the whole tag is, in the newest each frame by itself.
    if (unsynced && version < 4)
        tag = synchronised(tag);
    std::string_view rest = tag;
    if ((flags & extendedFlag) != 0 && version > 2) {
        const std::uint64_t extended =
            version == 3 ? bigEndian(rest, 0, 4) + 4 : syncSafe(rest.substr(0, 4));
        rest.remove_prefix(std::min<std::uint64_t>(extended, rest.size()));
    }
    for (int parts = 0; parts < mostParts && rest.size() > form.head && rest[0] != '\0'; ++parts) {
        const std::string_view head = rest.substr(0, form.head);
        const std::string_view sizeBytes = head.substr(form.name, form.size);
        const std::uint64_t length = version == 4 ? syncSafe(sizeBytes) : bigEndian(sizeBytes);
        rest.remove_prefix(form.head);
        if (length > rest.size())
            return;
        if (head.starts_with(form.picture))
            takeId3Frame(head, rest.substr(0, length), version, unsynced, choice);
        rest.remove_prefix(length);
    }
}

// --- FLAC ----------------------------------------------------------------------------------------

void takeFlacPicture(std::string_view block, Choice &choice) {
    const bool isFront = bigEndian(block, 0, 4) == frontCover;
    std::uint64_t at = 4;
    for (int text = 0; text < 2; ++text) {
        if (at + 4 > block.size())
            return;
        at += 4 + bigEndian(block, at, 4);
    }
    constexpr std::uint64_t measures = 16; // width, height, depth, colours
    at += measures;
    if (at + 4 > block.size())
        return;
    const std::uint64_t length = bigEndian(block, at, 4);
    if (length <= block.size() - at - 4)
        choice.offer(block.substr(at + 4, length), isFront);
}

void readFlac(const ReadAt &readAt, std::uint64_t at, Choice &choice) {
    constexpr std::uint8_t lastFlag = 0x80;
    constexpr std::uint8_t pictureKind = 6;
    at += 4;
    for (int parts = 0; parts < mostParts && !choice.isSettled(); ++parts) {
        const std::string head = readAt(at, 4);
        if (head.size() < 4)
            return;
        const auto kind = static_cast<std::uint8_t>(head[0]);
        const std::uint64_t length = bigEndian(head, 1, 3);
        at += 4;
        if ((kind & ~lastFlag) == pictureKind && length <= mostPictureBytes + mostDescription)
            takeFlacPicture(readAt(at, length), choice);
        if ((kind & lastFlag) != 0)
            return;
        at += length;
    }
}

// --- MP4 -----------------------------------------------------------------------------------------

struct Atom {
    std::uint64_t begin; // of what is in it
    std::uint64_t end;
};

class Mp4 {
public:
    Mp4(const ReadAt &readAt, Choice &choice) : readAt_(readAt), choice_(choice) {}

    void read() {
        constexpr std::uint64_t everything = std::uint64_t{1} << 62U;
        Atom at{0, everything};
        for (const std::string_view name : {"moov", "udta", "meta", "ilst", "covr"}) {
            const auto found = find(at, name);
            if (!found)
                return;
            at = *found;
            // Behind its version and flags.
            if (name == "meta")
                at.begin += 4;
        }
        const auto data = find(at, "data");
        constexpr std::uint64_t dataHead = 8; // kind and locale
        if (data && data->end - data->begin > dataHead &&
            data->end - data->begin - dataHead <= mostPictureBytes)
            choice_.offer(readAt_(data->begin + dataHead, data->end - data->begin - dataHead),
                          true);
    }

private:
    std::optional<Atom> find(Atom in, std::string_view name) {
        constexpr std::uint64_t shortHead = 8;
        constexpr std::uint64_t longHead = 16;
        while (in.begin + shortHead <= in.end && parts_++ < mostParts) {
            const std::string head = readAt_(in.begin, longHead);
            if (head.size() < shortHead)
                return std::nullopt;
            std::uint64_t size = bigEndian(head, 0, 4);
            std::uint64_t before = shortHead;
            if (size == 1) {
                size = bigEndian(head, 8, 8);
                before = longHead;
            } else if (size == 0) {
                size = in.end - in.begin;
            }
            if (size < before || size > in.end - in.begin)
                return std::nullopt;
            if (std::string_view(head).substr(4, 4) == name)
                return Atom{in.begin + before, in.begin + size};
            in.begin += size;
        }
        return std::nullopt;
    }

    const ReadAt &readAt_;
    Choice &choice_;
    int parts_ = 0;
};

} // namespace

const char *endingOfPicture(const std::string &bytes) {
    if (bytes.starts_with("\xFF\xD8\xFF"))
        return ".jpg";
    return bytes.starts_with("\x89PNG\r\n\x1A\n") ? ".png" : "";
}

std::string pictureInTag(const ReadAt &readAt) {
    Choice choice;
    const std::string begin = readAt(0, 12);
    if (begin.size() < 12)
        return {};
    if (begin.starts_with("ID3")) {
        readId3(readAt, begin, choice);
        const std::uint64_t behind = id3Head + syncSafe(std::string_view(begin).substr(6, 4));
        if (!choice.isSettled() && readAt(behind, 4) == "fLaC")
            readFlac(readAt, behind, choice);
    } else if (begin.starts_with("fLaC")) {
        readFlac(readAt, 0, choice);
    } else if (std::string_view(begin).substr(4, 4) == "ftyp") {
        Mp4(readAt, choice).read();
    }
    return choice.take();
}

} // namespace velmora::platform::bus
