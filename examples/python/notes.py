"""A program in Python with its texts from liblang.

usage: notes.py FOLDER [COUNT...]     the folder of the compiled texts; how many notes there are
"""
import sys

import lang_texts as texts


def main():
    folder = sys.argv[1]
    own_name = texts.load(folder)
    print(texts.lang_get_string("notes", "Languages:"), ", ".join(texts.languages(folder)))
    print(texts.lang_get_string("notes", "This one:"), own_name or "-")
    for count in map(int, sys.argv[2:]):
        form = texts.lang_plural(texts.lang_get_string("notes", "%d note|%d notes"), count)
        print(form % count)


if __name__ == "__main__":
    main()
