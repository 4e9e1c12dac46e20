# What an installation holds beside the program and the library.

install(FILES data/man/lang.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES data/completion/lang.bash RENAME lang
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

# What the editor looks for: the manual and the icon; and what makes the desktop find the editor.
install(FILES data/doc/lang.pdf DESTINATION ${CMAKE_INSTALL_DATADIR}/lang/doc)
install(FILES data/icons/lang-editor.png DESTINATION ${CMAKE_INSTALL_DATADIR}/lang/icons)
install(FILES data/icons/lang-editor.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/48x48/apps)
install(FILES data/icons/lang-editor.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES data/lang-editor.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/lang-source.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
