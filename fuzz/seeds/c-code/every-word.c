#define NAME "value"
#define ZEL_LANGUAGE_APP "notes" 2
a = lang_get_string("menu", "_Open"); /* lang_tooltip("menu", "no") */
b = lang_tooltip("menu", NAME); c = lang_get_str(h, "g:h", "new");
d = lang_get("note", "g", "in " "pieces"); e = lang_sym(s, "note", "g", "%A%");
f = "lang_dummy(\"n\", \"g\", \"i\")"; # 7 "other.c"
ZEL_LANGUAGE_CHECK_STOP lang_get_fmt("n", "g", "k") ZEL_LANGUAGE_CHECK_START
