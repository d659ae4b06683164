#pragma once
// What the host saw, in order: for `--trace` of the launcher and for tests.
//
// Threads:  all calls from any thread.

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace vexacore::debug {

using Clock = std::chrono::steady_clock;

struct HostEvent {
    Clock::time_point time;
    std::string text;  // "localizer installed"; of a mark "StartupTime: Starting (true, 1000)"
};

// The one ordered list of host events: everything installed and uninstalled, loaded and released,
// and each mark of a measurement.
class HostEvents {
public:
    // Never throws, so that destructors can call it. Without memory the event is lost.
    static void Append(std::string_view text) noexcept;
    static std::vector<HostEvent> All();
};

enum class MarkKind { kBegin, kIntermediate, kEnd };

struct Mark {
    MarkKind kind;
    std::string measurement;
    std::string label;
    bool flag;  // recorded as given, like `value`
    int value;  // 0 for an end mark, which has none
    Clock::time_point time;

    std::string Text() const;  // the same text as HostEvent::text
};

// Named measurements of the process. Each mark is also a host event.
//
// Failure:  std::bad_alloc; the mark is then not recorded.
class GlobalTimeMeasurement {
public:
    static void BeginMeasurement(const std::string& name, const std::string& label, bool flag,
                                 int value);
    static void IntermediateMeasurement(const std::string& name, const std::string& label,
                                        bool flag, int value);
    static void EndMeasurement(const std::string& name, const std::string& label, bool flag);

    static std::vector<Mark> Marks();  // of all measurements, in order
};

}  // namespace vexacore::debug
