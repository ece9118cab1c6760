# SPDX-License-Identifier: MIT
# The registry entries of an installation.

# The class that the server registers.
!define CLASS_ID "{E45A903D-53AE-4A14-906E-0260D13FF77F}"
!define LIBRARY_ID "{F473925C-FDEE-42AD-9FC2-C843DB7BA2B2}"
!define INTERFACE_ID "{9EFBFC7F-30FC-40F7-A73A-EC5036F339B9}"
!define HANDLER_KEY "shellex\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}"

# Sign-extended, as the 64-bit headers have them.
!define HKEY_CLASSES_ROOT -2147483648
!define HKEY_LOCAL_MACHINE -2147483646

!include "${SUFFIXES}"

# Notes another program's handler of the suffix in our own key, under the name and the suffix.
!macro NoteHandler name suffix
    ReadRegStr $0 HKLM "Software\Classes\${suffix}\${HANDLER_KEY}" ""
    ${If} $0 != ""
    ${AndIf} $0 != "${CLASS_ID}"
        WriteRegStr HKLM "${UNINSTALL_KEY}" "${name}${suffix}" $0
    ${EndIf}
!macroend

# A suffix that is ours already keeps what the previous version noted.
!macro NotePreviousHandler suffix
    !insertmacro NoteHandler "Previous" "${suffix}"
!macroend

# Another program that has a suffix now took it after us, and keeps it.
!macro KeepHandler suffix
    !insertmacro NoteHandler "Current" "${suffix}"
!macroend

# Gives the suffix back to the handler before us, if that still exists, and removes keys that are empty now.
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

!macro RegistrationFunctions un

# HKEY_CLASSES_ROOT shows the user's own classes on top of the machine's, and what is written there may end up in the
# former. Between these two calls it shows the machine's alone, for this process.
Function ${un}UseMachineClasses
    System::Call 'advapi32::RegOpenKeyExW(p ${HKEY_LOCAL_MACHINE}, w "Software\Classes", i 0, i 0xF003F, *p .r9)'
    System::Call 'advapi32::RegOverridePredefKey(p ${HKEY_CLASSES_ROOT}, p r9)'
    System::Call 'advapi32::RegCloseKey(p r9)'
FunctionEnd

Function ${un}UseAllClasses
    System::Call 'advapi32::RegOverridePredefKey(p ${HKEY_CLASSES_ROOT}, p 0)'
FunctionEnd

# The keys are named here as well, since a server whose files are damaged cannot remove them.
Function ${un}RemoveKeys
    !insertmacro ForEachSuffix GiveBackHandler
    DeleteRegKey HKLM "Software\Classes\ZRThumbnail.ZReExtract.1"
    DeleteRegKey HKLM "Software\Classes\ZRThumbnail.ZReExtract"
    DeleteRegKey HKLM "Software\Classes\CLSID\${CLASS_ID}"
    DeleteRegKey HKLM "Software\Classes\TypeLib\${LIBRARY_ID}"
    DeleteRegKey HKLM "Software\Classes\Interface\${INTERFACE_ID}"
    ${Note} "unregistered"
FunctionEnd

# SHCNE_ASSOCCHANGED: file browsers ask the registry again for their handlers.
Function ${un}TellFileBrowsers
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
FunctionEnd

# The entry in the start menu of all users, unless somebody else has one of that name.
Function ${un}RemoveShortcut
    SetShellVarContext all
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "Shortcut"
    ${If} $0 == "${SHORTCUT}"
        Delete $0
        ${Note} "removed: $0"
    ${EndIf}
FunctionEnd

!macroend
