# liblang, what applications link: the runtime library with the scanner and the support parts, as a
# shared and as a static library that show only the names of liblang.map, and what finds them.

set(liblang_map ${PROJECT_SOURCE_DIR}/src/langlib/liblang.map)
set(liblang_objects)
foreach(folder support lex langlib)
  # A precompiled header counts among them, and is none.
  list(APPEND liblang_objects $<FILTER:$<TARGET_OBJECTS:lang_${folder}>,EXCLUDE,[.][gp]ch$>)
endforeach()

add_library(lang_shared SHARED ${liblang_objects})
target_link_libraries(lang_shared PRIVATE lang_options PkgConfig::GLIB)
target_link_options(lang_shared PRIVATE LINKER:--version-script=${liblang_map}
                                        LINKER:-Bsymbolic-functions)
set_property(TARGET lang_shared PROPERTY LINK_DEPENDS ${liblang_map})
set_target_properties(lang_shared PROPERTIES
  OUTPUT_NAME lang VERSION ${PROJECT_VERSION} SOVERSION 1 LINKER_LANGUAGE CXX EXPORT_NAME lang)

# In a static library the names that are not for applications could meet the application's own: all
# of it becomes one object in which they are local.
file(STRINGS ${liblang_map} liblang_names REGEX "^ +[A-Za-z_0-9]+;$")
string(REGEX REPLACE "[^A-Za-z_0-9]+" "\n" liblang_names "${liblang_names}")
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/liblang.names CONTENT "@liblang_names@\n" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${liblang_map})
# Of the linkers only GNU's merges the objects' groups into sections of their own.
set(liblang_ld ${CMAKE_LINKER})
if(liblang_ld MATCHES "lld|gold|mold")
  find_program(LANG_GNU_LINKER NAMES ${CMAKE_CXX_COMPILER_TARGET}-ld.bfd ld.bfd REQUIRED)
  set(liblang_ld ${LANG_GNU_LINKER})
endif()
add_custom_command(OUTPUT liblang.o
  COMMAND ${liblang_ld} -r --force-group-allocation -o liblang-all.o ${liblang_objects}
  COMMAND ${CMAKE_OBJCOPY} --keep-global-symbols=liblang.names liblang-all.o liblang.o
  DEPENDS lang_support lang_lex lang_langlib ${liblang_objects} ${CMAKE_CURRENT_BINARY_DIR}/liblang.names
  COMMAND_EXPAND_LISTS VERBATIM)
add_library(lang_static STATIC ${CMAKE_CURRENT_BINARY_DIR}/liblang.o)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/liblang.o
                            PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
set_target_properties(lang_static PROPERTIES OUTPUT_NAME lang LINKER_LANGUAGE CXX)
target_link_libraries(lang_static INTERFACE glib-2.0 stdc++ pthread)

# Projects that contain this one find the same names as those that found it installed.
add_library(lang::lang ALIAS lang_shared)
add_library(lang::lang_static ALIAS lang_static)
add_executable(lang::program ALIAS lang)
if(LANG_KIT)
  add_executable(lang::kit ALIAS lang-kit)
endif()
set_property(GLOBAL PROPERTY LANG_BUILD_SCRIPT ${PROJECT_SOURCE_DIR}/data/build/lang-build)
include(${CMAKE_CURRENT_LIST_DIR}/lang-texts.cmake)
foreach(library lang_shared lang_static)
  target_include_directories(${library} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src/langlib>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()

if(NOT LANG_INSTALL)
  return()
endif()

# The installed place. lang.pc finds the library from where it lies itself, so that an installed
# tree may be moved.
set(liblang_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/lang)
file(RELATIVE_PATH liblang_pc_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" liblang_pc_prefix "${liblang_pc_prefix}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/lang.pc.in lang.pc @ONLY)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(lang-config-version.cmake COMPATIBILITY SameMajorVersion)
install(TARGETS lang_shared lang_static EXPORT lang
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT liblang
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT liblang)
file(RELATIVE_PATH liblang_cmake_prefix /prefix/${liblang_cmake_dir} /prefix)
configure_file(${CMAKE_CURRENT_LIST_DIR}/lang-config.cmake.in lang-config.cmake @ONLY)
install(EXPORT lang NAMESPACE lang:: FILE lang-targets.cmake
        DESTINATION ${liblang_cmake_dir} COMPONENT liblang)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lang-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/lang-config-version.cmake
              ${CMAKE_CURRENT_LIST_DIR}/lang-texts.cmake
        DESTINATION ${liblang_cmake_dir} COMPONENT liblang)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/data/build/lang-build
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lang/build COMPONENT liblang)
install(FILES ${PROJECT_SOURCE_DIR}/data/build/lang.mk
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lang/build COMPONENT liblang)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lang.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT liblang)
install(FILES ${PROJECT_SOURCE_DIR}/src/langlib/lang.h ${PROJECT_SOURCE_DIR}/src/langlib/lang-locale.h
              ${PROJECT_SOURCE_DIR}/src/langlib/lang.hpp
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT liblang)
set(LANG_PYTHON_DIR lib/python3/dist-packages CACHE STRING "Folder of Python's modules")
install(FILES ${PROJECT_SOURCE_DIR}/data/python/lang.py DESTINATION ${LANG_PYTHON_DIR} COMPONENT liblang)
