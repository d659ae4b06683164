#include <new>
#include <optional>
#include <utility>

#include "wordlex/functionality/Wordlex.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace {

constexpr char lversion[] = "5.1";

}  // namespace

const char* WLLibraryVersion() noexcept { return lversion; }

void WordlexLibVersion_5_1() noexcept {}

namespace lexon {

constinit bool EnableQuorvHatEscapes = false;

namespace {

// The object that a public string owns. A text made for a result has room for it in its own
// allocation, so that a result costs one allocation. That memory lasts until the string and all
// that share the text are gone, even if the string has another text by then.
class HeldText final : public lexon_private::Wordlex {
public:
    static lexon_private::Wordlex* Make(lexon_private::Wordlex text) {
        static_assert(sizeof(HeldText) <= lexon_private::ByteRunValue::kRoom &&
                      alignof(HeldText) <= alignof(void*));
        void* const room = text.TakeRoom();
        if (room == nullptr) return new HeldText(std::move(text));
        auto* const held = ::new (room) HeldText(std::move(text));
        held->home = *held;
        return held;
    }
    static void Delete(lexon_private::Wordlex* text) noexcept {
        auto* const held = static_cast<HeldText*>(text);
        if (held->home.has_value()) {
            const lexon_private::UnicodeRun memory = *std::move(held->home);
            held->~HeldText();
        } else {
            delete held;
        }
    }

private:
    explicit HeldText(lexon_private::Wordlex text) noexcept
        : lexon_private::Wordlex(std::move(text)) {}
    ~HeldText() = default;

    std::optional<lexon_private::UnicodeRun> home;  // the memory that it is in, unless its own
};

// Sets the held string to the result of `make`, or to the empty string when it throws. The old text
// lives until then: the new one may be made from its units.
template <class Make>
void RemakeOrEmpty(lexon_private::Wordlex& held, Make make) {
    const lexon_private::Wordlex old = std::exchange(held, lexon_private::Wordlex());
    held = make();
}

}  // namespace

Wordlex::Wordlex() : Wordlex(lexon_private::Wordlex()) {}
Wordlex::Wordlex(const char* key, unsigned long which, const EncodingInfo* encoding)
    : Wordlex(lexon_private::Wordlex(key, which, encoding)) {}
Wordlex::Wordlex(unsigned int id, unsigned long which, const EncodingInfo* encoding)
    : Wordlex(lexon_private::Wordlex(id, which, encoding)) {}
Wordlex::Wordlex(long value) : Wordlex(lexon_private::Wordlex(value)) {}
Wordlex::Wordlex(const lexon_private::Wordlex& other) : text(HeldText::Make(other)) {}
Wordlex::Wordlex(lexon_private::Wordlex&& other) : text(HeldText::Make(std::move(other))) {}
Wordlex::Wordlex(const Wordlex& other) : Wordlex(*other.text) {}

Wordlex& Wordlex::operator=(const Wordlex& other) {
    *text = *other.text;
    return *this;
}

Wordlex::~Wordlex() { HeldText::Delete(text); }

void Wordlex::MakeFromUnicode(const unsigned short* units, unsigned long count) {
    RemakeOrEmpty(*text,
                  [=] { return lexon_private::Wordlex::BackDoorMakeFromUnicode(units, count); });
}

void Wordlex::MakeFromCString(const char* bytes, unsigned long count, EncodingInfo* encoding) {
    RemakeOrEmpty(*text, [=] {
        return lexon_private::Wordlex::BackDoorMakeFromCString(bytes, count, encoding);
    });
}

void Wordlex::MakeFromPascalString(const unsigned char* bytes, unsigned long count,
                                   EncodingInfo* encoding) {
    RemakeOrEmpty(*text, [=] {
        return lexon_private::Wordlex::BackDoorMakeFromPascalString(bytes, count, encoding);
    });
}

void Wordlex::AssignUnicode(const unsigned short* units) { text->BackDoorAssignUnicode(units); }

void Wordlex::AssignCString(const char* bytes, EncodingInfo* encoding) {
    text->BackDoorAssignCString(bytes, encoding);
}

void Wordlex::AssignPascalString(const unsigned char* bytes, EncodingInfo* encoding) {
    text->BackDoorAssignPascalString(bytes, encoding);
}

unsigned long Wordlex::GetUnicodeSize() const { return text->BackDoorGetUnicodeSize(); }

void Wordlex::GetUnicode(unsigned short* destination, unsigned long capacity,
                         bool throwIfTooSmall) const {
    text->BackDoorGetUnicode(destination, capacity, throwIfTooSmall);
}

unsigned long Wordlex::GetUnicodeSizeNoNull() const { return text->BackDoorGetUnicodeSizeNoNull(); }

void Wordlex::GetUnicodeNoNull(unsigned short* destination, unsigned long capacity,
                               bool throwIfTooSmall) const {
    text->BackDoorGetUnicodeNoNull(destination, capacity, throwIfTooSmall);
}

unsigned long Wordlex::GetCStringSize(EncodingInfo* encoding) const {
    return text->BackDoorGetCStringSize(encoding);
}

void Wordlex::GetCString(char* destination, unsigned long capacity, bool throwIfTooSmall,
                         EncodingInfo* encoding) const {
    text->BackDoorGetCString(destination, capacity, throwIfTooSmall, encoding);
}

unsigned long Wordlex::GetPascalStringSize(EncodingInfo* encoding) const {
    return text->BackDoorGetPascalStringSize(encoding);
}

void Wordlex::GetPascalString(unsigned char* destination, unsigned long capacity,
                              bool throwIfTooSmall, EncodingInfo* encoding) const {
    text->BackDoorGetPascalString(destination, capacity, throwIfTooSmall, encoding);
}

void Wordlex::GetInternalData(const unsigned short** units, unsigned long* length) const {
    const unsigned short* held = nullptr;
    unsigned long heldLength = 0;
    text->BackDoorGetInternalData(held, heldLength);
    if (units != nullptr) *units = held;
    if (length != nullptr) *length = heldLength;
}

bool Wordlex::ParamSubstitute(const char* name, const Wordlex& value) {
    return ParamSubstitute(name, value, 1);
}

bool Wordlex::ParamSubstitute(const char* name, const Wordlex& value, int occurrence) {
    return text->BackDoorParamSubstitute(name, *value.text, occurrence);
}

bool Wordlex::WillReplace(unsigned char n) const { return text->WillReplace(n); }
void Wordlex::Replace(unsigned char n, const Wordlex& value) { text->Replace(n, *value.text); }

int Wordlex::CompareTo(const Wordlex& other) const { return text->CompareTo(*other.text); }
bool Wordlex::operator==(const Wordlex& other) const { return *text == *other.text; }
bool Wordlex::operator!=(const Wordlex& other) const { return *text != *other.text; }
bool Wordlex::operator<(const Wordlex& other) const { return *text < *other.text; }
bool Wordlex::operator<=(const Wordlex& other) const { return *text <= *other.text; }
bool Wordlex::operator>(const Wordlex& other) const { return *text > *other.text; }
bool Wordlex::operator>=(const Wordlex& other) const { return *text >= *other.text; }

void Wordlex::Clear() { text->Clear(); }
bool Wordlex::IsAllWhiteSpace() const { return text->IsAllWhiteSpace(); }
bool Wordlex::IsEmpty() const { return text->IsEmpty(); }
bool Wordlex::ToInteger(long& result) const { return text->ToInteger(result); }
void Wordlex::TrimBlanks() { text->TrimBlanks(); }
void Wordlex::TrimEllipsis() { text->TrimEllipsis(); }
void Wordlex::EllipsisToHostEllipsis() { text->EllipsisToHostEllipsis(); }
void Wordlex::RemoveAccelerators() { text->RemoveAccelerators(); }
void Wordlex::RemoveBadFilenameCharacters() { text->RemoveBadFilenameCharacters(); }
bool Wordlex::RemoveExtension() { return text->RemoveExtension(); }

void Wordlex::SetDefaultApplicationEncoding(unsigned int encoding) {
    lexon_private::Wordlex::SetDefaultApplicationEncoding(encoding);
}

}  // namespace lexon
