#pragma once
#include <memory>
#include <vector>

#include "wordlex/functionality/Dictionary.h"

namespace lexon_private {

// The process's registry of dictionaries, by number.
// Owns:    its dictionaries, until the process exits.
// Threads: the first call of Instance may come from any thread; nothing else is guarded.
class DictionaryMap {
public:
    static DictionaryMap& Instance();
    // The dictionary with that index. A new index gets an empty hash-table dictionary.
    Dictionary* operator[](unsigned long index);

private:
    std::vector<unsigned long> ids;
    std::vector<std::unique_ptr<Dictionary>> dictionaries;  // parallel to ids
};

}  // namespace lexon_private
