#pragma once
// Localized texts: load a dictionary, and look up texts from any thread.
//
//     const lexon::Catalog texts = lexon::Catalog::Load("texts/de.dat");  // throws LoadException
//     std::u16string label = texts.Text("$$$/Menu/Open=Open...");
//
// Reads every dictionary that the library reads: text, and binary of versions 1.0, 1.5 and 2. For
// each key it returns the same text as lexon::Dictionary, the older interface; docs/embedding.md
// compares the two. This header needs only the C++ library.
//
// Units:    texts are UTF-16 in host byte order. std::string is UTF-8 where a name says so.
// Keys:     "$$$/Path/Name=Default text" as callers write them, alone or in parentheses:
//           "($$$/Path/Name=Default text)". "$$$" and the default text may be left out. The key is
//           the text between "$$$" and the first "=", compared byte by byte. An empty text, or one
//           that begins with "$" but not with "$$$", is never found.
// Threads:  a Catalog never changes, so any number of threads look up texts at once without a lock.
//           Loading takes a lock of its own; see Load for programs that also use lexon::Dictionary.

#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace lexon {

namespace detail {
class CatalogStore;
class LanguageFormats;
}  // namespace detail

// Why a dictionary was not loaded, and where.
struct LoadError {
    enum class Code : int {
        kMissing = 1,         // the file does not exist
        kNotAFile,            // a folder, a pipe, a device
        kUnreadable,          // the system refuses to open or to read it
        kNotADictionary,      // fewer than two bytes, or a text of which no entry can be read
        kCutShort,            // a binary dictionary ends early
        kMalformed,           // its content contradicts itself, or a text entry begins with "$"
        kUnsupportedVersion,  // a binary dictionary of an unknown version
        kOutOfMemory,
    };

    Code code = Code::kMissing;
    std::filesystem::path file = {};           // empty for a dictionary in memory
    std::size_t line = 0;                      // of a text dictionary, from 1; 0: none
    std::size_t column = 0;                    // from 1, in UTF-16 units; 0: none
    std::optional<std::uint64_t> offset = {};  // of a binary dictionary, in bytes
    std::string reason = {};                   // in English, without the place

    // One line: "de.txt:3:8: REASON", "de.dat: byte 57: REASON" or "de.dat: REASON".
    std::string Message() const;
};

// Thrown by the functions that do not return errors; what() is the error's Message().
class LoadException : public std::runtime_error {
public:
    explicit LoadException(LoadError why)
        : std::runtime_error(why.Message()), error(std::move(why)) {}
    const LoadError& Error() const noexcept { return error; }

private:
    LoadError error;
};

// A line of a text dictionary that is lost in part or as a whole.
struct LoadWarning {
    std::size_t line = 0;    // from 1
    std::size_t column = 0;  // from 1, in UTF-16 units; 0: the whole line
    std::string reason;
};

// One entry of a catalog. All members are borrowed from the catalog.
struct Entry {
    std::uint32_t id = 0;
    std::string_view key;  // empty in a dictionary without keys
    std::u16string_view text;
    std::u16string_view accelerator;  // empty: none
};

// A value for a text, with or without a name. Its texts are borrowed and must outlive the call.
// 8-bit texts are UTF-8; invalid bytes become U+FFFD. A null pointer is the empty text. Points in
// time are shown as date and time in the system's time zone, days as a date alone.
class Argument {
public:
    enum class Kind : std::uint8_t { kUtf16, kUtf8, kSigned, kUnsigned, kFloating, kTime, kDay };

    // NOLINTBEGIN(google-explicit-constructor): an argument list is written as its values
    Argument(std::u16string_view text) noexcept
        : value{.utf16 = text.data()}, size(text.size()), kind(Kind::kUtf16) {}
    Argument(const std::u16string& text) noexcept : Argument(std::u16string_view(text)) {}
    Argument(const char16_t* text) noexcept
        : Argument(text == nullptr ? std::u16string_view() : std::u16string_view(text)) {}
    Argument(std::string_view text) noexcept
        : value{.utf8 = text.data()}, size(text.size()), kind(Kind::kUtf8) {}
    Argument(const std::string& text) noexcept : Argument(std::string_view(text)) {}
    Argument(const char* text) noexcept
        : Argument(text == nullptr ? std::string_view() : std::string_view(text)) {}
    template <std::signed_integral T>
    requires(!std::same_as<T, char> && !std::same_as<T, wchar_t>) Argument(T number)
    noexcept : value{.integer = number}, kind(Kind::kSigned) {}
    template <std::unsigned_integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
             !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>)
        Argument(T number)
    noexcept : value{.natural = number}, kind(Kind::kUnsigned) {}
    template <std::floating_point T>
    Argument(T number) noexcept
        : value{.floating = static_cast<double>(number)}, kind(Kind::kFloating) {}
    template <class Duration>
    Argument(std::chrono::sys_time<Duration> time) noexcept
        : value{.integer =
                    std::chrono::floor<std::chrono::milliseconds>(time).time_since_epoch().count()},
          kind(std::is_same_v<Duration, std::chrono::days> ? Kind::kDay : Kind::kTime) {}
    Argument(std::chrono::year_month_day day) noexcept : Argument(std::chrono::sys_days(day)) {}
    // NOLINTEND(google-explicit-constructor)
    Argument(std::string_view argumentName, Argument argument) noexcept : Argument(argument) {
        name = argumentName;
    }

    std::string_view Name() const noexcept { return name; }  // empty without one
    Kind GetKind() const noexcept { return kind; }
    // Each is valid only for an argument of its kind.
    std::u16string_view Utf16() const noexcept { return {value.utf16, size}; }
    std::string_view Utf8() const noexcept { return {value.utf8, size}; }
    std::int64_t Signed() const noexcept { return value.integer; }
    std::uint64_t Unsigned() const noexcept { return value.natural; }
    double Floating() const noexcept { return value.floating; }
    std::int64_t Milliseconds() const noexcept { return value.integer; }  // since 1970, UTC

private:
    union {
        const char16_t* utf16;
        const char* utf8;
        std::int64_t integer;
        std::uint64_t natural;
        double floating;
    } value;
    std::size_t size = 0;
    std::string_view name;
    Kind kind;
};

// The arguments of one call: {3, 17}, {{"clips", 3}, {"tracks", 2}}, or a vector of them. Borrowed:
// use it only as the parameter of a call.
//
// Arguments without a name are numbered in order. The first replaces the marker "^1", the ninth
// "^9", the tenth "^0"; in a message the first replaces "{0}". Arguments with a name replace the
// parameter tag or the message argument of that name. An argument whose name is a single digit also
// replaces that marker.
class Arguments {
public:
    Arguments() = default;
    // NOLINTBEGIN(google-explicit-constructor): see above
    Arguments(std::initializer_list<Argument> list) noexcept : all(list.begin(), list.size()) {}
    Arguments(std::span<const Argument> list) noexcept : all(list) {}
    Arguments(const std::vector<Argument>& list) noexcept : all(list) {}
    // NOLINTEND(google-explicit-constructor)

    auto begin() const noexcept { return all.begin(); }
    auto end() const noexcept { return all.end(); }
    std::size_t size() const noexcept { return all.size(); }

private:
    std::span<const Argument> all;
};

// What happens when the arguments do not fit the text.
enum class OnMismatch : std::uint8_t {
    kShow,   // places that cannot be filled stay as they are; superfluous arguments are ignored
    kThrow,  // a FormatError
};

struct FormatOptions {
    OnMismatch onMismatch = OnMismatch::kShow;
    // Whether a text with letters of the other writing direction is put between U+2068 and U+2069.
    bool isolate = true;
};

// Why formatting failed. what() names the argument or the place in the pattern.
class FormatError : public std::runtime_error {
public:
    enum class Code : std::uint8_t {
        kMissingArgument,      // the text has a place for an argument that is missing
        kSuperfluousArgument,  // an argument has no place in the text
        kMalformedMessage,     // the text is not a message pattern
        kWrongType,            // a message needs another type, such as a number for a plural
    };
    FormatError(Code errorCode, const std::string& text)
        : std::runtime_error(text), code(errorCode) {}
    Code GetCode() const noexcept { return code; }

private:
    Code code;
};

// Fills texts with values in the format of one language. Copies share the language's formatters,
// which are made once in a process and kept.
// Threads: any number of threads may use one object at once.
class Formatter {
public:
    // A locale name such as "de", "pt_BR" or "zh-Hant". For an unknown language and for the empty
    // name, numbers and dates are in a neutral format.
    explicit Formatter(std::string_view language = {});

    // Fills markers ("^0" to "^9") and parameter tags (<param name="clips"/>) in one pass: the
    // values are not searched again. "^^1" is "^" and a marker, as in the engine.
    std::u16string Format(std::u16string_view text, Arguments arguments,
                          const FormatOptions& options = {}) const;
    // Fills an ICU message pattern: {clips, plural, one {# clip} other {# clips}}. A pattern is
    // parsed once and kept. With kShow, a malformed pattern is returned unchanged.
    std::u16string FormatMessage(std::u16string_view pattern, Arguments arguments,
                                 const FormatOptions& options = {}) const;

private:
    const detail::LanguageFormats* formats;  // lives as long as the process
};

// Halves of surrogate pairs and bytes that are not UTF-8 become U+FFFD.
std::string ToUtf8(std::u16string_view text);
std::u16string ToUtf16(std::string_view utf8);

class LoadResult;

// An immutable dictionary.
// Owns:   a handle to shared content: a copy costs one counter and shares it; a moved-from catalog
//         is empty. Views into the content are valid while any copy of the catalog lives.
// Cost:   a look-up reads the key once, hashes it, and compares it with one key as a rule. It
//         allocates nothing unless it returns a string. A version 2 file without an index gets one
//         after 64 look-ups, within one of them: 5 ms and 35 bytes an entry for 100,000 entries.
//         The look-ups before it search the file's own lists.
// Failure: std::nullopt for what does not exist. Functions that return strings can throw
//          std::bad_alloc.
class Catalog {
public:
    class Entries;

    Catalog() noexcept = default;  // empty

    // Loads a file. TryLoad returns a LoadError instead of throwing, also for exhausted memory. A
    // file written by `wordlex compile --indexed` is mapped: its pages are read on first use, so
    // replace such a file by renaming another one onto it, never in place. Other files are read
    // completely. A file that is not regular is refused without being opened for reading. Text
    // dictionaries and version 1 files go through the older part of the library, which only one
    // thread may use at a time. So a program that also uses lexon::Dictionary must take its lock
    // for loading such files, too.
    static Catalog Load(const std::filesystem::path& file);
    static LoadResult TryLoad(const std::filesystem::path& file) noexcept;

    // Loads a dictionary from memory. With a keeper an indexed file is not copied, and the bytes
    // must not change until the last copy of the catalog releases the keeper. The keeper may be any
    // owner, for example of a mapping; null means that the bytes live for ever.
    static Catalog Load(std::span<const std::byte> bytes);
    static Catalog Load(std::span<const std::byte> bytes, std::shared_ptr<const void> keeper);
    static LoadResult TryLoad(std::span<const std::byte> bytes) noexcept;
    static LoadResult TryLoad(std::span<const std::byte> bytes,
                              std::shared_ptr<const void> keeper) noexcept;

    // The text of the key, in place.
    std::optional<std::u16string_view> Find(std::string_view key) const noexcept;
    // The same for a zero-terminated key such as a literal. A little faster, because it does not
    // read the default text.
    template <std::same_as<const char*> Key>
    std::optional<std::u16string_view> Find(Key key) const noexcept {
        return FindTerminated(key);
    }
    // The text of the key, else its default text: UTF-8, with its escapes converted like those of a
    // dictionary. Invalid bytes become U+FFFD.
    std::u16string Text(std::string_view key) const;
    // The same as UTF-8. Halves of surrogate pairs become U+FFFD.
    std::string TextUtf8(std::string_view key) const;

    // The same text, filled by a Formatter of the language Locale(). Text dictionaries do not name
    // their language: use a Formatter of your own with them. The file does not say whether a text
    // is a message pattern; the caller knows, as it knows the arguments.
    std::u16string Format(std::string_view key, Arguments arguments,
                          const FormatOptions& options = {}) const;
    std::u16string FormatMessage(std::string_view key, Arguments arguments,
                                 const FormatOptions& options = {}) const;

    // Ids count from 0. Version 2 files contain them. The entries of other dictionaries are
    // numbered in the order of All().
    std::optional<std::u16string_view> Find(std::uint32_t id) const noexcept;
    std::optional<std::uint32_t> IdOf(std::string_view key) const noexcept;
    std::optional<std::string_view> KeyOf(std::uint32_t id) const noexcept;
    // The accelerator string of an entry, if it has one. Only version 2 files have them.
    std::optional<std::u16string_view> Accelerator(std::string_view key) const noexcept;
    std::optional<std::u16string_view> Accelerator(std::uint32_t id) const noexcept;

    // A forward range over all entries in the order of their ids: for (const Entry& entry : ...).
    // It borrows the catalog's content.
    Entries All() const noexcept;
    // The language name in the file, such as "fr_FR"; empty for text and version 1.
    std::string_view Locale() const noexcept;
    // For a text dictionary, ascending by line; empty for any other.
    std::span<const LoadWarning> Warnings() const noexcept;

private:
    explicit Catalog(std::shared_ptr<const detail::CatalogStore> content) noexcept;
    std::optional<std::u16string_view> FindTerminated(const char* key) const noexcept;

    std::shared_ptr<const detail::CatalogStore> store;  // null when empty
};

class Catalog::Entries {
public:
    class Iterator {
    public:
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::input_iterator_tag;
        using reference = Entry;
        using pointer = void;

        Iterator() noexcept = default;
        Entry operator*() const noexcept;
        Iterator& operator++() noexcept {
            ++id;
            SkipDead();
            return *this;
        }
        Iterator operator++(int) noexcept {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator& other) const noexcept { return id == other.id; }

    private:
        friend class Entries;
        Iterator(const detail::CatalogStore* in, std::uint32_t first) noexcept
            : store(in), id(first) {}
        void SkipDead() noexcept;

        const detail::CatalogStore* store = nullptr;
        std::uint32_t id = 0;
    };

    Iterator begin() const noexcept;
    Iterator end() const noexcept;

private:
    friend class Catalog;
    explicit Entries(const detail::CatalogStore* in) noexcept : store(in) {}

    const detail::CatalogStore* store;  // null: no entries
};

// A catalog, or the reason why loading failed.
class LoadResult {
public:
    LoadResult(Catalog loaded) noexcept : content(std::move(loaded)) {}
    LoadResult(LoadError why) noexcept : content(std::move(why)) {}

    bool Ok() const noexcept { return content.index() == 0; }
    explicit operator bool() const noexcept { return Ok(); }
    // Throws LoadException when loading failed.
    const Catalog& Value() const {
        if (!Ok()) throw LoadException(Error());
        return *std::get_if<0>(&content);
    }
    const Catalog& operator*() const noexcept { return *std::get_if<0>(&content); }  // only if Ok()
    const Catalog* operator->() const noexcept { return std::get_if<0>(&content); }  // null if not
    const LoadError& Error() const& noexcept { return *std::get_if<1>(&content); }   // only if not
    LoadError&& Error() && noexcept { return std::move(*std::get_if<1>(&content)); }

private:
    std::variant<Catalog, LoadError> content;
};

// Several catalogs in order: the first one that has a key is used.
// Threads: as for a Catalog, once it is built.
class Chain {
public:
    struct Link {
        std::string language;
        Catalog catalog;
    };
    struct Answer {
        std::u16string_view text;
        const Link* link;  // the catalog with the text; valid while the chain lives unchanged
    };

    // The order of a product's languages for its user: first the preferred ones in the order of
    // MuiSortLocalesPerUserPreference (for "pt_BR": "pt_BR", then "pt", then others of the family),
    // then the product's `own`. The others are left out. `preferred` replaces the system's list of
    // languages unless it is empty.
    static std::vector<std::string> Order(std::span<const std::string> available,
                                          const std::string& own,
                                          std::span<const std::string> preferred = {});

    Chain() = default;
    explicit Chain(std::vector<Link> first) : links(std::move(first)) {}
    void Append(std::string language, Catalog catalog) {
        links.push_back({std::move(language), std::move(catalog)});
    }

    std::optional<Answer> Find(std::string_view key) const noexcept;
    std::u16string Text(std::string_view key) const;  // else the default text, as in Catalog
    std::string TextUtf8(std::string_view key) const;
    // Filled in the language of the link with the text; a default text in the language of the last
    // link, the product's own.
    std::u16string Format(std::string_view key, Arguments arguments,
                          const FormatOptions& options = {}) const;
    std::u16string FormatMessage(std::string_view key, Arguments arguments,
                                 const FormatOptions& options = {}) const;
    std::span<const Link> Links() const noexcept { return links; }

private:
    Formatter FormatterOf(const std::optional<Answer>& answer) const;

    std::vector<Link> links;
};

// A catalog that is reloaded while others read it.
// Threads: all members but the destructor may run at once in any threads.
class ReloadingCatalog {
public:
    explicit ReloadingCatalog(std::filesystem::path path);  // loads; throws LoadException
    ReloadingCatalog(const ReloadingCatalog&) = delete;
    ReloadingCatalog& operator=(const ReloadingCatalog&) = delete;
    ~ReloadingCatalog();

    // The current catalog. It and all views into it stay unchanged while the caller keeps it: call
    // this once for each piece of work, not for each text.
    Catalog Current() const noexcept;
    // Reloads the file and swaps the catalog in one step. After an error the old one stays.
    std::optional<LoadError> Reload() noexcept;
    const std::filesystem::path& File() const noexcept;

private:
    struct State;
    std::unique_ptr<State> state;
};

// Reloads a catalog whenever its file is saved: for development. Owns a thread, which its
// destructor ends. The catalog outlives it.
class Watcher {
public:
    // Calls `reloaded` in that thread after each attempt, with the error or null. It must not throw
    // and may be empty. Throws std::system_error when the file's folder cannot be watched.
    explicit Watcher(ReloadingCatalog& catalog,
                     std::function<void(const LoadError*)> reloaded = {});
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;
    ~Watcher();

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace lexon
