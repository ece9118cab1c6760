# SPDX-License-Identifier: MIT
# The files of an installation, and their lists. Each of our folders has such a list, files.txt: the installation
# itself, and the two temporary folders in it. Files are only removed one by one, by a list; folders only when they are
# empty then.

!define LIST "files.txt"
# The first line of our lists, which is not a valid path. Lists of older versions have none.
!define LIST_MARK "# ${PRODUCT}: files that were installed here, to be removed with it"
# New files, until the old ones are gone; removed again before an installation ends.
!define INCOMING "${PRODUCT}.incoming"
# In that folder, the list that the installation gets next.
!define NEXT_LIST "files.next"
# Old files, while they are in use.
!define RETIRED "${PRODUCT}.retired"

Var Root          # the folder that the functions below work on
Var RestartNeeded # "1" when a file could neither be deleted nor renamed

!macro FileFunctions un

# Replaces the path on the stack by its kind: "none", "file", "folder", or "link" for a folder that is elsewhere.
Function ${un}KindOf
    Exch $0
    Push $1
    System::Call 'kernel32::GetFileAttributesW(w r0) i .r0'
    ${If} $0 = -1
        StrCpy $0 "none"
    ${Else}
        IntOp $1 $0 & 0x10
        IntOp $0 $0 & 0x400
        ${If} $1 = 0
            StrCpy $0 "file"
        ${ElseIf} $0 = 0
            StrCpy $0 "folder"
        ${Else}
            StrCpy $0 "link"
        ${EndIf}
    ${EndIf}
    Pop $1
    Exch $0
FunctionEnd

# Cuts the line end from $8.
Function ${un}CutLineEnd
    Push $0
    ${Do}
        StrCpy $0 $8 1 -1
        ${If} $0 != "$\r"
        ${AndIf} $0 != "$\n"
            ${ExitDo}
        ${EndIf}
        StrCpy $8 $8 -1
    ${Loop}
    Pop $0
FunctionEnd

# Reads the next line of the list open in $9 into $8, without comments and empty lines; empty at the end of the list.
Function ${un}ReadLine
    Push $0
    ${Do}
        ClearErrors
        FileRead $9 $8
        ${If} ${Errors}
            ClearErrors
            StrCpy $8 ""
            ${ExitDo}
        ${EndIf}
        ${Call} CutLineEnd
        StrCpy $0 $8 1
        ${If} $0 != ""
        ${AndIf} $0 != "#"
            ${ExitDo}
        ${EndIf}
    ${Loop}
    Pop $0
FunctionEnd

# Leaves in $7 why the path $8 is not accepted as a file below $Root; empty when it is. Anybody may have written the
# list, and replaced folders by links.
Function ${un}CheckPath
    Push $0
    Push $1
    StrCpy $7 ""
    StrCpy $0 ':*?<>|/"'
    System::Call 'shlwapi::StrPBrkW(w r8, w r0) p .r1'
    ${If} $1 != 0
        StrCpy $7 "it is no path in this folder"
    ${EndIf}
    StrCpy $1 $8 1
    ${If} $1 == "\"
        StrCpy $7 "it is no path in this folder"
    ${EndIf}
    # Windows ignores dots and spaces at the end of a name, so that "... " may be "..".
    StrCpy $0 "$8\"
    !insertmacro RefusePathsWith "\\"
    !insertmacro RefusePathsWith ".\"
    !insertmacro RefusePathsWith " \"
    StrCpy $0 0
    ${DoWhile} $7 == ""
        IntOp $0 $0 + 1
        StrCpy $1 $8 1 $0
        ${If} $1 == ""
            ${ExitDo}
        ${ElseIf} $1 == "\"
            StrCpy $1 $8 $0
            Push "$Root\$1"
            ${Call} KindOf
            Pop $1
            ${If} $1 == "link"
                StrCpy $7 "its folder is a link to elsewhere"
            ${ElseIf} $1 == "file"
                StrCpy $7 "its folder is a file"
            ${EndIf}
        ${EndIf}
    ${Loop}
    Pop $1
    Pop $0
FunctionEnd

# As ReadLine, but without the lines that may lead elsewhere.
Function ${un}NextFile
    ${Do}
        ${Call} ReadLine
        ${If} $8 == ""
            Return
        ${EndIf}
        ${Call} CheckPath
        ${If} $7 != ""
            ${Note} "left alone: $Root\$8, $7"
        ${EndIf}
    ${LoopUntil} $7 == ""
FunctionEnd

# Replaces the folder on the stack by "1" when it has one of our lists.
Function ${un}IsMarked
    Exch $0
    Push $8
    Push $9
    Push "$0\${LIST}"
    ${Call} KindOf
    Pop $8
    ${If} $8 != "file"
        StrCpy $0 0
    ${Else}
        FileOpen $9 "$0\${LIST}" r
        FileRead $9 $8
        FileClose $9
        ${Call} CutLineEnd
        StrCpy $0 0
        ${If} $8 S== "${LIST_MARK}"
            StrCpy $0 1
        ${EndIf}
    ${EndIf}
    Pop $9
    Pop $8
    Exch $0
FunctionEnd

# Replaces the folder on the stack by "1" when it is an installation: its list has our mark, or, in older versions
# without a mark, names our server, and the registry says that we are there.
Function ${un}IsOurs
    Exch $0
    Push $1
    Push $8
    Push $9
    Push $0
    ${Call} IsMarked
    Pop $1
    ${If} $1 != 1
        ReadRegStr $8 HKLM "${UNINSTALL_KEY}" "InstallLocation"
        ${If} $8 == $0
        ${AndIf} ${FileExists} "$0\${LIST}"
            FileOpen $9 "$0\${LIST}" r
            ${Do}
                ${Call} ReadLine
                ${If} $8 == "${SERVER}"
                    StrCpy $1 1
                ${EndIf}
            ${LoopUntil} $8 == ""
            FileClose $9
        ${EndIf}
    ${EndIf}
    StrCpy $0 $1
    Pop $9
    Pop $8
    Pop $1
    Exch $0
FunctionEnd

# Removes the folders of the path $8 below $Root, as far as they are empty.
Function ${un}RemoveEmptyFolders
    Push $0
    Push $1
    StrCpy $0 $8
    ${Do}
        ${GetParent} $0 $1
        ${If} $1 == ""
        ${OrIf} $1 == $0
            ${ExitDo}
        ${EndIf}
        StrCpy $0 $1
        RMDir "$Root\$0"
    ${Loop}
    Pop $1
    Pop $0
FunctionEnd

# Makes the folder for retired files with its list. Leaves "1" in $0 when there is one.
Function ${un}MakeRetired
    Push "$Root\${RETIRED}"
    ${Call} IsMarked
    Pop $0
    Push $1
    Push "$Root\${RETIRED}"
    ${Call} KindOf
    Pop $1
    ${If} $1 == "none"
        CreateDirectory "$Root\${RETIRED}"
        ClearErrors
        FileOpen $1 "$Root\${RETIRED}\${LIST}" w
        ${IfNot} ${Errors}
            FileWrite $1 "${LIST_MARK}$\r$\n"
            FileClose $1
            StrCpy $0 1
        ${EndIf}
    ${ElseIf} $1 != "folder"
        StrCpy $0 0
    ${EndIf}
    Pop $1
FunctionEnd

# Removes the file $8 below $Root, or moves it aside when it is in use; then removes its folders that are empty.
Function ${un}RetireFile
    Push $0
    Push $1
    Push $2
    Push "$Root\$8"
    ${Call} KindOf
    Pop $0
    ${If} $0 == "file"
        Delete "$Root\$8"
        Push "$Root\$8"
        ${Call} KindOf
        Pop $0
        ${If} $0 == "none"
            ${Note} "removed: $Root\$8"
        ${Else}
            ${Call} MoveAside
        ${EndIf}
    ${EndIf}
    ${Call} RemoveEmptyFolders
    Pop $2
    Pop $1
    Pop $0
FunctionEnd

# A file in use can be renamed.
Function ${un}MoveAside
    ${Call} MakeRetired
    StrCpy $1 ""
    ${If} $0 == 1
        GetTempFileName $1 "$Root\${RETIRED}"
        Delete $1
        ${GetFileName} $1 $2
        # Listed first, so that the file is never there without being in the list.
        FileOpen $0 "$Root\${RETIRED}\${LIST}" a
        FileSeek $0 0 END
        FileWrite $0 "$2$\r$\n"
        FileClose $0
        ClearErrors
        Rename "$Root\$8" $1
        ${If} ${Errors}
            StrCpy $1 ""
        ${EndIf}
    ${EndIf}
    ${If} $1 != ""
        ${Note} "in use, so moved to $1: $Root\$8"
        Delete /REBOOTOK $1
    ${Else}
        ${Note} "in use, to be removed with the next start of Windows: $Root\$8"
        StrCpy $RestartNeeded 1
        Delete /REBOOTOK "$Root\$8"
    ${EndIf}
    ClearErrors
FunctionEnd

# Removes the temporary folder on the stack, except files in use. A folder without our list is not ours. The list is
# removed last, so that this can be interrupted.
Function ${un}RemoveWorkFolder
    Exch $0
    Push $1
    Push $2
    Push $Root
    StrCpy $Root $0
    StrCpy $1 0
    Push $Root
    ${Call} KindOf
    Pop $2
    ${If} $2 == "folder"
        RMDir $Root # when it is empty
        Push $Root
        ${Call} IsMarked
        Pop $1
    ${EndIf}
    ${If} $1 == 1
        StrCpy $2 0
        FileOpen $9 "$Root\${LIST}" r
        ${Do}
            ${Call} NextFile
            ${If} $8 == ""
                ${ExitDo}
            ${EndIf}
            Delete "$Root\$8"
            ${Call} RemoveEmptyFolders
            ${If} ${FileExists} "$Root\$8"
                StrCpy $2 1
            ${EndIf}
        ${Loop}
        FileClose $9
        ${If} $2 == 0
            Delete "$Root\${NEXT_LIST}"
            Delete "$Root\${LIST}"
            RMDir $Root
        ${EndIf}
    ${EndIf}
    ClearErrors
    Pop $Root
    Pop $2
    Pop $1
    Pop $0
FunctionEnd

# Removes every file of the installation in $Root, or moves it aside when it is in use, except the list itself.
Function ${un}RetireFiles
    Push "$Root\${RETIRED}"
    ${Call} RemoveWorkFolder
    FileOpen $9 "$Root\${LIST}" r
    ${Do}
        ${Call} NextFile
        ${If} $8 == ""
            ${ExitDo}
        ${EndIf}
        ${If} "$Root\$8" != $EXEPATH
            ${Call} RetireFile
        ${EndIf}
    ${Loop}
    FileClose $9
    # Older versions do not have it in their list.
    StrCpy $8 "uninstall.exe"
    ${Call} RetireFile
    # MOVEFILE_DELAY_UNTIL_REBOOT: after the files that are registered for that already.
    Push $0
    Push "$Root\${RETIRED}"
    ${Call} IsMarked
    Pop $0
    ${If} $0 == 1
        System::Call 'kernel32::MoveFileExW(w "$Root\${RETIRED}\${LIST}", p 0, i 4)'
        RMDir /REBOOTOK "$Root\${RETIRED}"
    ${EndIf}
    Pop $0
    ClearErrors
FunctionEnd

# Removes the list, and the folder when it is empty then. A link that somebody else has made stays.
Function ${un}RemoveRoot
    Push $0
    Delete "$Root\${LIST}"
    Push $Root
    ${Call} KindOf
    Pop $0
    ${If} $0 == "folder"
        RMDir $Root
        ${If} ${FileExists} "$Root\${RETIRED}\${LIST}"
            RMDir /REBOOTOK $Root
        ${EndIf}
    ${EndIf}
    ClearErrors
    Pop $0
FunctionEnd

!macroend

# Part of CheckPath.
!macro RefusePathsWith text
    StrCpy $1 "${text}"
    System::Call 'shlwapi::StrStrW(w r0, w r1) p .r1'
    ${If} $1 != 0
        StrCpy $7 "it is no path in this folder"
    ${EndIf}
!macroend
