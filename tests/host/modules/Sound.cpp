// A module that loads, with one entry.
extern "C" __attribute__((visibility("default"))) int SoundEntry() { return 42; }
