#pragma once
// One function for each verb of the command. Each returns the exit code, and throws a Failure where
// that is 2.
#include "tools/base/Arguments.h"

namespace tool {

inline constexpr int kSuccess = 0;     // clean, found, equal
inline constexpr int kDifference = 1;  // findings, a difference, a key that is absent
inline constexpr int kFailure = 2;  // usage, malformed input, a file that cannot be read or written

int Check(const Arguments& arguments);
int Compare(const Arguments& arguments);
int Compile(const Arguments& arguments);
int Completions(const Arguments& arguments);
int Dump(const Arguments& arguments);
int Export(const Arguments& arguments);
int Extract(const Arguments& arguments);
int Import(const Arguments& arguments);
int Lookup(const Arguments& arguments);
int Lsp(const Arguments& arguments);
int Pseudo(const Arguments& arguments);
int Report(const Arguments& arguments);
int Stats(const Arguments& arguments);
int Update(const Arguments& arguments);

}  // namespace tool
