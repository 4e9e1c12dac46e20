# Thirty days in an office. What lets its programs run one after the other is preloaded into them.

add_library(office_turns SHARED office/preload/turns.cpp faults/system-calls.cpp)
add_executable(office-editor office/editor.cpp)
target_link_libraries(office_turns PRIVATE lang_options)
target_link_libraries(office-editor PRIVATE lang_options lang_recovery)
target_include_directories(office_turns PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/faults)

foreach(seed 3 7 9) # the first in 2038
  add_test(NAME office_${seed} COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tools/office
                                       --build ${PROJECT_BINARY_DIR} --again ${seed} 8)
  set_tests_properties(office_${seed} PROPERTIES TIMEOUT 300 LABELS slow COST 1000 SKIP_RETURN_CODE 77)
endforeach()
