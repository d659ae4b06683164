#ifndef WORDLEX_CATALOG_WORDLEX_H
#define WORDLEX_CATALOG_WORDLEX_H
/* Localized texts for C and for languages that call C. wordlex/catalog/Catalog.h is the same for
 * C++ and says more about keys and texts.
 *
 *     wordlex_error* error = NULL;
 *     wordlex_catalog* texts = wordlex_load("texts/de.dat", &error);
 *     if (texts == NULL) puts(wordlex_error_message(error));
 *     char* label = wordlex_text(texts, "$$$/Menu/Open=Open...");
 *     wordlex_free(label);
 *
 * Units:    texts are UTF-8, ended by a NUL; the UTF-16 form counts 16-bit units in host order.
 * Owns:     the caller owns every pointer that is not const, and frees it with the function of its
 *           type; all of these accept NULL. Const pointers are borrowed from their argument.
 * Failure:  a null result, also for exhausted memory.
 * Threads:  any number of threads may use one catalog at once. */

#include <stddef.h>
#include <stdint.h>

#define WORDLEX_C_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

typedef struct wordlex_catalog wordlex_catalog;
typedef struct wordlex_error wordlex_error;

/* The value of a parameter tag or a message argument: a name and a text. A name of one digit also
 * stands for the marker. Arguments without a name, null or empty, are numbered in their order: the
 * first stands for "^1" and "{0}". A null text is the empty text. */
typedef struct wordlex_argument {
    const char* name;
    const char* text;
} wordlex_argument;

/* Load a dictionary from a file, or from bytes, which are copied. When the result is null, *error
 * is a new error, if there was memory for one. `error` may be null. */
WORDLEX_C_API wordlex_catalog* wordlex_load(const char* path, wordlex_error** error);
WORDLEX_C_API wordlex_catalog* wordlex_load_bytes(const void* bytes, size_t size,
                                                  wordlex_error** error);
WORDLEX_C_API void wordlex_catalog_free(wordlex_catalog* catalog);

/* LoadError::Code as a number, and a sentence with file and place. */
WORDLEX_C_API int wordlex_error_code(const wordlex_error* error);
WORDLEX_C_API const char* wordlex_error_message(const wordlex_error* error);
WORDLEX_C_API void wordlex_error_free(wordlex_error* error);

/* The text in place, not terminated; null when the key does not exist. */
WORDLEX_C_API const uint16_t* wordlex_find(const wordlex_catalog* catalog, const char* key,
                                           size_t* length);
/* The text, else the key's default text, in a new string for wordlex_free. */
WORDLEX_C_API char* wordlex_text(const wordlex_catalog* catalog, const char* key);
/* The same with its markers and parameter tags filled by values in the format of `language`; null
 * means the language in the file. Places without an argument stay as they are. */
WORDLEX_C_API char* wordlex_format(const wordlex_catalog* catalog, const char* key,
                                   const char* language, const wordlex_argument* arguments,
                                   size_t count);
/* The same for a text that is a message pattern. Decimal integers count as numbers, which plurals
 * need. A malformed pattern stays as it is. */
WORDLEX_C_API char* wordlex_format_message(const wordlex_catalog* catalog, const char* key,
                                           const char* language, const wordlex_argument* arguments,
                                           size_t count);
WORDLEX_C_API void wordlex_free(char* text);

/* The language in the file, "" for none. */
WORDLEX_C_API const char* wordlex_locale(const wordlex_catalog* catalog);
WORDLEX_C_API size_t wordlex_count(const wordlex_catalog* catalog);

#ifdef __cplusplus
}
#endif

#endif
