#include "wordlex/functionality/DictionaryMap.h"

#include <algorithm>

namespace lexon_private {

DictionaryMap& DictionaryMap::Instance() {
    static DictionaryMap sInstance;
    return sInstance;
}

Dictionary* DictionaryMap::operator[](unsigned long index) {
    const auto found = std::ranges::find(ids, index);
    if (found != ids.end()) {
        return dictionaries[static_cast<std::size_t>(found - ids.begin())].get();
    }
    ids.reserve(ids.size() + 1);  // so that nothing throws between the two vectors
    dictionaries.push_back(std::make_unique<Dictionary>());
    ids.push_back(index);
    return dictionaries.back().get();
}

}  // namespace lexon_private
