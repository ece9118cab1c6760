# SPDX-License-Identifier: MIT
# Where to install: a folder that is ours alone. Inside one that has other files, we make our own.

Var Folder      # as it is written; NSIS drops characters that it does not like from $INSTDIR
Var FirstFolder # the topmost folder that is made for the installation

# Takes $INSTDIR from the command line.
Function ReadFolderOption
    System::Call 'kernel32::GetCommandLineW() p .r0'
    StrCpy $1 " /D="
    System::Call 'shlwapi::StrStrW(p r0, w r1) p .r1'
    ${If} $1 == 0
        Return
    ${EndIf}
    System::Call 'kernel32::lstrcpynW(w .r0, p r1, i ${NSIS_MAX_STRLEN})'
    StrCpy $Folder $0 "" 4
    StrCpy $0 $Folder 1
    StrCpy $1 $Folder 1 -1
    ${If} $0 == '"'
    ${AndIf} $1 == '"'
        StrCpy $Folder $Folder -1 1
    ${EndIf}
    Call NormaliseFolder
    ${If} $0 != ""
        Push $0
        Call Refuse
    ${EndIf}
    StrCpy $INSTDIR $Folder
FunctionEnd

# Writes $Folder as Windows does. Leaves in $0 why it is not a folder's path; empty when it is.
Function NormaliseFolder
    StrCpy $0 "$Folder is no full path of a folder, such as $PROGRAMFILES64\${PRODUCT}."
    ${WordReplace} $Folder "/" "\" "+" $Folder
    # "X:\", or "\\" and a server; further colons would name streams of files.
    StrCpy $1 $Folder 2
    StrCpy $2 $Folder 2 1
    ${If} $2 == ":"
        # A drive, as $INSTDIR has it.
        StrCpy $Folder "$Folder\"
        StrCpy $2 ":\"
    ${EndIf}
    StrCpy $3 $Folder 1 2
    ${If} $2 != ":\"
        ${If} $1 != "\\"
        ${OrIf} $3 == "."
            Return
        ${EndIf}
    ${EndIf}
    StrCpy $1 $Folder "" 2
    StrCpy $2 ':*?"<>|'
    System::Call 'shlwapi::StrPBrkW(w r1, w r2) p .r1'
    ${If} $1 != 0
        Return
    ${EndIf}
    StrCpy $1 $Folder
    System::Call 'kernel32::GetFullPathNameW(w r1, i ${NSIS_MAX_STRLEN}, w .r1, p 0)'
    StrCpy $Folder $1
    StrLen $2 $Folder
    StrCpy $1 $Folder 1 -1
    ${If} $1 == "\"
    ${AndIf} $2 > 3
        StrCpy $Folder $Folder -1
    ${EndIf}
    StrCpy $0 ""
FunctionEnd

# Replaces the folder on the stack by its state: "free", "ours", "foreign" or "file". A free one is empty except for
# what an interrupted installation, or an uninstallation with files in use, has left.
Function StateOf
    Exch $0
    Push $1
    Push $2
    Push $3
    Push $0
    Call KindOf
    Pop $1
    Push $0
    Call IsOurs
    Pop $2
    StrLen $3 $0
    ${If} $1 == "none"
        StrCpy $0 "free"
    ${ElseIf} $1 == "file"
        StrCpy $0 "file"
    ${ElseIf} $2 == 1
        StrCpy $0 "ours"
    ${ElseIf} $3 <= 3
        StrCpy $0 "foreign" # a drive
    ${Else}
        Call LookInto
    ${EndIf}
    Pop $3
    Pop $2
    Pop $1
    Exch $0
FunctionEnd

# Replaces the folder in $0 by its state, "free" or "foreign".
Function LookInto
    FindFirst $1 $2 "$0\*"
    StrCpy $3 "free"
    ${DoUntil} $2 == ""
        ${If} $2 == "${INCOMING}"
        ${OrIf} $2 == "${RETIRED}"
            Push "$0\$2"
            Call IsMarked
            Pop $2
            ${If} $2 != 1
                StrCpy $3 "foreign"
            ${EndIf}
        ${ElseIf} $2 != "."
        ${AndIf} $2 != ".."
            StrCpy $3 "foreign"
        ${EndIf}
        FindNext $1 $2
    ${Loop}
    FindClose $1
    StrCpy $0 $3
FunctionEnd

# Sets $INSTDIR to the folder to install in. Leaves in $0 why there is none; empty when there is one.
Function SettleFolder
    StrCpy $Folder $INSTDIR
    Call NormaliseFolder
    ${If} $0 != ""
        Return
    ${EndIf}
    StrCpy $1 $Folder
    Push $Folder
    Call StateOf
    Pop $0
    ${If} $0 == "foreign"
        StrCpy $2 $Folder 1 -1
        ${If} $2 == "\"
            StrCpy $Folder $Folder -1
        ${EndIf}
        StrCpy $Folder "$Folder\${PRODUCT}"
        Push $Folder
        Call StateOf
        Pop $0
    ${EndIf}
    ${If} $0 == "foreign"
        StrCpy $0 "$1 and $Folder have other files in them: choose a folder that is empty or not there yet."
    ${ElseIf} $0 == "file"
        StrCpy $0 "$Folder is a file: choose a folder."
    ${Else}
        StrCpy $0 ""
    ${EndIf}
    StrCpy $INSTDIR $Folder
FunctionEnd

# Called when the user leaves the wizard's folder page.
Function LeaveDirectoryPage
    Push $INSTDIR
    Call SettleFolder
    Pop $1
    ${If} $0 != ""
        StrCpy $INSTDIR $1
        MessageBox MB_OK|MB_ICONEXCLAMATION $0
        Abort
    ${EndIf}
    ${If} $INSTDIR != $1
    ${AndIf} $INSTDIR != "$1\"
    ${AndIf} "$INSTDIR\" != $1
    ${AndIf} ${Cmd} `MessageBox MB_OKCANCEL|MB_ICONINFORMATION "$1 has other files in it, so ${PRODUCT} gets a folder \
            of its own there:$\r$\n$\r$\n$INSTDIR" IDCANCEL`
        StrCpy $INSTDIR $1
        Abort
    ${EndIf}
FunctionEnd

# Leaves in $0 why one of the new files, which $PLUGINSDIR lists, cannot be put into $INSTDIR; empty when all can.
Function FindConflict
    StrCpy $Root $INSTDIR
    StrCpy $0 ""
    FileOpen $9 "$PLUGINSDIR\${LIST}" r
    ${Do}
        Call ReadLine
        ${If} $8 == ""
        ${OrIf} $0 != ""
            ${ExitDo}
        ${EndIf}
        Call CheckPath
        Push "$Root\$8"
        Call KindOf
        Pop $1
        ${If} $7 != ""
            StrCpy $0 "$Root\$8 cannot be written: $7. Move that away and try again."
        ${ElseIf} $1 != "none"
        ${AndIf} $8 != "uninstall.exe"
            Call IsListed
            ${If} $1 != "file"
            ${OrIf} $2 != 1
                StrCpy $0 "$Root\$8 is not from ${PRODUCT} and would be written over: move it away and try again."
            ${EndIf}
        ${EndIf}
    ${Loop}
    FileClose $9
    ${If} $0 == ""
        Call FindWorkFolderConflict
    ${EndIf}
FunctionEnd

# Leaves "1" in $2 when $Root has $8 in its list.
Function IsListed
    Push $9
    Push $8
    StrCpy $3 $8
    StrCpy $2 0
    FileOpen $9 "$Root\${LIST}" r
    ${Do}
        Call ReadLine
        ${If} $8 == $3
            StrCpy $2 1
        ${EndIf}
    ${LoopUntil} $8 == ""
    FileClose $9
    Pop $8
    Pop $9
FunctionEnd

# The same for the folder for new files, which is removed here when an interrupted installation has left it.
Function FindWorkFolderConflict
    Push "$INSTDIR\${INCOMING}"
    Call RemoveWorkFolder
    Push "$INSTDIR\${INCOMING}"
    Call KindOf
    Pop $1
    ${If} $1 != "none"
        StrCpy $0 "$INSTDIR\${INCOMING} is in the way: move it away and try again."
    ${EndIf}
FunctionEnd

# Notes which folders are new, so that RemoveMadeFolders can remove them again.
Function NoteFirstFolder
    StrCpy $0 $INSTDIR
    StrCpy $FirstFolder ""
    ${Do}
        ${If} $0 == ""
        ${OrIf} ${FileExists} $0
            ${ExitDo}
        ${EndIf}
        StrCpy $FirstFolder $0
        ${GetParent} $0 $0
    ${Loop}
FunctionEnd

Function RemoveMadeFolders
    ${If} $FirstFolder != ""
        StrCpy $0 $INSTDIR
        ${Do}
            RMDir $0
            ${If} $0 == $FirstFolder
                ${ExitDo}
            ${EndIf}
            ${GetParent} $0 $0
        ${LoopUntil} $0 == ""
    ${EndIf}
FunctionEnd
