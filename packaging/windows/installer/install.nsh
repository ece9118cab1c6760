# SPDX-License-Identifier: MIT
# The steps of an installation. Until RetireOldVersion, nothing that was there before is touched, and everything can be
# undone.

Var ServerBefore # path of the server that was registered before; empty for none
Var EntryBefore  # not empty when there was an installation before

# Reports the line on the stack, undoes what was done before an old file was touched, and ends.
Function GiveUp
    Call Tell
    SetOutPath "$TEMP"
    Push "$INSTDIR\${INCOMING}"
    Call RemoveWorkFolder
    # On a full disk it may have no list, but it is known to be from this run.
    RMDir /r "$INSTDIR\${INCOMING}"
    Call RemoveMadeFolders
    ${Note} "result: 2, nothing is changed"
    SetErrorLevel 2
    Abort
FunctionEnd

# The new files are complete before an old one is touched; their list comes first, so that the next installation can
# remove them when this one is interrupted.
Function StageFiles
    Call NoteFirstFolder
    SetOverwrite try
    ClearErrors
    !include "${PAYLOAD_COMMANDS}"
    WriteUninstaller "$INSTDIR\${INCOMING}\uninstaller.exe"
    SetOutPath "$TEMP"
    ${If} ${Errors}
        Push "The files cannot be written to $INSTDIR."
        Call GiveUp
    ${EndIf}
    ${Note} "extracted to: $INSTDIR\${INCOMING}"
FunctionEnd

# Registers the DLL on the stack and leaves "1" in $0 when that works.
Function RegisterServer
    Exch $1
    Call UseMachineClasses
    ClearErrors
    RegDLL $1
    Call UseAllClasses
    StrCpy $0 1
    ${If} ${Errors}
        StrCpy $0 0
        ${Note} "cannot be registered: $1"
    ${Else}
        ${Note} "registered: $1"
    ${EndIf}
    ClearErrors
    Pop $1
FunctionEnd

# Restores the previous registration.
Function RestoreRegistration
    ReadRegStr $0 HKLM "Software\Classes\CLSID\${CLASS_ID}\InprocServer32" ""
    ${If} $ServerBefore == ""
    ${OrIfNot} ${FileExists} $ServerBefore
        Call RemoveKeys
    ${ElseIf} $0 != $ServerBefore
        Push $ServerBefore
        Call RegisterServer
        ${If} $0 != 1
            Call RemoveKeys
        ${EndIf}
    ${EndIf}
    ${If} $EntryBefore == ""
        DeleteRegKey HKLM "${UNINSTALL_KEY}"
    ${EndIf}
FunctionEnd

# If the new server can be registered here, it can be again in its final place. If not, the old version is still there.
Function TryRegistration
    ReadRegStr $ServerBefore HKLM "Software\Classes\CLSID\${CLASS_ID}\InprocServer32" ""
    ReadRegStr $EntryBefore HKLM "${UNINSTALL_KEY}" "UninstallString"
    !insertmacro ForEachSuffix NotePreviousHandler
    Push "$INSTDIR\${INCOMING}\${SERVER}"
    Call RegisterServer
    ${If} $0 != 1
        Call RestoreRegistration
        ${If} $EntryBefore == ""
            Push "${SERVER} cannot be registered, so nothing is installed: Windows refuses to load it or to write to \
                HKEY_CLASSES_ROOT."
        ${Else}
            Push "${SERVER} cannot be registered, so the version before stays: Windows refuses to load it or to write \
                to HKEY_CLASSES_ROOT."
        ${EndIf}
        Call GiveUp
    ${EndIf}
FunctionEnd

# Makes the prepared list that of the installation, in one step: there is always a list. Leaves "0" in $0 when that is
# impossible.
Function PutList
    System::Call 'kernel32::MoveFileExW(w "$INSTDIR\${INCOMING}\${NEXT_LIST}", w "$INSTDIR\${LIST}", i 1) i .r0'
FunctionEnd

# From here until the new list is in its place, the list has the old files and the new ones, so that an interrupted
# installation is still known as ours.
Function JoinLists
    CopyFiles /SILENT /FILESONLY "$PLUGINSDIR\${LIST}" "$INSTDIR\${INCOMING}\${NEXT_LIST}"
    ${If} ${FileExists} "$INSTDIR\${LIST}"
        CopyFiles /SILENT /FILESONLY "$INSTDIR\${LIST}" "$INSTDIR\${INCOMING}\${NEXT_LIST}"
        FileOpen $1 "$INSTDIR\${INCOMING}\${NEXT_LIST}" a
        FileSeek $1 0 END
        FileOpen $9 "$PLUGINSDIR\${LIST}" r
        ${Do}
            FileWrite $1 "$\r$\n"
            Call ReadLine
            FileWrite $1 $8
        ${LoopUntil} $8 == ""
        FileClose $9
        FileClose $1
    ${EndIf}
    Call PutList
    ${If} $0 == 0
        Call RestoreRegistration
        Push "$INSTDIR\${LIST} cannot be written."
        Call GiveUp
    ${EndIf}
FunctionEnd

# The older version may be in another folder. The folder that the registry names may be anybody's.
Function RetireOldVersion
    Call JoinLists
    ReadRegStr $Root HKLM "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $Root != ""
    ${AndIf} $Root != $INSTDIR
        Push $Root
        Call IsOurs
        Pop $0
        ${If} $0 == 1
            Call RetireFiles
            Call RemoveRoot
        ${Else}
            ${Note} "left alone: $Root, it is no installation"
        ${EndIf}
    ${EndIf}
    StrCpy $Root $INSTDIR
    Call RetireFiles
FunctionEnd

# Reports the line on the stack, removes what is installed so far, and ends. The previous version has gone already.
Function Withdraw
    Call Tell
    StrCpy $Root $INSTDIR
    Call RetireFiles
    Push "$INSTDIR\${INCOMING}"
    Call RemoveWorkFolder
    Call RemoveRoot
    Call RemoveShortcut
    StrCpy $EntryBefore ""
    Call RestoreRegistration
    Call TellFileBrowsers
    Call RemoveMadeFolders
    ${Note} "result: 2, nothing is installed"
    SetErrorLevel 2
    Abort
FunctionEnd

Function MoveIn
    StrCpy $Root $INSTDIR
    FileOpen $9 "$PLUGINSDIR\${LIST}" r
    ${Do}
        Call ReadLine
        ${If} $8 == ""
            ${ExitDo}
        ${EndIf}
        ${GetParent} "$INSTDIR\$8" $0
        CreateDirectory $0
        ClearErrors
        ${If} $RestartNeeded == 1
            Rename /REBOOTOK "$INSTDIR\${INCOMING}\$8" "$INSTDIR\$8"
        ${Else}
            Rename "$INSTDIR\${INCOMING}\$8" "$INSTDIR\$8"
        ${EndIf}
        ${If} ${Errors}
            FileClose $9
            Push "$INSTDIR\$8 cannot be written, so ${PRODUCT} is not installed: start the installer again."
            Call Withdraw
        ${EndIf}
        ${Note} "installed: $INSTDIR\$8"
    ${Loop}
    FileClose $9
    CopyFiles /SILENT /FILESONLY "$PLUGINSDIR\${LIST}" "$INSTDIR\${INCOMING}\${NEXT_LIST}"
    Call PutList
    # Files that wait for the next start of Windows stay there with their list.
    ${If} $RestartNeeded != 1
        Push "$INSTDIR\${INCOMING}"
        Call RemoveWorkFolder
    ${EndIf}
FunctionEnd

Function Register
    Push "$INSTDIR\${SERVER}"
    Call RegisterServer
    ${If} $0 != 1
        Push "${SERVER} cannot be registered, so ${PRODUCT} is not installed: start the installer again."
        Call Withdraw
    ${EndIf}
FunctionEnd

Function AddUninstallEntry
    ${GetTime} "" "L" $0 $1 $2 $3 $4 $5 $6
    ClearErrors
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\zrthumb.exe,0"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallDate" "$2$1$0"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "Readme" "$INSTDIR\README.txt"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
    ${If} ${Errors}
        Push "Windows refuses to write ${UNINSTALL_KEY} in the registry, so ${PRODUCT} is not installed."
        Call Withdraw
    ${EndIf}
FunctionEnd

# A terminal that runs the check and stays open until a key is pressed. Everything works without it, too.
Function AddShortcut
    SetShellVarContext all
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "Shortcut"
    ${If} $0 != "${SHORTCUT}"
    ${AndIf} ${FileExists} "${SHORTCUT}"
        ${Note} "left alone: ${SHORTCUT}, it is not from ${PRODUCT}"
        Return
    ${EndIf}
    # The shortcut's program runs in this folder.
    SetOutPath $INSTDIR
    ClearErrors
    CreateShortCut "${SHORTCUT}" "$SYSDIR\cmd.exe" '/c ".\zrthumb.exe --check & pause"' "$INSTDIR\zrthumb.exe" 0 \
        SW_SHOWNORMAL "" "Tells why no thumbnails show"
    ${If} ${Errors}
        ${Note} "cannot be written: ${SHORTCUT}"
    ${Else}
        WriteRegStr HKLM "${UNINSTALL_KEY}" "Shortcut" "${SHORTCUT}"
        ${Note} "installed: ${SHORTCUT}"
    ${EndIf}
    SetOutPath "$TEMP"
FunctionEnd

Section
    InitPluginsDir
    File "/oname=$PLUGINSDIR\${LIST}" "${PAYLOAD_LIST}"
    Call SettleFolder
    ${If} $0 == ""
        ${Note} "folder: $INSTDIR"
        Call FindConflict
    ${EndIf}
    ${If} $0 != ""
        Push $0
        Call Tell
        ${Note} "result: 2, nothing is changed"
        SetErrorLevel 2
        Abort
    ${EndIf}
    Call StageFiles
    Call TryRegistration
    Call RetireOldVersion
    Call MoveIn
    Call Register
    Call AddUninstallEntry
    Call AddShortcut
    Call TellFileBrowsers
    # Files that the next start of Windows removes are no reason to ask for one.
    SetRebootFlag false
    ${If} $RestartNeeded == 1
        SetRebootFlag true
        SetErrorLevel ${STATUS_RESTART_NEEDED}
        ${Note} "result: ${STATUS_RESTART_NEEDED}, installed with the next start of Windows"
    ${Else}
        ${Note} "result: 0, installed"
    ${EndIf}
SectionEnd
