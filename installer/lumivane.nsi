; Lumivane's Windows installer, built by the CMake target "installer" of the Windows build
; (makensis, see docs/installer.md). It installs for the current user only, with no
; administrator rights: Lumivane.scr, the companion Lumivane.exe and an uninstaller go to
; %LOCALAPPDATA%\Programs\Lumivane, an entry appears under the user's installed apps, Lumivane.exe
; gets a Start-menu shortcut and starts at sign-in, and Lumivane becomes the user's screen saver.
;
; The build passes: VERSION (major.minor.patch, from project() in CMakeLists.txt), SCR (the built
; Lumivane.scr), EXE (the built Lumivane.exe), ICON (res/lumivane.ico), OUTFILE (the setup
; program to write) and SIGN_SCRIPT (scripts/sign.sh, which signs when the build is given a
; certificate and does nothing otherwise).
;
;   Lumivane-<version>-setup.exe          interactive; opens Lumivane's settings at the end
;   Lumivane-<version>-setup.exe /S       silent, for deployment; opens and starts nothing
;   Uninstall.exe [/S]                    in the install folder; also from the installed apps

Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true
ManifestSupportedOS all

!define PRODUCT "Lumivane"
!define SAVER "Lumivane.scr"
!define APP "Lumivane.exe"
; The window of a running Lumivane.exe; it ends on WM_CLOSE.
!define TRAY_CLASS "LumivaneTray"
!define SHORTCUT "${PRODUCT}.lnk"
; Programs that start at the user's sign-in.
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define UNINSTALLER "Uninstall.exe"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Lumivane"
; Where Windows keeps the user's screen saver: the program in SCRNSAVE.EXE, on or off in
; ScreenSaveActive.
!define DESKTOP_KEY "Control Panel\Desktop"
!define SPI_SETSCREENSAVEACTIVE 17
!define SPIF_SENDCHANGE 2
; OpenProcess access that lets us wait for the process to end, and how long we wait, in ms.
!define SYNCHRONIZE 0x00100000
!define APP_END_TIMEOUT 5000
; A file that a running program holds (the saver, its preview in the screen saver settings, a
; Lumivane.exe that did not end) is moved out of the way within its folder, to <file>.<n>.old
; (Lumivane.scr.1.old), and removed once nothing runs from it.
!define ASIDE_SUFFIX ".old"
!define MOVEFILE_DELAY_UNTIL_REBOOT 4
; Commands that run once, at the user's next sign-in.
!define RUN_ONCE_KEY "Software\Microsoft\Windows\CurrentVersion\RunOnce"
; Such a command for the files set aside: removes every one of them, quietly.
!define ASIDE_REMOVAL 'del /f /q "$INSTDIR\${SAVER}.*${ASIDE_SUFFIX}" \
    "$INSTDIR\${APP}.*${ASIDE_SUFFIX}" 2>nul'

Name "${PRODUCT}"
OutFile "${OUTFILE}"

; The uninstaller is signed before it is packed into the setup, so that the Uninstall.exe the setup
; writes carries a signature too; the setup itself once it is written. A failed signing fails the
; build.
!ifdef SIGN_SCRIPT
    !uninstfinalize 'bash "${SIGN_SCRIPT}" "%1"' = 0
    !finalize 'bash "${SIGN_SCRIPT}" "%1"' = 0
!endif
InstallDir "$LOCALAPPDATA\Programs\${PRODUCT}"
; An install into another folder (/D=) is found again by the next one, which replaces it there
; instead of leaving it behind under the same installed-apps entry.
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${PRODUCT} ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow

VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 "ProductName" "${PRODUCT}"
VIAddVersionKey /LANG=0 "CompanyName" "${PRODUCT}"
VIAddVersionKey /LANG=0 "FileDescription" "${PRODUCT} screen saver setup"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "LegalCopyright" "Copyright (C) Lumivane"

!include "MUI2.nsh"
!include "FileFunc.nsh"
!include "LogicLib.nsh"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEPAGE_TEXT "Setup will install ${PRODUCT} ${VERSION} for you alone, in your own \
    programs folder, and make it your screen saver. ${PRODUCT} will start when you sign in, with \
    its icon in the notification area.$\r$\n$\r$\nYour photos and the ${PRODUCT} data folder are \
    not touched.$\r$\n$\r$\n$_CLICK"
; Lumivane's own settings open after an interactive install anyway (.onInstSuccess), so the
; system's screen saver settings are only offered.
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_NOTCHECKED
!define MUI_FINISHPAGE_RUN_TEXT "Open the screen saver settings"
!define MUI_FINISHPAGE_RUN_FUNCTION OpenScreenSaverSettings
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; The path that SCRNSAVE.EXE holds for the installed saver, into $0. The value is made into the
; command line that starts the saver; its short form, where the volume has one, has no spaces, so
; that a folder with a space in its name (a user name such as "Ann Lee") can't split it.
!macro SaverSelectionPath
    GetFullPathName /SHORT $0 "$INSTDIR\${SAVER}"
    ${If} $0 == ""
        StrCpy $0 "$INSTDIR\${SAVER}"
    ${EndIf}
!macroend

; Ends a running Lumivane.exe of this user, so that its file can be replaced or deleted: WM_CLOSE to
; its window makes it remove its tray icon and close its settings without saving. Waits until the
; process has ended, at most APP_END_TIMEOUT. The uninstaller needs its own "un." copy.
!macro EndRunningApp un
    Function ${un}EndRunningApp
        FindWindow $0 "${TRAY_CLASS}"
        ${If} $0 P<> 0
            System::Call "user32::GetWindowThreadProcessId(p r0, *i .r1)"
            System::Call "kernel32::OpenProcess(i ${SYNCHRONIZE}, i 0, i r1) p .r2"
            ; A hung window must not hang the setup: the message gets as long as the wait.
            SendMessage $0 ${WM_CLOSE} 0 0 /TIMEOUT=${APP_END_TIMEOUT}
            ${If} $2 P<> 0
                System::Call "kernel32::WaitForSingleObject(p r2, i ${APP_END_TIMEOUT})"
                System::Call "kernel32::CloseHandle(p r2)"
            ${EndIf}
        ${EndIf}
    FunctionEnd
!macroend
!insertmacro EndRunningApp ""
!insertmacro EndRunningApp "un."

; The paths that the setup or the uninstaller moved the two files to ("" for none), and what
; became of the set-aside files: AsideLeft is 1 when some of them wait for their removal,
; AsideAtSignIn is 1 when that waits for the user's next sign-in.
Var SaverAside
Var AppAside
Var AsideLeft
Var AsideAtSignIn

; Moves the installed file whose name is on the stack out of the way, to <file>.<n>.old with the
; lowest free n, and leaves that path on the stack: "" when there was no file or it could not be
; moved. Windows refuses to replace or delete the file of a running program, but lets it be
; renamed within its volume; the program runs on from the new name, and the old name is free.
!macro SetAside un
    Function ${un}SetAside
        Exch $R0
        Push $R1
        Push $R2
        StrCpy $R1 ""
        ${If} ${FileExists} "$INSTDIR\$R0"
            StrCpy $R2 1
            ${While} ${FileExists} "$INSTDIR\$R0.$R2${ASIDE_SUFFIX}"
                IntOp $R2 $R2 + 1
            ${EndWhile}
            Rename "$INSTDIR\$R0" "$INSTDIR\$R0.$R2${ASIDE_SUFFIX}"
            ${IfNot} ${FileExists} "$INSTDIR\$R0"
                StrCpy $R1 "$INSTDIR\$R0.$R2${ASIDE_SUFFIX}"
            ${EndIf}
        ${EndIf}
        Pop $R2
        StrCpy $R0 $R1
        Pop $R1
        Exch $R0
    FunctionEnd

    ; Removes every file set aside for the installed file whose name is on the stack, by this run
    ; or an earlier one: at once where nothing runs from it any more, else at the next restart of
    ; Windows. Windows takes removals at restart only from administrators (it keeps them for the
    ; whole machine), so for a user without those rights the removal waits for the user's next
    ; sign-in instead (AsideAtSignIn; the caller writes the RunOnce command).
    Function ${un}RemoveSetAside
        Exch $R0
        Push $R1
        Push $R2
        Push $R3
        Delete "$INSTDIR\$R0.*${ASIDE_SUFFIX}"
        FindFirst $R1 $R2 "$INSTDIR\$R0.*${ASIDE_SUFFIX}"
        ${DoWhile} $R2 != ""
            StrCpy $AsideLeft 1
            StrCpy $R3 "$INSTDIR\$R2"
            System::Call "kernel32::MoveFileExW(w R3, p 0, i ${MOVEFILE_DELAY_UNTIL_REBOOT}) i .R3"
            ${If} $R3 = 0
                StrCpy $AsideAtSignIn 1
            ${EndIf}
            FindNext $R1 $R2
        ${Loop}
        FindClose $R1
        ClearErrors
        Pop $R3
        Pop $R2
        Pop $R1
        Pop $R0
    FunctionEnd
!macroend
!insertmacro SetAside ""
!insertmacro SetAside "un."

Section
    ; A running Lumivane.exe keeps its file from being replaced.
    Call EndRunningApp
    SetOutPath "$INSTDIR"
    ; Over an older version, the files are replaced. A running Lumivane.scr (the screen saver, or
    ; its preview in the screen saver settings) holds its file as well, so the old files are
    ; moved out of the way first; they go once the new ones are in place.
    Push "${SAVER}"
    Call SetAside
    Pop $SaverAside
    Push "${APP}"
    Call SetAside
    Pop $AppAside
    ClearErrors
    ${If} ${FileExists} "$INSTDIR\${SAVER}"
    ${OrIf} ${FileExists} "$INSTDIR\${APP}"
        SetErrors
    ${Else}
        File "/oname=${SAVER}" "${SCR}"
        File "/oname=${APP}" "${EXE}"
    ${EndIf}
    ${If} ${Errors}
        ; Nothing new is recorded, and .onInstFailed puts the old files back: the version
        ; installed before stays as it was, and the exit code tells a deployment tool.
        MessageBox MB_OK|MB_ICONSTOP "${PRODUCT} ${VERSION} could not be written to $INSTDIR: \
            another program holds its files. The installed version was left as it was; run the \
            setup again later." /SD IDOK
        SetErrorLevel 2
        Abort
    ${EndIf}
    Push "${SAVER}"
    Call RemoveSetAside
    Push "${APP}"
    Call RemoveSetAside
    ${If} $AsideAtSignIn = 1
        WriteRegStr HKCU "${RUN_ONCE_KEY}" "${PRODUCT}" '"$SYSDIR\cmd.exe" /d /c ${ASIDE_REMOVAL}'
    ${EndIf}
    WriteUninstaller "$INSTDIR\${UNINSTALLER}"

    ; The Start-menu entry opens the settings; at sign-in only the tray starts, quietly.
    SetShellVarContext current
    CreateShortcut "$SMPROGRAMS\${SHORTCUT}" "$INSTDIR\${APP}" "--settings" "$INSTDIR\${APP}" 0
    WriteRegStr HKCU "${RUN_KEY}" "${PRODUCT}" '"$INSTDIR\${APP}"'

    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "${PRODUCT}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${SAVER},0"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\${UNINSTALLER}"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\${UNINSTALLER}" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
    ; In kilobytes: the three files this installer wrote.
    ${GetSize} "$INSTDIR" "/M=${SAVER} /S=0K /G=0" $1 $2 $3
    ${GetSize} "$INSTDIR" "/M=${APP} /S=0K /G=0" $4 $2 $3
    IntOp $1 $1 + $4
    ${GetSize} "$INSTDIR" "/M=${UNINSTALLER} /S=0K /G=0" $4 $2 $3
    IntOp $1 $1 + $4
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $1

    ; What the system's own "Install" of a screen saver does: select it, and turn the saver on.
    !insertmacro SaverSelectionPath
    WriteRegStr HKCU "${DESKTOP_KEY}" "SCRNSAVE.EXE" "$0"
    WriteRegStr HKCU "${DESKTOP_KEY}" "ScreenSaveActive" "1"
    System::Call "user32::SystemParametersInfoW(i ${SPI_SETSCREENSAVEACTIVE}, i 1, p 0, \
        i ${SPIF_SENDCHANGE})"
SectionEnd

; Only from the finish page, which a silent install never shows.
Function OpenScreenSaverSettings
    Exec '"$SYSDIR\control.exe" desk.cpl,,@screensaver'
FunctionEnd

; An install that failed leaves the version from before in place: the files set aside go back.
Function .onInstFailed
    ${If} $SaverAside != ""
        Delete "$INSTDIR\${SAVER}"
        Rename "$SaverAside" "$INSTDIR\${SAVER}"
    ${EndIf}
    ${If} $AppAside != ""
        Delete "$INSTDIR\${APP}"
        Rename "$AppAside" "$INSTDIR\${APP}"
    ${EndIf}
FunctionEnd

; Once the setup's window has closed: start the tray and open Lumivane's settings, so that a new
; user can sign in and bring photos. A silent install starts nothing.
Function .onInstSuccess
    ${IfNot} ${Silent}
        Exec '"$INSTDIR\${APP}" --settings'
    ${EndIf}
FunctionEnd

Section "Uninstall"
    Call un.EndRunningApp
    ; Both programs out of the way first, so that nothing is removed when either can't be. One
    ; that still runs (a Lumivane.exe that did not end, the screen saver or its preview) runs on
    ; from its set-aside file, which goes once it has ended (un.RemoveSetAside); the name is free
    ; at once, for an install that follows before then.
    Push "${APP}"
    Call un.SetAside
    Pop $AppAside
    ; Taken while the file still has its name: its short form needs it.
    !insertmacro SaverSelectionPath
    Push "${SAVER}"
    Call un.SetAside
    Pop $SaverAside
    ${If} ${FileExists} "$INSTDIR\${APP}"
    ${OrIf} ${FileExists} "$INSTDIR\${SAVER}"
        ${If} $AppAside != ""
            Rename "$AppAside" "$INSTDIR\${APP}"
        ${EndIf}
        ${If} $SaverAside != ""
            Rename "$SaverAside" "$INSTDIR\${SAVER}"
        ${EndIf}
        MessageBox MB_OK|MB_ICONEXCLAMATION "${PRODUCT} could not be removed from $INSTDIR: \
            another program holds its files. Nothing was removed; run the uninstall again \
            later." /SD IDOK
        SetErrorLevel 2
        Abort
    ${EndIf}

    ; The selection is cleared only while it still names this file: a user who has chosen
    ; another screen saver since keeps it.
    ReadRegStr $1 HKCU "${DESKTOP_KEY}" "SCRNSAVE.EXE"
    ${If} $1 == "$INSTDIR\${SAVER}"
    ${OrIf} $1 == $0
        DeleteRegValue HKCU "${DESKTOP_KEY}" "SCRNSAVE.EXE"
        WriteRegStr HKCU "${DESKTOP_KEY}" "ScreenSaveActive" "0"
        System::Call "user32::SystemParametersInfoW(i ${SPI_SETSCREENSAVEACTIVE}, i 0, p 0, \
            i ${SPIF_SENDCHANGE})"
    ${EndIf}

    ; The sign-in entry goes only while it still starts this Lumivane.exe (the comparison ignores
    ; case): an entry the user changed since stays.
    ReadRegStr $1 HKCU "${RUN_KEY}" "${PRODUCT}"
    ${If} $1 == '"$INSTDIR\${APP}"'
        DeleteRegValue HKCU "${RUN_KEY}" "${PRODUCT}"
    ${EndIf}
    SetShellVarContext current
    Delete "$SMPROGRAMS\${SHORTCUT}"

    ; Exactly what the installer wrote. The folder goes only when nothing else is left in it;
    ; photos, the photo directory and the data folder with its log and crash reports live
    ; elsewhere and are never touched.
    Delete "$INSTDIR\${UNINSTALLER}"
    Push "${SAVER}"
    Call un.RemoveSetAside
    Push "${APP}"
    Call un.RemoveSetAside
    RMDir "$INSTDIR"
    ; Set-aside files that wait for their removal take the folder along when it is empty then.
    ${If} $AsideAtSignIn = 1
        WriteRegStr HKCU "${RUN_ONCE_KEY}" "${PRODUCT}" \
            '"$SYSDIR\cmd.exe" /d /c ${ASIDE_REMOVAL} & rmdir "$INSTDIR" 2>nul'
    ${ElseIf} $AsideLeft = 1
        StrCpy $1 "$INSTDIR"
        System::Call "kernel32::MoveFileExW(w r1, p 0, i ${MOVEFILE_DELAY_UNTIL_REBOOT})"
    ${EndIf}
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
SectionEnd
