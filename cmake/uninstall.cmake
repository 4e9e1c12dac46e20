# Takes away what the last installation from a build folder put there, and the folders of its own.

if(NOT EXISTS ${MANIFEST})
  message(FATAL_ERROR "nothing was installed from here: there is no ${MANIFEST}")
endif()
file(STRINGS ${MANIFEST} files)
foreach(file IN LISTS files)
  message(STATUS "Removing $ENV{DESTDIR}${file}")
  file(REMOVE $ENV{DESTDIR}${file})
  cmake_path(GET file PARENT_PATH folder)
  # Upwards as long as nothing is left in them. bin, lib and share of a prefix stay, also of one that
  # lies below a folder of this name.
  while(NOT folder STREQUAL "/")
    file(GLOB left $ENV{DESTDIR}${folder}/* $ENV{DESTDIR}${folder}/.*)
    if(left OR NOT folder MATCHES "/(share|doc|cmake|include|lib|lib64|[^/]+-linux-[^/]+)/lang($|/)")
      break()
    endif()
    file(REMOVE_RECURSE $ENV{DESTDIR}${folder})
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
endforeach()
