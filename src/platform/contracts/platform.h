#pragma once

// Everything the program is handed at its start. References outlive the program.

namespace velmora::platform {

class AnsiText;
class Clock;
class Dialogs;
class FileSystem;
class Folders;
class Inhibitor;
class Internet;
class MediaControl;
class Processes;
class Profiles;
class Registry;
class Remote;
class Shell;
class VersionRecords;
class WaitableTimers;
class WaveOut;
class WindowSystem;

struct Platform {
    AnsiText &ansi;
    Clock &clock;
    Dialogs &dialogs;
    FileSystem &files;
    Folders &folders;
    Inhibitor &inhibitor;
    Internet &internet;
    MediaControl &media;
    Processes &processes;
    Profiles &profiles;
    Registry &registry;
    Remote &remote;
    Shell &shell;
    VersionRecords &versions;
    WaitableTimers &waitableTimers;
    WaveOut &waveOut;
    WindowSystem &windows;
};

} // namespace velmora::platform
