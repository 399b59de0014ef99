// The play list's file, which other programs and hands may have written. Each row is there once;
// the list that is saved reads the same again; and what was there before and came from elsewhere is
// kept beside it.

#include "base/text.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "velmora.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace velmora;

void require(bool holds) {
    if (!holds)
        std::abort();
}

std::vector<std::u16string> rowsOf(const forms::ListBox &list) {
    std::vector<std::u16string> rows;
    for (std::int32_t row = 0; row < list.listCount(); ++row)
        rows.emplace_back(list.list(row));
    return rows;
}

// A line loses what stands around a path; a path of its own that has that loses it as well.
bool isPlain(const std::u16string &row) {
    constexpr std::u16string_view around = u"\" ";
    return !row.empty() && !contains(around, row.substr(0, 1)) &&
           !contains(around, row.substr(row.size() - 1));
}

// A disk that fails while the list is saved or read leaves the file as it is; a list that changes
// while it is read is saved behind that.
void tryTrouble(fakes::FakePlatform &fake, Velmora &app, const std::u16string &path) {
    saveOrOpenFile &store = app.saveOrOpenFile();
    const std::string there = fake.files.contents(path);
    fake.files.setUnreachable(path);
    store.savePlayList();
    fake.files.setUnreachable(path, false);
    require(fake.files.contents(path) == there);
    fake.files.addFile(path, there + "more");
    fake.files.failNext("keepAs");
    store.savePlayList();
    require(fake.files.contents(path) == there + "more");
    app.setControl().Path_List.clear();
    store.savePlayList();
    app.setControl().Path_List = u"/l";
    fake.files.addFile(path, there);
    int pumps = 0;
    fake.windows.onPump = [&] {
        if (++pumps < 3)
            store.savePlayList();
    };
    require(store.loadPlayList());
    fake.windows.onPump = nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    constexpr char16_t path[] = u"/l/zkPlayList.m3u";
    fakes::FakePlatform fake;
    Velmora app(fake.bundle());
    app.setControl().Path_List = u"/l//";
    saveOrOpenFile &store = app.saveOrOpenFile();
    require(!store.loadPlayList());
    store.savePlayList(); // no file yet, and nothing that would need one
    require(!fake.files.hasFile(path));
    fake.files.addFile(path, bytes);
    require(store.loadPlayList());
    const playList_Form &form = app.playList_Form();
    const std::vector<std::u16string> rows = rowsOf(form.List1);
    require(form.playList_Item.listCount() == form.List1.listCount());
    require(std::set(rows.begin(), rows.end()).size() == rows.size());

    store.savePlayList();
    require(fake.files.files().size() == 1);
    require(store.loadPlayList());
    require(rowsOf(form.List1) == rows || !std::all_of(rows.begin(), rows.end(), isPlain));

    tryTrouble(fake, app, path);
    // Somebody else writes it, again and again: nothing of theirs goes under a save. (A change is
    // known by the file's length.)
    std::string other = bytes;
    for (int i = 0; i < 13; ++i) {
        other += i % 2 == 0 ? "x" : "yy";
        if (other.size() == fake.files.contents(path).size())
            continue;
        fake.files.addFile(path, other);
        store.savePlayList(i % 3 == 0 ? SaveKind::Settled : SaveKind::Step);
        bool isKept = false;
        for (const std::u16string &file : fake.files.files())
            isKept = isKept || fake.files.contents(file) == other;
        require(isKept);
    }
    return 0;
}
