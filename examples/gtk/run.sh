#!/bin/sh
# The window as a project of its own: builds it and its texts with Meson, installs both, and looks at what
# the window shows. Works on a copy, and ends with 1 at the first thing that is not as it should be.
#
# usage: run.sh [FOLDER]      a temporary folder, removed at the end, when none is named
#
# It wants a display. pkg-config must find the library (PKG_CONFIG_PATH), LANG_PROGRAM and LANG_KIT name
# the programs when they are not in PATH; MESON names the program; CC and CFLAGS as usual.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
meson=${MESON:-meson}
if [ $# -gt 0 ]; then
    folder=$1
    mkdir -p "$folder"
else
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
fi
cp "$here/meson.build" "$here/window.c" "$here/window.lang-src" "$folder"
cd "$folder"
eval "libdir=$(pkg-config --variable=libdir lang)" # written for a shell to read
LD_LIBRARY_PATH=$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export LD_LIBRARY_PATH

fail() { printf 'run.sh: %s\n' "$*" >&2; exit 1; }

echo "== build"
$meson setup --prefix "$PWD/installed" build
$meson compile -C build
$meson install -C build >install.txt
texts=installed/share/window/texts
[ -f $texts/german-edit/german.lang ] || { cat install.txt; fail "no texts are installed"; }

echo "== the window"
export LC_ALL='' LC_MESSAGES='' LANG=C.UTF-8
LANGUAGE=de installed/bin/window --show 1 $texts | tee shown.txt
LANGUAGE='' installed/bin/window --show 2 $texts | tee -a shown.txt
cmp shown.txt - <<'TEXT'
Zähler | 1 Druck | _Drücken
Counter | 2 clicks | _Click
TEXT

echo "== a fault in the texts fails the build; a mended source is built anew"
sleep 1 # a build looks at times
sed 's/%d Druck|/%s Druck|/' "$here/window.lang-src" >window.lang-src
$meson compile -C build >output.txt 2>&1 && fail "a fault was built"
grep -q '\[format\]' output.txt || { cat output.txt; fail "the fault was not told"; }
sed 's/Zähler/Uhr/' "$here/window.lang-src" >window.lang-src
$meson compile -C build >output.txt
LANGUAGE=de build/window --show 0 build/texts | grep '^Uhr | 0 Drücke'

echo "== check finds a new text"
sed 's/"Counter"/"New"/' "$here/window.c" >window.c
$meson compile -C build check
grep -q '"000[0-9]*:window.c"' window.lang-src && grep -q 'ITEM   "New"' window.lang-src || fail "the new text was not found"
echo "== all as expected"
