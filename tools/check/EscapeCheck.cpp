#include "tools/check/EscapeCheck.h"

#include <algorithm>

#include "wordlex/functionality/Escapes.h"

namespace tool {

namespace {

using lexon_private::ControlWord;
using lexon_private::Escapes;

bool IsDigit(unsigned short unit) { return unit >= '0' && unit <= '9'; }

class Checker : public lexon_private::EscapeObserver {
public:
    Checker(Units value, const EscapeSink& sink) : written(value), add(sink) {}

    void OnUnitEscape(std::size_t position, unsigned short escape, unsigned short unit,
                      unsigned short replacement) override {
        if (replacement != 0) return;
        const bool isHat = escape == '^';
        if (unit == escape) {
            const std::size_t behind = position + 2;
            if (isHat && behind < written.size() && IsDigit(written[behind])) {
                add(Rule::kDoubledHat, position,
                    Quoted(position, 3) + " is stored as " + Quoted(position + 1, 2) +
                        ", which is a marker: a doubled \"^\" does not protect it");
            }
            return;
        }
        if (isHat && IsDigit(unit)) return;
        add(Rule::kUnknownEscape, position,
            Quoted(position, unit == 0 ? 1 : 2) + " is no escape and stays as it is");
    }

    void OnNoEntity(std::size_t position) override {
        constexpr std::size_t kShown = 16;
        const Units rest = written.subspan(position, std::min(kShown, written.size() - position));
        const auto end = std::ranges::find(rest, u'}');
        const auto length = static_cast<std::size_t>(end - rest.begin()) + (end != rest.end());
        add(Rule::kUnknownEscape, position,
            Quoted(position, length) + " is no escape and stays as it is");
    }

    void OnDropped(std::size_t position, std::size_t length, ControlWord by) override {
        // What stands ahead of the first macOS section is the text of all other platforms.
        if (by == ControlWord::kMacos && position == 0) return;
        const std::string what = Quoted(position, length);
        const char* const why = by == ControlWord::kComment ? " stands behind #{comment}"
                                : by == ControlWord::kMacos
                                    ? " stands ahead of another #{macos} section"
                                    : " is a section for another platform";
        add(Rule::kDroppedText, position, what + why + " and is dropped");
    }

private:
    std::string Quoted(std::size_t position, std::size_t length) const {
        return ShowRaw(written.subspan(position, length));
    }

    Units written;
    const EscapeSink& add;
};

}  // namespace

Text CheckEscapes(Units written, const EscapeSink& add) {
    Checker checker(written, add);
    return Text(Escapes::Convert(written, checker));
}

}  // namespace tool
