# SPDX-License-Identifier: MIT
# The tests of the step "desktop": the plug-in for KDE, and what of the Debian packages takes too long for every run of the
# tests, or rights that not everybody has. They are labelled, and the test preset "native" leaves them out.
zr_add_test(kde_plugin_test
    SOURCES kde_plugin_test.cpp
    LINK zr_samples KF5::CoreAddons KF5::KIOGui
    LABELS desktop
    DEPENDS zrthumb zrthumbnailer zrthumb_kde)
list(JOIN ZR_MIME_TYPES " " types)
target_compile_definitions(kde_plugin_test PRIVATE
    "ZRTHUMB_MIME_TYPES=\"${types}\"" ZRTHUMB_KDE_PLUGIN="$<TARGET_FILE:zrthumb_kde>"
    ZRTHUMB_PROGRAMS="${ZR_OUTPUT_DIR}")

# Run by clients_test.sh.
zr_add_program(kde_previews_test SOURCES kde_previews_test.cpp LINK KF5::KIOWidgets zr_test_support zr_test_main)

# zr_add_packages_test(NAME COMMAND...): one test of the packages.
function(zr_add_packages_test name)
    add_test(NAME ${name} COMMAND ${ARGN})
    set_tests_properties(${name} PROPERTIES
        FIXTURES_REQUIRED debian_packages LABELS desktop TIMEOUT 600 ENVIRONMENT "LC_ALL=C.UTF-8")
endfunction()

foreach(check reproducible contents lintian satisfiable installed)
    zr_add_packages_test(${check}_packages_test "${CMAKE_CURRENT_SOURCE_DIR}/package_test.sh"
        "${CMAKE_BINARY_DIR}" "${packages}" ${check})
endforeach()
# Compiles all of the product once more.
set_property(TEST reproducible_packages_test PROPERTY LABELS release)
foreach(client gnome xfce kde check)
    zr_add_packages_test(${client}_client_test "${CMAKE_CURRENT_SOURCE_DIR}/clients_test.sh"
        "${CMAKE_BINARY_DIR}" "${packages}" ${client})
endforeach()

# What is queued at its service waits until the machine has nothing else to do.
set_tests_properties(xfce_client_test PROPERTIES RUN_SERIAL ON)

add_custom_target(desktop_tests DEPENDS zrthumb zrthumbnailer zrthumb_kde make-samples kde_plugin_test kde_previews_test)
