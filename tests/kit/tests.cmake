# The report's page as a reader sees it. Without a browser the test is passed over; a build server
# must have one.

add_test(NAME report_in_browser
         COMMAND Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/kit/report-in-browser
                 $<TARGET_FILE:lang-kit>)
set_tests_properties(report_in_browser PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 300 LABELS slow COST 1000)
