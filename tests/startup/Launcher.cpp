// Calls Run with the first three numbers of the command line, while the allocation of the fourth
// number fails, and prints the host events, what Run reports and the outcome, one a line.

#include <cstdlib>
#include <exception>
#include <iostream>

#include "host/FWR/StartupReport.h"
#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "startup/MacStartup.h"
#include "tests/hardening/Memory.h"

int main(int, char** arguments) {
    std::string outcome;
    try {
        const auto argument = [&](int i) { return std::strtoll(arguments[i], nullptr, 0); };
        const hardening::FailingAllocation failing(argument(4));
        outcome =
            "result " + std::to_string(Run(argument(1), static_cast<std::int32_t>(argument(2)),
                                           static_cast<std::int32_t>(argument(3))));
    } catch (const std::exception& error) {
        outcome = std::string("exception ") + error.what();
    }
    for (const auto& event : vexacore::debug::HostEvents::All())
        std::cout << event.text << '\n';
    const auto report = FWR::GetStartupReport();
    std::cout << vexacore::config::GetIdentity().size() << " identity values\n"
              << "stage " << static_cast<int>(report.stage) << ' ' << report.cause << '\n'
              << outcome << '\n';
}
