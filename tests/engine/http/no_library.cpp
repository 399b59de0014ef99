// A library without the functions that are looked for in it.
extern "C" int velmora_test_nothing() { return 0; }
