# What every target is compiled with.

add_library(lang_options INTERFACE)
target_compile_features(lang_options INTERFACE cxx_std_20)
target_compile_options(lang_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>)
# What hides a name of another file, or lies in an unnamed namespace of a unit, is seen by the builds of
# single files.
set(single $<NOT:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>>)
target_compile_options(lang_options INTERFACE
  $<IF:${single},-Wshadow,$<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>>)
# GCC 12 takes a literal before a string for a copy onto itself when it optimises fully.
target_compile_options(lang_options INTERFACE
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
target_include_directories(lang_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

# No path of the machine that builds, so that two build folders give the same bits; what a debugger
# reads keeps them, or it would not find the sources.
target_compile_options(lang_options INTERFACE
  $<IF:$<CONFIG:Debug>,-fmacro-prefix-map,-ffile-prefix-map>=${PROJECT_SOURCE_DIR}/=
  $<IF:$<CONFIG:Debug>,-fmacro-prefix-map,-ffile-prefix-map>=${PROJECT_BINARY_DIR}/=build/)

# What users get: a write behind an array ends the program, and no variable begins with what a call
# before it left. Sanitizers find more, and checked copies of functions would hide some of it.
if(NOT LANG_SANITIZE)
  include(CheckCXXCompilerFlag)
  check_cxx_compiler_flag(-ftrivial-auto-var-init=zero LANG_HAS_AUTO_VAR_INIT)
  set(hardening -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
                $<$<BOOL:${LANG_HAS_AUTO_VAR_INIT}>:-ftrivial-auto-var-init=zero>)
  target_compile_options(lang_options INTERFACE "$<$<NOT:$<CONFIG:Debug>>:${hardening}>")
endif()

# What developers test: an index behind the end of a list or a text ends the program, and a variable that
# nobody has set holds no 0 by luck. Valgrind does not read the newer DWARF 5 of clang.
target_compile_definitions(lang_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
target_compile_options(lang_options INTERFACE
  $<$<AND:$<CONFIG:Debug>,$<COMPILE_LANG_AND_ID:CXX,Clang>>:-gdwarf-4>)
if(NOT LANG_SANITIZE)
  check_cxx_compiler_flag(-ftrivial-auto-var-init=pattern LANG_HAS_AUTO_VAR_PATTERN)
  if(LANG_HAS_AUTO_VAR_PATTERN)
    target_compile_options(lang_options INTERFACE $<$<CONFIG:Debug>:-ftrivial-auto-var-init=pattern>)
  endif()
endif()

# The table of what is called in libraries is filled at the start and then read-only.
target_link_options(lang_options INTERFACE LINKER:-z,relro LINKER:-z,now LINKER:--as-needed)

if(LANG_SANITIZE)
  add_compile_options(-fsanitize=${LANG_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${LANG_SANITIZE})
  # AddressSanitizer sees what a wrong pointer does; the checks before each use of one, which the tests
  # have, are a quarter of the compiler's time, and a fuzzer tries more without.
  if(LANG_FUZZ)
    add_compile_options(-fno-sanitize=null,alignment,object-size,vptr)
  endif()
endif()

# What nearly every file includes is compiled once; the targets behind the first share what it made.
# Only for builds of single files. Who forgets one of those of src/ is found by tools/check-layers.
function(lang_precompile target)
  if(NOT LANG_PCH)
    return()
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fpch-preprocess) # for compiler caches
  endif()
  target_precompile_headers(${target} ${ARGN})
endfunction()
