# What an installation consists of, and the package for Debian. The programs find what is shipped with them beside
# themselves, so they share a folder, which may stand anywhere; the links that lead to it and away from it are relative.
include(GNUInstallDirs)

set(home ${CMAKE_INSTALL_LIBEXECDIR}/lettrino)
set(shared ${CMAKE_INSTALL_DATADIR}/lettrino)

# lettrino_link(<link> <target>): both relative to the prefix.
function(lettrino_link link target)
    cmake_path(GET link PARENT_PATH folder)
    cmake_path(RELATIVE_PATH target BASE_DIRECTORY ${folder} OUTPUT_VARIABLE way)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links/${folder})
    file(CREATE_LINK ${way} ${PROJECT_BINARY_DIR}/links/${link} SYMBOLIC)
    install(FILES ${PROJECT_BINARY_DIR}/links/${link} DESTINATION ${folder})
endfunction()

# lettrino_compressed(<file> <name> <destination>): without its name and time, so that every build gives the same bytes.
find_program(GZIP gzip REQUIRED)
function(lettrino_compressed file name destination)
    set(compressed ${PROJECT_BINARY_DIR}/compressed/${name}.gz)
    add_custom_command(OUTPUT ${compressed}
        COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/${file} > ${compressed}
        DEPENDS ${file} VERBATIM)
    add_custom_target(compressed-${name} ALL DEPENDS ${compressed})
    install(FILES ${compressed} DESTINATION ${destination})
endfunction()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/compressed)

install(TARGETS lettrino lettrino-cli lettrino-svg RUNTIME DESTINATION ${home})
install(DIRECTORY Media DESTINATION ${shared})
# Where texture fonts are looked for at first. The program makes it if it may, and then nobody would remove it.
install(DIRECTORY DESTINATION ${shared}/Media/Fonts)
lettrino_link(${home}/Media ${shared}/Media)
install(FILES ${written} docs/guide.css DESTINATION ${shared}/Guide)
install(DIRECTORY docs/pictures DESTINATION ${shared}/Guide)
lettrino_link(${home}/Guide ${shared}/Guide)
foreach(program lettrino lettrino-cli)
    lettrino_link(${CMAKE_INSTALL_BINDIR}/${program} ${home}/${program})
    lettrino_compressed(packaging/${program}.1 ${program}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()

install(FILES packaging/lettrino.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/lettrino.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES Media/icons/lettrino.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 16 32 48 128 256)
    install(FILES Media/icons/lettrino-${size}.png RENAME lettrino.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
lettrino_compressed(packaging/changelog changelog ${CMAKE_INSTALL_DOCDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lettrino)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Lettrino developers")
set(CPACK_PACKAGE_CONTACT "The Lettrino developers <developers@northbank-softworks.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Editor for bitmap fonts whose glyphs are pictures")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Lettrino makes colour fonts of up to 223 glyphs from installed font families\n"
    "(plain, in one colour, or in the font's own colours) and from picture files,\n"
    "and edits their spacing, kerning and metrics.\n"
    "\n"
    "A font is written as a texture font (a text file beside one picture that\n"
    "holds all glyphs), as a font file for browsers and programs, as a web page that\n"
    "draws text with it, as single pictures, or as nets of letter cubes to print.\n"
    "Texture fonts, the scripts of exported web pages, and Photofont files can be\n"
    "read.\n"
    "\n"
    "The package contains the editor with a window, lettrino, and lettrino-cli,\n"
    "which does the same work from scripts and without a display.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
