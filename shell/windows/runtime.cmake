# Copies what the DLL and the host load beside themselves, so that the build folder runs as it is: Qt's DLLs and the two
# plug-ins in use, and the compiler's runtime that all of them share.

# Without the ones of Qt's own folder, which Qt was built with, the compiler's must do.
function(zr_find_runtime_dll result name)
    get_target_property(core Qt5::Core IMPORTED_LOCATION_RELEASE)
    get_filename_component(folder "${core}" DIRECTORY)
    set(file "${folder}/${name}")
    if(NOT EXISTS "${file}")
        execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
            OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    endif()
    if(NOT IS_ABSOLUTE "${file}" OR NOT EXISTS "${file}")
        message(FATAL_ERROR "${name} is neither beside Qt nor with the compiler")
    endif()
    set(${result} "${file}" PARENT_SCOPE)
endfunction()

set(zr_runtime_copies)
function(zr_copy_runtime source folder name)
    set(result "${ZRTHUMB_OUTPUT_DIR}/${folder}${name}")
    add_custom_command(OUTPUT "${result}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${result}" DEPENDS "${source}" VERBATIM)
    set(zr_runtime_copies ${zr_runtime_copies} "${result}" PARENT_SCOPE)
endfunction()

foreach(name IN ITEMS Core Gui Sql Widgets)
    zr_copy_runtime("$<TARGET_FILE:Qt5::${name}>" "" Qt5${name}.dll)
endforeach()
zr_copy_runtime("$<TARGET_FILE:Qt5::QWindowsIntegrationPlugin>" platforms/ qwindows.dll)
zr_copy_runtime("$<TARGET_FILE:Qt5::QSQLiteDriverPlugin>" sqldrivers/ qsqlite.dll)
foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    zr_find_runtime_dll(file ${name})
    zr_copy_runtime("${file}" "" ${name})
endforeach()

add_custom_target(zr_windows_runtime ALL DEPENDS ${zr_runtime_copies})
