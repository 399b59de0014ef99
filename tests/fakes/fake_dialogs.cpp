#include "tests/fakes/fake_dialogs.h"

#include "base/text.h"

#include <exception>
#include <gtest/gtest.h>

namespace velmora::fakes {

namespace {

// The next answer of a script, or nothing with a failure of the test.
template <typename Answer>
std::optional<Answer> next(std::deque<Answer> &script, const char *what) {
    if (script.empty()) {
        ADD_FAILURE() << "a dialog that nobody expected: " << what;
        return std::nullopt;
    }
    Answer answer = std::move(script.front());
    script.pop_front();
    return answer;
}

} // namespace

FakeDialogs::~FakeDialogs() {
    if (std::uncaught_exceptions() > 0)
        return;
    const auto left = folders_.size() + opens_.size() + saves_.size() + colours_.size() +
                      fonts_.size() + copies_.size();
    EXPECT_EQ(left, 0U) << "dialogs were expected and never came";
}

std::optional<std::u16string> FakeDialogs::SHBrowseForFolderA(const platform::BROWSEINFO &record) {
    browses.push_back(record);
    return answer(folders_, "a folder");
}

std::optional<std::u16string> FakeDialogs::answer(std::deque<Path> &script, const char *what) {
    const Path path = next(script, what).value_or(Path{});
    if (path.meanwhile)
        path.meanwhile();
    return path.answer;
}

bool FakeDialogs::ChooseColorA(platform::CHOOSECOLOR &record) {
    colourRecords.push_back(record);
    const auto answer = next(colours_, "a colour").value_or(std::nullopt);
    if (answer)
        record.result = *answer;
    return answer.has_value();
}

bool FakeDialogs::fileDialog(std::deque<Path> &script, platform::OPENFILENAME &record) {
    files.push_back(record);
    const auto chosen = answer(script, toUtf8(record.title).c_str());
    if (chosen)
        record.file = *chosen + std::u16string(1, u'\0') + u"left over";
    return chosen.has_value();
}

bool FakeDialogs::GetOpenFileNameA(platform::OPENFILENAME &record) {
    return fileDialog(opens_, record);
}

bool FakeDialogs::GetSaveFileNameA(platform::OPENFILENAME &record) {
    return fileDialog(saves_, record);
}

std::int32_t FakeDialogs::ChooseFontA(platform::CHOOSEFONT &record) {
    fontRecords.push_back(record);
    const auto user = next(fonts_, "a font");
    return user ? (*user)(record) : 0;
}

std::int32_t FakeDialogs::SHFileOperationA(platform::SHFILEOPSTRUCT &operation) {
    operations.push_back(operation);
    const Copy copy = next(copies_, "a copy").value_or(Copy{});
    if (copy.meanwhile)
        copy.meanwhile();
    operation.anyOperationsAborted = copy.aborted;
    return copy.answer;
}

} // namespace velmora::fakes
