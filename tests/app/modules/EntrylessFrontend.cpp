// A module that loads and has none of the names that are looked up.
extern "C" [[gnu::visibility("default")]] int SomethingElse() { return 0; }
