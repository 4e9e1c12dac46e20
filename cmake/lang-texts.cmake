# The texts of an application in its own build. The property LANG_BUILD_SCRIPT names lang-build, which
# does the work.

# lang_add_texts(TARGET app SOURCE app.lang-src [LANGUAGES german french] [DESTINATION share/app/texts]
#                [LINT "--fail-on warning"])
#
# Builds the texts with the target, whenever the language source has changed: lints it, compiles it
# into a fresh folder, and puts that in place when every language is there; anything else fails the
# build. Without LANGUAGES all that the source defines are wanted, with them no others are built. The
# folder, LANGUAGE-edit/FILE in it, is the target's property LANG_TEXTS; with DESTINATION its compiled
# files are installed there. LINT holds options of "lang-kit lint". The build target is app-texts.
function(lang_add_texts)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;SOURCE;DESTINATION;LINT" "LANGUAGES")
  lang_check_arguments(lang_add_texts)
  get_filename_component(source "${arg_SOURCE}" ABSOLUTE)
  get_property(script GLOBAL PROPERTY LANG_BUILD_SCRIPT)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${arg_TARGET}-texts)
  # Rewritten only when it changes, so that other languages are another build everywhere.
  file(GENERATE OUTPUT ${folder}.wanted CONTENT "${arg_LANGUAGES}\n${arg_LINT}\n")
  add_custom_command(OUTPUT ${folder}/.made
    COMMAND ${CMAKE_COMMAND} -E env LANG_PROGRAM=$<TARGET_FILE:lang::program>
            LANG_KIT=$<TARGET_FILE:lang::kit> "LANG_LINT=${arg_LINT}"
            ${script} texts ${source} ${folder} ${arg_LANGUAGES}
    COMMAND ${CMAKE_COMMAND} -E touch ${folder}/.made
    DEPENDS ${source} ${script} ${folder}.wanted $<TARGET_FILE:lang::program> $<TARGET_FILE:lang::kit>
    COMMENT "Compiling the texts of ${arg_TARGET}" VERBATIM)
  add_custom_target(${arg_TARGET}-texts ALL DEPENDS ${folder}/.made)
  add_dependencies(${arg_TARGET} ${arg_TARGET}-texts)
  set_property(TARGET ${arg_TARGET} PROPERTY LANG_TEXTS ${folder})
  if(arg_DESTINATION)
    install(DIRECTORY ${folder}/ DESTINATION ${arg_DESTINATION} FILES_MATCHING PATTERN "*.lang")
  endif()
endfunction()

# lang_check(TARGET app SOURCE app.lang-src)
#
# Adds the build target app-check, which is built only when it is asked for: it looks for requests in
# the C and C++ files that the target lists, in the order of their names, and brings the language source
# up to date. Files that the build makes are no part of it.
function(lang_check)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;SOURCE" "")
  lang_check_arguments(lang_check)
  get_filename_component(source "${arg_SOURCE}" ABSOLUTE)
  get_property(script GLOBAL PROPERTY LANG_BUILD_SCRIPT)
  set(files $<TARGET_PROPERTY:${arg_TARGET},SOURCES>)
  add_custom_target(${arg_TARGET}-check
    COMMAND ${CMAKE_COMMAND} -E env LANG_PROGRAM=$<TARGET_FILE:lang::program>
            LANG_SKIP=${CMAKE_BINARY_DIR} ${script} check ${source}
            "$<FILTER:${files},INCLUDE,[.](c|h|cc|hh|cpp|hpp|cxx|hxx)$>"
    WORKING_DIRECTORY $<TARGET_PROPERTY:${arg_TARGET},SOURCE_DIR>
    COMMENT "Looking for texts in ${arg_TARGET}" COMMAND_EXPAND_LISTS VERBATIM)
endfunction()

# What both must be given.
macro(lang_check_arguments name)
  foreach(argument TARGET SOURCE)
    if(NOT arg_${argument})
      message(FATAL_ERROR "${name}: ${argument} is missing")
    endif()
  endforeach()
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${name}: unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT TARGET ${arg_TARGET})
    message(FATAL_ERROR "${name}: there is no target ${arg_TARGET}")
  endif()
  foreach(program lang::program lang::kit)
    if(NOT TARGET ${program})
      message(FATAL_ERROR "${name}: the program is not installed: ${program}")
    endif()
  endforeach()
endmacro()
