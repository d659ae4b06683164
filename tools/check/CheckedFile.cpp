#include "tools/check/CheckedFile.h"

#include <algorithm>

#include "tools/check/EscapeCheck.h"

namespace tool {

Place CheckedFile::PlaceOf(std::uint64_t line, std::size_t lineBegin, Part part) const {
    Place place{.file = name};
    if (line == 0) return place;
    if (line == 1 && units[lineBegin] == 0xFEFF) ++lineBegin;  // a byte-order mark
    const Units text = Units(units).subspan(lineBegin, part.end - lineBegin);
    place.line = line;
    place.unit = part.begin - lineBegin;
    place.endUnit = part.end - lineBegin;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsSecondHalf(text, i)) continue;
        if (i < place.unit) ++place.column;
        ++place.endColumn;
    }
    ++place.column;
    ++place.endColumn;
    return place;
}

Place PlaceInValue(const CheckedFile& file, const Definition& entry, std::size_t begin,
                   std::size_t end) {
    if (entry.line == 0) return {.file = file.name};
    const std::vector<std::size_t> origins = OriginsOf(file.UnitsOf(entry.written));
    const Part written = entry.written;
    const bool isInside = begin < origins.size() && end <= origins.size() && end > begin;
    if (!isInside) return file.PlaceOf(entry, {written.end, written.end});
    return file.PlaceOf(entry,
                        {written.begin + origins[begin], written.begin + origins[end - 1] + 1});
}

std::vector<const CheckedFile::Entries::value_type*> CheckedFile::InOrder() const {
    std::vector<const Entries::value_type*> list;
    list.reserve(entries.size());
    for (const auto& entry : entries)
        list.push_back(&entry);
    std::ranges::sort(list, [](const auto* a, const auto* b) {
        if (a->second.line != b->second.line) return a->second.line < b->second.line;
        return a->first < b->first;
    });
    return list;
}

}  // namespace tool
