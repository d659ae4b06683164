#include "host/vexacore/Debug.h"

#include <mutex>
#include <new>
#include <utility>

namespace vexacore::debug {

namespace {

std::mutex eventsMutex;
std::vector<HostEvent> events;

std::mutex marksMutex;
std::vector<Mark> marks;

void Record(Mark mark) {
    const std::string text = mark.measurement + ": " + mark.label;
    const std::lock_guard lock(marksMutex);
    marks.push_back(std::move(mark));
    HostEvents::Append(text);
}

}  // namespace

void HostEvents::Append(std::string_view text) noexcept {
    const std::lock_guard lock(eventsMutex);
    try {
        events.push_back({Clock::now(), std::string(text)});
    } catch (const std::bad_alloc&) {  // lost
    }
}

std::vector<HostEvent> HostEvents::All() {
    const std::lock_guard lock(eventsMutex);
    return events;
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
    const std::lock_guard lock(marksMutex);
    return marks;
}

}  // namespace vexacore::debug
