# Helpers that every folder's CMakeLists.txt uses, so that each target is built the same way.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Programs and DLLs of the product land in the top of the build folder, where scripts and users look for them.
set(ZRTHUMB_OUTPUT_DIR "${CMAKE_BINARY_DIR}")

add_library(zr_options INTERFACE)
target_include_directories(zr_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(zr_options INTERFACE
    QT_NO_KEYWORDS QT_NO_FOREACH QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050F00
    ZRTHUMB_VERSION="${PROJECT_VERSION}")
target_compile_options(zr_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    -Wcast-align -Wformat=2 -Wnull-dereference -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC sees null dereferences inside inlined Qt containers that cannot happen; clang checks our own code.
    target_compile_options(zr_options INTERFACE -Wno-null-dereference)
endif()

if(WIN32)
    # Equal sources give equal files: neither the build's place nor its time gets into them.
    target_compile_options(zr_options INTERFACE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
    target_link_options(zr_options INTERFACE -Wl,--no-insert-timestamp)
    # One file each, which needs nothing but Windows: a DLL of the same name that another program has loaded would be
    # taken for the one beside ours. What is not used is left out.
    target_compile_options(zr_options INTERFACE -ffunction-sections -fdata-sections)
    target_link_options(zr_options INTERFACE -static -Wl,--gc-sections)
endif()

if(ZRTHUMB_SANITIZE)
    target_compile_options(zr_options INTERFACE
        -fsanitize=${ZRTHUMB_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zr_options INTERFACE -fsanitize=${ZRTHUMB_SANITIZE})
endif()

if(ZRTHUMB_COVERAGE)
    target_compile_options(zr_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
    target_link_options(zr_options INTERFACE -fprofile-instr-generate)
endif()

# zr_add_library(NAME SOURCES... LINK LIBS...): one static library of the product.
function(zr_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC zr_options ${ARG_LINK})
endfunction()

# zr_add_program(NAME SOURCES... LINK LIBS...): one program.
function(zr_add_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE zr_options ${ARG_LINK})
endfunction()
