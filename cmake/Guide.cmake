# The guide as pages that open without a network: docs/*.md as they stand, in bin/Guide beside the programs.
find_program(LOWDOWN lowdown REQUIRED)
set(guide ${PROJECT_BINARY_DIR}/bin/Guide)
file(MAKE_DIRECTORY ${guide})
file(CREATE_LINK ${PROJECT_SOURCE_DIR}/docs/pictures ${guide}/pictures SYMBOLIC)
file(CREATE_LINK ${PROJECT_SOURCE_DIR}/docs/guide.css ${guide}/guide.css SYMBOLIC)

file(GLOB pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
foreach(page ${pages})
    cmake_path(GET page STEM name)
    file(STRINGS ${page} title LIMIT_COUNT 1)
    string(REGEX REPLACE "^# " "" title "${title}")
    add_custom_command(OUTPUT ${guide}/${name}.html
        COMMAND ${LOWDOWN} -s -T html -m css=guide.css -m "title=${title}" -o ${guide}/${name}.html.tmp ${page}
        COMMAND sed -E "s/href=\"([a-z]+)\\.md/href=\"\\1.html/g" ${guide}/${name}.html.tmp > ${guide}/${name}.html
        COMMAND ${CMAKE_COMMAND} -E rm ${guide}/${name}.html.tmp
        DEPENDS ${page} VERBATIM)
    list(APPEND written ${guide}/${name}.html)
endforeach()
add_custom_target(guide ALL DEPENDS ${written})
