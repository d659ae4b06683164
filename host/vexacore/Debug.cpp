#include "host/vexacore/Debug.h"

#include <mutex>
#include <new>
#include <utility>
#include <variant>

namespace vexacore::debug {

namespace {

std::mutex mutex;
std::vector<std::variant<HostEvent, Mark>> list;

void Record(Mark mark) {
    const std::lock_guard lock(mutex);
    list.emplace_back(std::move(mark));
}

}  // namespace

void HostEvents::Append(std::string_view text) noexcept {
    const std::lock_guard lock(mutex);
    try {
        list.emplace_back(HostEvent{Clock::now(), std::string(text)});
    } catch (const std::bad_alloc&) {  // lost
    }
}

std::vector<HostEvent> HostEvents::All() {
    const std::lock_guard lock(mutex);
    std::vector<HostEvent> events;
    for (const auto& entry : list) {
        const auto* const mark = std::get_if<Mark>(&entry);
        events.push_back(mark ? HostEvent{mark->time, mark->Text()} : std::get<HostEvent>(entry));
    }
    return events;
}

std::string Mark::Text() const {
    std::string text = measurement + ": " + label + (flag ? " (true" : " (false");
    if (kind != MarkKind::kEnd) text += ", " + std::to_string(value);
    return text + ')';
}

void GlobalTimeMeasurement::BeginMeasurement(const std::string& name, const std::string& label,
                                             bool flag, int value) {
    Record({MarkKind::kBegin, name, label, flag, value, Clock::now()});
}

void GlobalTimeMeasurement::IntermediateMeasurement(const std::string& name,
                                                    const std::string& label, bool flag,
                                                    int value) {
    Record({MarkKind::kIntermediate, name, label, flag, value, Clock::now()});
}

void GlobalTimeMeasurement::EndMeasurement(const std::string& name, const std::string& label,
                                           bool flag) {
    Record({MarkKind::kEnd, name, label, flag, 0, Clock::now()});
}

std::vector<Mark> GlobalTimeMeasurement::Marks() {
    const std::lock_guard lock(mutex);
    std::vector<Mark> marks;
    for (const auto& entry : list) {
        if (const auto* const mark = std::get_if<Mark>(&entry)) marks.push_back(*mark);
    }
    return marks;
}

}  // namespace vexacore::debug
