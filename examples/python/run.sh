#!/bin/sh
# The example in Python: compiles its texts and lets it speak. Works in a folder of its own, and ends with
# 1 at the first thing that is not as it should be.
#
# usage: run.sh
#
# PYTHONPATH leads to the module, LANG_LIBRARY names liblang.so.1, LANG_PROGRAM and LANG_KIT the programs, where they are not found by
# themselves; PYTHON names the interpreter.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
python=${PYTHON:-python3}
program=${LANG_PROGRAM:-lang}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$here/notes.py" "$here/notes.lang-src" "$folder"
cd "$folder"

fail() { printf 'run.sh: %s\n' "$*" >&2; exit 1; }

"$program" check notes.lang-src notes.py >check.txt
grep 'ERROR\|not found' check.txt && fail "notes.py and notes.lang-src are out of step"
mkdir texts
"$program" compile -dst-dir texts notes.lang-src
export LC_ALL='' LC_MESSAGES='' LANGUAGE='' PYTHONIOENCODING=utf-8
LANG=ru_RU.UTF-8 $python notes.py texts 1 3 5 | tee spoken.txt
LANG=xx_XX.UTF-8 $python notes.py texts 1 2 | tee -a spoken.txt
cmp spoken.txt - <<'TEXT'
Языки: Deutsch, English, русский
Этот: русский
1 заметка
3 заметки
5 заметок
Languages: Deutsch, English, русский
This one: -
1 note
2 notes
TEXT
echo "== all as expected"
