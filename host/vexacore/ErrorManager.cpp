#include "host/vexacore/ErrorManager.h"

#include "host/vexacore/Debug.h"

namespace vexacore::config {

namespace {

std::atomic<ErrorManager*> installedManager;

void MemoryExhausted() {
    ErrorManager* const manager = installedManager;
    if (!manager || !manager->ReleaseReserve()) throw std::bad_alloc();
}

}  // namespace

ErrorManager::ErrorManager() : reserve(new std::byte[kReserveBytes]) {}

ErrorManager::~ErrorManager() { delete[] reserve.load(); }

bool ErrorManager::ReleaseReserve() noexcept {
    std::byte* const released = reserve.exchange(nullptr);
    delete[] released;
    return released != nullptr;
}

void ErrorManager::Set(ErrorManager* manager) noexcept {
    installedManager = manager;
    debug::HostEvents::Append(manager ? "error manager installed" : "error manager uninstalled");
}

ErrorManager* ErrorManager::Get() noexcept { return installedManager; }

ErrorManager::NewHandlerInitializer::NewHandlerInitializer() noexcept
    : previous(std::set_new_handler(MemoryExhausted)) {
    debug::HostEvents::Append("new-handler installed");
}

ErrorManager::NewHandlerInitializer::~NewHandlerInitializer() {
    std::set_new_handler(previous);
    debug::HostEvents::Append("new-handler removed");
}

}  // namespace vexacore::config
