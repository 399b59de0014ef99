#pragma once

// The sound back-end: the device for media without pictures and the wave output devices.

#include "platform/backends/media/device.h"
#include "platform/backends/sound/output/quiet_wish.h"
#include "platform/backends/sound/readers/library_tables.h"
#include "platform/contracts/media.h"

#include <memory>
#include <string>
#include <vector>

namespace velmora::platform::sound {

// The places where distributions put a General MIDI sound font, the best liked first.
std::vector<std::string> defaultSoundFonts();

struct SoundOptions {
    std::string applicationName = "Velmora";          // UTF-8, shown by the desktop's mixer
    std::string iconName = "example.norvane.velmora"; // the program's ID
    // Address of the sound server; empty: the user's own, as libpulse finds it.
    std::string server = {};
    // For MIDI: the first that can be loaded. None: media of this kind fail to open.
    std::vector<std::string> soundFonts = defaultSoundFonts();
    LibraryNames libraries = {};
    // Told when somebody else's call wants music to be quiet; null: nobody asks.
    std::shared_ptr<QuietWish> quiet = {};
    int openLimitMs = 10'000; // an open whose disk does not answer fails then
};

// Opens wav, aiff, au, flac, ogg, opus, MPEG audio and MIDI by their content; anything else, a
// missing library and "Sequencer" for what is no MIDI give null. Nothing is loaded before the first
// open. Devices must be gone before the opener is destroyed.
std::unique_ptr<media::DeviceOpener> makeSoundOpener(SoundOptions options = {});

// Whether a sound server on this machine answers just now. Never starts one, and lasts a tenth of a
// second at most where one hangs. `server` as above.
bool soundServerAnswers(const std::string &server = {});

struct WaveOutOptions {
    std::string server = {}; // as above
    LibraryNames libraries = {};
    // Folder where the kernel lists the machine's sound cards.
    std::string cards = "/sys/class/sound";
};

// Asks the sound server anew with each call and keeps nothing running. It finds the server that
// sound is put out by; no library is loaded unless that is not on this machine, or not found at the
// usual places. A call lasts up to some seconds where a server is being started, or hangs.
std::unique_ptr<WaveOut> makePulseWaveOut(WaveOutOptions options = {});

} // namespace velmora::platform::sound
