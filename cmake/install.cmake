# What an installation holds beside the program and the library.

install(FILES data/man/lang.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES data/completion/lang.bash RENAME lang
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
