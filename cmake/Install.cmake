# What an installation consists of, and the package for Debian. The programs find what is shipped with them beside
# themselves, so they share a folder, which may stand anywhere; bin/ holds links to them.
include(GNUInstallDirs)

set(home ${CMAKE_INSTALL_LIBDIR}/lettrino)
install(TARGETS lettrino lettrino-cli RUNTIME DESTINATION ${home})
install(TARGETS lettrino-steps LIBRARY DESTINATION ${home})
install(DIRECTORY Media DESTINATION ${home})
foreach(program lettrino lettrino-cli)
    cmake_path(RELATIVE_PATH home BASE_DIRECTORY ${CMAKE_INSTALL_BINDIR} OUTPUT_VARIABLE way)
    set(link ${PROJECT_BINARY_DIR}/links/${program})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
    file(CREATE_LINK ${way}/${program} ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()

install(FILES packaging/lettrino.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/lettrino.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES Media/icons/lettrino.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 16 32 48 128 256)
    install(FILES Media/icons/lettrino-${size}.png RENAME lettrino.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES packaging/lettrino.1 packaging/lettrino-cli.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lettrino)
set(CPACK_PACKAGE_VENDOR "The Lettrino developers")
set(CPACK_PACKAGE_CONTACT "The Lettrino developers <developers@northbank-softworks.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Editor for bitmap fonts whose glyphs are pictures")
set(CPACK_PACKAGE_DESCRIPTION
    "Lettrino makes colour fonts from installed families and from pictures, edits their spacing and kerning, and writes them as texture fonts, web pages, single pictures, and letter cubes to print.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
