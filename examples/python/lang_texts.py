"""The texts of liblang for Python, through ctypes. LANG_LIBRARY names the library where the loader
does not find it."""
import ctypes
import os

library = ctypes.CDLL(os.environ.get("LANG_LIBRARY", "liblang.so.1"))


class Locale(ctypes.Structure):
    """lang_locale_t of lang-locale.h."""


Locale._fields_ = [
    ("path", ctypes.c_char_p), ("name", ctypes.c_char_p), ("code", ctypes.c_char_p),
    ("english", ctypes.c_char_p), ("own", ctypes.c_char_p),
    ("texts", ctypes.c_int32), ("defaults", ctypes.c_int32), ("next", ctypes.POINTER(Locale))]
EACH = ctypes.CFUNCTYPE(None, ctypes.POINTER(Locale), ctypes.c_void_p)

library.lang_locale_load.restype = ctypes.POINTER(Locale)
library.lang_locale_load.argtypes = [ctypes.c_char_p]
library.lang_locale_list.argtypes = [ctypes.c_char_p, EACH, ctypes.c_void_p]
library._lang_get_string.restype = ctypes.c_void_p
library._lang_get_string.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_int]
library.lang_plural.restype = ctypes.c_char_p
library.lang_plural.argtypes = [ctypes.c_char_p, ctypes.c_int64]


def lang_get_string(group, item):
    """The text, or the item."""
    kept = item.encode()  # where there is no text, the answer is this very string
    text = library._lang_get_string(group.encode(), kept, b"notes.py", 0)
    return ctypes.cast(text, ctypes.c_char_p).value.decode()


def lang_plural(text, number):
    """The form for the number."""
    return library.lang_plural(text.encode(), number).decode()


def load(folder):
    """Loads the user's language; its own name, or None."""
    taken = library.lang_locale_load(os.fsencode(folder))
    return taken[0].own.decode() if taken and taken[0].own else None


def languages(folder):
    """The own names of the languages that are there."""
    names = []

    def add(file, _):
        names.append((file[0].own or file[0].name).decode())

    library.lang_locale_list(os.fsencode(folder), EACH(add), None)
    return sorted(names)
