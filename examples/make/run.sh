#!/bin/sh
# The example with a Makefile: builds program and texts, lets it speak, installs it, sees that a fault in
# the texts fails the build, and finds a new text. Works on a copy, and ends with 1 at the first thing
# that is not as it should be.
#
# usage: run.sh [FOLDER]      a temporary folder, removed at the end, when none is named
#
# pkg-config must find the library (PKG_CONFIG_PATH), LANG_PROGRAM and LANG_KIT name the programs when
# they are not in PATH; MAKE, CC and CFLAGS as usual.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
make=${MAKE:-make}
if [ $# -gt 0 ]; then
    folder=$1
    mkdir -p "$folder"
else
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
fi
cp "$here/Makefile" "$here/count.c" "$here/count.lang-src" "$folder"
cd "$folder"
eval "libdir=$(pkg-config --variable=libdir lang)" # written for a shell to read
LD_LIBRARY_PATH=$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export LD_LIBRARY_PATH

fail() { printf 'run.sh: %s\n' "$*" >&2; exit 1; }

# speak LANGUAGE FOLDER WORD...
speak()
{
    locale=$1
    shift
    LANG=$locale LC_ALL='' LC_MESSAGES='' LANGUAGE='' ./count "$@"
}

echo "== build"
$make
{ speak pl_PL.UTF-8 texts a b c; speak de_DE.UTF-8 texts a; speak fr_FR texts; } | tee spoken.txt
cmp spoken.txt - <<'TEXT'
3 słowa
Gotowe.
1 Wort
Fertig.
0 words
Done.
TEXT
$make | grep -q 'Nothing to be done' || fail "all is built again"

echo "== install"
$make install DESTDIR=tree PREFIX=/usr
[ -f tree/usr/share/count/texts/polish-edit/polish.lang ] || fail "no texts are installed"
[ -x tree/usr/bin/count ] || fail "the program is not installed"

echo "== a fault in the texts fails the build, and the old ones stay"
sleep 1 # make looks at times
sed 's/%d Wort|/%n Wort|/' "$here/count.lang-src" >count.lang-src
$make >output.txt 2>&1 && fail "a fault was built"
grep -q '\[format\]' output.txt || { cat output.txt; fail "the fault was not told"; }
[ -f texts/polish-edit/polish.lang ] || fail "the old texts are gone"
sleep 1
sed 's/Fertig/Schluss/' "$here/count.lang-src" >count.lang-src
$make
speak de_DE texts a | grep -q Schluss || fail "the texts are old"

echo "== check finds a new text"
sed 's/"Done\."/"New."/' "$here/count.c" >count.c
$make lang-check
grep -q 'ITEM   "New\."' count.lang-src || fail "the new text was not found"
$make clean
[ ! -e texts ] || fail "clean left the texts"
echo "== all as expected"
