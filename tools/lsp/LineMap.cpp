#include "tools/lsp/LineMap.h"

#include <algorithm>

namespace tool::lsp {

namespace {

Json ToJson(Position position) {
    return {{"line", position.line}, {"character", position.character}};
}

}  // namespace

Json ToJson(const Range& range) {
    return {{"start", ToJson(range.start)}, {"end", ToJson(range.end)}};
}

Position PositionFrom(const Json& position) {
    return {position.at("line").get<std::uint32_t>(),
            position.at("character").get<std::uint32_t>()};
}

Range RangeFrom(const Json& range) {
    return {PositionFrom(range.at("start")), PositionFrom(range.at("end"))};
}

LineMap::LineMap(Units text) : starts{Position{}} {
    Position at;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned short unit = text[i];
        ++at.character;
        if (unit == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') continue;
        const bool endsBoth = unit == u'\n' || unit == u'\r';
        if (endsBoth) at = {at.line + 1, 0};
        if (endsBoth || unit == 0x2028 || unit == 0x2029) starts.push_back(at);
    }
}

Position LineMap::ToEditor(std::uint64_t number, std::size_t unit) const {
    const auto line = static_cast<std::size_t>(number - 1);
    if (line >= starts.size()) return {line, unit};
    return {starts[line].line, starts[line].character + unit};
}

LineMap::Spot LineMap::FromEditor(Position position) const {
    if (starts.empty()) return {position.line + 1, position.character};
    const auto after = std::ranges::upper_bound(starts, position);
    const Position start = *(after - 1);
    return {static_cast<std::uint64_t>(after - starts.begin()),
            start.line == position.line ? position.character - start.character : 0};
}

}  // namespace tool::lsp
