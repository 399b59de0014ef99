#include "platform/backends/media/mci_command.h"

#include "base/text.h"

#include <array>
#include <charconv>
#include <limits>

namespace velmora::platform::media {

namespace {

// The words of a command, one after the other. Every taker answers with the error to give up with.
class Words {
public:
    explicit Words(std::u16string_view text) : rest_(text) { skipBlanks(); }

    bool atEnd() const { return rest_.empty(); }

    MciError take(std::u16string_view &word) {
        if (atEnd())
            return MciError::MissingParameter;
        const std::size_t length = std::min(rest_.find(u' '), rest_.size());
        word = rest_.substr(0, length);
        rest_.remove_prefix(length);
        skipBlanks();
        return MciError::None;
    }

    MciError take(std::u16string &word) {
        std::u16string_view view;
        const MciError error = take(view);
        word = view;
        return error;
    }

    MciError expect(std::u16string_view keyword) {
        std::u16string_view word;
        if (const MciError error = take(word); error != MciError::None)
            return error;
        return equalsIgnoringCase(word, keyword) ? MciError::None : MciError::UnrecognizedKeyword;
    }

    template <typename Integer> MciError takeNumber(Integer &number) {
        std::u16string_view word;
        if (const MciError error = take(word); error != MciError::None)
            return error;
        std::string digits;
        for (const char16_t unit : word)
            digits += unit < 0x80 ? static_cast<char>(unit) : '?';
        const char *end = digits.data() + digits.size();
        const auto [stop, fault] = std::from_chars(digits.data(), end, number);
        return fault == std::errc() && stop == end ? MciError::None : MciError::BadInteger;
    }

    MciError expectEnd() const { return atEnd() ? MciError::None : MciError::UnrecognizedKeyword; }

private:
    void skipBlanks() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(u' '), rest_.size()));
    }

    std::u16string_view rest_;
};

// Runs the steps in order up to the first that fails.
template <typename... Steps> MciError inOrder(Steps &&...steps) {
    MciError error = MciError::None;
    static_cast<void>(((error = steps(), error == MciError::None) && ...));
    return error;
}

MciError parseStyle(Words &words, OpenCommand &open) {
    open.styleChild = true;
    return inOrder([&] { return words.expect(u"style"); }, [&] { return words.expect(u"child"); });
}

MciError parseOpen(Words &words, MciCommand &command) {
    OpenCommand open;
    MciError error =
        inOrder([&] { return words.take(open.shortPath); }, [&] { return words.expect(u"type"); },
                [&] { return words.take(open.type); }, [&] { return words.expect(u"alias"); },
                [&] { return words.take(command.alias); });
    if (error == MciError::None && !words.atEnd()) {
        Words lookAhead = words;
        if (lookAhead.expect(u"parent") == MciError::None) {
            words = lookAhead;
            error = words.takeNumber(open.parentWindow);
        }
        if (error == MciError::None)
            error = parseStyle(words, open);
    }
    command.action = std::move(open);
    return error;
}

MciError parseSeek(Words &words, MciCommand &command) {
    SeekCommand seek;
    const MciError error =
        inOrder([&] { return words.expect(u"to"); }, [&] { return words.takeNumber(seek.ms); });
    command.action = seek;
    return error;
}

MciError parseSet(Words &words, MciCommand &command) {
    command.action = SetTimeFormatCommand{};
    return inOrder([&] { return words.expect(u"time"); }, [&] { return words.expect(u"format"); },
                   [&] { return words.expect(u"milliseconds"); });
}

MciError parseChannel(Words &words, MciCommand &command) {
    std::u16string_view word;
    if (const MciError error = words.take(word); error != MciError::None)
        return error;
    SetChannelCommand source;
    if (equalsIgnoringCase(word, u"left"))
        source.channel = Channel::Left;
    else if (equalsIgnoringCase(word, u"right"))
        source.channel = Channel::Right;
    else if (!equalsIgnoringCase(word, u"stereo"))
        return MciError::UnrecognizedKeyword;
    command.action = source;
    return MciError::None;
}

MciError parseSetAudio(Words &words, MciCommand &command) {
    std::u16string_view item;
    const MciError error =
        inOrder([&] { return words.take(item); }, [&] { return words.expect(u"to"); });
    if (error != MciError::None)
        return error;
    if (equalsIgnoringCase(item, u"source"))
        return parseChannel(words, command);
    if (!equalsIgnoringCase(item, u"volume"))
        return MciError::UnrecognizedKeyword;
    SetVolumeCommand volume;
    const MciError fault = words.takeNumber(volume.level);
    command.action = volume;
    return fault;
}

MciError parseStatus(Words &words, MciCommand &command) {
    std::u16string_view item;
    if (const MciError error = words.take(item); error != MciError::None)
        return error;
    if (equalsIgnoringCase(item, u"mode")) {
        command.action = StatusCommand{StatusItem::Mode};
    } else if (equalsIgnoringCase(item, u"position")) {
        command.action = StatusCommand{StatusItem::Position};
    } else if (equalsIgnoringCase(item, u"length")) {
        command.action = StatusCommand{StatusItem::Length};
    } else if (equalsIgnoringCase(item, u"window")) {
        command.action = StatusCommand{StatusItem::WindowHandle};
        return words.expect(u"handle");
    } else {
        return MciError::UnrecognizedKeyword;
    }
    return MciError::None;
}

MciError parsePut(Words &words, MciCommand &command) {
    PutCommand put;
    const MciError error = inOrder(
        [&] { return words.expect(u"window"); }, [&] { return words.expect(u"at"); },
        [&] { return words.takeNumber(put.x); }, [&] { return words.takeNumber(put.y); },
        [&] { return words.takeNumber(put.width); }, [&] { return words.takeNumber(put.height); });
    command.action = put;
    return error;
}

template <typename Action> MciError parseBare(Words &, MciCommand &command) {
    command.action = Action{};
    return MciError::None;
}

struct Verb {
    std::u16string_view name;
    MciError (*parse)(Words &words, MciCommand &command);
};

// Every verb but "open", whose alias does not stand behind it.
constexpr std::array verbs{
    Verb{u"close", parseBare<CloseCommand>},
    Verb{u"play", parseBare<PlayCommand>},
    Verb{u"pause", parseBare<PauseCommand>},
    Verb{u"seek", parseSeek},
    Verb{u"set", parseSet},
    Verb{u"setaudio", parseSetAudio},
    Verb{u"status", parseStatus},
    Verb{u"put", parsePut},
};

} // namespace

MciError parseMciCommand(std::u16string_view text, MciCommand &command) {
    Words words(text);
    std::u16string_view name;
    if (words.take(name) != MciError::None)
        return MciError::MissingCommand;
    if (equalsIgnoringCase(name, u"open"))
        return inOrder([&] { return parseOpen(words, command); },
                       [&] { return words.expectEnd(); });
    for (const Verb &verb : verbs) {
        if (equalsIgnoringCase(name, verb.name))
            return inOrder([&] { return words.take(command.alias); },
                           [&] { return verb.parse(words, command); },
                           [&] { return words.expectEnd(); });
    }
    return MciError::UnrecognizedCommand;
}

std::optional<std::string> knownDeviceType(std::u16string_view type) {
    constexpr std::array<std::string_view, 5> types{"MPEGVideo", "MPEGVideo2", "Waveaudio",
                                                    "Sequencer", "AVIVideo"};
    for (const std::string_view known : types)
        if (equalsIgnoringCase(type, fromAscii(known)))
            return std::string(known);
    return std::nullopt;
}

} // namespace velmora::platform::media
