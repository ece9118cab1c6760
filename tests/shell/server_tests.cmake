# SPDX-License-Identifier: MIT
# For tests that use the DLL. Registering it changes the registry, so they have their own Wine prefix, which every run
# creates from scratch, and take turns in it.

set(ZRTHUMB_WINE_PREFIX "${CMAKE_BINARY_DIR}/wine-prefix")

# Where the test native_pictures puts the pictures of the Linux host.
set(native_pictures "${CMAKE_BINARY_DIR}/native-pictures")

# zr_use_server(TEST): the test runs in that prefix and finds the DLL's path in its environment.
function(zr_use_server test)
    set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT
        "WINEPREFIX=${ZRTHUMB_WINE_PREFIX}" "ZRTHUMB_SERVER=Z:$<TARGET_FILE:ZRThumbnail>")
    set_property(TEST ${test} PROPERTY RESOURCE_LOCK server_prefix)
    set_property(TEST ${test} APPEND PROPERTY FIXTURES_REQUIRED server_prefix)
endfunction()

# zr_register_server(TEST): the server is registered while the test's program runs, which has no other test.
function(zr_register_server test)
    zr_use_server(${test})
    add_dependencies(${test} ZRThumbnail)
    target_sources(${test} PRIVATE "${PROJECT_SOURCE_DIR}/tests/shell/registered_server.cpp")
    target_link_libraries(${test} PRIVATE zr_server_client)
endfunction()
