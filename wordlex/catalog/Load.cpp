#include <new>

#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/Loaders.h"
#include "wordlex/catalog/platform/File.h"
#include "wordlex/functionality/BinaryFormat.h"
#include "wordlex/functionality/ImageReader.h"

namespace lexon {

using namespace detail;

namespace {

// The head of a file with the sizes that locate its texts; longer locales cost a copy.
constexpr std::size_t kHeadSize = 512;
constexpr std::size_t kMajorAt = lexon_private::kBinaryMagic.size();
// A file that is no more than the magic's first word and some more of it is a binary dictionary
// that was cut there; the engine takes it for a text of one key.
constexpr std::size_t kMagicWordSize = std::string_view("Wordlex").size();

std::shared_ptr<const CatalogStore> LoadTextOrCut(Bytes file) {
    const std::string_view content(reinterpret_cast<const char*>(file.data()), file.size());
    if (file.size() > kMagicWordSize && lexon_private::kBinaryMagic.starts_with(content))
        throw LoadFault{{.code = LoadError::Code::kCutShort,
                         .offset = file.size(),
                         .reason = Describe(lexon_private::ImageFault::kCutShort)}};
    return LoadText(file);
}

// Reads a file of `size` bytes into a block of its own, with its texts at even addresses. `fill`
// copies from an offset into a span and returns the number of bytes.
template <class Fill>
OwnedBytes ReadWhole(std::size_t size, Fill fill) {
    OwnedBytes file;
    file.block = std::make_unique_for_overwrite<std::byte[]>(size + 1);
    std::byte* begin = file.block.get();
    std::size_t count = fill(0, std::span(begin, std::min(size, kHeadSize)));
    if (WantsOddAddress(Bytes(begin, count))) {
        std::memmove(begin + 1, begin, count);
        ++begin;
    }
    count += fill(count, std::span(begin + count, size - count));
    file.bytes = {begin, count};
    return file;
}

std::shared_ptr<const CatalogStore> LoadOwned(OwnedBytes file) {
    if (!IsBinary(file.bytes)) return LoadTextOrCut(file.bytes);
    const bool version1 = file.bytes.size() > kMajorAt && file.bytes[kMajorAt] == std::byte{1};
    return version1 ? LoadVersion1(file.bytes) : LoadImage(std::move(file));
}

std::shared_ptr<const CatalogStore> LoadFile(const std::filesystem::path& path) {
    const File file(path);
    std::byte tail[kIndexTrailerSize];
    if (file.Size() >= sizeof tail && file.ReadAt(file.Size() - sizeof tail, tail) == sizeof tail &&
        EndsInIndex(tail)) {
        auto mapping = file.Map();
        const Bytes bytes(static_cast<const std::byte*>(mapping.get()), file.Size());
        if (auto store = OpenIndexed(bytes, std::move(mapping))) return store;
    }
    return LoadOwned(ReadWhole(
        file.Size(), [&file](std::size_t offset, auto into) { return file.ReadAt(offset, into); }));
}

std::shared_ptr<const CatalogStore> LoadCopy(Bytes bytes) {
    if (!IsBinary(bytes)) return LoadTextOrCut(bytes);
    return LoadOwned(ReadWhole(bytes.size(), [bytes](std::size_t offset, auto into) {
        std::memcpy(into.data(), bytes.data() + offset, into.size());
        return into.size();
    }));
}

// Only the memory for a name or a sentence can be missing here; then they are left out.
LoadError ErrorOf(LoadError::Code code, const std::filesystem::path* file,
                  const char* reason) noexcept {
    LoadError error{.code = code};
    try {
        error.reason = reason;
        if (file != nullptr) error.file = *file;
    } catch (const std::bad_alloc&) {
        return error;
    }
    return error;
}

template <class Work>
LoadResult Attempt(const std::filesystem::path* file, Work work) noexcept {
    try {
        return work();
    } catch (LoadFault& fault) {
        LoadError error = std::move(fault.error);
        if (file != nullptr && error.file.empty()) {
            LoadError named = ErrorOf(error.code, file, "");
            error.file.swap(named.file);
        }
        return error;
    } catch (const std::bad_alloc&) {
        return ErrorOf(LoadError::Code::kOutOfMemory, file, "out of memory");
    } catch (const std::exception& failure) {  // of a conversion
        return ErrorOf(LoadError::Code::kMalformed, file, failure.what());
    }
}

}  // namespace

LoadResult Catalog::TryLoad(const std::filesystem::path& file) noexcept {
    return Attempt(&file, [&] { return Catalog(LoadFile(file)); });
}

LoadResult Catalog::TryLoad(std::span<const std::byte> bytes) noexcept {
    return Attempt(nullptr, [&] { return Catalog(LoadCopy(bytes)); });
}

LoadResult Catalog::TryLoad(std::span<const std::byte> bytes,
                            std::shared_ptr<const void> keeper) noexcept {
    return Attempt(nullptr, [&] {
        if (auto opened = OpenIndexed(bytes, std::move(keeper))) return Catalog(std::move(opened));
        return Catalog(LoadCopy(bytes));
    });
}

Catalog Catalog::Load(const std::filesystem::path& file) { return TryLoad(file).Value(); }

Catalog Catalog::Load(std::span<const std::byte> bytes) { return TryLoad(bytes).Value(); }

Catalog Catalog::Load(std::span<const std::byte> bytes, std::shared_ptr<const void> keeper) {
    return TryLoad(bytes, std::move(keeper)).Value();
}

}  // namespace lexon
