// What a run under LeakSanitizer passes over. (Compiled in: a file named in its options must have
// no blank in its path.)

extern "C" const char *__lsan_default_suppressions(); // NOLINT: the sanitizer's name

// An engine that its sound server holds up is left behind after a bounded wait, with what it was
// about to free.
extern "C" const char *__lsan_default_suppressions() { return "leak:libmpv.so\n"; }
