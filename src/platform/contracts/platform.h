#pragma once

// Everything the program is handed at its start. References outlive the program.

namespace velmora::platform {

class AnsiText;
class Clock;
class Dialogs;
class FileSystem;
class Folders;
class Internet;
class MediaControl;
class Processes;
class Profiles;
class Registry;
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
    Internet &internet;
    MediaControl &media;
    Processes &processes;
    Profiles &profiles;
    Registry &registry;
    Shell &shell;
    VersionRecords &versions;
    WaitableTimers &waitableTimers;
    WaveOut &waveOut;
    WindowSystem &windows;
};

} // namespace velmora::platform
