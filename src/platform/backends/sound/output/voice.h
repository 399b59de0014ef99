#pragma once

// Plays one open file into an output stream as its control asks. Lives on the output thread; makes
// no calls to the system itself, so that a test can drive it by a stream and a clock of its own.

#include "platform/backends/sound/output/output_stream.h"
#include "platform/backends/sound/output/source_window.h"
#include "platform/backends/sound/output/voice_control.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora::platform::sound {

class Voice {
public:
    // `name` (UTF-8) is what a mixer calls it.
    Voice(std::shared_ptr<VoiceControl> control, std::unique_ptr<Reader> reader, std::string name);

    int rate() const { return window_.rate(); }
    const std::string &name() const { return name_; }
    bool wantsToPlay() const { return control_->wish().playing; }

    // Goes on through another stream from where the present one is.
    void attach(std::unique_ptr<OutputStream> stream, TimePoint now);
    // Null: none attached yet.
    OutputStream *stream() const { return stream_.get(); }

    // Does what is due. When it wants to be called again, unless something changes earlier.
    TimePoint service(TimePoint now);
    bool closing() const { return wish_.closed; }
    // Closed by the program and no longer heard.
    bool finished(TimePoint now) const;

private:
    std::int64_t framesOfMs(int ms) const;
    TimePoint changeTransport(TimePoint now);
    void start(TimePoint now, std::int64_t frame);
    void silence(TimePoint now);
    std::int64_t fadeOut(TimePoint now);
    TimePoint changeMix(TimePoint now);
    TimePoint fill(TimePoint now);
    bool rewriteStale(TimePoint now, std::int64_t heard);
    void catchUp(TimePoint now);
    TimePoint settle(TimePoint now);
    TimePoint whenHeard(std::int64_t frame, TimePoint now) const;
    std::int64_t endOfPiece() const { return pieceOut_ + window_.length() - pieceSource_; }
    std::int64_t sourceFrame(TimePoint now) const;
    void write(std::int64_t first, std::int64_t end);
    void writeSilence(std::int64_t first, std::int64_t end);
    void publish(TimePoint now);

    std::shared_ptr<VoiceControl> control_;
    SourceWindow window_;
    std::string name_;
    std::unique_ptr<OutputStream> stream_;
    VoiceWish wish_;
    std::uint64_t doneTransport_ = 0;
    // Set when a stream was lost in play: the next one goes on from here.
    std::optional<std::int64_t> resumeAt_;
    std::uint64_t doneMix_ = 0;
    bool ended_ = false;

    // The piece that is being played: the stream's frame pieceOut_ is the file's pieceSource_.
    bool playing_ = false;
    std::int64_t pieceOut_ = 0;
    std::int64_t pieceSource_ = 0;
    GainRamp ramp_;

    std::int64_t head_ = 0;    // the next frame to write
    std::int64_t written_ = 0; // the end of everything ever written
    // Frames from here to head_ still hold an older gain.
    std::optional<std::int64_t> staleFrom_;
    TimePoint anewFrom_; // before that it waits, unless it is near
    TimePoint lastMix_;
    TimePoint mixFrom_; // a further change waits until then
    bool filling_ = false;
    // Silent from here on: the stream is stopped when this has been heard.
    std::optional<std::int64_t> stopAt_;
};

} // namespace velmora::platform::sound
