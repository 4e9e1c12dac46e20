# Documents that are made from the code.

add_test(NAME messages_page COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tools/make-messages --check)
