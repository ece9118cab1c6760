# SPDX-License-Identifier: MIT
# The steps of an uninstallation.

# Jumps to the label when the folder is a link or does not exist. Data folders belong to users without the uninstaller's
# rights, so it must not follow links in them.
!macro UnlessFolder folder label
    System::Call 'kernel32::GetFileAttributesW(w "${folder}") i .r1'
    IntOp $1 $1 & 0x400
    StrCmp $1 0 0 ${label}
!macroend

# Removes the cache and the log in the data folder on the stack. By name, so that what others put there stays.
Function un.RemoveDataFolder
    Exch $0
    Push $1
    !insertmacro UnlessFolder $0 done
    ${Note} "data removed: $0"
    Delete /REBOOTOK "$0\thumbnail.db"
    Delete /REBOOTOK "$0\thumbnail.db-journal"
    Delete /REBOOTOK "$0\thumbnail.log"
    !insertmacro UnlessFolder "$0\thumbnailImage" empty
    Delete /REBOOTOK "$0\thumbnailImage\*.png"
    RMDir "$0\thumbnailImage"
empty:
    RMDir "$0"
done:
    Pop $1
    Pop $0
FunctionEnd

# Removes the data folders of all users of this machine.
Function un.RemoveData
    SetShellVarContext current
    Push "$LOCALAPPDATA\${DATA_FOLDER}"
    Call un.RemoveDataFolder
    StrCpy $2 0
    ${Do}
        EnumRegKey $3 HKLM "Software\Microsoft\Windows NT\CurrentVersion\ProfileList" $2
        ${If} $3 == ""
            ${ExitDo}
        ${EndIf}
        ReadRegStr $4 HKLM "Software\Microsoft\Windows NT\CurrentVersion\ProfileList\$3" "ProfileImagePath"
        ExpandEnvStrings $4 $4
        ${If} $4 != ""
            Push "$4\AppData\Local\${DATA_FOLDER}"
            Call un.RemoveDataFolder
        ${EndIf}
        IntOp $2 $2 + 1
    ${Loop}
FunctionEnd

Function un.AskForData
    ${If} $CleanData != 1
    ${AndIf} ${Cmd} `MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Remove the cached thumbnails and the log of all \
            users of this computer, too?" /SD IDNO IDYES`
        StrCpy $CleanData 1
    ${EndIf}
FunctionEnd

# Reports the line on the stack and ends.
Function un.Fail
    Call un.Tell
    ${Note} "result: 2, nothing is changed"
    SetErrorLevel 2
    Abort
FunctionEnd

# A copy of an installation must not unregister the installation.
Function un.CheckFolder
    GetFullPathName $INSTDIR $INSTDIR
    Push $INSTDIR
    Call un.IsOurs
    Pop $0
    ${If} $0 != 1
        Push "$INSTDIR holds no installation."
        Call un.Fail
    ${EndIf}
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $0 != ""
        GetFullPathName $1 $0
        ${If} $1 != ""
        ${AndIf} $1 != $INSTDIR
            Push "${PRODUCT} is installed in $0, not in $INSTDIR: uninstall it there."
            Call un.Fail
        ${EndIf}
    ${EndIf}
FunctionEnd

Function un.Unregister
    !insertmacro ForEachSuffix KeepHandler
    Call un.UseMachineClasses
    UnRegDLL "$INSTDIR\${SERVER}"
    Call un.UseAllClasses
    Call un.RemoveKeys
FunctionEnd

# The program that has started this one waits for it, so it cannot be deleted. When the folder for temporary files is on
# the same drive, it can be moved there, and nothing is left here.
Function un.MoveStarterAway
    ${If} $EXEPATH == "$INSTDIR\uninstaller.exe"
        GetTempFileName $0
        Delete $0
        System::Call 'kernel32::MoveFileExW(w "$INSTDIR\uninstall.exe", w r0, i 0) i .r1'
        ${If} $1 != 0
            Delete /REBOOTOK $0
            ${Note} "removed: $INSTDIR\uninstall.exe"
        ${EndIf}
    ${EndIf}
FunctionEnd

Section "Uninstall"
    SetOutPath "$TEMP"
    Call un.CheckFolder
    Call un.AskForData
    Call un.Unregister
    Call un.MoveStarterAway
    StrCpy $Root $INSTDIR
    Push "$INSTDIR\${INCOMING}"
    Call un.RemoveWorkFolder
    Call un.RetireFiles
    Call un.RemoveRoot
    Call un.RemoveShortcut
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    Call un.TellFileBrowsers
    ${If} $CleanData == 1
        Call un.RemoveData
    ${EndIf}
    SetRebootFlag false
    ${If} $RestartNeeded == 1
        SetErrorLevel ${STATUS_RESTART_NEEDED}
        ${Note} "result: ${STATUS_RESTART_NEEDED}, uninstalled with the next start of Windows"
    ${Else}
        ${Note} "result: 0, uninstalled"
    ${EndIf}
SectionEnd
