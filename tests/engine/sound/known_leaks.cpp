// What a run under LeakSanitizer passes over. (Compiled in: a file named in its options must have
// no blank in its path.)

extern "C" const char *__lsan_default_suppressions(); // NOLINT: the sanitizer's name

// libsndfile does not free what it allocated for an Ogg stream whose Vorbis headers turn out
// damaged: some kilobytes for each such file that is tried, nothing that the caller could free.
extern "C" const char *__lsan_default_suppressions() { return "leak:vorbis_info_init\n"; }
