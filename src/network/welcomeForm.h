#pragma once

// The window of news and links that the maker serves: a title, a link to the provider, three tabs
// of lines and a rolling banner, all from one INI file. The file lies in the temporary folder while
// the window is open and goes when it closes.
//
// Everything blocks while it loads. The lines are elements of label arrays that grow once: a second
// load in one run meets elements that exist, and fails on them.

#include "network/welcomeForm.design.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class Velmora;

// The banner's texts and addresses in turns, as the file's entries joined and divided again give
// them. Any count, and any gap between the entries, costs nothing: only what is there is stored.
class BannerItems {
public:
    struct Item {
        std::int64_t index = 0;
        std::u16string text;
    };
    // `present` are the elements that are not empty, by rising index.
    void set(std::vector<Item> present, std::int64_t upperBound);
    void erase() noexcept;
    // Raise for an array that was erased or never set, and beyond its bound.
    std::int64_t upperBound() const;
    std::u16string at(std::int64_t index) const;

private:
    std::vector<Item> present_;
    std::optional<std::int64_t> upperBound_;
};

class welcomeForm : public welcomeForm_Design {
public:
    explicit welcomeForm(Velmora &app);
    void load();

    // The whole load: fetches the file, fills the window, shows it. Without a connection, and where
    // the file is of no use, it says so and closes. `silent` keeps back what the connection alone
    // is to blame for.
    void Start(bool silent);
    void close_Click();
    void autoShow_Click();

    bool fetch_Welcome();
    // Title, provider, tabs, styling and banner. False where something that has to be there is not.
    bool read_Config();
    // The lines of the three tabs. False where one of them could not be made.
    bool read_Databases();

    std::u16string welcome_File;
    std::u16string welcome_Url;
    std::int32_t welcome_Result = 0; // of the last download
    std::u16string ad_Text;          // the entries joined; of a long gap between them its beginning
    BannerItems ad_Items;            // divided again
    std::int32_t ad_Index = 0;
    std::int16_t ad_Wait = 0; // ticks since a banner that fits was shown
    std::u16string line_Color, line_Font, line_FontSize, line_Interval;
    bool load_Failed = false; // a click on loadStr tries again

private:
    static constexpr std::int32_t tabs = 3;

    void setHandlers();
    void showTab(std::size_t tab);
    void giveUp(std::u16string_view text, bool isTold);
    bool checkVersion();
    void showPages(bool isComplete);
    void showBanner(std::int64_t count);
    void joinBanner(std::int64_t count);
    void showStanding();
    void tick();
    void nextBanner();
    void showItem(std::int64_t index);
    std::u16string value(std::u16string_view section, std::u16string_view key) const;
    std::vector<std::int32_t> numbersPresent(std::u16string_view section,
                                             std::u16string_view before) const;
    void makeLines(std::size_t tab);
    forms::Label &lineOf(std::size_t tab, std::int64_t index);
    void openTag(const forms::Control &control);

    std::array<forms::PictureBox *, tabs> frames();
    std::array<zkButton *, tabs> buttons();

    Velmora &app_;
    // Elements from 1 on; element 0 of each array is the design's.
    std::array<std::vector<std::unique_ptr<forms::Label>>, tabs> lines_;
    // How many elements each array has, those beyond the file's data included.
    std::array<std::int64_t, tabs> elements_{1, 1, 1};
};

} // namespace velmora
