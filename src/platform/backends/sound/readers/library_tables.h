#pragma once

// The functions of the decoding libraries, each a table that is filled on first use.

#include "base/loaded_library.h"

#include <fluidsynth.h>
#include <memory>
#include <mpg123.h>
#include <mutex>
#include <sndfile.h>

namespace velmora::platform::sound {

#define VELMORA_MPG123_FUNCTIONS(F)                                                                \
    F(mpg123_init)                                                                                 \
    F(mpg123_new)                                                                                  \
    F(mpg123_delete)                                                                               \
    F(mpg123_param)                                                                                \
    F(mpg123_open_feed)                                                                            \
    F(mpg123_format_none)                                                                          \
    F(mpg123_format)                                                                               \
    F(mpg123_feed)                                                                                 \
    F(mpg123_decode_frame)

#define VELMORA_SNDFILE_FUNCTIONS(F)                                                               \
    F(sf_open_virtual)                                                                             \
    F(sf_close)                                                                                    \
    F(sf_command)                                                                                  \
    F(sf_seek)                                                                                     \
    F(sf_readf_float)

#define VELMORA_FLUIDSYNTH_FUNCTIONS(F)                                                            \
    F(new_fluid_settings)                                                                          \
    F(delete_fluid_settings)                                                                       \
    F(fluid_settings_setint)                                                                       \
    F(fluid_settings_setnum)                                                                       \
    F(new_fluid_synth)                                                                             \
    F(delete_fluid_synth)                                                                          \
    F(fluid_synth_sfload)                                                                          \
    F(fluid_synth_system_reset)                                                                    \
    F(fluid_synth_noteon)                                                                          \
    F(fluid_synth_noteoff)                                                                         \
    F(fluid_synth_key_pressure)                                                                    \
    F(fluid_synth_cc)                                                                              \
    F(fluid_synth_program_change)                                                                  \
    F(fluid_synth_channel_pressure)                                                                \
    F(fluid_synth_pitch_bend)                                                                      \
    F(fluid_synth_sysex)                                                                           \
    F(fluid_synth_write_float)                                                                     \
    F(fluid_set_log_function)

struct Mpg123Table {
    explicit Mpg123Table(const LoadedLibrary &library);
    bool complete = true;
    VELMORA_MPG123_FUNCTIONS(VELMORA_TABLE_MEMBER)
};

struct SndfileTable {
    explicit SndfileTable(const LoadedLibrary &library);
    bool complete = true;
    VELMORA_SNDFILE_FUNCTIONS(VELMORA_TABLE_MEMBER)
};

struct FluidsynthTable {
    explicit FluidsynthTable(const LoadedLibrary &library);
    bool complete = true;
    VELMORA_FLUIDSYNTH_FUNCTIONS(VELMORA_TABLE_MEMBER)
};

// File names of the libraries. Another name serves another build of one; a wrong name leaves its
// kind of media unplayable, as a missing library does.
struct LibraryNames {
    std::string mpg123 = "libmpg123.so.0";
    std::string sndfile = "libsndfile.so.1";
    std::string fluidsynth = "libfluidsynth.so.3";
    std::string pulse = "libpulse.so.0";
};

// Each library, loaded when its table is first asked for. Null when it is missing or lacks a
// function. The tables are shared by the readers that use them. Called from any thread: an open
// that nobody waits for may still be at it.
class DecoderLibraries {
public:
    explicit DecoderLibraries(LibraryNames names) : names_(std::move(names)) {}

    std::shared_ptr<const Mpg123Table> mpg123();
    std::shared_ptr<const SndfileTable> sndfile();
    std::shared_ptr<const FluidsynthTable> fluidsynth();

private:
    LibraryNames names_;
    std::unique_ptr<std::mutex> mutex_ = std::make_unique<std::mutex>();
    std::shared_ptr<const Mpg123Table> mpg123_;
    std::shared_ptr<const SndfileTable> sndfile_;
    std::shared_ptr<const FluidsynthTable> fluidsynth_;
};

} // namespace velmora::platform::sound
