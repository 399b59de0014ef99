// The loops that read a body packet by packet, into a text or a file.

#include "base/run_time_error.h"
#include "base/text.h"
#include "network/WininetDownClass.h"
#include "network/zkWininetDown.h"
#include "platform/contracts/files.h"
#include "platform/contracts/platform.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"

#include <algorithm>

namespace velmora {

// True with a packet; false at the end of the body, a cut one included.
bool zkWininetDown::readPacket(std::string &packet) {
    const auto count = static_cast<std::size_t>(std::max(Pakesize, 0));
    return platform_.internet.InternetReadFile(hRequest_, count, packet) && !packet.empty();
}

// What follows every packet, in this order: the sums, the two events, pending events once.
void zkWininetDown::packetDone(double total, std::size_t bytes) {
    received_ += static_cast<double>(bytes);
    ElapsedTime_ = platform_.clock.secondsSinceMidnight() - StartTime_;
    if (ElapsedTime_ > 0)
        Speed_ = received_ / ElapsedTime_;
    raiseStatus(5);
    if (Progress)
        passOver([&] { Progress(total, received_, Speed_); });
    platform_.windows.DoEvents();
}

void zkWininetDown::begin() {
    StartTime_ = platform_.clock.secondsSinceMidnight();
    received_ = 0;
}

bool zkWininetDown::fail(std::int32_t code) {
    bStop();
    raiseError(code);
    raiseEnd(false);
    return false;
}

std::u16string zkWininetDown::DownLoadToText() {
    if (!Download())
        return {};
    if (!IsRunning_) {
        fail(4);
        return {};
    }
    const std::int32_t total = FileSize();
    begin();
    Speed_ = 0;
    std::u16string text;
    std::string packet;
    do {
        if (!readPacket(packet))
            break;
        passOver([&] { text += bytesToText(packet, Charset); });
        packetDone(total, packet.size());
    } while (IsRunning_);
    if (!IsRunning_) {
        fail(4);
        return text;
    }
    bStop();
    raiseStatus(6);
    raiseEnd(true);
    return text;
}

bool zkWininetDown::DownloadToFile(std::u16string_view kind) {
    if (!Download())
        return false;
    if (!IsRunning_)
        return fail(4);
    const std::int32_t total = FileSize();
    if (FileSize() == 0)
        return fail(8);
    const std::u16string type = upper(leftPart(FileType(), 5));
    if (kind != u"music" || (type != u"AUDIO" && type != u"VIDEO"))
        return fail(9);
    if (targetIsRefused(total))
        return fail(5);
    const bool isClear = clearTarget();
    if (!makeDirectoryChain(platform_.files, FileName))
        return fail(6);
    if (!isClear)
        return fail(7);
    return receiveFile(total);
}

// The length of the target's name is what is compared with the size of the body.
bool zkWininetDown::targetIsRefused(std::int32_t total) {
    std::u16string name;
    passOver([&] { name = platform_.files.Dir(FileName); });
    return static_cast<std::int64_t>(name.size()) == total && !ReDown;
}

// Whatever may lie there. False where it stays: what is written over its beginning would spoil it.
bool zkWininetDown::clearTarget() {
    try {
        platform_.files.CreateFileSystemObject()->DeleteFile(FileName);
        return true;
    } catch (const RunTimeError &error) {
        return error.number() == ErrorNumber::FileNotFound;
    }
}

// A write that fails is not examined, and a cut body is not told from a whole one.
bool zkWininetDown::receiveFile(std::int32_t total) {
    std::unique_ptr<platform::OutputFile> file;
    if (!passOver([&] { file = platform_.files.CreateFileA(FileName); }))
        return fail(7);
    file->SetFilePointer(0);
    begin();
    std::string packet;
    while (readPacket(packet)) {
        file->WriteFile(packet);
        packetDone(total, packet.size());
        if (!IsRunning_) {
            fail(4);
            break;
        }
    }
    file.reset();
    if (!IsRunning_)
        return false;
    bStop();
    raiseStatus(6);
    raiseEnd(true);
    return true;
}

} // namespace velmora
