#!/bin/sh
# From requests in a program to texts in three languages: brings the language source up to date with
# tea.c, compiles it, builds the program, and lets it speak. Works on copies in a folder of its own
# and ends with 1 at the first thing that is not as it should be.
#
# usage: run.sh [FOLDER]      a temporary folder, removed at the end, when none is named
#
# LANG_PROGRAM names the tool when it is not in PATH; pkg-config must find the library (set
# PKG_CONFIG_PATH when it is installed under a prefix of its own). CC, CFLAGS and LDFLAGS as usual.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
lang=${LANG_PROGRAM:-lang}
if [ $# -gt 0 ]; then
    folder=$1
    mkdir -p "$folder"
else
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
fi
cp "$here/tea.c" "$here/tea.lang-src" "$folder"
cd "$folder"

fail() { printf 'run.sh: %s\n' "$*" >&2; exit 1; }

echo "== check"
"$lang" check tea.lang-src tea.c | tee check.txt
grep -q 'ERROR\|WARNING' check.txt && fail "tea.c has requests that cannot be read"
grep -q 'not found' check.txt && fail "tea.lang-src lacks a text: translate it, then run again"
[ "$(grep -c '    found ' check.txt)" -eq 11 ] || fail "not all requests were found"

echo "== compile"
"$lang" compile -dst-dir . tea.lang-src

echo "== build"
# Each is a list of options; pkg-config writes them for a shell to read, which matters where the
# library lies below a folder with a blank in its name.
eval "${CC:-cc} -std=c99 -Wall -Wextra -Wpedantic -Werror ${CFLAGS:-} $(pkg-config --cflags lang) \
    -o tea tea.c ${LDFLAGS:-} $(pkg-config --libs lang)"
eval "libdir=$(pkg-config --variable=libdir lang)"
LD_LIBRARY_PATH=$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export LD_LIBRARY_PATH

for language in english german japanese; do
    echo "== $language"
    texts=$language-edit/$language.lang
    ./tea "$texts" Ada | tee "$language.txt"
    cmp "$language.txt" "$here/expected/$language.txt"
    ./tea --xml "$texts" >"$language.xml"
    ! command -v xmllint >/dev/null || xmllint --noout "$language.xml"
done

echo "== no file: the items themselves"
./tea no-such-file.lang Ada | cmp - "$here/expected/english.txt"
echo "== all as expected"
