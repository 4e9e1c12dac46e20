#!/bin/sh
# The window as a project of its own: builds it and its texts with Meson, installs both, and looks at what
# the window shows; then goes the way of a text: from the trace of a run and its picture to the editor, and
# from a save there back to the window. Works on a copy, and ends with 1 at the first thing that is not as it should be.
#
# usage: run.sh [FOLDER]      a temporary folder, removed at the end, when none is named
#
# It wants a display, and for the editor xdotool and a window manager. pkg-config must find the library
# (PKG_CONFIG_PATH), LANG_PROGRAM and LANG_KIT name the programs when they are not in PATH; MESON names the
# program; CC and CFLAGS as usual.
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

echo "== which texts were shown, and their picture in the editor"
mkdir pictures
LANGUAGE=de LANG_TRACE=$PWD/trace.txt installed/bin/window --show 1 $texts pictures/counter.png
"$LANG_KIT" stat --trace trace.txt window.lang-src | tee counted.txt
"$LANG_KIT" shots pictures --trace trace.txt window.lang-src | tee -a counted.txt
cmp counted.txt - <<'TEXT'
texts shown: 4 of 4
counter.png: 4 texts
TEXT
cmp pictures/counter.png ScreenShots/counter.png
"$LANG_KIT" report --screenshots -o page.html window.lang-src
grep -q '"data:image/png;base64,' page.html || fail "no picture on the page"

# await COMMAND...      until it succeeds
await()
{
    tries=0
    until "$@"; do
        tries=$((tries + 1))
        [ $tries -lt 3000 ] || fail "this does not come: $*"
        sleep 0.005
    done
}
has_focus() { xdotool getactivewindow getwindowname 2>/dev/null | grep -q "$1"; }
printf '[editor]\nexportOnSave="live"\n' >lang.lang-ini
mkdir live
"$LANG_PROGRAM" compile -dst-dir live window.lang-src
LANGUAGE=de build/window --watch live >live.txt &
window=$!
await has_focus Zähler
mkdir -p "home/Morvalix 6.00/log" # the editor keeps a log where this is
HOME=$PWD/home stdbuf -oL "$LANG_PROGRAM" edit window.lang-src >editor.txt &
editor=$!
trap 'kill $window $editor 2>/dev/null || :; wait; ${1:+:} rm -rf "$folder"' EXIT
await has_focus 'language editor'
await grep -q '^file >.*ScreenShots/window.jpg<' editor.txt
await grep -qa 'picture of the text >.*ScreenShots/counter.png<' "home/Morvalix 6.00/log/lang.log"

echo "== from Ctrl+S to the window"
for word in press hit; do
    xdotool key --delay 20 ctrl+f Return ctrl+a
    xdotool type --delay 20 "%d $word|%d ${word}s"
    sleep 1.1 # a second save in one second waits for the next, which its old file is kept under
    begin=$(date +%s%N)
    xdotool key ctrl+s
    await grep -q "^Zähler | 0 ${word}s | _Drücken\$" live.txt
    echo "$((($(date +%s%N) - begin) / 1000000)) ms"
    await has_focus '^ $'
    xdotool key Return
    await has_focus 'language editor'
done
xdotool key alt+x
wait $editor || fail "the editor ended with $?"
grep -q '^exportOnSave="*live"*$' lang.lang-ini || fail "the setting is gone"
kill $window
wait $window 2>/dev/null || :

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
