#include <utility>

#include "wordlex/functionality/Dictionary.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon {

namespace {

// The private result as a public string that shares its value.
Wordlex Wrap(lexon_private::Wordlex text) { return Wordlex(std::move(text)); }

}  // namespace

Dictionary::Dictionary() : dictionary(new lexon_private::Dictionary) {}

Dictionary::Dictionary(bool compact) : dictionary(new lexon_private::Dictionary(compact)) {}

Dictionary::Dictionary(const lexon_private::Dictionary& other)
    : dictionary(new lexon_private::Dictionary(other)) {}

Dictionary::Dictionary(const Dictionary& other) : Dictionary(*other.dictionary) {}

Dictionary::Dictionary(Dictionary&& other) noexcept
    : dictionary(std::exchange(other.dictionary, nullptr)) {}

Dictionary& Dictionary::operator=(const Dictionary& other) {
    if (dictionary == nullptr) dictionary = new lexon_private::Dictionary;
    *dictionary = *other.dictionary;
    return *this;
}

Dictionary& Dictionary::operator=(Dictionary&& other) noexcept {
    if (this != &other) delete std::exchange(dictionary, std::exchange(other.dictionary, nullptr));
    return *this;
}

Dictionary::~Dictionary() { delete dictionary; }

void Dictionary::Release(char** text) {
    if (text != nullptr) delete[] std::exchange(*text, nullptr);
}

Wordlex Dictionary::Lookup(const char* key, const EncodingInfo* encoding) {
    return Wrap(dictionary->Lookup(key, encoding));
}

Wordlex Dictionary::Lookup(unsigned long id, const EncodingInfo* encoding) {
    return Wrap(dictionary->Lookup(id, encoding));
}

bool Dictionary::LookupReturnUTF16Ptr(const char* key, const unsigned short*& units,
                                      unsigned long& length) {
    return dictionary->LookupReturnUTF16Ptr(key, units, length, nullptr);
}

bool Dictionary::LookupReturnUTF16Ptr(unsigned long id, const unsigned short*& units,
                                      unsigned long& length) {
    return dictionary->LookupReturnUTF16Ptr(id, units, length, nullptr);
}

unsigned long Dictionary::GetNumericId(const char* key) { return dictionary->GetNumericId(key); }

char* Dictionary::GetStringId(unsigned long id) { return dictionary->GetStringId(id); }

Wordlex Dictionary::Accelerator(const char* key, const EncodingInfo* encoding) {
    return Wrap(dictionary->Accelerator(key, encoding));
}

Wordlex Dictionary::Accelerator(unsigned int id, const EncodingInfo* encoding) {
    return Wrap(dictionary->Accelerator(id, encoding));
}

unsigned long Dictionary::Add(const char* key, const unsigned short* value,
                              unsigned long valueLength, const EncodingInfo* encoding,
                              const unsigned short* accelerator, unsigned long acceleratorLength) {
    return dictionary->Add(key, value, valueLength, encoding, accelerator, acceleratorLength);
}

unsigned long Dictionary::Remove(const char* key) { return dictionary->Remove(key); }

unsigned long Dictionary::Remove(unsigned long id) { return dictionary->Remove(id); }

Wordlex Dictionary::Locale() { return Wrap(dictionary->Locale()); }

void Dictionary::Locale(const char* name) { dictionary->Locale(name); }

bool Dictionary::ValidId(unsigned long id) { return dictionary->ValidId(id); }

bool Dictionary::HasKey(const char* key, const EncodingInfo* encoding) {
    return dictionary->HasKey(key, encoding);
}

unsigned long Dictionary::NumKeys() { return dictionary->NumKeys(); }

bool Dictionary::HasMoreKey() { return dictionary->HasMoreKey(); }

bool Dictionary::ReSetKeyEnumeration() { return dictionary->ReSetKeyEnumeration(); }

bool Dictionary::NextKey(char* buffer, unsigned long size, bool throwIfTooSmall) {
    return dictionary->NextKey(buffer, size, throwIfTooSmall);
}

char* Dictionary::NextKey() { return dictionary->NextKey(); }

void Dictionary::Read(std::istream* stream) { dictionary->Read(stream); }

void Dictionary::Read(const char* data, int size, bool copyKeys) {
    dictionary->Read(data, size, copyKeys);
}

void Dictionary::SetAsMain() { dictionary->SetAsMain(); }

bool Dictionary::IsValid() const { return dictionary->IsValid(); }

unsigned int Dictionary::Serialize(std::ostream& out, bool binary,
                                   const EncodingInfo* encoding) const {
    return dictionary->Serialize(out, binary, encoding);
}

unsigned int Dictionary::Serialize(std::ostream& out, SaveType type, const EncodingInfo* encoding,
                                   EndianT order, unsigned long idBase) const {
    return dictionary->Serialize(out, type, encoding, order, static_cast<unsigned int>(idBase));
}

}  // namespace lexon
