# SPDX-License-Identifier: MIT
# cmake -D DLL=... -D PROGRAM=... -D LIBRARIES=... -D OBJDUMP=... -D NM=... -P check_dll.cmake
# Checks what the DLL exports, that it and the program import only DLLs of Windows, and that loading the DLL runs no code of
# ours, which is in LIBRARIES.

cmake_minimum_required(VERSION 3.25)

set(exports DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer)
set(system
    advapi32.dll dwmapi.dll gdi32.dll imm32.dll kernel32.dll mpr.dll msvcrt.dll netapi32.dll ole32.dll oleaut32.dll opengl32.dll
    shell32.dll shlwapi.dll user32.dll userenv.dll uxtheme.dll version.dll winmm.dll winspool.drv ws2_32.dll wtsapi32.dll)

function(run result)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    set(${result} "${output}" PARENT_SCOPE)
endfunction()

# CMake does not split lists inside square brackets.
run(headers "${OBJDUMP}" -p "${DLL}")
string(REGEX REPLACE "[][]" "|" headers "${headers}")
string(REGEX MATCH "\\|Ordinal/Name Pointer\\| Table[^\n]*\n(\t\\|[^\n]*\n)*" table "${headers}")
string(REGEX MATCHALL "\t\\| *[0-9]+\\| [^\n]+" names "${table}")
list(TRANSFORM names REPLACE ".*\\| " "")
if(NOT names STREQUAL exports)
    message(SEND_ERROR "exports: ${names}")
endif()

foreach(file IN ITEMS "${DLL}" "${PROGRAM}")
    run(headers "${OBJDUMP}" -p "${file}")
    string(REGEX MATCHALL "DLL Name: [^\n]+" names "${headers}")
    list(TRANSFORM names REPLACE "^DLL Name: " "")
    list(TRANSFORM names TOLOWER)
    if(NOT "kernel32.dll" IN_LIST names)
        message(SEND_ERROR "no imports found in ${file}")
    endif()
    foreach(name IN LISTS names)
        if(NOT name IN_LIST system)
            message(SEND_ERROR "${file} imports ${name}")
        endif()
    endforeach()
endforeach()

# The compiler puts what a source file runs at load time into a function of this name.
set(functions 0)
foreach(library IN LISTS LIBRARIES)
    run(symbols "${NM}" "${library}")
    string(REGEX MATCHALL "_GLOBAL__sub_I_[^\n]*" initialisers "${symbols}")
    # Qt adds these to its users to register its plug-ins.
    list(FILTER initialisers EXCLUDE REGEX "_Import\\.cpp$")
    if(initialisers)
        message(SEND_ERROR "${library} runs at load time: ${initialisers}")
    endif()
    # GCC for Windows frees a thread's variables before it destroys them.
    if(symbols MATCHES "__cxa_thread_atexit")
        message(SEND_ERROR "${library} has a thread_local variable with a destructor")
    endif()
    string(REGEX MATCHALL " T [^\n]+" found "${symbols}")
    list(LENGTH found count)
    math(EXPR functions "${functions} + ${count}")
endforeach()
if(functions LESS 100)
    message(SEND_ERROR "too few symbols found in the libraries")
endif()
