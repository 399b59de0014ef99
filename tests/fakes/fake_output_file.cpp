#include "base/run_time_error.h"
#include "tests/fakes/fake_files.h"

#include <algorithm>

namespace velmora::fakes {

// Writes into the entry as long as it lies on the disk. Once it is deleted the bytes go nowhere, as
// those of an unlinked file do.
class FakeFiles::Output : public platform::OutputFile {
public:
    Output(FakeFiles &files, std::u16string path) : files_(files), path_(std::move(path)) {}
    ~Output() override {
        if (files_.onCall)
            files_.onCall("CloseHandle");
    }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    void SetFilePointer(std::int64_t position) override {
        files_.count("SetFilePointer");
        position_ = static_cast<std::size_t>(position);
    }

    bool WriteFile(std::string_view bytes) override {
        if (!passOver([this] { files_.count("WriteFile"); }))
            return false;
        std::size_t fitting = bytes.size();
        if (files_.freeSpace_) {
            fitting = std::min(fitting, *files_.freeSpace_);
            *files_.freeSpace_ -= fitting;
        }
        if (Entry *entry = files_.find(path_)) {
            std::string &held = entry->bytes;
            held.resize(std::max(held.size(), position_ + fitting));
            held.replace(position_, fitting, bytes.substr(0, fitting));
        }
        position_ += fitting;
        return fitting == bytes.size();
    }

private:
    FakeFiles &files_;
    std::u16string path_;
    std::size_t position_ = 0;
};

std::unique_ptr<platform::OutputFile> FakeFiles::CreateFileA(std::u16string_view path) {
    count("CreateFileA");
    checkTarget(path);
    if (!find(path))
        addFile(path);
    note(u"open", path);
    return std::make_unique<Output>(*this, std::u16string(path));
}

} // namespace velmora::fakes
