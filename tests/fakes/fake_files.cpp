#include "tests/fakes/fake_files.h"

#include "base/text.h"
#include "text/path_text.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmora::fakes {

using platform::SearchFor;

namespace {

[[noreturn]] void fail(ErrorNumber number, std::u16string description) {
    throw RunTimeError(number, std::move(description));
}
[[noreturn]] void missing() { fail(ErrorNumber::FileNotFound, u"No such file or directory"); }
[[noreturn]] void failing() { fail(ErrorNumber::DeviceIo, u"Input/output error"); }
[[noreturn]] void refused() { fail(ErrorNumber::PermissionDenied, u"Permission denied"); }

} // namespace

FakeFiles::~FakeFiles() {
    for (const auto &[operation, failure] : failures_)
        ADD_FAILURE() << "scripted failure never met: " << operation;
}

// --- what lies on the disk -----------------------------------------------------------------------

// Without doubled and trailing separators, so that one folder has one key.
std::u16string FakeFiles::normal(std::u16string_view path) {
    const char16_t separator = platform::pathSeparatorOf(path);
    std::u16string result;
    for (const char16_t unit : path)
        if (unit != separator || result.empty() || result.back() != separator)
            result += unit;
    if (result.size() > 1 && result.back() == separator)
        result.pop_back();
    return result;
}

std::u16string FakeFiles::parentOf(std::u16string_view path) {
    return normal(platform::folderPart(normal(path)));
}

void FakeFiles::makeParents(std::u16string_view path) {
    const std::u16string parent = parentOf(path);
    if (!parent.empty() && parent != normal(path) && !find(parent))
        addFolder(parent);
}

void FakeFiles::addFile(std::u16string_view path, std::string bytes) {
    makeParents(path);
    Entry &entry = entries_[normal(path)];
    entry.kind = Kind::File;
    entry.bytes = std::move(bytes);
}

void FakeFiles::addFolder(std::u16string_view path) {
    makeParents(path);
    entries_[normal(path)].kind = Kind::Folder;
}

void FakeFiles::addSpecial(std::u16string_view path) {
    makeParents(path);
    entries_[normal(path)].kind = Kind::Special;
}

void FakeFiles::remove(std::u16string_view path) { entries_.erase(normal(path)); }

const FakeFiles::Entry *FakeFiles::find(std::u16string_view path) const {
    const auto found = path.empty() ? entries_.end() : entries_.find(normal(path));
    return found == entries_.end() ? nullptr : &found->second;
}

FakeFiles::Entry *FakeFiles::find(std::u16string_view path) {
    return const_cast<Entry *>(std::as_const(*this).find(path));
}

bool FakeFiles::hasFile(std::u16string_view path) const {
    const Entry *entry = find(path);
    return entry && entry->kind == Kind::File;
}

bool FakeFiles::hasFolder(std::u16string_view path) const {
    const Entry *entry = find(path);
    return entry && entry->kind == Kind::Folder;
}

std::string FakeFiles::contents(std::u16string_view path) const {
    if (hasFile(path))
        return find(path)->bytes;
    ADD_FAILURE() << "no such file: " << toUtf8(path);
    return {};
}

std::vector<std::u16string> FakeFiles::files() const {
    std::vector<std::u16string> result;
    for (const auto &[path, entry] : entries_)
        if (entry.kind == Kind::File)
            result.push_back(path);
    return result;
}

void FakeFiles::setDateCreated(std::u16string_view path, std::time_t when) {
    entries_.at(normal(path)).created = when;
}
void FakeFiles::setLength(std::u16string_view path, std::int64_t bytes) {
    entries_.at(normal(path)).length = bytes;
}
void FakeFiles::setReadOnly(std::u16string_view path, bool readOnly) {
    entries_.at(normal(path)).readOnly = readOnly;
}
void FakeFiles::setUnreadable(std::u16string_view path, bool unreadable) {
    entries_.at(normal(path)).unreadable = unreadable;
}
void FakeFiles::setUnreachable(std::u16string_view path, bool unreachable) {
    entries_.at(normal(path)).unreachable = unreachable;
}
void FakeFiles::failReadAtLine(std::u16string_view path, std::size_t line) {
    entries_.at(normal(path)).failAtLine = line;
}

// --- failures and counts -------------------------------------------------------------------------

void FakeFiles::failNext(const std::string &operation, ErrorNumber number,
                         std::u16string description) {
    failures_.emplace(operation, Failure{number, std::move(description)});
}

void FakeFiles::count(const std::string &operation) {
    ++calls_[operation];
    if (onCall)
        onCall(operation);
    const auto scripted = failures_.find(operation);
    if (scripted == failures_.end())
        return;
    const Failure failure = scripted->second;
    failures_.erase(scripted);
    fail(failure.number, failure.description);
}

int FakeFiles::calls(const std::string &operation) const {
    const auto found = calls_.find(operation);
    return found == calls_.end() ? 0 : found->second;
}

void FakeFiles::note(std::u16string_view what, std::u16string_view path,
                     std::u16string_view target) {
    std::u16string line(what);
    line.append(u" ").append(path);
    if (!target.empty())
        line.append(u" ").append(target);
    changes_.push_back(std::move(line));
}

// --- the contract --------------------------------------------------------------------------------

char16_t FakeFiles::separatorOf(std::u16string_view path) const {
    return platform::pathSeparatorOf(path);
}

std::u16string FakeFiles::Dir(std::u16string_view path, SearchFor what) {
    count("Dir");
    const Kind wanted = what == SearchFor::Files ? Kind::File : Kind::Folder;
    if (path.empty())
        return {};
    if (const Entry *exact = find(path); exact && exact->kind == wanted && !exact->unreachable)
        return std::u16string(platform::baseName(normal(path)));
    const std::u16string folder = parentOf(path);
    const std::u16string name(platform::baseName(normal(path)));
    for (const auto &[other, entry] : entries_)
        if (entry.kind == wanted && !entry.unreachable && parentOf(other) == folder &&
            equalsIgnoringCase(platform::baseName(other), name))
            return std::u16string(platform::baseName(other));
    return {};
}

std::vector<std::u16string> FakeFiles::list(std::u16string_view folder, SearchFor what,
                                            std::uint32_t walk) {
    count("list");
    const std::u16string parent = normal(folder);
    const Entry *entered = find(parent);
    if (!entered || entered->unreadable)
        return {};
    // Files and folders of one folder are two questions of the same entering.
    const std::u16string key = (what == SearchFor::Files ? u"f" : u"d") + parent;
    if (walk != 0 && !walks_[walk].insert(key).second)
        return {};
    std::vector<std::u16string> names;
    const Kind wanted = what == SearchFor::Files ? Kind::File : Kind::Folder;
    for (const auto &[path, entry] : entries_) {
        const std::u16string_view name = platform::baseName(path);
        if (entry.kind == wanted && path != parent && parentOf(path) == parent && name[0] != u'.')
            names.emplace_back(name);
    }
    std::stable_sort(names.begin(), names.end(),
                     [](const auto &a, const auto &b) { return upper(a) < upper(b); });
    return names;
}

FakeFiles::Entry &FakeFiles::readable(std::u16string_view path) {
    Entry *entry = find(path);
    if (!entry)
        missing();
    if (entry->unreachable)
        failing();
    if (entry->kind == Kind::Folder)
        fail(ErrorNumber::PermissionDenied, u"Is a directory");
    if (entry->kind == Kind::Special)
        fail(ErrorNumber::DeviceIo, u"Invalid argument");
    if (entry->unreadable)
        refused();
    return *entry;
}

std::int64_t FakeFiles::FileLen(std::u16string_view path) {
    count("FileLen");
    const Entry *entry = find(path);
    if (!entry)
        missing();
    if (entry->unreachable)
        failing();
    return entry->length >= 0 ? entry->length : static_cast<std::int64_t>(entry->bytes.size());
}

class FakeFiles::Reader : public platform::LineReader {
public:
    Reader(FakeFiles &files, std::u16string path, std::string bytes,
           std::optional<std::size_t> failAt)
        : files_(files), path_(std::move(path)), bytes_(std::move(bytes)), failAt_(failAt) {}

    bool endOfFile() override { return failed_ || (at_ >= bytes_.size() && failAt_ != line_); }

    std::string readLine() override {
        if (files_.beforeLine)
            files_.beforeLine(path_, line_);
        if (failAt_ == line_ || at_ >= bytes_.size())
            failed_ = true;
        if (failed_)
            fail(ErrorNumber::DeviceIo, u"Input/output error");
        ++line_;
        const std::size_t end = std::min(bytes_.find_first_of("\r\n", at_), bytes_.size());
        std::string text = bytes_.substr(at_, end - at_);
        at_ = end + (bytes_.compare(end, 2, "\r\n") == 0 ? 2 : 1);
        return text;
    }

private:
    FakeFiles &files_;
    std::u16string path_;
    std::string bytes_;
    std::optional<std::size_t> failAt_;
    std::size_t at_ = 0;
    std::size_t line_ = 0;
    bool failed_ = false;
};

std::unique_ptr<platform::LineReader> FakeFiles::openInput(std::u16string_view path) {
    count("openInput");
    const Entry &entry = readable(path);
    return std::make_unique<Reader>(*this, std::u16string(path), entry.bytes, entry.failAtLine);
}

std::string FakeFiles::readBytes(std::u16string_view path, std::int64_t offset,
                                 std::size_t wanted) {
    count("readBytes");
    const Entry &entry = readable(path);
    if (offset < 0)
        fail(ErrorNumber::InvalidCall, u"Invalid argument");
    if (entry.length >= 0) {
        const std::int64_t left = std::max<std::int64_t>(entry.length - offset, 0);
        return std::string(std::min(wanted, static_cast<std::size_t>(left)), '\0');
    }
    if (static_cast<std::size_t>(offset) >= entry.bytes.size())
        return {};
    return entry.bytes.substr(static_cast<std::size_t>(offset), wanted);
}

void FakeFiles::checkFolderWritable(std::u16string_view path) const {
    if (parentOf(path) == u"/") // where an empty folder leads
        refused();
    const Entry *folder = find(parentOf(path));
    if (!folder || folder->kind != Kind::Folder)
        fail(ErrorNumber::PathNotFound, u"No such file or directory");
    if (folder->readOnly)
        refused();
}

void FakeFiles::checkTarget(std::u16string_view path) const {
    checkFolderWritable(path);
    if (const Entry *old = find(path)) {
        if (old->unreachable)
            failing();
        if (old->kind == Kind::Folder)
            fail(ErrorNumber::PermissionDenied, u"Is a directory");
        if (old->kind == Kind::Special)
            fail(ErrorNumber::DeviceIo, u"Invalid argument");
        if (old->readOnly)
            refused();
    }
}

void FakeFiles::store(std::u16string_view path, std::string_view bytes) {
    checkTarget(path);
    if (freeSpace_) {
        if (bytes.size() > *freeSpace_)
            fail(ErrorNumber::DiskFull, u"No space left on device");
        *freeSpace_ -= bytes.size();
    }
    Entry &entry = entries_[normal(path)];
    entry.kind = Kind::File;
    entry.bytes = bytes;
    entry.length = -1;
}

void FakeFiles::writeWhole(std::u16string_view path, std::string_view bytes, bool durable) {
    count("writeWhole");
    store(path, bytes);
    note(durable ? u"sync" : u"write", path);
}

void FakeFiles::writeNew(std::u16string_view path, std::string_view bytes, bool durable) {
    count("writeNew");
    if (find(path))
        fail(ErrorNumber::FileExists, u"File exists");
    store(path, bytes);
    note(durable ? u"sync" : u"write", path);
}

void FakeFiles::keepAs(std::u16string_view path, std::u16string_view keptPath) {
    count("keepAs");
    checkTarget(path);
    const std::string bytes = readable(path).bytes;
    if (find(keptPath))
        fail(ErrorNumber::FileExists, u"File exists");
    store(keptPath, bytes);
    note(u"keep", path, keptPath);
}

void FakeFiles::MkDir(std::u16string_view path) {
    count("MkDir");
    if (find(path))
        fail(ErrorNumber::FileExists, u"File exists");
    const Entry *folder = find(parentOf(path));
    if (!folder || folder->kind != Kind::Folder)
        fail(ErrorNumber::PathNotFound, u"No such file or directory");
    if (folder->readOnly)
        refused();
    addFolder(path);
    note(u"make", path);
}

void FakeFiles::Name(std::u16string_view from, std::u16string_view to) {
    count("Name");
    if (from == to)
        return;
    const std::u16string_view name = platform::baseName(to);
    if (platform::folderPart(from) != platform::folderPart(to) || name.empty() || name == u"." ||
        name == u".." || contains(name, std::u16string_view(u"\0", 1)))
        fail(ErrorNumber::InvalidCall, u"Invalid argument");
    if (!find(from))
        missing();
    checkFolderWritable(from);
    checkFolderWritable(to);
    if (find(to))
        fail(ErrorNumber::FileExists, u"File exists");
    auto moved = entries_.extract(normal(from));
    moved.key() = normal(to);
    entries_.insert(std::move(moved));
    note(u"rename", from, to);
}

std::u16string FakeFiles::GetShortPathNameA(std::u16string_view path) {
    ++calls_["GetShortPathNameA"];
    return platform::shortPath(path);
}

void FakeFiles::deleteFile(std::u16string_view path) {
    count("DeleteFile");
    const Entry *entry = find(path);
    if (!entry)
        missing();
    if (entry->kind == Kind::Folder)
        fail(ErrorNumber::PermissionDenied, u"Is a directory");
    if (entry->readOnly)
        refused();
    checkFolderWritable(path);
    remove(path);
    note(u"delete", path);
}

std::time_t FakeFiles::dateCreated(std::u16string_view path) {
    count("DateCreated");
    const Entry *entry = find(path);
    if (!entry)
        missing();
    return entry->created;
}

class FakeFiles::Object : public platform::FileSystemObject {
public:
    explicit Object(FakeFiles &files) : files_(files) {}
    void CreateTextFile(std::u16string_view path, std::u16string_view text) override {
        files_.count("CreateTextFile");
        files_.store(path, files_.ansi_.encode(text));
        files_.note(u"write", path);
    }
    void DeleteFile(std::u16string_view path) override { files_.deleteFile(path); }
    std::time_t DateCreated(std::u16string_view path) override { return files_.dateCreated(path); }

private:
    FakeFiles &files_;
};

std::unique_ptr<platform::FileSystemObject> FakeFiles::CreateFileSystemObject() {
    count("CreateFileSystemObject");
    return std::make_unique<Object>(*this);
}

} // namespace velmora::fakes
