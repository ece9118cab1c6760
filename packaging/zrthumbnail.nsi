# The installer. packaging/make-setup defines VERSION, SIZE_KB, PAYLOAD (a folder with the files to install and their
# list, files.txt), PAYLOAD_COMMANDS (a script that extracts them) and OUTPUT.
#
# A running file browser has the server and Qt loaded, and Windows neither overwrites nor deletes DLLs in use, but lets
# them be renamed. So the new files are first extracted beside the old ones; then each old file that cannot be deleted
# moves into a folder of its own, and the new one takes its place. What had to move goes with the next installation,
# uninstallation or start of Windows. Nobody is asked to restart anything.

# The server lives in 64-bit processes, and an installer of the same kind sees their folders and registry as they are.
# Windows itself refuses to start it where there are none.
Target amd64-unicode
SetCompressor /SOLID lzma
# Both programs have Qt in them; the second one takes little room when the first one is still in sight.
SetCompressorDictSize 64

!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh
!include x64.nsh

!define PRODUCT "ZRThumbnail"
!define PUBLISHER "The ZRThumbnail authors"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"
!define DATA_FOLDER "KESTRAVO_Thumbnail"

# What the server registers itself with.
!define CLASS_ID "{E45A903D-53AE-4A14-906E-0260D13FF77F}"
!define LIBRARY_ID "{F473925C-FDEE-42AD-9FC2-C843DB7BA2B2}"
!define INTERFACE_ID "{9EFBFC7F-30FC-40F7-A73A-EC5036F339B9}"
!define HANDLER_KEY "shellex\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}"

# Sign-extended, as the 64-bit headers have them.
!define HKEY_CLASSES_ROOT -2147483648
!define HKEY_LOCAL_MACHINE -2147483646

# Exit statuses: NSIS has 1 for "cancelled" and 2 for "failed"; this one is Windows Installer's.
!define STATUS_RESTART_NEEDED 3010

Name "${PRODUCT}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\${PRODUCT}"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
RequestExecutionLevel admin
ManifestSupportedOS all
ManifestDPIAware true
BrandingText "${PRODUCT} ${VERSION}"

VIProductVersion "${VERSION}"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "${PRODUCT} installer"
VIAddVersionKey "CompanyName" "${PUBLISHER}"
VIAddVersionKey "LegalCopyright" "${PUBLISHER}"

!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_TITLE "${PRODUCT} is installed"
!define MUI_FINISHPAGE_TEXT "Open a folder with 3D-printing files to see their thumbnails.$\r$\n$\r$\nIf there are icons \
    instead, 'zrthumb --check' in the folder of the installation tells why."
!insertmacro MUI_PAGE_LICENSE "${PAYLOAD}\LICENSE.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Var Root          # the installation that the functions below work on
Var RestartNeeded # "1" when a file could neither be deleted nor renamed

# Functions of both the installer and the uninstaller, which NSIS keeps apart by the prefix "un.".
!macro SharedFunctions un

# Takes the file on the stack out of the way, and its folder when that was the last file there.
Function ${un}RetireFile
    Exch $0
    Push $1
    ClearErrors
    Delete $0
    ${If} ${Errors}
        CreateDirectory "$Root\retired"
        GetTempFileName $1 "$Root\retired"
        Delete $1
        ClearErrors
        Rename $0 $1
        ${If} ${Errors}
            StrCpy $RestartNeeded 1
            Delete /REBOOTOK $0
        ${Else}
            Delete /REBOOTOK $1
        ${EndIf}
    ${EndIf}
    ${GetParent} $0 $0
    RMDir $0
    ${GetParent} $0 $0
    RMDir $0
    Pop $1
    Pop $0
FunctionEnd

# Reads the next line of the list that $9 has open into $8; empty at its end.
Function ${un}NextFile
    StrCpy $8 ""
    FileRead $9 $8
    Push "$\n"
    Call ${un}CutLineEnd
    Push "$\r"
    Call ${un}CutLineEnd
FunctionEnd

# Cuts the character on the stack from the end of $8.
Function ${un}CutLineEnd
    Exch $0
    Push $1
    StrCpy $1 $8 1 -1
    ${If} $1 == $0
        StrCpy $8 $8 -1
    ${EndIf}
    Pop $1
    Pop $0
FunctionEnd

# Takes every file of the installation out of the way.
Function ${un}RetireInstallation
    RMDir /r "$Root\retired"
    ${If} ${FileExists} "$Root\files.txt"
        FileOpen $9 "$Root\files.txt" r
        ${Do}
            Call ${un}NextFile
            ${If} $8 == ""
                ${ExitDo}
            ${EndIf}
            Push "$Root\$8"
            Call ${un}RetireFile
        ${Loop}
        FileClose $9
    ${EndIf}
    Delete "$Root\files.txt"
    Delete "$Root\uninstall.exe"
    RMDir /r "$Root\retired"
    ClearErrors
FunctionEnd

# HKEY_CLASSES_ROOT shows the user's own classes on top of the machine's, and what is written there may land in the
# former. In between these two calls it is the machine's alone, for this process.
Function ${un}UseMachineClasses
    System::Call 'advapi32::RegOpenKeyExW(p ${HKEY_LOCAL_MACHINE}, w "Software\Classes", i 0, i 0xF003F, *p .r9)'
    System::Call 'advapi32::RegOverridePredefKey(p ${HKEY_CLASSES_ROOT}, p r9)'
    System::Call 'advapi32::RegCloseKey(p r9)'
FunctionEnd

Function ${un}UseAllClasses
    System::Call 'advapi32::RegOverridePredefKey(p ${HKEY_CLASSES_ROOT}, p 0)'
FunctionEnd

# SHCNE_ASSOCCHANGED: file browsers ask the registry again for their handlers.
Function ${un}TellFileBrowsers
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
FunctionEnd

!macroend

!insertmacro SharedFunctions ""
!insertmacro SharedFunctions "un."

!macro ForEachSuffix do
    !insertmacro ${do} ".stl"
    !insertmacro ${do} ".slc"
    !insertmacro ${do} ".vrxdlp"
    !insertmacro ${do} ".vrx"
    !insertmacro ${do} ".fdg"
    !insertmacro ${do} ".gf"
    !insertmacro ${do} ".photon"
    !insertmacro ${do} ".photons"
    !insertmacro ${do} ".svgx"
    !insertmacro ${do} ".kestravo"
    !insertmacro ${do} ".obj"
!macroend

# Notes another program's handler of the suffix in our own key, under the name and the suffix.
!macro NoteHandler name suffix
    ReadRegStr $0 HKLM "Software\Classes\${suffix}\${HANDLER_KEY}" ""
    ${If} $0 != ""
    ${AndIf} $0 != "${CLASS_ID}"
        WriteRegStr HKLM "${UNINSTALL_KEY}" "${name}${suffix}" $0
    ${EndIf}
!macroend

# What is ours already stays as it was noted by the version before.
!macro NotePreviousHandler suffix
    !insertmacro NoteHandler "Previous" "${suffix}"
!macroend

# Reports on the message on the stack, undoes what has been done and ends.
Function GiveUp
    Exch $0
    SetOutPath "$TEMP"
    RMDir /r "$INSTDIR\incoming"
    RMDir "$INSTDIR"
    SetErrorLevel 2
    MessageBox MB_OK|MB_ICONSTOP $0 /SD IDOK
    Abort $0
FunctionEnd

Function .onInit
    SetRegView 64
    ${IfNot} ${IsNativeAMD64}
        MessageBox MB_OK|MB_ICONSTOP "${PRODUCT} needs 64-bit Windows on an x64 processor. The file browser of this \
            Windows cannot load it, so nothing is installed." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
FunctionEnd

Function un.onInit
    SetRegView 64
FunctionEnd

# The new files are complete before an old one is touched.
Function ExtractFiles
    RMDir /r "$INSTDIR\incoming"
    SetOverwrite try
    ClearErrors
    !include "${PAYLOAD_COMMANDS}"
    SetOutPath "$INSTDIR"
    ${If} ${Errors}
        Push "The files cannot be written to $INSTDIR."
        Call GiveUp
    ${EndIf}
FunctionEnd

# The older version may be in another folder.
Function RetireOldVersion
    ReadRegStr $Root HKLM "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $Root != ""
    ${AndIf} $Root != $INSTDIR
        Call RetireInstallation
        RMDir "$Root"
    ${EndIf}
    StrCpy $Root $INSTDIR
    Call RetireInstallation
FunctionEnd

Function MoveIn
    FileOpen $9 "$INSTDIR\incoming\files.txt" r
    ${Do}
        Call NextFile
        ${If} $8 == ""
            ${ExitDo}
        ${EndIf}
        ${If} ${FileExists} "$INSTDIR\$8"
            Push "$INSTDIR\$8"
            Call RetireFile
        ${EndIf}
        ${GetParent} "$INSTDIR\$8" $0
        CreateDirectory $0
        Rename /REBOOTOK "$INSTDIR\incoming\$8" "$INSTDIR\$8"
    ${Loop}
    FileClose $9
    Rename "$INSTDIR\incoming\files.txt" "$INSTDIR\files.txt"
    ${If} $RestartNeeded != 1
        RMDir /r "$INSTDIR\incoming"
    ${EndIf}
FunctionEnd

Function AddUninstallEntry
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\uninstall.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
FunctionEnd

Function Register
    !insertmacro ForEachSuffix NotePreviousHandler
    Call UseMachineClasses
    ClearErrors
    RegDLL "$INSTDIR\ZRThumbnail.dll"
    Call UseAllClasses
    ${If} ${Errors}
        SetErrorLevel 2
        MessageBox MB_OK|MB_ICONSTOP "ZRThumbnail.dll cannot be registered, so there will be no thumbnails. \
            'zrthumb --check' in $INSTDIR tells more." /SD IDOK
        Abort
    ${EndIf}
FunctionEnd

Section
    Call ExtractFiles
    Call RetireOldVersion
    Call MoveIn
    Call AddUninstallEntry
    Call Register
    Call TellFileBrowsers
    # Files that are gone with the next start of Windows are no reason to ask for one.
    SetRebootFlag false
    ${If} $RestartNeeded == 1
        SetRebootFlag true
        SetErrorLevel ${STATUS_RESTART_NEEDED}
    ${EndIf}
SectionEnd

# Whoever else has a suffix now took it after us, and keeps it.
!macro KeepHandler suffix
    !insertmacro NoteHandler "Current" "${suffix}"
!macroend

# Gives the suffix back to who had it before us, if that is still there, and takes away keys that are empty now.
!macro GiveBackHandler suffix
    ReadRegStr $0 HKLM "Software\Classes\${suffix}\${HANDLER_KEY}" ""
    ${If} $0 == "${CLASS_ID}"
        DeleteRegKey HKLM "Software\Classes\${suffix}\${HANDLER_KEY}"
    ${EndIf}
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "Current${suffix}"
    ${If} $0 == ""
        ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "Previous${suffix}"
        EnumRegKey $1 HKCR "CLSID\$0" 0
        ${If} $1 == ""
            StrCpy $0 ""
        ${EndIf}
    ${EndIf}
    ${If} $0 != ""
        WriteRegStr HKLM "Software\Classes\${suffix}\${HANDLER_KEY}" "" $0
    ${EndIf}
    DeleteRegKey /ifempty HKLM "Software\Classes\${suffix}\shellex"
    DeleteRegKey /ifempty HKLM "Software\Classes\${suffix}"
!macroend

# The keys are named here as well, since a server whose files are damaged cannot remove them.
Function un.Unregister
    !insertmacro ForEachSuffix KeepHandler
    Call un.UseMachineClasses
    UnRegDLL "$INSTDIR\ZRThumbnail.dll"
    Call un.UseAllClasses
    !insertmacro ForEachSuffix GiveBackHandler
    DeleteRegKey HKLM "Software\Classes\ZRThumbnail.ZReExtract.1"
    DeleteRegKey HKLM "Software\Classes\ZRThumbnail.ZReExtract"
    DeleteRegKey HKLM "Software\Classes\CLSID\${CLASS_ID}"
    DeleteRegKey HKLM "Software\Classes\TypeLib\${LIBRARY_ID}"
    DeleteRegKey HKLM "Software\Classes\Interface\${INTERFACE_ID}"
FunctionEnd

# Jumps to the label when the folder is a link to elsewhere, or is not there. The data folders are the users', the
# uninstaller's rights are not: it must not be led astray.
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

# Those of all users of this machine.
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

# Leaves "1" on the stack when the users' data is to go.
Function un.AskForData
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/CLEAN" $1
    ${IfNot} ${Errors}
    ${OrIf} ${Cmd} `MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Remove the cached thumbnails and the log of all \
            users of this computer, too?" /SD IDNO IDYES`
        Push 1
    ${Else}
        Push 0
    ${EndIf}
FunctionEnd

Section "Uninstall"
    ${IfNot} ${FileExists} "$INSTDIR\files.txt"
        SetErrorLevel 2
        MessageBox MB_OK|MB_ICONSTOP "$INSTDIR holds no installation." /SD IDOK
        Abort
    ${EndIf}
    Call un.AskForData
    Call un.Unregister
    StrCpy $Root $INSTDIR
    Call un.RetireInstallation
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    Call un.TellFileBrowsers
    Pop $0
    ${If} $0 == 1
        Call un.RemoveData
    ${EndIf}
    SetOutPath "$TEMP"
    RMDir "$INSTDIR"
    ${If} ${FileExists} "$INSTDIR\retired\*"
        RMDir /REBOOTOK "$INSTDIR\retired"
        RMDir /REBOOTOK "$INSTDIR"
    ${EndIf}
    SetRebootFlag false
SectionEnd
