# What makes the program's memory fail, preloaded into it.

add_library(failing_memory SHARED faults/preload/preload.cpp faults/failing-memory.cpp
                                  faults/system-calls.cpp)
target_link_libraries(failing_memory PRIVATE lang_options)
target_include_directories(failing_memory PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/faults)
target_compile_definitions(faults_test PRIVATE LANG_FAILING_MEMORY="$<TARGET_FILE:failing_memory>")
add_dependencies(faults_test failing_memory)
