extern "C" [[gnu::visibility("default")]] int NotAppMain() { return 1; }
