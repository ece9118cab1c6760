# SPDX-License-Identifier: MIT
# The installer. packaging/make-setup defines VERSION, SIZE_KB, PAYLOAD (a folder with the files to install), PAYLOAD_LIST
# (a list of all that is installed), PAYLOAD_COMMANDS (a script that extracts it to INCOMING) and OUTPUT.
#
# A running file browser has the server and Qt loaded, and Windows neither overwrites nor deletes DLLs in use, but lets
# them be renamed. So the new files are first extracted beside the old ones; then each old file that cannot be deleted
# moves into a folder of its own, and the new one replaces it. The moved files are removed by the next installation,
# uninstallation or start of Windows. Nobody is asked to restart anything.

# The server lives in 64-bit processes, and an installer of the same kind sees their folders and registry as they are.
# Windows itself refuses to start it where there are none.
Target amd64-unicode
SetCompressor /SOLID lzma
# Both programs contain Qt; the second one compresses well while the first one is still in the dictionary.
SetCompressorDictSize 64

!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh
!include WordFunc.nsh
!include x64.nsh

!define PRODUCT "ZRThumbnail"
!define PUBLISHER "The ZRThumbnail authors"
!define SERVER "ZRThumbnail.dll"
!define SHORTCUT "$SMPROGRAMS\${PRODUCT} check.lnk"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"
!define DATA_FOLDER "KESTRAVO_Thumbnail"
!define OPTIONS "/S, /CLEAN when uninstalling, /LOG=FILE, and /D=FOLDER as the last one and without quotes"

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

!define MUI_ICON "${__FILEDIR__}/../zrthumbnail.ico"
!define MUI_UNICON "${MUI_ICON}"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_TITLE "${PRODUCT} is installed"
!define MUI_FINISHPAGE_TEXT "Open a folder with 3D-printing files to see their thumbnails.$\r$\n$\r$\nIf there are icons \
    instead, '${PRODUCT} check' in the start menu tells why."
!insertmacro MUI_PAGE_LICENSE "${PAYLOAD}\LICENSE.txt"
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE LeaveDirectoryPage
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!include "${__FILEDIR__}/installer/telling.nsh"
!include "${__FILEDIR__}/installer/files.nsh"
!include "${__FILEDIR__}/installer/registration.nsh"

# In both programs.
!insertmacro TellingFunctions ""
!insertmacro TellingFunctions "un."
!insertmacro FileFunctions ""
!insertmacro FileFunctions "un."
!insertmacro RegistrationFunctions ""
!insertmacro RegistrationFunctions "un."

!include "${__FILEDIR__}/installer/folder.nsh"
!include "${__FILEDIR__}/installer/install.nsh"
!include "${__FILEDIR__}/installer/uninstall.nsh"

Function .onInit
    Call Start
    ${IfNot} ${IsNativeAMD64}
        Push "${PRODUCT} needs 64-bit Windows on an x64 processor. The file browser of this Windows cannot load it, so \
            nothing is installed."
        Call Refuse
    ${EndIf}
    Call ReadFolderOption
FunctionEnd

Function un.onInit
    Call un.Start
FunctionEnd
