# The formats compiled as on a machine without their libraries.

file(GLOB exchange_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/exchange/*.cpp)
add_executable(exchange_bare_test
  ${CMAKE_CURRENT_SOURCE_DIR}/exchange/bare/without-libraries_test.cpp ${exchange_sources})
lang_rooms_as_units(exchange_bare_test "${exchange_sources}")
target_link_libraries(exchange_bare_test PRIVATE lang_options lang_source test_main GTest::gmock)
target_include_directories(exchange_bare_test PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(exchange_bare_test PRIVATE LANG_SOURCE_ROOT="${PROJECT_SOURCE_DIR}")
gtest_discover_tests(exchange_bare_test DISCOVERY_TIMEOUT 60)
