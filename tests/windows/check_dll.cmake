# cmake -D DLL=... -D OBJDUMP=... -D NM=... -P check_dll.cmake
# Checks what the DLL exports and imports, and that loading it runs no code of ours.

cmake_minimum_required(VERSION 3.25)

set(exports DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer)
set(imports
    # the system's
    advapi32.dll gdi32.dll kernel32.dll msvcrt.dll ole32.dll oleaut32.dll opengl32.dll user32.dll
    # Qt's
    qt5core.dll qt5gui.dll qt5sql.dll qt5widgets.dll
    # the compiler's runtime
    libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)

function(run result)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    set(${result} "${output}" PARENT_SCOPE)
endfunction()

run(headers "${OBJDUMP}" -p "${DLL}")

# Square brackets would keep CMake from taking lists apart.
string(REGEX REPLACE "[][]" "|" headers "${headers}")
string(REGEX MATCH "\\|Ordinal/Name Pointer\\| Table[^\n]*\n(\t\\|[^\n]*\n)*" table "${headers}")
string(REGEX MATCHALL "\t\\| *[0-9]+\\| [^\n]+" names "${table}")
list(TRANSFORM names REPLACE ".*\\| " "")
if(NOT names STREQUAL exports)
    message(SEND_ERROR "exports: ${names}")
endif()

string(REGEX MATCHALL "DLL Name: [^\n]+" names "${headers}")
list(TRANSFORM names REPLACE "^DLL Name: " "")
list(TRANSFORM names TOLOWER)
list(LENGTH names count)
if(count EQUAL 0)
    message(SEND_ERROR "no imports found")
endif()
foreach(name IN LISTS names)
    if(NOT name IN_LIST imports)
        message(SEND_ERROR "imports ${name}")
    endif()
endforeach()

# The compiler gathers what a source file runs at load time in a function of this name.
run(symbols "${NM}" "${DLL}")
if(NOT symbols MATCHES " T DllGetClassObject")
    message(SEND_ERROR "the DLL has no symbols to look at")
endif()
string(REGEX MATCHALL "_GLOBAL__sub_I_[^\n]*" initialisers "${symbols}")
if(initialisers)
    message(SEND_ERROR "runs at load time: ${initialisers}")
endif()
