"""Drives wordlex/catalog/wordlex.h as another language does: ctypes_test.py LIBRARY"""
import ctypes as c
import os
import sys
import tempfile
import unittest

library = c.CDLL(sys.argv.pop(1))


class Argument(c.Structure):
    _fields_ = [("name", c.c_char_p), ("text", c.c_char_p)]


def declare(name, result, *arguments):
    function = getattr(library, "wordlex_" + name)
    function.restype, function.argtypes = result, arguments
    return function


# Strings to be freed are plain addresses: ctypes would convert a string and lose its address.
POINTER, TEXT = c.c_void_p, c.c_char_p
load = declare("load", POINTER, TEXT, c.POINTER(POINTER))
load_bytes = declare("load_bytes", POINTER, TEXT, c.c_size_t, c.POINTER(POINTER))
catalog_free = declare("catalog_free", None, POINTER)
error_code = declare("error_code", c.c_int, POINTER)
error_message = declare("error_message", TEXT, POINTER)
error_free = declare("error_free", None, POINTER)
find = declare("find", c.POINTER(c.c_uint16), POINTER, TEXT, c.POINTER(c.c_size_t))
text = declare("text", POINTER, POINTER, TEXT)
filled = [POINTER, POINTER, TEXT, TEXT, c.POINTER(Argument), c.c_size_t]
format_text = declare("format", *filled)
format_message = declare("format_message", *filled)
free = declare("free", None, POINTER)
locale = declare("locale", TEXT, POINTER)
count = declare("count", c.c_size_t, POINTER)

DICTIONARY = """"$$$/Saved=Gesichert ✓"
"$$$/Empty="
"$$$/Opened=^1 und <param name="who"/>"
"$$$/Clips={clips, plural, one {# Clip} other {# Clips}}"
""".replace('name="who"', 'name=\\"who\\"')


def taken(address):
    value = c.string_at(address).decode()
    free(address)
    return value


def arguments(**named):
    pairs = [(name.strip("_").encode(), value.encode()) for name, value in named.items()]
    return (Argument * len(pairs))(*pairs), len(pairs)


class CInterface(unittest.TestCase):
    def setUp(self):
        data = DICTIONARY.encode("utf-16")
        self.catalog = load_bytes(data, len(data), None)

    def tearDown(self):
        catalog_free(self.catalog)

    def test_looks_up(self):
        self.assertEqual(4, count(self.catalog))
        self.assertEqual(b"", locale(self.catalog))
        self.assertEqual("Gesichert ✓", taken(text(self.catalog, b"$$$/Saved=Saved")))
        self.assertEqual("é", taken(text(self.catalog, "$$$/none=é".encode())))
        length = c.c_size_t(7)
        units = find(self.catalog, b"/Saved", c.byref(length))
        self.assertEqual("Gesichert ✓", "".join(map(chr, units[: length.value])))
        self.assertTrue(find(self.catalog, b"/Empty", c.byref(length)))
        self.assertFalse(find(self.catalog, b"/none", c.byref(length)))
        self.assertEqual(0, length.value)

    def test_formats(self):
        self.assertEqual(
            "a und b",
            taken(format_text(self.catalog, b"/Opened", b"de", *arguments(_1="a", who="b"))))
        self.assertEqual(
            "a und ",
            taken(format_text(self.catalog, b"/Opened", b"de",
                              (Argument * 2)((None, b"a"), (b"who", None)), 2)))
        for number, expected in (("1", "1 Clip"), ("1234", "1.234 Clips")):
            self.assertEqual(
                expected,
                taken(format_message(self.catalog, b"/Clips", b"de", *arguments(clips=number))))

    def test_reports_errors(self):
        error = POINTER()
        with tempfile.TemporaryDirectory() as folder:
            name = os.path.join(folder, "t.txt")
            self.assertFalse(load(name.encode(), c.byref(error)))
            self.assertEqual(1, error_code(error))
            error_free(error)
            with open(name, "w", encoding="ascii") as file:
                file.write('"a=b"\n"$c=d"\n')
            self.assertFalse(load(name.encode(), c.byref(error)))
            self.assertIn(name + ":2:2: ", error_message(error).decode())
            error_free(error)


unittest.main()
