# What an installation holds beside the library.

set(lang_programs lang)
if(LANG_KIT)
  list(APPEND lang_programs lang-kit)
endif()
install(TARGETS ${lang_programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES data/man/lang-source.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES data/man/liblang.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT liblang)
set(LANG_ZSH_COMPLETION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    CACHE STRING "Folder of zsh's completion functions")
foreach(program ${lang_programs})
  install(FILES data/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES data/completion/${program}.bash RENAME ${program}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES data/completion/_${program} DESTINATION ${LANG_ZSH_COMPLETION})
  install(FILES data/completion/${program}.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endforeach()
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs
        FILES_MATCHING PATTERN *.md PATTERN *.png
        PATTERN architecture.md EXCLUDE PATTERN decisions*.md EXCLUDE)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
        PATTERN *.sh EXCLUDE)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                         WORLD_READ WORLD_EXECUTE
        FILES_MATCHING PATTERN *.sh)

# The editor, what it looks for: the manual and the icon; and what makes the desktop find it.
if(LANG_EDITOR)
  install(TARGETS lang_editor_module LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/lang)
  install(FILES data/doc/lang.pdf data/doc/lang.html DESTINATION ${CMAKE_INSTALL_DATADIR}/lang/doc)
  install(FILES data/icons/lang-editor.png DESTINATION ${CMAKE_INSTALL_DATADIR}/lang/icons)
  install(DIRECTORY data/icons/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
  install(FILES data/lang-editor.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES data/lang-source.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
  install(FILES data/org.example.lang_editor.metainfo.xml
          DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
endif()

# How other editors show a source.
install(DIRECTORY data/syntax/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles)
foreach(version 3.0 4 5)
  install(FILES data/syntax/lang-src.lang
          DESTINATION ${CMAKE_INSTALL_DATADIR}/gtksourceview-${version}/language-specs)
endforeach()
install(FILES data/syntax/lang-src.tmLanguage.json
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lang/syntax)

if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -D MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt
                                      -P ${CMAKE_CURRENT_LIST_DIR}/uninstall.cmake VERBATIM)
endif()
