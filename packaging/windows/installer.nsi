; The installer: for the person who runs it, without an administrator; /S asks nothing, /D=FOLDER chooses the place.
; As the client is: one program for one kind of Windows.
Target amd64-unicode
Unicode true
SetCompressor /SOLID lzma
!include MUI2.nsh

!define NAME "Kelvara 查询系统"
!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Kelvara"

Name "${NAME}"
OutFile "${OUT}/kelvara-${VERSION}-setup.exe"
InstallDir "$LOCALAPPDATA\Programs\Kelvara"
InstallDirRegKey HKCU "Software\Kelvara" "Folder"
RequestExecutionLevel user
ManifestDPIAware true
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=2052 "ProductName" "${NAME}"
VIAddVersionKey /LANG=2052 "FileDescription" "${NAME} 安装程序"
VIAddVersionKey /LANG=2052 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=2052 "LegalCopyright" "Kelvara"

!define MUI_ICON "kelvara.ico"
!define MUI_UNICON "kelvara.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\kelvara-client.exe"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "SimpChinese"

; A program that runs keeps its file: whoever tries is told, and nothing is half replaced.
!macro RefuseWhileRunning
    IfFileExists "$INSTDIR\kelvara-client.exe" 0 +7
    ClearErrors
    FileOpen $0 "$INSTDIR\kelvara-client.exe" a
    IfErrors 0 +3
    MessageBox MB_OK|MB_ICONEXCLAMATION "${NAME} 正在运行，请先关闭它的所有窗口，再试一次。" /SD IDOK
    Abort
    FileClose $0
!macroend

Section
    !insertmacro RefuseWhileRunning
    SetOutPath "$INSTDIR"
    File /r "${OUT}/Kelvara/*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\kelvara-client.exe"
    WriteRegStr HKCU "Software\Kelvara" "Folder" "$INSTDIR"
    WriteRegStr HKCU "${KEY}" "DisplayName" "${NAME}"
    WriteRegStr HKCU "${KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${KEY}" "Publisher" "Kelvara"
    WriteRegStr HKCU "${KEY}" "DisplayIcon" "$INSTDIR\kelvara-client.exe"
    WriteRegStr HKCU "${KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${KEY}" "NoRepair" 1
SectionEnd

; What a person has kept beside the program stays.
Section "Uninstall"
    !insertmacro RefuseWhileRunning
    !include "${OUT}/files.nsh"
    !include "${OUT}/folders.nsh"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\${NAME}.lnk"
    DeleteRegKey HKCU "${KEY}"
    DeleteRegKey HKCU "Software\Kelvara"
SectionEnd
