#pragma once

// The common dialogs as a script: each call takes the next scripted answer of its kind. A dialog
// that nobody expected fails the test, and so does a script that was never used.

#include "platform/contracts/dialogs.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmora::fakes {

class FakeDialogs : public platform::Dialogs {
public:
    ~FakeDialogs() override;

    // Absent: cancel. `meanwhile` runs while the dialog stands.
    void expectFolder(std::optional<std::u16string> answer, std::function<void()> meanwhile = {}) {
        folders_.push_back({std::move(answer), std::move(meanwhile)});
    }
    void expectOpen(std::optional<std::u16string> path) { opens_.push_back({std::move(path), {}}); }
    void expectSave(std::optional<std::u16string> path, std::function<void()> meanwhile = {}) {
        saves_.push_back({std::move(path), std::move(meanwhile)});
    }
    void expectColour(std::optional<Colour> colour) { colours_.push_back(colour); }
    // What the user makes of the record; the answer is ChooseFontA's.
    void expectFont(std::function<std::int32_t(platform::CHOOSEFONT &)> user) {
        fonts_.push_back(std::move(user));
    }
    struct Copy {
        std::int32_t answer = 0;
        bool aborted = false;
        std::function<void()> meanwhile = {};
    };
    void expectCopy(Copy copy) { copies_.push_back(std::move(copy)); }

    // --- what was asked ---
    std::vector<platform::BROWSEINFO> browses;
    std::vector<platform::OPENFILENAME> files;
    std::vector<platform::CHOOSECOLOR> colourRecords;
    std::vector<platform::CHOOSEFONT> fontRecords;
    std::vector<platform::SHFILEOPSTRUCT> operations;

    std::optional<std::u16string> SHBrowseForFolderA(const platform::BROWSEINFO &record) override;
    bool ChooseColorA(platform::CHOOSECOLOR &record) override;
    bool GetOpenFileNameA(platform::OPENFILENAME &record) override;
    bool GetSaveFileNameA(platform::OPENFILENAME &record) override;
    std::int32_t ChooseFontA(platform::CHOOSEFONT &record) override;
    std::int32_t SHFileOperationA(platform::SHFILEOPSTRUCT &operation) override;

private:
    struct Path {
        std::optional<std::u16string> answer;
        std::function<void()> meanwhile;
    };

    static std::optional<std::u16string> answer(std::deque<Path> &script, const char *what);
    bool fileDialog(std::deque<Path> &script, platform::OPENFILENAME &record);

    std::deque<Path> folders_, opens_, saves_;
    std::deque<std::optional<Colour>> colours_;
    std::deque<std::function<std::int32_t(platform::CHOOSEFONT &)>> fonts_;
    std::deque<Copy> copies_;
};

} // namespace velmora::fakes
