// A program of its own that owns a precompiled header.
int main() { return 0; }
