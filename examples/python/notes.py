"""A program in Python with its texts from liblang.

usage: notes.py FOLDER [COUNT...]     the folder of the compiled texts; how many notes there are
"""
import sys

from lang import *  # the checker would take the words of a list for requests


def main():
    folder = sys.argv[1]
    taken = load(folder)
    names = sorted(file.own or file.name for file in languages(folder))
    print(lang_get_string("notes", "Languages:"), ", ".join(names))
    print(lang_text("notes", "This one: %s", taken.own if taken else "-"))
    for count in map(int, sys.argv[2:]):
        print(lang_count("notes", "%d note|%d notes", count))


if __name__ == "__main__":
    main()
