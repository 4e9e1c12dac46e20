#!/bin/sh
# The C++ example as a project of its own: configures and builds it with CMake, its texts included; sees
# that a fault in the texts fails the build and a mended source is built anew; installs it and lets it
# speak from there. Works on a copy, and ends with 1 at the first thing that is not as it should be.
#
# usage: run.sh [FOLDER]      a temporary folder, removed at the end, when none is named
#
# CMAKE_PREFIX_PATH leads to an installation under a prefix of its own; CMAKE names the program,
# CMAKE_GENERATOR the generator; CXX and CXXFLAGS as usual.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
cmake=${CMAKE:-cmake}
if [ $# -gt 0 ]; then
    folder=$1
    mkdir -p "$folder"
else
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
fi
cp "$here/CMakeLists.txt" "$here/main.cpp" "$here/shelf.lang-src" "$folder"
cd "$folder"

fail() { printf 'run.sh: %s\n' "$*" >&2; exit 1; }

echo "== build"
"$cmake" -S . -B build -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$PWD/installed"
"$cmake" --build build
LANG=de_AT.UTF-8 LC_ALL='' LC_MESSAGES='' LANGUAGE='' build/shelf build/shelf-texts | tee german.txt
cmp german.txt - <<'TEXT'
Das Regal (German)
Ada hat 1 Buch
Ada hat 2 Bücher
Ada hat 5 Bücher
Ada hat 21 Bücher
TEXT

echo "== a fault in the texts fails the build, and the old ones stay"
sleep 1 # a build looks at times
sed 's/%2$s hat %1$d Buch/%2$s hat %1$n Buch/' shelf.lang-src >faulty
mv faulty shelf.lang-src
"$cmake" --build build >output.txt 2>&1 && fail "a fault was built"
grep -q '\[format\]' output.txt || { cat output.txt; fail "the fault was not told"; }
[ -f build/shelf-texts/german-edit/german.lang ] || fail "the old texts are gone"

echo "== a changed source is built anew"
sed "s/Das Regal/Regal/" "$here/shelf.lang-src" >shelf.lang-src
"$cmake" --build build
grep -q '"Regal"' build/shelf-texts/german-edit/german.lang || fail "the texts are old"

echo "== check finds a new text, and those of a library of the project"
echo '#define lang_get_string(group, item) item
const char *in_library() { return lang_get_string("shelf", "In a library"); }' >library.cpp
echo 'add_library(part STATIC library.cpp)
target_link_libraries(shelf part)' >>CMakeLists.txt
sed 's/std::cout << lang_get_string/std::cout << lang_get("title", "shelf", "New") << lang_get_string/' \
    "$here/main.cpp" >main.cpp
"$cmake" --build build --target shelf-check
grep -q 'ITEM   "New"' shelf.lang-src || fail "the new text was not found"
grep -q '"00002:library.cpp"' shelf.lang-src || fail "the library's text was not found"
grep -q '"000[0-9]*:main.cpp"' shelf.lang-src || fail "the place is not named from the source's folder"

echo "== install"
"$cmake" --build build
"$cmake" --install build
speak() { LANGUAGE='' LANG=$1 LC_ALL='' LC_MESSAGES='' installed/bin/shelf; }
speak ru_RU.UTF-8 | grep -F 'Ada: 21 книга'

echo "== a file beside the program wins, and it does without any"
sed -i 's/"Regal"/"Anders"/' installed/share/shelf/texts/german-edit/german.lang
rm -r installed/share/shelf/texts/russian-edit
speak de_DE.UTF-8 | grep -F 'Anders (German)'
speak ru_RU.UTF-8 | grep -F 'Полка (Russian)'
rm -r installed/share
speak de_DE.UTF-8 | grep -F 'Regal (German)'
speak fr_FR.UTF-8 | grep -F 'The shelf (no language)'
echo "== all as expected"
