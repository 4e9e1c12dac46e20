"""The texts of an application in its user's language, by liblang.

    from lang import *

    load("/usr/share/viewer/texts")
    print(lang_get_string("main", "Open a file"))
    print(lang_text("main", "Hello %s", name))
    print(lang_count("main", "%d tour|%d tours", n))

`lang check` finds these requests in files that it is given by name, where group and item stand in double
quotes; it would take lang_get_string in a list of imported names for one. A request always gives a text: where there is none, the item. The environment variable
LANG_LIBRARY names the library where the loader does not find it.
"""
import ctypes
import os
import re
import sys

__all__ = ["Texts", "lang_count", "lang_get_string", "lang_text", "lang_tooltip", "languages", "load", "unload"]

_TEXT = ctypes.c_char_p
_HANDLE = ctypes.c_void_p


class _Locale(ctypes.Structure):
    """lang_locale_t of lang-locale.h."""


_Locale._fields_ = [("path", _TEXT), ("name", _TEXT), ("code", _TEXT), ("english", _TEXT), ("own", _TEXT),
                    ("texts", ctypes.c_int32), ("defaults", ctypes.c_int32), ("next", ctypes.POINTER(_Locale))]
_EACH = ctypes.CFUNCTYPE(None, ctypes.POINTER(_Locale), ctypes.c_void_p)

_library = ctypes.CDLL(os.environ.get("LANG_LIBRARY", "liblang.so.1"))
# Texts come back as addresses: where there is none, that of the item, which Python must keep until then.
for _name, _result, *_arguments in (
        ("lang_locale_choose", ctypes.POINTER(_Locale), _TEXT, _TEXT),
        ("lang_locale_new", _HANDLE, _TEXT, _TEXT),
        ("lang_locale_of", ctypes.POINTER(_Locale), _HANDLE),
        ("lang_locale_list", ctypes.c_int, _TEXT, _EACH, ctypes.c_void_p),
        ("lang_plural", ctypes.c_void_p, _TEXT, ctypes.c_int64),
        ("lang_free", None, _HANDLE, ctypes.c_int),
        ("lang_de_init", None),
        ("_lang_get_str", ctypes.c_void_p, _HANDLE, _TEXT, _TEXT, _TEXT, ctypes.c_int),
        ("_lang_text", ctypes.c_void_p, _HANDLE, _TEXT, _TEXT, _TEXT, ctypes.c_int),
        ("_lang_count", ctypes.c_void_p, _HANDLE, _TEXT, _TEXT, ctypes.c_int64, _TEXT, ctypes.c_int)):
    _function = getattr(_library, _name)
    _function.restype, _function.argtypes = _result, _arguments


class Language:
    """One compiled file: its path, name, code ("de_AT"), the language's name in English and in itself (None
    where it is not known), the number of its texts, and the Language that is asked for what it lacks."""

    def __init__(self, locale):
        for name in ("path", "name", "code", "english", "own"):
            value = getattr(locale, name)
            setattr(self, name, value if value is None else _decoded(value))
        self.texts = locale.texts
        self.next = Language(locale.next[0]) if locale.next else None

    def __repr__(self):
        return "<Language %s of %s>" % (self.name, self.path)


def _decoded(text):
    return text.decode("utf-8", "replace")


def _bytes(text):
    # A NUL ends a text for the library; one that has it is in no file.
    return text.encode("utf-8", "surrogateescape")


_CONVERSION = re.compile(r"%(?:%|(?:([1-9][0-9]*)\$)?([-+ #0']*[0-9]*)(\.[0-9]*)?(?:hh?|ll?|[jztL])?([diouxXfFeEgGaAcsp]))")


def _shown(flags, precision, letter, value):
    """One value, in the kind of its conversion as far as its type allows."""
    flags = flags.replace("'", "")
    is_number = isinstance(value, (int, float))
    try:
        if letter in "diouxX" and is_number:
            return ("%" + flags + precision + letter) % int(value)
        if letter in "fFeEgG" and is_number:
            return ("%" + flags + precision + letter) % value
        if letter in "aA" and is_number:
            return ("%" + flags + "s") % float(value).hex()
        if letter == "c" and isinstance(value, int):
            return ("%" + flags + "c") % value
    except (ValueError, OverflowError):  # no such character, or no whole number
        pass
    return ("%" + flags + (precision if letter == "s" else "") + "s") % (value,)


def _format(text, values):
    """The text with the values, as printf has them; what has no value stays as it stands."""
    following = iter(range(len(values)))

    def replace(found):
        if found[0] == "%%":
            return "%"
        number = int(found[1]) - 1 if found[1] else next(following, len(values))
        return _shown(found[2], found[3] or "", found[4], values[number]) if number < len(values) else found[0]

    return _CONVERSION.sub(replace, text)


def _ask(request, handle, group, item, *number):
    kept = _bytes(item)
    place = sys._getframe(2)  # a missing text is logged with the line that asks for it
    answer = request(handle, _bytes(group), kept, *number, os.fsencode(place.f_code.co_filename), place.f_lineno)
    return _decoded(ctypes.string_at(answer))


def lang_get_string(group, item):
    """The text."""
    return _ask(_library._lang_get_str, None, group, item)


def lang_tooltip(group, item):
    """A text that is shown as a tooltip."""
    return _ask(_library._lang_get_str, None, group, item)


def lang_text(group, item, *values):
    """The text with the values. A translation with other conversions than the item counts as missing."""
    text = _ask(_library._lang_text, None, group, item)
    return _format(text, values) if values else text


def lang_count(group, forms, number, *values):
    """The form of the text that the number takes, with the number and the values behind it."""
    return _format(_ask(_library._lang_count, None, group, forms, number), (number, *values))


def load(directory, languages=None):
    """Loads the texts for the user's language, or for "de_AT:fr": the Language that was taken, or None."""
    taken = _library.lang_locale_choose(os.fsencode(directory), languages and _bytes(languages))
    return Language(taken[0]) if taken else None


def unload():
    """Gives up what load took; it must come before another load."""
    _library.lang_de_init()


def languages(directory):
    """The Language of each compiled file of a directory."""
    found = []
    if _library.lang_locale_list(os.fsencode(directory), _EACH(lambda file, _: found.append(Language(file[0]))),
                                 None) < 0:
        raise OSError("%s cannot be read" % directory)
    return found


class Texts:
    """Texts of their own beside the loaded ones: "with Texts(directory, "fr") as french:"."""

    def __init__(self, directory, languages=None):
        self._handle = _library.lang_locale_new(os.fsencode(directory), languages and _bytes(languages))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def __bool__(self):
        return bool(self._handle)

    def close(self):
        """Gives the texts up; what was asked before stays."""
        if self._handle:
            _library.lang_free(self._handle, 1)
            self._handle = None

    @property
    def language(self):
        """What was taken, or None."""
        return Language(_library.lang_locale_of(self._handle)[0]) if self._handle else None

    def get(self, group, item):
        """As lang_get_string."""
        return _ask(_library._lang_get_str, self._handle, group, item) if self._handle else item

    def text(self, group, item, *values):
        """As lang_text."""
        text = _ask(_library._lang_text, self._handle, group, item) if self._handle else item
        return _format(text, values) if values else text

    def count(self, group, forms, number, *values):
        """As lang_count."""
        if self._handle:
            form = _ask(_library._lang_count, self._handle, group, forms, number)
        else:
            kept = _bytes(forms)
            form = _decoded(ctypes.string_at(_library.lang_plural(kept, number)))
        return _format(form, (number, *values))
