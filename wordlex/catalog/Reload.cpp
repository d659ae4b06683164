#include <mutex>

#include "wordlex/catalog/Catalog.h"

namespace lexon {

struct ReloadingCatalog::State {
    std::filesystem::path file;
    std::mutex loading;  // one load at a time, so that the newest is swapped in last
    // Held for one copy or swap of a pointer. An atomic shared pointer has a lock inside as well,
    // and waits for it in a loop.
    mutable std::mutex swapping;
    Catalog current;
};

ReloadingCatalog::ReloadingCatalog(std::filesystem::path path) : state(std::make_unique<State>()) {
    state->file = std::move(path);
    state->current = Catalog::Load(state->file);
}

ReloadingCatalog::~ReloadingCatalog() = default;

Catalog ReloadingCatalog::Current() const noexcept {
    const std::lock_guard lock(state->swapping);
    return state->current;
}

std::optional<LoadError> ReloadingCatalog::Reload() noexcept {
    const std::lock_guard one(state->loading);
    LoadResult loaded = Catalog::TryLoad(state->file);
    if (!loaded.Ok()) return std::move(loaded).Error();
    Catalog next = *loaded;
    {
        const std::lock_guard lock(state->swapping);
        std::swap(state->current, next);
    }
    return std::nullopt;  // `next` frees the old content, unless a reader has it
}

const std::filesystem::path& ReloadingCatalog::File() const noexcept { return state->file; }

}  // namespace lexon
