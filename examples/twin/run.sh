#!/bin/sh
# Two windows of 32 texts, and their twin with gettext: builds ours with CMake, make and Meson and the twin
# with make, lets all four show their windows, and compares what they say and how long the sources are.
# Works on a copy, and ends with 1 at the first thing that is not as it should be.
#
# usage: run.sh [FOLDER]      a temporary folder, removed at the end, when none is named
#
# It wants a display, and gettext's tools for the twin. pkg-config and CMAKE_PREFIX_PATH must lead to the
# library, LANG_PROGRAM and LANG_KIT name the programs when they are not in PATH; MESON, MAKE and CMAKE name
# the builds' programs; CC and CFLAGS as usual.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
if [ $# -gt 0 ]; then
    folder=$1
    mkdir -p "$folder"
else
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
fi
cp -R "$here/CMakeLists.txt" "$here/Makefile" "$here/meson.build" "$here/notes.c" "$here/notes.lang-src" \
    "$here/gettext" "$folder"
cd "$folder"
eval "libdir=$(pkg-config --variable=libdir lang)" # written for a shell to read
LD_LIBRARY_PATH=$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export LD_LIBRARY_PATH LC_ALL='' LC_MESSAGES='' LANG=C.UTF-8

fail() { printf 'run.sh: %s\n' "$*" >&2; exit 1; }

echo "== build"
"${MAKE:-make}"
"${MAKE:-make}" -C gettext
"${CMAKE:-cmake}" -S . -B cmake-build
"${CMAKE:-cmake}" --build cmake-build
"${MESON:-meson}" setup meson-build
"${MESON:-meson}" compile -C meson-build

echo "== all say the same"
for language in de en; do
    export LANGUAGE=$language
    gettext/notes gettext/texts print >twin-$language.txt
    ./notes texts print | cmp - twin-$language.txt
    cmake-build/notes cmake-build/notes-texts print | cmp - twin-$language.txt
    meson-build/notes meson-build/texts print | cmp - twin-$language.txt
done
cat twin-de.txt
[ "$(wc -l <twin-de.txt)" -eq 24 ] || fail "not all is shown"
grep -qx 'notes.txt wurde von Ada gespeichert.' twin-de.txt && grep -qx '1 Wort' twin-de.txt ||
    fail "no value, or not the form of a number"
! grep -qxF -f twin-en.txt twin-de.txt || fail "a text is not translated"

echo "== ours is shorter: lines and bytes of program and Makefile"
ours=$(cat notes.c Makefile | wc -lc)
twin=$(cat gettext/notes.c gettext/Makefile | wc -lc)
echo "ours $ours, twin $twin"
# shellcheck disable=SC2086
set -- $ours $twin
[ "$1" -lt "$3" ] && [ "$2" -lt "$4" ] || fail "the twin is not longer"

echo "== check knows all texts"
"${MAKE:-make}" lang-check 2>&1 | tee checked.txt
grep -q '0 new, 0 no longer used, 0 could not be read' checked.txt || fail "the source is not complete"
[ "$(grep -c '^  ITEM ' notes.lang-src)" -eq 32 ] || fail "not 32 texts"
echo "== all as expected"
