#include "tests/fakes/fake_system.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "tests/fakes/fake_files.h"
#include "text/path_text.h"
#include "text/version/version_block.h"
#include "text/version/version_query.h"

#include <gtest/gtest.h>

namespace velmora::fakes {

// --- processes -----------------------------------------------------------------------------------

std::vector<std::u16string> FakeProcesses::ExecQuery(std::u16string_view query,
                                                     std::int32_t flags) {
    queries.emplace_back(query);
    queryFlags.push_back(flags);
    if (queryFails)
        raise(ErrorNumber::General);
    return executables;
}

bool FakeProcesses::previousInstance() {
    ++instanceTests;
    return otherInstance;
}

void FakeProcesses::end(int status) {
    endStatuses.push_back(status);
    throw ProcessEnded{status};
}

// --- folders -------------------------------------------------------------------------------------

std::optional<std::u16string> FakeFolders::SHGetSpecialFolder(std::int32_t number) {
    asked.push_back(number);
    if (onSpecial)
        onSpecial(number);
    const auto found = special.find(number);
    return found == special.end() ? std::nullopt : std::optional(found->second);
}

std::u16string FakeFolders::rootPart(std::u16string_view path) {
    const bool drive = platform::pathSeparatorOf(path) == u'\\' && !startsWith(path, u"\\\\");
    return drive ? std::u16string(leftPart(path, 3)) : dataHome;
}

// --- version records -----------------------------------------------------------------------------

void FakeVersionRecords::addRecord(std::u16string_view path, const Strings &strings) {
    std::vector<platform::VersionString> entries;
    const auto add = [&](std::u16string_view name, const std::u16string &value) {
        if (!value.empty())
            entries.push_back({name, value});
    };
    add(u"FileDescription", strings.fileDescription);
    add(u"ProductName", strings.productName);
    add(u"OriginalFilename", strings.originalFilename);
    add(u"InternalName", strings.internalName);
    add(u"CompanyName", strings.companyName);
    add(u"LegalCopyright", strings.legalCopyright);
    platform::VersionFields fields;
    fields.fileVersion = {1, 0, 0, 0};
    fields.productVersion = fields.fileVersion;
    fields.strings = entries;
    const auto block = platform::buildVersionBlock<8192>(fields);
    addRecordBytes(path,
                   std::string(block.bytes.begin(),
                               block.bytes.begin() + static_cast<std::ptrdiff_t>(block.size)));
}

void FakeVersionRecords::addRecordBytes(std::u16string_view path, std::string record) {
    records_[std::u16string(path)] = std::move(record);
}

void FakeVersionRecords::addProgram(std::u16string_view path, std::u16string_view internalName) {
    Strings strings;
    strings.internalName = internalName;
    addRecord(path, strings);
}

std::uint32_t FakeVersionRecords::GetFileVersionInfoSizeA(std::u16string_view path) {
    asked.emplace_back(path);
    const auto found = records_.find(std::u16string(path));
    return found == records_.end() ? 0 : static_cast<std::uint32_t>(found->second.size());
}

std::string FakeVersionRecords::GetFileVersionInfoA(std::u16string_view path, std::uint32_t size) {
    const auto found = records_.find(std::u16string(path));
    return found == records_.end() ? std::string() : found->second.substr(0, size);
}

std::optional<std::string> FakeVersionRecords::VerQueryValueA(std::string_view record,
                                                              std::u16string_view query) {
    const auto value = platform::versionValue(record, query);
    if (!value)
        return std::nullopt;
    return value->text ? ansi_.encode(platform::versionText(value->bytes))
                       : std::string(value->bytes);
}

// --- shell ---------------------------------------------------------------------------------------

std::int32_t FakeShell::ShellExecuteA(std::uintptr_t owner, std::u16string_view verb,
                                      std::u16string_view target, std::int32_t showCommand) {
    executions.push_back({owner, std::u16string(verb), std::u16string(target), showCommand});
    return answer;
}

void FakeShell::Shell_(std::u16string_view commandLine) {
    commandLines.emplace_back(commandLine);
    if (onCommandLine)
        onCommandLine(commandLine);
    if (!files_ || commandLine.size() < 2 || commandLine.back() != u'"')
        return;
    const auto quoted = [&](std::u16string_view command) {
        return commandLine.substr(command.size(), commandLine.size() - command.size() - 1);
    };
    if (constexpr std::u16string_view del = u"cmd /c del \""; startsWith(commandLine, del)) {
        if (files_->hasFile(quoted(del)))
            files_->remove(quoted(del));
    } else if (constexpr std::u16string_view md = u"cmd /c md \""; startsWith(commandLine, md)) {
        if (!quoted(md).empty() && !files_->hasFile(quoted(md)))
            files_->addFolder(quoted(md));
    }
}

// --- clock and waiting ---------------------------------------------------------------------------

namespace {

std::tm utc(std::time_t when) {
    std::tm parts{};
    gmtime_r(&when, &parts);
    return parts;
}

} // namespace

void FakeClock::advance(std::int64_t ms) {
    steadyTime += ms;
    sinceMidnight += static_cast<double>(ms) / 1000;
    while (sinceMidnight >= 86400)
        sinceMidnight -= 86400;
    wallRemainder_ += ms;
    wallTime += wallRemainder_ / 1000;
    wallRemainder_ %= 1000;
}

std::u16string FakeClock::shortDate(std::time_t when) {
    const std::tm parts = utc(when);
    return decimal(parts.tm_year + 1900) + u"-" + format00(parts.tm_mon + 1) + u"-" +
           format00(parts.tm_mday);
}

std::u16string FakeClock::shortTime(std::time_t when) {
    const std::tm parts = utc(when);
    return format00(parts.tm_hour) + u":" + format00(parts.tm_min) + u":" + format00(parts.tm_sec);
}

FakeWaitableTimers::~FakeWaitableTimers() {
    if (!nextAnswers.empty())
        ADD_FAILURE() << nextAnswers.size() << " scripted answers of waits were never asked for";
}

platform::WaitHandle FakeWaitableTimers::CreateWaitableTimerA(bool, std::u16string_view name,
                                                              bool &alreadyExists) {
    names.emplace_back(name);
    alreadyExists = nameExists;
    if (creationFails)
        return 0;
    timers_[nextHandle_] = clock_.steadyMs();
    return nextHandle_++;
}

bool FakeWaitableTimers::SetWaitableTimer(platform::WaitHandle timer, std::int32_t dueLow,
                                          std::int32_t dueHigh) {
    dues.push_back({dueLow, dueHigh});
    const auto found = timers_.find(timer);
    if (found == timers_.end())
        return false;
    const auto due = static_cast<std::int64_t>(
        static_cast<std::uint64_t>(static_cast<std::uint32_t>(dueHigh)) << 32 |
        static_cast<std::uint32_t>(dueLow));
    const std::int64_t steps = due < 0 ? -(due + 1) : 0; // all ones is "at once"
    found->second = clock_.steadyMs() + (steps + 9999) / 10000;
    return true;
}

std::uint32_t FakeWaitableTimers::MsgWaitForMultipleObjects(platform::WaitHandle timer) {
    constexpr std::uint32_t failed = 0xFFFFFFFF;
    ++waits;
    if (onWait)
        onWait();
    const auto found = timers_.find(timer);
    if (found == timers_.end())
        return failed;
    if (!nextAnswers.empty()) {
        const std::uint32_t answer = nextAnswers.front();
        nextAnswers.erase(nextAnswers.begin());
        return answer;
    }
    if (found->second > clock_.steadyMs())
        clock_.advance(found->second - clock_.steadyMs());
    return 0;
}

bool FakeWaitableTimers::CloseHandle(platform::WaitHandle timer) {
    return timers_.erase(timer) != 0;
}

} // namespace velmora::fakes
