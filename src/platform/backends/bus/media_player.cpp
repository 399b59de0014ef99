#include "platform/backends/bus/media_player.h"

#include "platform/backends/bus/media_types.h"
#include "platform/backends/bus/metadata.h"
#include "platform/backends/bus/opened_files.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

namespace velmora::platform::bus {

namespace {

constexpr const char *objectPath = "/org/mpris/MediaPlayer2";
constexpr const char *rootInterface = "org.mpris.MediaPlayer2";
constexpr const char *playerInterface = "org.mpris.MediaPlayer2.Player";

const char *statusName(RemoteStatus status) {
    switch (status) {
    case RemoteStatus::Playing:
        return "Playing";
    case RemoteStatus::Paused:
        return "Paused";
    case RemoteStatus::Stopped:
        break;
    }
    return "Stopped";
}

const char *loopName(RemoteLoop loop) {
    switch (loop) {
    case RemoteLoop::Track:
        return "Track";
    case RemoteLoop::Playlist:
        return "Playlist";
    case RemoteLoop::None:
        break;
    }
    return "None";
}

std::optional<RemoteLoop> loopOf(const char *name) {
    for (const RemoteLoop loop : {RemoteLoop::None, RemoteLoop::Track, RemoteLoop::Playlist})
        if (std::strcmp(name, loopName(loop)) == 0)
            return loop;
    return std::nullopt;
}

} // namespace

struct MediaPlayer::Calls {
    static MediaPlayer &of(void *object) { return *static_cast<MediaPlayer *>(object); }
    static const BusLibrary &library(void *object) { return of(object).connection_.library(); }

    // --- methods ---------------------------------------------------------------------------------
    // Answers, and does the work behind the answer.
    template <typename Work> static int done(sd_bus_message *message, void *object, Work work) {
        of(object).connection_.later([player = of(object).player_, work] { work(*player); });
        return library(object).replyReturn(message, "");
    }

    template <RemoteCommand command>
    static int click(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        return done(
            message, object, [](RemoteControlled &player) { player.command(command); });
    }

    static int playPause(sd_bus_message *message, void *object, sd_bus_error *error) {
        if (!of(object).now_.hasTrack)
            return library(object).errorSet(error, SD_BUS_ERROR_FAILED, "There is no track.");
        return click<RemoteCommand::PlayPause>(message, object, error);
    }

    static int seek(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        std::int64_t offset = 0;
        if (const int read = library(object).read(message, "x", &offset); read < 0)
            return read;
        return done(message, object,
                    [offset](RemoteControlled &player) { player.seekBy(offset / 1000); });
    }

    static int setPosition(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        const char *track = nullptr;
        std::int64_t position = 0;
        if (const int read = library(object).read(message, "ox", &track, &position); read < 0)
            return read;
        const std::uint32_t now = of(object).now_.track;
        const bool isThis = now != 0 && track == trackPath(now) && position >= 0;
        return done(message, object, [=](RemoteControlled &player) {
            if (isThis)
                player.seekTo(now, position / 1000);
        });
    }

    static int openUri(sd_bus_message *message, void *object, sd_bus_error *error) {
        const char *uri = nullptr;
        if (const int read = library(object).read(message, "s", &uri); read < 0)
            return read;
        auto paths = openedFiles(uri);
        if (paths.empty())
            return library(object).errorSet(error, SD_BUS_ERROR_NOT_SUPPORTED,
                                            "This is no file of this machine.");
        return done(message, object,
                    [paths](RemoteControlled &player) { player.open(paths, false); });
    }

    // --- properties ------------------------------------------------------------------------------
    using Bus = sd_bus;
    template <auto value> static int flag(Bus *, const char *, const char *, const char *,
                                          sd_bus_message *reply, void *object, sd_bus_error *) {
        return library(object).append(reply, "b", static_cast<int>(of(object).now_.*value));
    }
    template <bool value> static int always(Bus *, const char *, const char *, const char *,
                                            sd_bus_message *reply, void *object, sd_bus_error *) {
        return library(object).append(reply, "b", static_cast<int>(value));
    }
    static int one(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                   void *object, sd_bus_error *) {
        return library(object).append(reply, "d", 1.0);
    }
    static int identity(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                        void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "Velmora");
    }
    static int desktopEntry(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                            void *object, sd_bus_error *) {
        return library(object).append(reply, "s", applicationId);
    }
    static int schemes(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                       void *object, sd_bus_error *) {
        return library(object).append(reply, "as", 1, "file");
    }
    static int mediaTypes(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                          void *object, sd_bus_error *) {
        std::vector<char *> types;
        for (const char *type : supportedTypes)
            types.push_back(const_cast<char *>(type));
        types.push_back(nullptr);
        return library(object).appendStrv(reply, types.data());
    }
    static int status(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                      void *object, sd_bus_error *) {
        return library(object).append(reply, "s", statusName(of(object).now_.status));
    }
    static int loop(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                    void *object, sd_bus_error *) {
        return library(object).append(reply, "s", loopName(of(object).now_.loop));
    }
    static int metadata(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                        void *object, sd_bus_error *) {
        return appendTrack(library(object), reply, of(object).now_, of(object).artUri_);
    }
    static int volume(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                      void *object, sd_bus_error *) {
        return library(object).append(reply, "d", of(object).now_.volume);
    }
    static int position(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                        void *object, sd_bus_error *) {
        return library(object).append(reply, "x",
                                      std::int64_t{of(object).player_->positionMs()} * 1000);
    }

    static int setFullscreen(Bus *, const char *, const char *, const char *, sd_bus_message *value,
                             void *object, sd_bus_error *) {
        int wanted = 0;
        if (const int read = library(object).read(value, "b", &wanted); read < 0)
            return read;
        of(object).connection_.later(
            [player = of(object).player_, wanted] { player->setFullscreen(wanted != 0); });
        return 0;
    }
    static int setLoop(Bus *, const char *, const char *, const char *, sd_bus_message *value,
                       void *object, sd_bus_error *error) {
        const char *name = nullptr;
        if (const int read = library(object).read(value, "s", &name); read < 0)
            return read;
        const auto loop = loopOf(name);
        if (!loop)
            return library(object).errorSet(error, SD_BUS_ERROR_INVALID_ARGS,
                                            "It is None, Track or Playlist.");
        return of(object).player_->setLoop(*loop) ? 0 : noSuchOrder(object, error);
    }
    static int setShuffle(Bus *, const char *, const char *, const char *, sd_bus_message *value,
                          void *object, sd_bus_error *error) {
        int wanted = 0;
        if (const int read = library(object).read(value, "b", &wanted); read < 0)
            return read;
        return of(object).player_->setShuffle(wanted != 0) ? 0 : noSuchOrder(object, error);
    }
    static int noSuchOrder(void *object, sd_bus_error *error) {
        return library(object).errorSet(error, SD_BUS_ERROR_NOT_SUPPORTED,
                                        "Whether tracks follow each other is set in the player.");
    }
    // No other rate than 1 is offered; 0 stands for a pause.
    static int setRate(Bus *, const char *, const char *, const char *, sd_bus_message *value,
                       void *object, sd_bus_error *) {
        double rate = 1;
        if (const int read = library(object).read(value, "d", &rate); read < 0)
            return read;
        if (rate == 0)
            of(object).connection_.later(
                [player = of(object).player_] { player->command(RemoteCommand::Pause); });
        return 0;
    }
    static int setVolume(Bus *, const char *, const char *, const char *, sd_bus_message *value,
                         void *object, sd_bus_error *error) {
        double volume = 0;
        if (const int read = library(object).read(value, "d", &volume); read < 0)
            return read;
        if (std::isnan(volume))
            return library(object).errorSet(error, SD_BUS_ERROR_INVALID_ARGS, "It is a number.");
        of(object).connection_.later(
            [player = of(object).player_, volume] { player->setVolume(volume); });
        return 0;
    }
};

void MediaPlayer::makeTables() {
    using C = Calls;
    rootTable_ = std::make_unique<ObjectTable>(connection_.library());
    rootTable_->method("Raise", "", "", C::click<RemoteCommand::Raise>);
    rootTable_->method("Quit", "", "", C::click<RemoteCommand::Quit>);
    rootTable_->constant("CanQuit", "b", C::always<true>);
    rootTable_->property("Fullscreen", "b", C::flag<&NowPlaying::fullscreen>, C::setFullscreen);
    rootTable_->property("CanSetFullscreen", "b", C::flag<&NowPlaying::canSetFullscreen>);
    rootTable_->constant("CanRaise", "b", C::always<true>);
    rootTable_->constant("HasTrackList", "b", C::always<false>);
    rootTable_->constant("Identity", "s", C::identity);
    rootTable_->constant("DesktopEntry", "s", C::desktopEntry);
    rootTable_->constant("SupportedUriSchemes", "as", C::schemes);
    rootTable_->constant("SupportedMimeTypes", "as", C::mediaTypes);
    root_ = rootTable_->entries();

    playerTable_ = std::make_unique<ObjectTable>(connection_.library());
    playerTable_->method("Next", "", "", C::click<RemoteCommand::Next>);
    playerTable_->method("Previous", "", "", C::click<RemoteCommand::Previous>);
    playerTable_->method("Pause", "", "", C::click<RemoteCommand::Pause>);
    playerTable_->method("PlayPause", "", "", C::playPause);
    playerTable_->method("Stop", "", "", C::click<RemoteCommand::Stop>);
    playerTable_->method("Play", "", "", C::click<RemoteCommand::Play>);
    playerTable_->method("Seek", "x", "Offset\0", C::seek);
    playerTable_->method("SetPosition", "ox", "TrackId\0Position\0", C::setPosition);
    playerTable_->method("OpenUri", "s", "Uri\0", C::openUri);
    playerTable_->signal("Seeked", "x", "Position\0");
    playerTable_->property("PlaybackStatus", "s", C::status);
    playerTable_->property("LoopStatus", "s", C::loop, C::setLoop);
    playerTable_->property("Rate", "d", C::one, C::setRate);
    playerTable_->property("Shuffle", "b", C::flag<&NowPlaying::shuffle>, C::setShuffle);
    playerTable_->property("Metadata", "a{sv}", C::metadata);
    playerTable_->property("Volume", "d", C::volume, C::setVolume);
    playerTable_->silentProperty("Position", "x", C::position);
    playerTable_->property("MinimumRate", "d", C::one);
    playerTable_->property("MaximumRate", "d", C::one);
    playerTable_->property("CanGoNext", "b", C::flag<&NowPlaying::hasRows>);
    playerTable_->property("CanGoPrevious", "b", C::flag<&NowPlaying::hasRows>);
    playerTable_->property("CanPlay", "b", C::flag<&NowPlaying::hasTrack>);
    playerTable_->property("CanPause", "b", C::flag<&NowPlaying::hasTrack>);
    playerTable_->property("CanSeek", "b", C::flag<&NowPlaying::canSeek>);
    playerTable_->silentProperty("CanControl", "b", C::always<true>);
    playerEntries_ = playerTable_->entries();
}

void MediaPlayer::attach() {
    if (rootTable_ == nullptr)
        makeTables();
    const BusLibrary &library = connection_.library();
    library.addObjectVtable(connection_.bus(), nullptr, objectPath, rootInterface, root_, this);
    library.addObjectVtable(connection_.bus(), nullptr, objectPath, playerInterface, playerEntries_,
                            this);
    missed_ = false;
}

void MediaPlayer::publish(const NowPlaying &now, std::string artUri) {
    const NowPlaying before = std::exchange(now_, now);
    const bool artChanged = artUri != artUri_;
    artUri_ = std::move(artUri);
    if (!connection_.isOpen())
        return;
    if (connection_.isStuck()) {
        missed_ = true;
        return;
    }
    tellChanges(before, artChanged);
    connection_.flush();
}

void MediaPlayer::tellChanges(const NowPlaying &before, bool artChanged) {
    std::vector<char *> player;
    std::vector<char *> root;
    const bool all = std::exchange(missed_, false);
    const auto tell = [all](std::vector<char *> &names, bool changed, const char *name) {
        if (changed || all)
            names.push_back(const_cast<char *>(name));
    };
    NowPlaying sameTrack = now_;
    sameTrack.status = before.status;
    sameTrack.volume = before.volume;
    sameTrack.loop = before.loop;
    sameTrack.shuffle = before.shuffle;
    sameTrack.hasTrack = before.hasTrack;
    sameTrack.hasRows = before.hasRows;
    sameTrack.canSeek = before.canSeek;
    sameTrack.canSetFullscreen = before.canSetFullscreen;
    sameTrack.fullscreen = before.fullscreen;
    tell(player, artChanged || sameTrack != before, "Metadata");
    tell(player, now_.status != before.status, "PlaybackStatus");
    tell(player, now_.loop != before.loop, "LoopStatus");
    tell(player, now_.shuffle != before.shuffle, "Shuffle");
    tell(player, now_.volume != before.volume, "Volume");
    tell(player, now_.hasRows != before.hasRows, "CanGoNext");
    tell(player, now_.hasRows != before.hasRows, "CanGoPrevious");
    tell(player, now_.hasTrack != before.hasTrack, "CanPlay");
    tell(player, now_.hasTrack != before.hasTrack, "CanPause");
    tell(player, now_.canSeek != before.canSeek, "CanSeek");
    tell(root, now_.canSetFullscreen != before.canSetFullscreen, "CanSetFullscreen");
    tell(root, now_.fullscreen != before.fullscreen, "Fullscreen");
    const auto emit = [this](const char *interface, std::vector<char *> &names) {
        if (names.empty())
            return;
        names.push_back(nullptr);
        connection_.library().emitPropertiesChanged(connection_.bus(), objectPath, interface,
                                                    names.data());
    };
    emit(playerInterface, player);
    emit(rootInterface, root);
}

void MediaPlayer::seeked(std::int32_t ms) {
    if (!connection_.isOpen() || connection_.isStuck())
        return;
    connection_.library().emitSignal(connection_.bus(), objectPath, playerInterface, "Seeked", "x",
                                     std::int64_t{ms} * 1000);
    connection_.flush();
}

} // namespace velmora::platform::bus
