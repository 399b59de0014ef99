#pragma once

// The play list file, the probe of a save folder, and the small helpers around files and the shell.
//
// The list lives in the two list controls of playList_Form (`playList_Item`: names, `List1`: full
// paths) and nowhere else; this module carries it to and from "zkPlayList.m3u" in the folder
// `setControl::Path_List`. One full path a line, bare, each line ended by CR LF; nothing else.

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

namespace platform {
class FileSystemObject;
}
class Velmora;

// How much a save promises when it returns. Both are atomic, a power cut included: the file is the
// old one or the new one.
enum class SaveKind {
    Step,   // one of many within an operation; not waited for on the disk
    Settled // the last of an operation: file and folder are synced
};

// Whose lines `writeLrcFile` writes.
enum class LyricSource {
    Memory, // those of lrcForm.List1 as they stand in its file: with their own bytes
    Editor  // doLrcForm: the four tags from its boxes, then its list, blank rows included
};

class saveOrOpenFile {
public:
    explicit saveOrOpenFile(Velmora &app);

    // Writes the whole list, over the file there in whatever case it is spelt. Always true: a save
    // that fails leaves the old file as it was and says nothing. A file that this run has neither
    // read to its end nor written, or that another has changed since, is first kept by `keepOld`;
    // where that cannot be done, or the disk cannot tell what is there, nothing is written. A save
    // that is asked for while the list is being loaded is made when all of it is there.
    bool savePlayList(SaveKind kind = SaveKind::Settled);

    // Replaces the list by the file's, found in whatever case it is spelt. False when there is no
    // file (the list is not touched then). Handles pending events ahead of each line. A list that
    // is full takes no further line.
    bool loadPlayList();

    // Keeps a file that is about to be written over as a copy beside it: under its name and ".old",
    // or the first free of ".old.1" to ".old.9", of which the last gives way. Raises where it
    // cannot be kept, and where it could not be written over anyway.
    void keepOld(const std::u16string &path);

    // Writes a lyric under exactly this path. False when it could not be written whole; what lies
    // there is then as it was. The lyric in memory only makes a new file. The editor's goes over an
    // old one, which is kept beside it first where its bytes would be lost (`isOnlyPlaceOf`).
    bool writeLrcFile(std::u16string_view path, LyricSource source);
    // The same with what `doLrcForm::editedLyric` gave when the save was asked for.
    bool writeLrcFile(std::u16string_view path, std::u16string_view editedLyric);

    // Whether a file can be made, written and deleted in the folder (no trailing separator). Makes
    // "zkPlay.tmp" there for the moment; what lies there under that name, a link too, is neither
    // written nor deleted, and another name is taken. An empty folder never can.
    bool canWriteFolder(std::u16string_view folder);

    // Deletes the files of probes that were cut short: those under their names that hold what a
    // probe writes, or nothing.
    void clearProbes(std::u16string_view folder);

    // Deletes the exact path. On failure false, and `lastDeleteError` is the system's description.
    bool deleteFileChecked(std::u16string_view path);
    std::u16string lastDeleteError;

    // The file that the directory search finds by that path, spelt as it lies on the disk: the
    // exact name first, then one that differs in case alone. Empty when it finds none.
    std::u16string fileOnDisk(std::u16string_view path);
    bool fileExists(std::u16string_view path) { return !fileOnDisk(path).empty(); }

    // 1 to 222 units, not only blanks, none of \ / : * ? " < > |
    static bool isValidFileName(std::u16string_view name) noexcept;

    // Hands a path or address to the desktop. Always true.
    bool shellOpen(std::u16string_view target);
    // The same, for what has to know: true when the system reports success.
    bool shellStart(std::u16string_view target);
    // Opens the mail program with this address.
    void mailTo(std::u16string_view address);
    // Removes a file, makes a folder with its parents: hidden and not waited for, no result.
    bool shellDel(std::u16string_view path);
    bool shellMd(std::u16string_view path);

private:
    // A file by its path and length: what is read, written or kept is known by it.
    struct KnownFile {
        std::u16string path;
        std::int64_t length = 0;
        bool operator==(const KnownFile &) const = default;
    };

    std::u16string probePath(std::u16string_view folder, std::u16string_view name);
    enum class Probe { Made, Taken, Failed };
    Probe makeProbe(std::u16string_view path, std::string_view bytes,
                    platform::FileSystemObject &object);
    std::u16string playListPath() const;
    void writeList(bool durable);
    void encodeList();
    bool keepsAs(const KnownFile &file, const std::u16string &place);
    bool isCopy(const KnownFile &file, const std::u16string &other);
    bool readLines(const std::u16string &path);
    bool takeLine(std::string_view line);
    void showLoading(std::string_view line, std::string_view pathBytes, const std::u16string &path);

    Velmora &app_;
    // The room for a save's bytes. It is kept, empty, from step to step of an operation, so that
    // not each of a thousand saves asks the system for the memory of a whole list anew.
    std::string saved_;
    // The play list file as this run knows it.
    KnownFile known_;
    bool isLoading_ = false;
    bool isSaveWanted_ = false; // while loading
};

} // namespace velmora
