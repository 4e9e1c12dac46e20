# What every target is compiled with.

add_library(lang_options INTERFACE)
target_compile_features(lang_options INTERFACE cxx_std_20)
target_compile_options(lang_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>)
target_include_directories(lang_options INTERFACE ${CMAKE_SOURCE_DIR}/src)

if(LANG_SANITIZE)
  add_compile_options(-fsanitize=${LANG_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${LANG_SANITIZE})
endif()
