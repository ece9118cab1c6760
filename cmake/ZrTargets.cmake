# SPDX-License-Identifier: MIT
# How each target of the project is built.

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()

# Older ones lack std::from_chars() for floating-point numbers.
if((CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 11) OR
   (CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14))
    message(FATAL_ERROR "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} is too old: GCC 11 or Clang 14 is needed")
endif()

# What differs between systems is in files NAME_linux.cpp and NAME_windows.cpp beside one NAME.h.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(ZR_PLATFORM linux)
elseif(CMAKE_SYSTEM_NAME STREQUAL "Windows")
    set(ZR_PLATFORM windows)
else()
    message(FATAL_ERROR "No sources for the system '${CMAKE_SYSTEM_NAME}'; CONTRIBUTING.md says how to add a platform")
endif()

# Programs and DLLs of the product are put in the top of the build folder, where scripts and users look for them.
set(ZR_OUTPUT_DIR "${CMAKE_BINARY_DIR}")

# What whoever uses a library has to know as well.
add_library(zr_options INTERFACE)
target_compile_features(zr_options INTERFACE cxx_std_17)
target_include_directories(zr_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(zr_options INTERFACE
    QT_NO_KEYWORDS QT_NO_FOREACH QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050F00)

# Warnings are errors.
add_library(zr_warnings INTERFACE)
target_compile_options(zr_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    -Wcast-align -Wformat=2 -Wnull-dereference -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC sees null dereferences inside inlined Qt containers that cannot happen; clang checks our own code.
    target_compile_options(zr_warnings INTERFACE -Wno-null-dereference)
endif()

if(ZR_PLATFORM STREQUAL "windows")
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

# zr_set_up(NAME): what all targets have in common. Before anything else is linked, so that it may be turned off there.
function(zr_set_up name)
    target_link_libraries(${name} PRIVATE zr_warnings)
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
endfunction()

# zr_add_library(NAME SOURCES... [PLATFORM NAMES...] [HEADERS FILES...] LINK LIBS...): one static library of the product.
# PLATFORM names what has a source of its own for each system. HEADERS are those without a source: that they compile
# without another one before them is verified; each other one is the first that its source includes.
function(zr_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PLATFORM;HEADERS;LINK" ${ARGN})
    list(TRANSFORM ARG_PLATFORM APPEND "_${ZR_PLATFORM}.cpp")
    # No other system's build would find out which #include is missing.
    set_source_files_properties(${ARG_PLATFORM} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    add_library(${name} STATIC ${ARG_SOURCES} ${ARG_PLATFORM})
    set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${ARG_HEADERS})
    zr_set_up(${name})
    target_link_libraries(${name} PUBLIC zr_options ${ARG_LINK})
endfunction()

# zr_add_program(NAME SOURCES... LINK LIBS...): one program.
function(zr_add_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    zr_set_up(${name})
    target_link_libraries(${name} PRIVATE zr_options ${ARG_LINK})
endfunction()

# zr_add_resources(TARGET SCRIPT [DEPENDS FILES...]): the Windows resources of one of our files: its version, and what
# else SCRIPT, which includes packaging/windows/version_info.inc, gives it.
function(zr_add_resources target script)
    cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
    configure_file("${PROJECT_SOURCE_DIR}/packaging/windows/version_resource.h.in"
        "${CMAKE_BINARY_DIR}/generated/version_resource.h" @ONLY)
    target_sources(${target} PRIVATE ${script})
    target_include_directories(${target} PRIVATE "${CMAKE_BINARY_DIR}/generated")
    set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS
        "${PROJECT_SOURCE_DIR}/packaging/windows/version_info.inc;${CMAKE_BINARY_DIR}/generated/version_resource.h;${ARG_DEPENDS}")
endfunction()
