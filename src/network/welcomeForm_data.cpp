// From the welcome file to the controls.

#include "network/welcomeForm.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "network/controlINI.h"
#include "platform/contracts/profiles.h"
#include "velmora.h"

#include <algorithm>

namespace velmora {

namespace {

constexpr std::u16string_view mark = u"|■|"; // between the elements of the joined banner
constexpr std::u16string_view standing =
    u"Velmora是一款无需安装的绿色版播放器，它具有强大的媒体播放功能，皮肤精美，"
    u"是不想安装的用户的最佳选择。";
constexpr std::int64_t lastElement = 32767; // of an array of controls
constexpr Twips marginRight = 300;

std::u16string orElse(const std::u16string &text, std::u16string_view otherwise) {
    return text.empty() ? std::u16string(otherwise) : text;
}

std::int32_t wholeNumber(std::u16string_view text) {
    const auto number = strictInt32(text);
    if (!number)
        raise(ErrorNumber::TypeMismatch);
    return *number;
}

std::vector<std::u16string> splitAt(std::u16string_view text, std::u16string_view separator) {
    std::vector<std::u16string> pieces;
    for (std::size_t at = 0;;) {
        const std::size_t found = text.find(separator, at);
        pieces.emplace_back(text.substr(at, found - at));
        if (found == std::u16string_view::npos)
            return pieces;
        at = found + separator.size();
    }
}

} // namespace

// --- the banner's array ---

void BannerItems::set(std::vector<Item> present, std::int64_t upperBound) {
    present_ = std::move(present);
    upperBound_ = upperBound;
}

void BannerItems::erase() noexcept {
    present_.clear();
    upperBound_.reset();
}

std::int64_t BannerItems::upperBound() const {
    if (!upperBound_)
        raise(ErrorNumber::SubscriptOutOfRange);
    return *upperBound_;
}

std::u16string BannerItems::at(std::int64_t index) const {
    if (index < 0 || index > upperBound())
        raise(ErrorNumber::SubscriptOutOfRange);
    const auto found =
        std::lower_bound(present_.begin(), present_.end(), index,
                         [](const Item &item, std::int64_t wanted) { return item.index < wanted; });
    return found != present_.end() && found->index == index ? found->text : std::u16string();
}

// --- reading ---

std::u16string welcomeForm::value(std::u16string_view section, std::u16string_view key) const {
    return std::u16string(
        trim(iniValue(app_.platform().profiles, welcome_File, section, key, std::nullopt)));
}

// The numbers between `before` and "_Str" or "_Link" among a section's keys, rising, each once.
// Counts in the file are taken as they are given, but what the data leaves out is empty and not
// asked for.
std::vector<std::int32_t> welcomeForm::numbersPresent(std::u16string_view section,
                                                      std::u16string_view before) const {
    std::vector<std::int32_t> numbers;
    const std::u16string beginning = upper(before);
    for (const std::u16string &name :
         app_.platform().profiles.GetPrivateProfileKeysA(section, welcome_File)) {
        const std::u16string key = upper(name);
        const std::size_t end = key.rfind(u'_');
        if (!startsWith(key, beginning) || end == key.npos || end <= beginning.size())
            continue;
        const std::u16string_view tail = std::u16string_view(key).substr(end);
        const std::u16string_view digits =
            std::u16string_view(key).substr(beginning.size(), end - beginning.size());
        if (tail != u"_STR" && tail != u"_LINK")
            continue;
        if (const auto number = strictInt32(digits); number && *number >= 0)
            numbers.push_back(*number);
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

bool welcomeForm::read_Config() {
    bool usable = false;
    const auto held = app_.platform().profiles.holdFile(welcome_File);
    passOver([&] {
        const std::u16string heading = value(u"config", u"title");
        const std::u16string name = value(u"config", u"provider");
        const std::u16string link = value(u"config", u"providerLink");
        if (heading.empty() || name.empty() || link.empty())
            return;
        title.setCaption(heading);
        provider.setCaption(name);
        provider.setTag(link);
        for (std::size_t tab = 0; tab < tabs; ++tab) {
            const std::u16string text =
                value(u"config", u"buttonStr" + decimal(static_cast<std::int64_t>(tab)));
            buttons()[tab]->setCaption(text);
            if (text.empty())
                return;
            frames()[tab]->setBackColor(static_cast<Colour>(
                wholeNumber(orElse(value(u"config", u"databaseFrame_BackColor"), u"32768"))));
        }
        line_Color = orElse(value(u"config", u"databaseStr_Color"), u"8454016");
        line_Font = orElse(value(u"config", u"databaseStr_Font"), u"Arial");
        line_FontSize = orElse(value(u"config", u"databaseStr_FontSize"), u"9");
        line_Interval = orElse(value(u"config", u"databaseStr_Interval"), u"100");
        showBanner(leadingInt32(value(u"Advertising", u"AdvertisingNumbers")));
        Timer1.setRunning(true);
        usable = true;
    });
    return usable;
}

void welcomeForm::showStanding() {
    Advertising.setCaption(standing);
    Advertising.setTag(u"");
}

void welcomeForm::showBanner(std::int64_t count) {
    if (count == 0) {
        showStanding();
        return;
    }
    joinBanner(count);
    const std::int64_t last = ad_Items.upperBound();
    if (last < 2 || (last == 2 && ad_Items.at(0).empty() && ad_Items.at(1).empty())) {
        showStanding();
        return;
    }
    Advertising.setCaption(ad_Items.at(0));
    Advertising.setTag(ad_Items.at(1));
    ad_Index = 0;
    ad_Wait = 0;
}

// A text and an address an entry, each with the mark behind it, divided at the marks again: what
// holds the mark itself, or ends in a part of it, moves all that follows. A gap needs a few of its
// marks for that to come to rest; the others are counted and not written.
void welcomeForm::joinBanner(std::int64_t count) {
    constexpr std::int64_t written = 3; // entries of a gap
    std::vector<BannerItems::Item> present;
    std::int64_t element = 0;
    std::size_t divided = 0;
    const auto divide = [&] {
        for (std::u16string &piece : splitAt(std::u16string_view(ad_Text).substr(divided), mark)) {
            if (!piece.empty())
                present.push_back({element, std::move(piece)});
            ++element;
        }
        --element; // the last piece goes on behind
        divided = ad_Text.size();
    };
    std::int64_t next = 0;
    const auto leaveOut = [&](std::int64_t until) {
        const std::int64_t gap = until - next;
        for (std::int64_t i = 0; i < 2 * std::min(gap, written); ++i)
            ad_Text += mark;
        if (gap > written) {
            divide();
            element += 2 * (gap - written);
        }
    };
    ad_Text.clear();
    for (const std::int64_t i : numbersPresent(u"Advertising", u"index_")) {
        if (i >= count)
            break;
        leaveOut(i);
        const std::u16string key = u"index_" + decimal(i);
        ad_Text += value(u"Advertising", key + u"_Str");
        ad_Text += mark;
        ad_Text += value(u"Advertising", key + u"_Link");
        ad_Text += mark;
        next = i + 1;
    }
    leaveOut(count);
    divide();
    // Nothing joined gives an array without elements.
    ad_Items.set(std::move(present), count > 0 ? element : -1);
}

// --- the lines ---

bool welcomeForm::read_Databases() {
    const auto held = app_.platform().profiles.holdFile(welcome_File);
    return passOver([this] {
        for (std::size_t tab = 0; tab < tabs; ++tab)
            makeLines(tab);
    });
}

// Element 0 is the design's; any other is made new, and raises when it is there already.
forms::Label &welcomeForm::lineOf(std::size_t tab, std::int64_t index) {
    forms::Label *const first[] = {&databases_0_0, &databases_1_0, &databases_2_0};
    static constexpr const char *names[] = {"databases_0", "databases_1", "databases_2"};
    if (index == 0)
        return *first[tab];
    if (index < elements_[tab] || index > lastElement)
        velmora::raise(ErrorNumber::InvalidCall);
    lines_[tab].push_back(std::make_unique<forms::Label>(*frames()[tab], names[tab]));
    elements_[tab] = index + 1;
    forms::Label &line = *lines_[tab].back();
    line.on().Click = [this, &line] { openTag(line); };
    const auto step = static_cast<Twips>(index);
    line.move(
        {0, (step + 1) * first[tab]->top() + step * first[tab]->height(), 0, first[tab]->height()});
    return line;
}

void welcomeForm::makeLines(std::size_t tab) {
    const std::u16string array = u"databases_" + decimal(static_cast<std::int64_t>(tab)) + u"_";
    const std::int64_t count = leadingInt32(value(u"databases", array + u"Ubound"));
    if (count <= 0)
        return;
    const std::vector<std::int32_t> numbers = numbersPresent(u"databases", array);
    const std::int64_t there =
        numbers.empty() ? 0 : std::min<std::int64_t>(count, std::int64_t{numbers.back()} + 1);
    const std::int64_t met = std::max<std::int64_t>(there, 1); // the window's own is always there
    for (std::int64_t i = 0; i < met; ++i) {
        forms::Label &line = lineOf(tab, i);
        if (i == 0)
            line.setTop(static_cast<Twips>(wholeNumber(line_Interval)));
        line.setLeft(0);
        line.setWidth(FrameDate_0.width() - marginRight);
        const std::u16string text = value(u"databases", array + decimal(i) + u"_Str");
        line.setCaption(text);
        line.setToolTip(text);
        line.setTag(value(u"databases", array + decimal(i) + u"_Link"));
        line.setVisible(true);
        line.setForeColor(static_cast<Colour>(wholeNumber(line_Color)));
        line.setMousePointer(forms::pointerCustom);
        line.setMouseIcon(forms::MouseIcon::Hand);
        line.setTransparent(true);
        forms::Font font = line.font();
        font.setName(line_Font);
        font.setSize(static_cast<float>(wholeNumber(line_FontSize)));
        line.setFont(font);
    }
    // Empty lines behind the data: they are there for a later load to meet, and their number is the
    // file's.
    if (count > met && met < elements_[tab])
        velmora::raise(ErrorNumber::InvalidCall);
    if (count - 1 > lastElement)
        velmora::raise(ErrorNumber::InvalidCall);
    elements_[tab] = std::max(elements_[tab], count);
}

// --- the banner ---

void welcomeForm::tick() {
    constexpr Twips step = 50;
    constexpr Twips beyond = 100;
    constexpr std::int16_t longestWait = 50; // ticks
    if (Advertising.width() > AdvertisingBOX.width()) {
        // The tag holds the link most of the time, which is no number and counts as 0.
        if (strictInt32(Advertising.tag()).value_or(0) == 0) {
            Advertising.setLeft(Advertising.left() - step);
            if (Advertising.left() <= -(Advertising.width() + beyond))
                Advertising.setTag(u"1");
            return;
        }
        Advertising.setLeft(AdvertisingBOX.width() + beyond);
        Advertising.setTag(u"0");
        nextBanner();
        return;
    }
    Advertising.setLeft(0);
    passOver([this] { ad_Wait = addInt16(ad_Wait, 1); });
    if (ad_Wait == longestWait) {
        nextBanner();
        ad_Wait = 0;
    }
}

// Each statement's failure is passed over: beyond the last entry comes one empty pass, and the
// standing text, which has no array, stays.
void welcomeForm::nextBanner() {
    std::int64_t last = 0;
    passOver([&] { last = ad_Items.upperBound(); });
    if (last < 3 || ad_Index >= last) {
        showItem(0);
        ad_Index = 0;
        return;
    }
    passOver([this] {
        if (ad_Index > INT32_MAX - 2)
            velmora::raise(ErrorNumber::Overflow);
        ad_Index += 2;
    });
    showItem(ad_Index);
}

void welcomeForm::showItem(std::int64_t index) {
    passOver([&] { Advertising.setCaption(ad_Items.at(index)); });
    passOver([&] { Advertising.setTag(ad_Items.at(index + 1)); });
}

} // namespace velmora
