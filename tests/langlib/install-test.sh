#!/bin/sh
# The library as other projects get it: installs it to a temporary prefix and builds applications
# against it through pkg-config and through CMake, shared and static; looks at what it shows and
# needs; then lets the example application run.
#
# usage: install-test.sh CMAKE BUILD-FOLDER SOURCE-FOLDER LANG-PROGRAM
# CC, CXX, CFLAGS, CXXFLAGS, LDFLAGS as usual.
set -eu

cmake=$1 build=$2 source=$3 program=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
fail() { printf 'FAILED: %s\n' "$*" >&2; exit 1; }

"$cmake" --install "$build" --component liblang --prefix "$prefix" >"$work/install.txt"
libdir=$(dirname "$(find "$prefix" -name liblang.so)")
PKG_CONFIG_PATH=$libdir/pkgconfig
LD_LIBRARY_PATH=$libdir
export PKG_CONFIG_PATH LD_LIBRARY_PATH
# The installed tree may be moved.
[ "$(cd "$(pkg-config --variable=libdir lang)" && pwd)" = "$libdir" ] || fail "lang.pc: libdir"

# What it shows is what the header declares, and nothing else of its own is needed.
sed -n 's/^ *\([A-Za-z_0-9]*\);$/\1/p' "$source/src/langlib/liblang.map" | LC_ALL=C sort >"$work/map.txt"
nm -D --defined-only "$libdir/liblang.so" | sed -n 's/.* [TDBW] \([^@]*\)@.*/\1/p' | LC_ALL=C sort >"$work/so.txt"
cmp "$work/map.txt" "$work/so.txt" || fail "liblang.so does not show what liblang.map lists"
nm -g --defined-only "$libdir/liblang.a" | sed -n 's/.* [TDBCWV] //p' | LC_ALL=C sort >"$work/a.txt"
cmp "$work/map.txt" "$work/a.txt" || fail "liblang.a does not show what liblang.map lists"
${CC:-cc} -E -P "$prefix/include/lang-locale.h" | tr '\n' ' ' | tr ';' '\n' |
    sed -n 's/.*[ *]\(_*lang_[a-z_]*\|_*z\{0,1\}e\{0,1\}l\{0,1\}_*min_lex_[a-z_0-9]*\|zel_[a-z_]*\|Log[A-Z][a-z]*\)(.*/\1/p
            s/.*extern int \(__[a-z_]*\) *$/\1/p' |
    LC_ALL=C sort -u >"$work/header.txt"
cmp "$work/map.txt" "$work/header.txt" || fail "the headers and liblang.map differ"
readelf -d "$libdir/liblang.so" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' >"$work/needed.txt"
! grep -q 'gtk\|gdk\|tiff' "$work/needed.txt" || fail "liblang.so needs the toolkit"
readelf -d "$libdir/liblang.so" | grep -q 'SONAME.*liblang.so.1' || fail "soname"

# An application that has names of its own which the library uses inside.
cd "$work"
printf 'GROUP g hello { "hallo" }\n' >texts.lang
cat >app.c <<'TEXT'
#include <lang.h>
#include <string.h>
int lang = 1;
const char *log_init = "mine";
int main(void)
{
    return lang_load_file("texts.lang") != 0 || strcmp(lang_get_string("g", "hello"), "hallo") != 0 ||
           lang != 1 || strcmp(log_init, "mine") != 0;
}
TEXT
c_compile="${CC:-cc} -std=c99 -Wall -Wextra -Wpedantic -Werror ${CFLAGS:-}"
$c_compile $(pkg-config --cflags lang) -o shared app.c ${LDFLAGS:-} $(pkg-config --libs lang)
./shared || fail "application with the shared library"
$c_compile $(pkg-config --cflags lang) -o static app.c ${LDFLAGS:-} "$libdir/liblang.a" \
    $(pkg-config --libs --static lang | sed 's/ *-llang//')
LD_LIBRARY_PATH= ./static || fail "application with the static library"

# Every standard takes the headers, and the compiler compares printf's arguments with the items: what
# stands behind "-" is refused.
flags="-Wall -Wextra -Wpedantic -Werror -fsyntax-only $(pkg-config --cflags lang)"
for std in c99 c11 c17 c2x; do
    ${CC:-cc} -std=$std $flags "$source/tests/langlib/header_c99.c" || fail "the headers as $std"
done
for std in c++11 c++14 c++17 c++20 c++2b; do
    ${CXX:-c++} -std=$std $flags "$source/tests/langlib/header_cxx.cc" || fail "the headers as $std"
done
while read -r sign statement; do
    printf '#include <lang-locale.h>\nvoid f(lang_handle_t *h, int n);\nvoid f(lang_handle_t *h, int n)\n{\n    (void)h, (void)n;\n    %s;\n}\n' "$statement" >format.c
    for compiler in "${CC:-cc} -x c" "${CXX:-c++} -x c++"; do
        judged=+
        $compiler $flags format.c 2>format.txt || judged=-
        [ "$judged" = "$sign" ] || { cat format.txt; fail "$compiler: $sign $statement"; }
    done
done <<'TEXT'
+ printf(lang_get_string("m", "%d files"), 3)
- printf(lang_get_string("m", "%d files"), "abc")
+ puts(lang_get_string("m", "100 % sure"))
- printf(lang_tooltip("m", "%s"), n)
- printf(lang_get_str(h, "m", "%s"), n)
- printf(lang_get("note", "m", "%s"), n)
- printf(lang_text("m", "Hello %s"))
+ printf(lang_text("m", "Hello %s"), "Ada")
+ printf(lang_count("m", "%d tour|%d tours", n), n)
+ printf(lang_plural(lang_get_string("m", "%d tour|%d tours"), n), n)
TEXT

mkdir cmake-app
cp app.c cmake-app
cp app.c cmake-app/app.cpp
cat >cmake-app/CMakeLists.txt <<'TEXT'
cmake_minimum_required(VERSION 3.16)
project(app C CXX)
find_package(lang 1 REQUIRED)
add_executable(shared app.c)
target_link_libraries(shared lang::lang)
add_executable(static app.c)
target_link_libraries(static lang::lang_static)
add_executable(shared_cxx app.cpp)
target_link_libraries(shared_cxx lang::lang)
TEXT
"$cmake" -S cmake-app -B cmake-build -DCMAKE_PREFIX_PATH="$prefix" >cmake.txt 2>&1 || { cat cmake.txt; fail configure; }
"$cmake" --build cmake-build >cmake.txt 2>&1 || { cat cmake.txt; fail build; }
for application in shared static shared_cxx; do
    "cmake-build/$application" || fail "CMake application $application"
done

[ -z "$program" ] || LANG_PROGRAM=$program HOME=$work "$source/examples/app/run.sh"
