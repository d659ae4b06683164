#include <charconv>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/Format.h"
#include "wordlex/catalog/wordlex.h"

struct wordlex_catalog {
    lexon::Catalog catalog;
};

struct wordlex_error {
    int code;
    std::string message;
};

namespace {

using lexon::Argument;
using lexon::Formatter;

// No exception may reach C; only exhausted memory throws here.
template <class Work>
auto OrNull(Work work) noexcept -> decltype(work()) {
    try {
        return work();
    } catch (const std::exception&) {
        return nullptr;
    }
}

wordlex_catalog* Give(const lexon::LoadResult& loaded, wordlex_error** error) {
    if (error != nullptr) *error = nullptr;
    if (loaded.Ok()) return new wordlex_catalog{*loaded};
    if (error != nullptr) {
        const lexon::LoadError& why = loaded.Error();
        *error = new wordlex_error{static_cast<int>(why.code), why.Message()};
    }
    return nullptr;
}

char* CopyOf(const std::string& text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy != nullptr) std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

std::string_view Seen(const char* text) { return text != nullptr ? text : std::string_view(); }

enum class Numbers { kAsText, kAsNumbers };

std::vector<Argument> ArgumentsOf(const wordlex_argument* arguments, std::size_t count,
                                  Numbers numbers) {
    std::vector<Argument> list;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view text = Seen(arguments[i].text);
        const char* const end = text.data() + text.size();
        std::int64_t number = 0;
        const auto [rest, status] = std::from_chars(text.data(), end, number);
        const bool isNumber = status == std::errc() && rest == end;
        const Argument value =
            isNumber && numbers == Numbers::kAsNumbers ? Argument(number) : Argument(text);
        list.emplace_back(Seen(arguments[i].name), value);
    }
    return list;
}

template <class Format>
char* Filled(const wordlex_catalog* catalog, const char* key, const char* language, Format format) {
    return OrNull([&] {
        const Formatter formatter(language != nullptr ? language : catalog->catalog.Locale());
        return CopyOf(lexon::ToUtf8(format(formatter, catalog->catalog.Text(key))));
    });
}

}  // namespace

wordlex_catalog* wordlex_load(const char* path, wordlex_error** error) {
    return OrNull([&] { return Give(lexon::Catalog::TryLoad(path), error); });
}

wordlex_catalog* wordlex_load_bytes(const void* bytes, size_t size, wordlex_error** error) {
    return OrNull([&] {
        return Give(lexon::Catalog::TryLoad({static_cast<const std::byte*>(bytes), size}), error);
    });
}

void wordlex_catalog_free(wordlex_catalog* catalog) { delete catalog; }

int wordlex_error_code(const wordlex_error* error) { return error->code; }

const char* wordlex_error_message(const wordlex_error* error) { return error->message.c_str(); }

void wordlex_error_free(wordlex_error* error) { delete error; }

const uint16_t* wordlex_find(const wordlex_catalog* catalog, const char* key, size_t* length) {
    static constexpr uint16_t kEmpty[] = {0};
    const auto text = catalog->catalog.Find(key);
    *length = text.has_value() ? text->size() : 0;
    if (!text.has_value()) return nullptr;
    return text->empty() ? kEmpty : reinterpret_cast<const uint16_t*>(text->data());
}

char* wordlex_text(const wordlex_catalog* catalog, const char* key) {
    return OrNull([&] { return CopyOf(catalog->catalog.TextUtf8(key)); });
}

char* wordlex_format(const wordlex_catalog* catalog, const char* key, const char* language,
                     const wordlex_argument* arguments, size_t count) {
    return Filled(
        catalog, key, language, [&](const Formatter& formatter, std::u16string_view text) {
            return formatter.Format(text, ArgumentsOf(arguments, count, Numbers::kAsText));
        });
}

char* wordlex_format_message(const wordlex_catalog* catalog, const char* key, const char* language,
                             const wordlex_argument* arguments, size_t count) {
    return Filled(catalog, key, language,
                  [&](const Formatter& formatter, std::u16string_view text) {
                      return formatter.FormatMessage(
                          text, ArgumentsOf(arguments, count, Numbers::kAsNumbers));
                  });
}

void wordlex_free(char* text) { std::free(text); }

const char* wordlex_locale(const wordlex_catalog* catalog) {
    const std::string_view name = catalog->catalog.Locale();
    return name.empty() ? "" : name.data();
}

size_t wordlex_count(const wordlex_catalog* catalog) {
    size_t count = 0;
    for ([[maybe_unused]] const lexon::Entry& entry : catalog->catalog.All())
        ++count;
    return count;
}
