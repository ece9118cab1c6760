# SPDX-License-Identifier: MIT
# Options, the log, and how faults are reported. For the installer and the uninstaller, whose functions NSIS
# distinguishes by the prefix "un.".

!define LOG_MARK "${PRODUCT} setup log"

Var LogPath   # as given by /LOG=
Var Log       # its handle; empty when there is none
Var CleanData # "1" when the users' data is to go without a question

# Calls the function of the program that this is in.
!macro Call name
    !ifdef __UNINSTALL__
        Call un.${name}
    !else
        Call ${name}
    !endif
!macroend
!define Call "!insertmacro Call"

# Writes a line to the log, if there is one.
!macro Note text
    Push `${text}`
    ${Call} WriteLog
!macroend
!define Note "!insertmacro Note"

!macro TellingFunctions un

# Writes the line on the stack to the handle in $0, as UTF-8.
Function ${un}WriteLine
    Exch $1
    Push $2
    Push $3
    StrCpy $1 "$1$\r$\n"
    System::Alloc 8192
    Pop $2
    System::Call 'kernel32::WideCharToMultiByte(i 65001, i 0, w r1, i -1, p r2, i 8192, p 0, p 0) i .r3'
    IntOp $3 $3 - 1
    System::Call 'kernel32::WriteFile(p r0, p r2, i r3, *i, p 0)'
    System::Free $2
    Pop $3
    Pop $2
    Pop $1
FunctionEnd

Function ${un}WriteLog
    Exch $1
    ${If} $Log != ""
        Push $0
        StrCpy $0 $Log
        Push $1
        ${Call} WriteLine
        Pop $0
    ${EndIf}
    Pop $1
FunctionEnd

# Reports the line on the stack: in a window, or on the error output of a silent run.
Function ${un}Tell
    Exch $1
    Push $0
    ${Note} "$1"
    DetailPrint $1
    ${If} ${Silent}
        System::Call 'kernel32::GetStdHandle(i -12) p .r0'
        ${If} $0 == 0
            # ATTACH_PARENT_PROCESS: a terminal is reached only on request by a program that has windows.
            System::Call 'kernel32::AttachConsole(i -1)'
            System::Call 'kernel32::GetStdHandle(i -12) p .r0'
        ${EndIf}
        Push $1
        ${Call} WriteLine
    ${Else}
        MessageBox MB_OK|MB_ICONSTOP $1
    ${EndIf}
    Pop $0
    Pop $1
FunctionEnd

# Reports the line on the stack and ends before anything has been done.
Function ${un}Refuse
    ${Call} Tell
    ${Note} "result: 2, nothing is changed"
    SetErrorLevel 2
    Quit
FunctionEnd

# Reads $LogPath and $CleanData from the command line. Refuses what it does not know: with a mistyped option, the user
# wants something else than happens without it.
Function ${un}ReadOptions
    StrCpy $0 $CMDLINE
    System::Call 'shell32::CommandLineToArgvW(w r0, *i .r1) p .r2'
    StrCpy $3 1
    ${While} $3 < $1
        IntOp $4 $3 * ${NSIS_PTR_SIZE}
        IntPtrOp $4 $2 + $4
        System::Call '*$4(w .r5)'
        Push $5
        ${Call} ReadOption
        IntOp $3 $3 + 1
    ${EndWhile}
    System::Call 'kernel32::LocalFree(p r2)'
FunctionEnd

Function ${un}ReadOption
    Exch $5
    Push $6
    StrCpy $6 $5 5
    ${If} $6 == "/LOG="
        StrCpy $LogPath $5 "" 5
        ${If} $LogPath == ""
            Push "/LOG= needs the name of a file."
            ${Call} Refuse
        ${EndIf}
    !ifdef __UNINSTALL__
    ${ElseIf} $5 S== "/CLEAN"
        StrCpy $CleanData 1
    !endif
    ${ElseIf} $5 S!= "/S"
    ${AndIf} $5 S!= "/NCRC"
        Push "There is no option $5: it is ${OPTIONS}."
        ${Call} Refuse
    ${EndIf}
    Pop $6
    Pop $5
FunctionEnd

# Only a log from before is overwritten.
Function ${un}OpenLog
    ${If} $LogPath == ""
        Return
    ${EndIf}
    StrCpy $1 $LogPath
    System::Call 'kernel32::GetFullPathNameW(w r1, i ${NSIS_MAX_STRLEN}, w .r1, p 0)'
    StrCpy $LogPath $1
    StrCpy $4 $1
    Push $LogPath
    ${Call} KindOf
    Pop $0
    ${If} $0 != "none"
        StrCpy $1 ""
        StrLen $2 "${LOG_MARK}"
        ClearErrors
        FileOpen $3 $LogPath r
        ${IfNot} ${Errors}
            FileRead $3 $1 ${NSIS_MAX_STRLEN}
            FileClose $3
        ${EndIf}
        StrCpy $1 $1 $2
        ${If} $1 S!= "${LOG_MARK}"
            Push "The log $LogPath is not written: there is something else of that name."
            ${Call} Refuse
        ${EndIf}
    ${EndIf}
    # GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS. FileOpen would drop some characters.
    System::Call 'kernel32::CreateFileW(w r4, i 0x40000000, i 1, p 0, i 2, i 0x80, p 0) p .s'
    Pop $Log
    ${If} $Log = -1
        StrCpy $Log ""
        Push "The log $LogPath cannot be written."
        ${Call} Refuse
    ${EndIf}
    ${GetTime} "" "L" $0 $1 $2 $3 $4 $5 $6
    ${Note} "${LOG_MARK}: ${VERSION}, $2-$1-$0 $4:$5:$6"
    ${Note} "command line: $CMDLINE"
FunctionEnd

# What both programs do first.
Function ${un}Start
    SetRegView 64
    ${Call} ReadOptions
    ${Call} OpenLog
    # Held until the process ends. 183 is ERROR_ALREADY_EXISTS.
    System::Call 'kernel32::CreateMutexW(p 0, i 0, w "Global\${PRODUCT} setup") p .r0 ?e'
    Pop $0
    ${If} $0 == 183
        Push "${PRODUCT} is being installed or uninstalled already: wait for the end of that."
        ${Call} Refuse
    ${EndIf}
FunctionEnd

!macroend
