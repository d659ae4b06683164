#include "tools/check/EscapeCheck.h"

#include <algorithm>

#include "tools/base/Suggest.h"
#include "wordlex/functionality/Escapes.h"

namespace tool {

namespace {

using lexon_private::ControlWord;
using lexon_private::Escapes;

// The names that may follow "#{".
const std::vector<std::string>& EntityNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (const auto* row = lexon_private::charEntityReference(); row->name != nullptr; ++row)
            list.push_back(Utf8({row->name, row->length}));
        return list;
    }();
    return names;
}

class OriginsObserver : public lexon_private::EscapeObserver {
public:
    void OnUnitEscape(std::size_t, unsigned short, unsigned short, unsigned short) override {}
    void OnNoEntity(std::size_t) override {}
    void OnDropped(std::size_t, std::size_t, ControlWord) override {}
    void OnConverted(std::span<const std::size_t> from) override {
        origins.assign(from.begin(), from.end());
    }
    std::vector<std::size_t> origins;
};

bool IsDigit(unsigned short unit) { return unit >= '0' && unit <= '9'; }

class Checker : public lexon_private::EscapeObserver {
public:
    Checker(Units value, const EscapeSink& sink) : written(value), add(sink) {}

    void OnUnitEscape(std::size_t position, unsigned short escape, unsigned short unit,
                      unsigned short replacement) override {
        if (replacement != 0) return;
        const bool isHat = escape == '^';
        if (unit == escape) {
            const std::size_t after = position + 2;
            if (isHat && after < written.size() && IsDigit(written[after])) {
                add(Rule::kDoubledHat, position, 3,
                    Quoted(position, 3) + " is stored as " + Quoted(position + 1, 2) +
                        ", which is a marker: a doubled \"^\" does not protect it");
            }
            return;
        }
        if (isHat && IsDigit(unit)) return;
        const std::size_t length = unit == 0 ? 1 : 2;
        add(Rule::kUnknownEscape, position, length,
            Quoted(position, length) + " is not an escape and stays as it is");
    }

    void OnNoEntity(std::size_t position) override {
        constexpr std::size_t kShown = 16;
        constexpr std::size_t kAround = 3;  // "#{" and "}"
        const Units rest = written.subspan(position, std::min(kShown, written.size() - position));
        const auto end = std::ranges::find(rest, u'}');
        const auto length = static_cast<std::size_t>(end - rest.begin()) + (end != rest.end());
        std::string text = Quoted(position, length) + " is not an escape and stays as it is";
        if (end != rest.end() && length > kAround) {
            text += DidYouMean(Utf8(rest.subspan(2, length - kAround)), EntityNames());
        }
        add(Rule::kUnknownEscape, position, length, std::move(text));
    }

    void OnDropped(std::size_t position, std::size_t length, ControlWord by) override {
        // A comment is intended. The text before the first macOS section is for all other
        // platforms.
        if (by == ControlWord::kComment || (by == ControlWord::kMacos && position == 0)) return;
        const std::string what = Quoted(position, length);
        const char* const why = by == ControlWord::kMacos ? " comes before another #{macos} section"
                                                          : " is a section for another platform";
        add(Rule::kDroppedText, position, length, what + why + " and is dropped");
    }

private:
    std::string Quoted(std::size_t position, std::size_t length) const {
        return ShowRaw(written.subspan(position, length));
    }

    Units written;
    const EscapeSink& add;
};

}  // namespace

std::vector<std::size_t> OriginsOf(Units written) {
    OriginsObserver observer;
    Escapes::Convert(written, observer);
    return std::move(observer.origins);
}

Text CheckEscapes(Units written, const EscapeSink& add) {
    Checker checker(written, add);
    std::vector<unsigned short> room;
    const Units plain = Escapes::Convert(written, room);
    if (plain.data() == written.data()) return {plain.data(), plain.size()};  // has no escapes
    return Text(Escapes::Convert(written, checker));
}

}  // namespace tool
