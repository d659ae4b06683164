// A module that loads but exports none of the expected names.
extern "C" [[gnu::visibility("default")]] int SomethingElse() { return 0; }
