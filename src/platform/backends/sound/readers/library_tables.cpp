#include "platform/backends/sound/readers/library_tables.h"

namespace velmora::platform::sound {

Mpg123Table::Mpg123Table(const LoadedLibrary &library) {
    VELMORA_MPG123_FUNCTIONS(VELMORA_TABLE_BIND)
    if (complete)
        complete = mpg123_init() == MPG123_OK;
}

SndfileTable::SndfileTable(const LoadedLibrary &library){
    VELMORA_SNDFILE_FUNCTIONS(VELMORA_TABLE_BIND)}

FluidsynthTable::FluidsynthTable(const LoadedLibrary &library) {
    VELMORA_FLUIDSYNTH_FUNCTIONS(VELMORA_TABLE_BIND)
    // The library would report every oddity of a file on standard error.
    if (complete)
        for (const int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG})
            fluid_set_log_function(level, nullptr, nullptr);
}

namespace {

template <class Table> std::shared_ptr<const Table>
load(std::mutex &mutex, std::shared_ptr<const Table> &table, const std::string &name) {
    const std::lock_guard lock(mutex);
    if (!table)
        table = std::make_shared<const Table>(LoadedLibrary(name));
    return table->complete ? table : nullptr;
}

} // namespace

std::shared_ptr<const Mpg123Table> DecoderLibraries::mpg123() {
    return load(*mutex_, mpg123_, names_.mpg123);
}

std::shared_ptr<const SndfileTable> DecoderLibraries::sndfile() {
    return load(*mutex_, sndfile_, names_.sndfile);
}

std::shared_ptr<const FluidsynthTable> DecoderLibraries::fluidsynth() {
    return load(*mutex_, fluidsynth_, names_.fluidsynth);
}

} // namespace velmora::platform::sound
