# The texts of an application in its own build. The property LANG_BUILD_SCRIPT names lang-build, which
# does the work.

# lang_add_texts(TARGET app SOURCE app.lang-src [LANGUAGES german french] [DESTINATION share/app/texts]
#                [LINT "--fail-on warning"] [MINIMUM 80] [EMBED])
#
# Builds the texts with the target, whenever the language source has changed: lints it, compiles it
# into a fresh folder, and puts that in place when every language is there; anything else fails the
# build. Without LANGUAGES all that the source defines are wanted, with them no others are built; with
# MINIMUM, languages with fewer percent of the texts are left out, and told, until they have as many.
# The folder, LANGUAGE-edit/FILE in it, is the target's property LANG_TEXTS; with DESTINATION its
# compiled files are installed there. LINT holds options of "lang-kit lint". The build target is
# app-texts. A request in the code of the target (as lang_check finds it) whose text is in pieces of
# which only the first is read fails the build, too. With EMBED the texts are in the target itself, too:
# app-texts.h declares app_texts and app_texts_size, for lang_load_memory and lang_locale_memory.
function(lang_add_texts)
  cmake_parse_arguments(PARSE_ARGV 0 arg "EMBED" "TARGET;SOURCE;DESTINATION;LINT;MINIMUM" "LANGUAGES")
  lang_check_arguments(lang_add_texts)
  get_filename_component(source "${arg_SOURCE}" ABSOLUTE)
  get_property(script GLOBAL PROPERTY LANG_BUILD_SCRIPT)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${arg_TARGET}-texts)
  # Rewritten only when it changes, so that other languages are another build everywhere.
  file(GENERATE OUTPUT ${folder}.wanted CONTENT "${arg_LANGUAGES}\n${arg_LINT}\n${arg_MINIMUM}\n")
  add_custom_command(OUTPUT ${folder}/.made
    COMMAND ${CMAKE_COMMAND} -E env LANG_PROGRAM=$<TARGET_FILE:lang::program>
            LANG_KIT=$<TARGET_FILE:lang::kit> "LANG_LINT=${arg_LINT}" "LANG_MINIMUM=${arg_MINIMUM}"
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
  if(arg_EMBED)
    lang_embed_texts(${arg_TARGET} ${folder} ${script})
  endif()
  lang_at_the_end("lang_add_code_rule(${arg_TARGET} [[${source}]] [[${folder}.code]])")
endfunction()

function(lang_embed_texts target folder script)
  string(MAKE_C_IDENTIFIER ${target}_texts name)
  # The file is the same in both languages; a project may have one of them alone.
  set(file ${folder}.c)
  if(NOT CMAKE_C_COMPILER)
    set(file ${folder}.cpp)
  endif()
  add_custom_command(OUTPUT ${file} ${folder}.h
    COMMAND ${script} embed ${folder} ${file} ${name}
    DEPENDS ${folder}/.made ${script}
    COMMENT "Putting the texts into ${target}" VERBATIM)
  target_sources(${target} PRIVATE ${file} ${folder}.h)
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
endfunction()

# lang_check(TARGETS app tool SOURCE app.lang-src [FAIL_ON_UNUSED])
#
# Adds the build target app-check, which is built only when it is asked for: it looks for requests in
# the C and C++ files that the targets list, and those of the libraries of this project that are linked
# to them, in the order of their names; brings the language source up to date; and tells what is new and
# what is no longer used. It fails for a request that cannot be read, with FAIL_ON_UNUSED for an item that
# is no longer used, too. Files that the build makes are no part of it, nor is a shared library with texts
# of its own (lang_add_texts). Name all targets whose texts are in the source: items that none of them asks
# for count as not used. TARGET takes one.
function(lang_check)
  cmake_parse_arguments(PARSE_ARGV 0 arg "FAIL_ON_UNUSED" "TARGET;SOURCE" "TARGETS")
  set(arg_TARGETS ${arg_TARGET} ${arg_TARGETS})
  if(arg_TARGETS)
    list(GET arg_TARGETS 0 arg_TARGET)
  endif()
  lang_check_arguments(lang_check)
  get_filename_component(source "${arg_SOURCE}" ABSOLUTE)
  lang_at_the_end("lang_add_check_target([[${source}]] [[${arg_FAIL_ON_UNUSED}]] ${arg_TARGETS})")
endfunction()

# Calls when the whole project is configured: targets may be linked until then. Before CMake 3.19 they
# must be linked already.
function(lang_at_the_end call)
  if(CMAKE_VERSION VERSION_LESS 3.19)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/lang-call.cmake "${call}\n")
    include(${CMAKE_CURRENT_BINARY_DIR}/lang-call.cmake)
    return()
  endif()
  cmake_language(EVAL CODE "cmake_language(DEFER DIRECTORY [[${CMAKE_SOURCE_DIR}]] CALL cmake_language EVAL CODE [==[${call}]==])")
endfunction()

function(lang_add_check_target source fail_on_unused target)
  lang_code_files(files ${target} ${ARGN})
  lang_made_folder(made)
  get_property(script GLOBAL PROPERTY LANG_BUILD_SCRIPT)
  set(options)
  if(fail_on_unused)
    set(options "LANG_CHECK=--fail-on unread,unused")
  endif()
  add_custom_target(${target}-check
    COMMAND ${CMAKE_COMMAND} -E env LANG_KIT=$<TARGET_FILE:lang::kit> LANG_SKIP=${made}
            ${options} ${script} check ${source} "${files}"
    COMMENT "Looking for texts in ${target}" COMMAND_EXPAND_LISTS VERBATIM)
endfunction()

# Whenever one of the files has changed.
function(lang_add_code_rule target source stamp)
  lang_code_files(files ${target})
  lang_made_folder(made)
  if(NOT files)
    return()
  endif()
  get_property(script GLOBAL PROPERTY LANG_BUILD_SCRIPT)
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E env LANG_KIT=$<TARGET_FILE:lang::kit> LANG_SKIP=${made}
            ${script} code ${source} ${files}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${files} ${script} $<TARGET_FILE:lang::kit>
    COMMENT "Looking through the code of ${target}" VERBATIM)
  add_custom_target(${target}-code DEPENDS ${stamp})
  add_dependencies(${target}-texts ${target}-code)
endfunction()

# The folder in which the build makes files; empty where the sources lie there, too.
function(lang_made_folder out)
  string(FIND "${CMAKE_SOURCE_DIR}/" "${CMAKE_BINARY_DIR}/" place)
  set(folder ${CMAKE_BINARY_DIR})
  if(place EQUAL 0)
    set(folder)
  endif()
  set(${out} "${folder}" PARENT_SCOPE)
endfunction()

# The C and C++ files of the targets and of the libraries of this project that are linked to them, but
# for those of the build folder. What other generator expressions stand for is not known here.
function(lang_code_files out)
  lang_made_folder(made)
  set(files)
  set(seen)
  set(waiting ${ARGN})
  while(waiting)
    list(GET waiting 0 name)
    list(REMOVE_AT waiting 0)
    string(REGEX REPLACE "^[$]<(LINK_ONLY|BUILD_INTERFACE|BUILD_LOCAL_INTERFACE):(.*)>$" "\\2" name "${name}")
    if(NOT TARGET ${name})
      continue()
    endif()
    get_target_property(alias ${name} ALIASED_TARGET)
    if(alias)
      set(name ${alias})
    endif()
    get_target_property(type ${name} TYPE)
    get_target_property(imported ${name} IMPORTED)
    get_target_property(texts ${name} LANG_TEXTS)
    if(name IN_LIST seen OR imported OR NOT (name IN_LIST ARGN OR type MATCHES
       "^(STATIC|OBJECT|INTERFACE)_LIBRARY$" OR (type STREQUAL SHARED_LIBRARY AND NOT texts)))
      continue()
    endif()
    list(APPEND seen ${name})
    get_target_property(folder ${name} SOURCE_DIR)
    set(sources)
    foreach(property SOURCES INTERFACE_SOURCES)
      get_target_property(listed ${name} ${property})
      list(APPEND sources ${listed})
    endforeach()
    foreach(source IN LISTS sources)
      if(source MATCHES "^[$]<TARGET_OBJECTS:([^<>]+)>$")
        list(APPEND waiting ${CMAKE_MATCH_1})
      elseif(source MATCHES "[.](c|h|cc|hh|cpp|hpp|cxx|hxx)$" AND NOT source MATCHES "[$]<")
        get_filename_component(source "${source}" ABSOLUTE BASE_DIR ${folder})
        string(FIND "${source}" "${made}/" place)
        if(NOT made OR NOT place EQUAL 0)
          list(APPEND files ${source})
        endif()
      endif()
    endforeach()
    foreach(property LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
      get_target_property(linked ${name} ${property})
      if(linked)
        list(APPEND waiting ${linked})
      endif()
    endforeach()
  endwhile()
  set(${out} ${files} PARENT_SCOPE)
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
  foreach(target ${arg_TARGET} ${arg_TARGETS})
    if(NOT TARGET ${target})
      message(FATAL_ERROR "${name}: there is no target ${target}")
    endif()
  endforeach()
  foreach(program lang::program lang::kit)
    if(NOT TARGET ${program})
      message(FATAL_ERROR "${name}: the program is not installed: ${program}")
    endif()
  endforeach()
endmacro()
