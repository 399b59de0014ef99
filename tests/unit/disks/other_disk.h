#pragma once

// File systems that lack what the usual one has, mounted for a test where the machine lets it.

#include "tests/unit/linux/temp_folder.h"
#include "tests/unit/small_disk.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <ostream>
#include <string>

namespace velmora {

// A disk that is mounted while this lives. In a run as root its user is not the one who mounted it,
// as with a stick or a share in the list of fixed mounts; anybody else mounts what the system lets
// him, and uses it.
class OtherDisk {
public:
    struct Kind {
        const char *name;
        // Shell commands of the superuser and of anybody else, with $image a file of 16 MB and
        // $place where to mount. Empty: none can; null: by a view of the system of one's own.
        const char *mount;
        const char *mountAsAnybody;

        friend void PrintTo(const Kind &kind, std::ostream *out) { *out << kind.name; }
    };

    explicit OtherDisk(const Kind &kind) {
        folder_.makeFolder("place");
        folder_.makeFolder("below");
        folder_.mode(".", 0755);
        folder_.mode("below", 0777);
        const bool isRoot = ::geteuid() == 0;
        const char *mount = isRoot ? kind.mount : kind.mountAsAnybody;
        if (mount == nullptr) {
            isMounted_ = mountSmallDisk(folder_.bytes("place"), "2M");
            if (!isMounted_)
                lacking_ = std::string(kind.name) + " cannot be mounted here by anybody";
        } else if (*mount == '\0') {
            lacking_ = std::string("only the superuser mounts ") + kind.name;
        } else if (!runs(std::string("truncate -s 16M \"$image\" && ") + mount)) {
            lacking_ = std::string(kind.name) + " cannot be mounted here: " + folder_.read("words");
        } else {
            isMounted_ = true;
            becomesUser_ = isRoot && ::seteuid(anyUser) == 0;
        }
    }
    ~OtherDisk() {
        if (becomesUser_ && ::seteuid(0) != 0)
            std::abort();
        if (isMounted_)
            runs("umount \"$place\" || fusermount -u \"$place\" || umount -l \"$place\"");
    }
    OtherDisk(const OtherDisk &) = delete;
    OtherDisk &operator=(const OtherDisk &) = delete;

    // Why there is no such disk here; empty where there is one.
    const std::string &lacking() const { return lacking_; }
    std::string path() const { return folder_.bytes("place"); }

private:
    static constexpr ::uid_t anyUser = 65534;

    bool runs(const std::string &commands) const {
        const std::string script = "place='" + folder_.bytes("place") + "'; image='" +
                                   folder_.bytes("image") + "'; below='" + folder_.bytes("below") +
                                   "'; { " + commands + "; } >'" + folder_.bytes("words") +
                                   "' 2>&1";
        return std::system(script.c_str()) == 0;
    }

    TempFolder folder_;
    std::string lacking_;
    bool isMounted_ = false;
    bool becomesUser_ = false;
};

} // namespace velmora
