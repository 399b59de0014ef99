#include "platform/backends/picture/picture_opener.h"

#include "platform/backends/picture/media_formats.h"
#include "platform/backends/picture/opening.h"

#include <filesystem>

namespace velmora::platform {

namespace picture {

namespace {

// A graphics card that can draw for us shows as a render node.
bool hasGraphicsCard() {
    std::error_code error;
    for (std::filesystem::directory_iterator node("/dev/dri", error), end; !error && node != end;
         node.increment(error))
        if (node->path().filename().string().starts_with("renderD"))
            return true;
    return false;
}

// A list value among the options of a demuxer is given with its length in front, since it holds
// commas itself.
std::string demuxerOptions() {
    const std::string formats = mediaFormats;
    return "format_whitelist=%" + std::to_string(formats.size()) + "%" + formats +
           ",protocol_whitelist=file";
}

} // namespace

MpvCore::Options PictureOpener::engineOptions() const {
    std::string videoOutput = options_.videoOutput;
    if (videoOutput.empty())
        videoOutput = hasGraphicsCard() ? "gpu,x11" : "x11";
    return {
        // Nothing of the user's, no scripts, no terminal, no controls of its own.
        {"config", "no"},
        {"terminal", "no"},
        {"ytdl", "no"},
        {"load-scripts", "no"},
        {"osc", "no"},
        {"load-stats-overlay", "no"},
        {"load-osd-console", "no"},
        {"load-auto-profiles", "no"},
        {"input-default-bindings", "no"},
        {"input-vo-keyboard", "no"},
        {"input-cursor", "no"},
        {"cursor-autohide", "no"},
        {"osd-level", "0"},
        // Nothing but the file itself: no cover, no subtitle, no file beside or inside it.
        {"audio-display", "no"},
        {"sid", "no"},
        {"sub-auto", "no"},
        {"audio-file-auto", "no"},
        {"access-references", "no"},
        {"ordered-chapters", "no"},
        {"demuxer", "lavf"},
        {"demuxer-lavf-o", demuxerOptions()},
        {"cache", "no"},
        {"demuxer-max-bytes", "64MiB"},
        // What a seek leaves behind has a place of its own, though nothing of it is kept: else one
        // just behind a change of the sound stream would lose the picture that it begins with.
        {"demuxer-seekable-cache", "yes"},
        {"demuxer-max-back-bytes", "0"},
        {"demuxer-donate-buffer", "no"},
        // It stands still after opening, and at its end; seeks are exact.
        {"idle", "yes"},
        {"pause", "yes"},
        {"keep-open", "yes"},
        {"keep-open-pause", "no"},
        {"hr-seek", "yes"},
        {"resume-playback", "no"},
        // Decoders on threads of their own, so that a heavy picture cannot starve the sound;
        // a light picture does without.
        {"vd-queue-enable", "yes"},
        {"vd-queue-max-samples", "4"},
        {"ad-queue-enable", "yes"},
        // A volume is heard after what the server has buffered; float keeps the small ones exact.
        {"ao", options_.audioOutput},
        {"pulse-buffer", "25"},
        {"audio-format", "float"},
        {"audio-channels", "stereo,mono"},
        {"audio-client-name", options_.applicationName},
        // The end is told when the last sound is heard, not when it is buffered.
        {"gapless-audio", "no"},
        {"volume", "100"},
        {"replaygain", "no"},
        {"vo", videoOutput},
        {"gpu-context", "x11egl"},
        {"keepaspect", "no"},
    };
}

std::optional<OpenMedium> PictureOpener::load(const media::OpenRequest &request) {
    if (library_ == nullptr)
        library_ = MpvLibrary::load();
    if (library_ == nullptr)
        return std::nullopt;
    auto core = MpvCore::start(library_, engineOptions());
    if (core == nullptr)
        return std::nullopt;
    return Opening(std::move(core), request, options_).run();
}

std::unique_ptr<media::Device> PictureOpener::open(const media::OpenRequest &request) {
    auto medium = load(request);
    if (!medium)
        return nullptr;
    return std::make_unique<PictureDevice>(std::move(*medium));
}

} // namespace picture

std::unique_ptr<media::DeviceOpener> makePictureOpener(PictureOptions options) {
    return std::make_unique<picture::PictureOpener>(std::move(options));
}

} // namespace velmora::platform
