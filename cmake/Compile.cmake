# What every target of the project is compiled with.
add_library(lettrino_compile INTERFACE)
target_include_directories(lettrino_compile INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(lettrino_compile INTERFACE LETTRINO_VERSION="${PROJECT_VERSION}")
target_compile_options(lettrino_compile INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wnon-virtual-dtor
    $<$<BOOL:${LETTRINO_WERROR}>:-Werror>)
# GCC 12 sees an overlap in every literal + std::string (GCC bug 105651).
target_compile_options(lettrino_compile INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_link_options(lettrino_compile INTERFACE -Wl,--as-needed)

# Pixel arithmetic must give the same bits in every build: no fused multiply-add.
target_compile_options(lettrino_compile INTERFACE -ffp-contract=off)

if(LETTRINO_COVERAGE)
    add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
elseif(LETTRINO_SANITIZE OR LETTRINO_FUZZ)
    set(sanitizers address,undefined)
    add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${sanitizers})
    # These take a quarter of the time to compile; the fuzz targets have them, for all that reads files.
    if(NOT LETTRINO_FUZZ)
        add_compile_options(-fno-sanitize=null,vptr,alignment)
    endif()
endif()
if(LETTRINO_FUZZ AND NOT LETTRINO_COVERAGE)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# lettrino_not_fuzzed(<target>): what no fuzz target runs, and is there compiled for the second compiler's warnings.
function(lettrino_not_fuzzed target)
    if(LETTRINO_FUZZ)
        target_compile_options(${target} PRIVATE -O0 -g0 -fno-sanitize=all)
    endif()
endfunction()

# lettrino_room(<name> [OBJECT] FOLDERS <folders>... LINKS <targets>...)
#
# Folders below src/ as one library. The library links only what its level may depend on, so a call that points up
# the house does not link. OBJECT is for the ends of the seam, whose functions the rooms above call.
function(lettrino_room name)
    cmake_parse_arguments(room "OBJECT" "" "FOLDERS;LINKS" ${ARGN})
    set(globs)
    foreach(folder IN LISTS room_FOLDERS)
        list(APPEND globs ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp ${PROJECT_SOURCE_DIR}/src/${folder}/*.h)
    endforeach()
    file(GLOB sources CONFIGURE_DEPENDS ${globs})
    if(room_OBJECT)
        add_library(lettrino_${name} OBJECT ${sources})
    else()
        add_library(lettrino_${name} STATIC ${sources})
    endif()
    set_target_properties(lettrino_${name} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(lettrino_${name} PUBLIC lettrino_compile ${room_LINKS})
endfunction()
