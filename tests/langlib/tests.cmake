# The library as applications get it: the public header alone, as C, against the shared library;
# and an installed prefix, with the example application.

add_executable(langlib_c99_test langlib/header_c99.c)
target_link_libraries(langlib_c99_test PRIVATE lang_shared)
target_compile_options(langlib_c99_test PRIVATE -Wall -Wextra -Wpedantic -Werror)
set_target_properties(langlib_c99_test PROPERTIES C_STANDARD 99 C_EXTENSIONS OFF)
add_test(NAME langlib_c99 COMMAND langlib_c99_test langlib_c99.lang)

add_executable(langlib_cxx_test langlib/header_cxx.cc)
target_link_libraries(langlib_cxx_test PRIVATE lang_static)
target_compile_options(langlib_cxx_test PRIVATE -Wall -Wextra -Wpedantic -Werror)
set_target_properties(langlib_cxx_test PROPERTIES CXX_STANDARD 11)
add_test(NAME langlib_cxx COMMAND langlib_cxx_test)

add_executable(langlib_hpp_test langlib/header_hpp.cc)
target_link_libraries(langlib_hpp_test PRIVATE lang_static)
target_compile_options(langlib_hpp_test PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Werror)
set_target_properties(langlib_hpp_test PROPERTIES CXX_STANDARD 17)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/langlib_hpp)
add_test(NAME langlib_hpp COMMAND langlib_hpp_test ${CMAKE_CURRENT_BINARY_DIR}/langlib_hpp)

# A library with sanitizers can be loaded neither into the interpreter nor into applications without.
if(NOT LANG_SANITIZE)
  add_test(NAME langlib_python COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/langlib/python-test)
  set_tests_properties(langlib_python PROPERTIES ENVIRONMENT
    "PYTHONPATH=${PROJECT_SOURCE_DIR}/data/python;PYTHONDONTWRITEBYTECODE=1;LANG_LIBRARY=$<TARGET_FILE:lang_shared>")
  add_test(NAME langlib_install
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/langlib/install-test.sh ${CMAKE_COMMAND}
                   ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR} $<$<TARGET_EXISTS:lang>:$<TARGET_FILE:lang>>)
  set_tests_properties(langlib_install PROPERTIES TIMEOUT 300 LABELS slow COST 1000 ENVIRONMENT
    "CC=${CMAKE_C_COMPILER};CXX=${CMAKE_CXX_COMPILER}")
endif()

# Eight threads that ask at once. ThreadSanitizer must have compiled all of the library, so that the
# test builds a program with a library of its own; it is not needed for anything else.
if(NOT LANG_SANITIZE)
  file(GLOB threads_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/support/*.cpp
       ${PROJECT_SOURCE_DIR}/src/lex/*.cpp ${PROJECT_SOURCE_DIR}/src/langlib/*.cpp)
  add_executable(langlib_threads_test EXCLUDE_FROM_ALL langlib/threads.cc ${threads_sources})
  lang_rooms_as_units(langlib_threads_test "${threads_sources}")
  target_link_libraries(langlib_threads_test PRIVATE lang_options PkgConfig::GLIB)
  target_compile_options(langlib_threads_test PRIVATE -fsanitize=thread -O1 -g1)
  target_link_options(langlib_threads_test PRIVATE -fsanitize=thread)
  add_test(NAME langlib_threads_build
           COMMAND ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR} --target langlib_threads_test)
  add_test(NAME langlib_threads COMMAND langlib_threads_test langlib_threads.lang)
  set_tests_properties(langlib_threads_build PROPERTIES FIXTURES_SETUP threads TIMEOUT 600
                                                        LABELS slow COST 1000)
  set_tests_properties(langlib_threads PROPERTIES FIXTURES_REQUIRED threads TIMEOUT 300 LABELS slow COST 1000
                                                  ENVIRONMENT
                       "TSAN_OPTIONS=halt_on_error=1;LANG_TRACE=${CMAKE_CURRENT_BINARY_DIR}/threads.trace")
endif()
