# The examples as projects of their own, built and run with what this build folder installs. A library
# with sanitizers cannot be loaded into their programs.

add_test(NAME lang_build COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/examples/lang-build-test
                                 ${PROJECT_SOURCE_DIR}/data/build/lang-build $<TARGET_FILE:lang>
                                 $<TARGET_FILE:lang-kit>)

set(code_files ${CMAKE_CURRENT_SOURCE_DIR}/examples/code-files)
add_test(NAME lang_code_files COMMAND ${CMAKE_COMMAND} -S ${code_files} -B ${PROJECT_BINARY_DIR}/code-files)
set_tests_properties(lang_code_files PROPERTIES PASS_REGULAR_EXPRESSION
  "through app.c;objects.c;archive.cpp;headers.c;linked.c;shared.c of app.c;[^;]*/made.c;objects.c;")

set(prefix ${PROJECT_BINARY_DIR}/examples-prefix)
add_test(NAME examples_install COMMAND ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --prefix ${prefix})
set_tests_properties(examples_install PROPERTIES FIXTURES_SETUP examples LABELS slow COST 1000)

# A test of the example, with the tools that it needs.
function(lang_example name)
  set(display)
  if(name MATCHES "gtk|twin")
    set(display ${PROJECT_SOURCE_DIR}/tools/with-display)
  endif()
  add_test(NAME example_${name}
           COMMAND ${display} ${CMAKE_CURRENT_SOURCE_DIR}/examples/run-example ${prefix} ${PROJECT_SOURCE_DIR}
                   ${name} ${ARGN})
  set_tests_properties(example_${name} PROPERTIES FIXTURES_REQUIRED examples SKIP_RETURN_CODE 77
    TIMEOUT 300 LABELS slow COST 1000
    ENVIRONMENT "CC=${CMAKE_C_COMPILER};CXX=${CMAKE_CXX_COMPILER};CMAKE=${CMAKE_COMMAND}")
endfunction()

lang_example(cxx)
lang_example(make make pkg-config)
lang_example(gtk meson ninja pkg-config xdotool)
lang_example(twin make meson ninja msgfmt pkg-config)
lang_example(python python3)
