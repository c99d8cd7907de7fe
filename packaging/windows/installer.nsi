; The installer for 64-bit Windows, both widths, as IVI-3.17 has it: makensis -DVERSION=1.0.0 -DVERSION4=1.0.0.0 -DFILES=files.nsh -DOUTPUT=KVX2800T-setup.exe
; files.nsh (make_installer.py) names the files. What has been changed is put back when the rest cannot be done: what is in
; the way is moved aside, and goes only at the end.
Unicode true
Target amd64-unicode
!ifdef QUICK
  SetCompress off
!else
  SetCompressor /SOLID lzma
!endif
ManifestSupportedOS all
RequestExecutionLevel admin
SetOverwrite try
AllowSkipFiles off
ShowInstDetails show
ShowUninstDetails show

!include LogicLib.nsh
!include FileFunc.nsh
!include WordFunc.nsh
!include WinVer.nsh
!include x64.nsh
!include MUI2.nsh

!define PREFIX KVX2800T
!define PRODUCT "KVX2800T IVI-C driver"
!define VENDOR "Tessaro Instruments"
!define OWN_FOLDER "Drivers\${PREFIX}"
!define UNINSTALL_KEY "SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\${PREFIX}"
!define ASIDE ".kvx2800t-before"

; Exit codes, as readme.txt has them.
!define EXIT_FAILED 2
!define EXIT_MACHINE 3
!define EXIT_OLDER 4
!define EXIT_OTHER_VENDOR 5
!define EXIT_NO_IVI 6
!define EXIT_COMMAND_LINE 7

Name "${PRODUCT} ${VERSION}"
OutFile "${OUTPUT}"
InstallDir ""
BrandingText "${VENDOR}"
VIProductVersion ${VERSION4}
VIAddVersionKey ProductName "${PRODUCT}"
VIAddVersionKey ProductVersion ${VERSION4}
VIAddVersionKey FileVersion ${VERSION4}
VIAddVersionKey FileDescription "Installer of the ${PRODUCT}"
VIAddVersionKey CompanyName "${VENDOR}"
VIAddVersionKey LegalCopyright "${VENDOR}"

Var Root64       ; IVI's root folders, without a backslash at the end
Var Root32
Var Registered64 ; those that the machine has; empty without the IVI shared components
Var Registered32
Var Previous     ; root of an installation to be replaced; empty without one
Var Log          ; handles of files; empty while there is none
Var Manifest
Var Aside
Var Said         ; the last line of the log
Var Entered      ; 1 when the driver has come into the configuration store

!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_LICENSE "${LICENSE}"
!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_CUSTOMFUNCTION_PRE skipRegisteredRoot
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE checkRoots
!define MUI_DIRECTORYPAGE_TEXT_TOP "The root folder of IVI for 64-bit files. Those for 32 bits go beside it."
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; ---- the log -------------------------------------------------------------------------------------------------------

!macro Say TEXT
  Push `${TEXT}`
  !ifdef __UNINSTALL__
    Call un.say
  !else
    Call say
  !endif
!macroend
!define Say `!insertmacro Say`

; What installing and uninstalling share.
!macro Common un
  Function ${un}say
    Pop $Said
    DetailPrint "$Said"
    ${If} $Log != ""
      FileWrite $Log "$Said$\r$\n"
    ${EndIf}
  FunctionEnd

  ; The rest of the argument that begins with the text on the stack, in any letter case; errors without such an
  ; argument. An argument may be in quotes, all of it or its value.
  Function ${un}option
    Exch $0
    Push $1
    Push $2
    Push $3
    Push $4
    Push $5
    Push $6
    StrLen $5 $0
    StrCpy $6 ""
    System::Call 'kernel32::GetCommandLineW() p .r1'
    System::Call 'shell32::CommandLineToArgvW(p r1, *i .r2) p .r1'
    StrCpy $3 1
    ClearErrors
    ${Do}
      ${If} $3 >= $2
        SetErrors
        ${Break}
      ${EndIf}
      IntOp $4 $3 * ${NSIS_PTR_SIZE}
      IntPtrOp $4 $1 + $4
      System::Call '*$4(p .r4)'
      System::Call 'kernel32::lstrcpynW(w .r6, p r4, i ${NSIS_MAX_STRLEN})'
      StrCpy $4 $6 $5
      ${If} $4 == $0
        StrCpy $6 $6 "" $5
        ${Break}
      ${EndIf}
      StrCpy $6 ""
      IntOp $3 $3 + 1
    ${Loop}
    StrCpy $0 $6
    Pop $6
    Pop $5
    Pop $4
    Pop $3
    Pop $2
    Pop $1
    Exch $0
  FunctionEnd

  ; Ends the program before it has changed anything: reason and exit code are on the stack.
  Function ${un}refuse
    Pop $R0
    Pop $R1
    ${Say} "refused: $R1"
    ${If} $Log != ""
      FileClose $Log
      StrCpy $Log ""
    ${EndIf}
    MessageBox MB_OK|MB_ICONSTOP "$R1" /SD IDOK
    SetErrorLevel $R0
    Quit
  FunctionEnd

  ; The log that /LOG=file asks for.
  Function ${un}openLog
    StrCpy $Log ""
    Push "/LOG="
    Call ${un}option
    Pop $R2
    ${If} $R2 != ""
      ClearErrors
      FileOpen $Log "$R2" w
      ${If} ${Errors}
        StrCpy $Log ""
        Push "The log file $R2 cannot be written."
        Push ${EXIT_COMMAND_LINE}
        Call ${un}refuse
      ${EndIf}
    ${EndIf}
    ${Say} "${PRODUCT} ${VERSION}"
  FunctionEnd

  Function ${un}requireAdministrator
    UserInfo::GetAccountType
    Pop $R0
    ${If} $R0 != "Admin"
      Push "Only an administrator can do this."
      Push ${EXIT_MACHINE}
      Call ${un}refuse
    ${EndIf}
  FunctionEnd

  ; Takes the line's end off $R0.
  Function ${un}trimLine
    ${Do}
      StrCpy $R9 $R0 1 -1
      ${If} $R9 == "$\r"
      ${OrIf} $R9 == "$\n"
        StrCpy $R0 $R0 -1
      ${Else}
        ${Break}
      ${EndIf}
    ${Loop}
  FunctionEnd

  ; Removes what the list in $R5 names: files, then the folders in reverse order, as far as they are empty.
  Function ${un}removeListed
    StrCpy $R6 0
    ClearErrors
    FileOpen $R7 "$R5" r
    ${IfNot} ${Errors}
      ${Do}
        ClearErrors
        FileReadUTF16LE $R7 $R0
        ${If} ${Errors}
          ${Break}
        ${EndIf}
        Call ${un}trimLine
        StrCpy $R1 $R0 1
        StrCpy $R0 $R0 "" 2
        ${If} $R1 == "D"
          Push $R0
          IntOp $R6 $R6 + 1
        ${ElseIf} ${FileExists} "$R0"
          ClearErrors
          Delete /REBOOTOK "$R0"
          ${If} ${FileExists} "$R0"
            ${Say} "goes when Windows starts anew: $R0"
          ${Else}
            ${Say} "removed file $R0"
          ${EndIf}
        ${EndIf}
      ${Loop}
      FileClose $R7
    ${EndIf}
    ${DoWhile} $R6 > 0
      Pop $R0
      IntOp $R6 $R6 - 1
      ${If} ${FileExists} "$R0\*.*"
        ClearErrors
        RMDir "$R0"
        ${IfNot} ${Errors}
          ${Say} "removed folder $R0"
        ${EndIf}
      ${EndIf}
    ${Loop}
    ClearErrors
  FunctionEnd

  ; Runs the store tool with the command in $R0; its exit code is in $R1 then, and in $R0 what it has said.
  Function ${un}runStoreTool
    StrCpy $R2 $R0
    nsExec::ExecToStack '"$Root64\${OWN_FOLDER}\Platform\x64\kvx2800t-store.exe" $R2'
    Pop $R1
    Pop $R0
    Call ${un}trimLine
    ${Say} "kvx2800t-store $R2: exit code $R1, $R0"
  FunctionEnd
!macroend
!insertmacro Common ""
!insertmacro Common "un."

; ---- putting files in place, and back ------------------------------------------------------------------------------

!macro Fail TEXT
  Push `${TEXT}`
  Call fail
!macroend
!define Fail `!insertmacro Fail`

; Puts everything back: what is new goes, what was moved aside returns.
Function fail
  Pop $R8
  ${Say} "failed: $R8"
  ${If} $Entered = 1
    StrCpy $R0 "unregister"
    Call runStoreTool
  ${EndIf}
  FileClose $Manifest
  FileClose $Aside
  SetOutPath "$TEMP"
  StrCpy $R5 "$PLUGINSDIR\installed.txt"
  Call removeListed
  ClearErrors
  FileOpen $R7 "$PLUGINSDIR\aside.txt" r
  ${Do}
    ClearErrors
    FileReadUTF16LE $R7 $R0
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    Call trimLine
    Rename "$R0${ASIDE}" "$R0"
    ${Say} "put back $R0"
  ${Loop}
  FileClose $R7
  ${Say} "nothing is changed"
  ${If} $Log != ""
    FileClose $Log
    StrCpy $Log ""
  ${EndIf}
  MessageBox MB_OK|MB_ICONSTOP "$R8$\r$\n$\r$\nEverything is as it was before." /SD IDOK
  SetErrorLevel ${EXIT_FAILED}
  Abort "$R8"
FunctionEnd

; Moves the file on the stack aside, when there is one.
Function moveAside
  Exch $0
  ${If} ${FileExists} "$0"
    Delete "$0${ASIDE}"
    ClearErrors
    Rename "$0" "$0${ASIDE}"
    ${If} ${Errors}
      ${Fail} "$0 cannot be replaced. Does a program use it?"
    ${EndIf}
    FileWriteUTF16LE $Aside "$0$\r$\n"
  ${EndIf}
  Pop $0
FunctionEnd

; Makes the folder on the stack, and those above it, noting which are new.
Function makeFolder
  Exch $0
  ${IfNot} ${FileExists} "$0\*.*"
    Push $0
    ${GetParent} "$0" $0
    Push $0
    Call makeFolder
    Pop $0
    ClearErrors
    CreateDirectory "$0"
    ${If} ${Errors}
      ${Fail} "The folder $0 cannot be made."
    ${EndIf}
    FileWriteUTF16LE $Manifest "D $0$\r$\n"
    ${Say} "made folder $0"
  ${EndIf}
  Pop $0
FunctionEnd

!macro Put ROOT FOLDER NAME SOURCE
  Push "${ROOT}\${FOLDER}"
  Call makeFolder
  SetOutPath "${ROOT}\${FOLDER}"
  Push "$OUTDIR\${NAME}"
  Call moveAside
  FileWriteUTF16LE $Manifest "F $OUTDIR\${NAME}$\r$\n"
  ClearErrors
  File "/oname=${NAME}" "${SOURCE}"
  ${If} ${Errors}
    ${Fail} "$OUTDIR\${NAME} cannot be written."
  ${EndIf}
  ${Say} "installed file $OUTDIR\${NAME}"
!macroend
!include "${FILES}"

; Moves aside all that the previous installation lists, and takes its folders for this one's.
Function moveAsidePrevious
  System::Call 'kernel32::CopyFileW(w "$Previous\${OWN_FOLDER}\installed.txt", w "$PLUGINSDIR\previous.txt", i 0)'
  ClearErrors
  FileOpen $R7 "$PLUGINSDIR\previous.txt" r
  ${If} ${Errors}
    Return
  ${EndIf}
  ${Do}
    ClearErrors
    FileReadUTF16LE $R7 $R0
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    Call trimLine
    StrCpy $R1 $R0 1
    StrCpy $R0 $R0 "" 2
    ${If} $R1 == "D"
      FileWriteUTF16LE $Manifest "D $R0$\r$\n"
    ${Else}
      Push $R0
      Call moveAside
    ${EndIf}
  ${Loop}
  FileClose $R7
FunctionEnd

; What was moved aside goes for good.
Function removeAside
  FileOpen $R7 "$PLUGINSDIR\aside.txt" r
  ${Do}
    ClearErrors
    FileReadUTF16LE $R7 $R0
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    Call trimLine
    Delete /REBOOTOK "$R0${ASIDE}"
    ${If} ${FileExists} "$R0"
      ${Say} "replaced what was $R0"
    ${Else}
      ${Say} "removed file $R0"
    ${EndIf}
  ${Loop}
  FileClose $R7
FunctionEnd

; ---- what is installed ---------------------------------------------------------------------------------------------

Section "-begin"
  StrCpy $Root64 $INSTDIR
  StrCpy $Entered 0
  InitPluginsDir
  FileOpen $Manifest "$PLUGINSDIR\installed.txt" w
  FileOpen $Aside "$PLUGINSDIR\aside.txt" w
  ${Say} "root for 64 bits: $Root64"
  ${Say} "root for 32 bits: $Root32"
  ${If} $Previous != ""
    ${Say} "replacing the installation in $Previous"
    Call moveAsidePrevious
  ${EndIf}
SectionEnd

Section "Driver" DRIVER
  SectionIn RO
  !insertmacro DriverFiles
SectionEnd

Section /o "Stand-ins for VISA and the IVI shared components" STAND_INS
  !insertmacro StandInFiles
SectionEnd

Section "-end"
  SetOutPath "$Root64\${OWN_FOLDER}"
  ; The list, and the uninstaller, which has to come from this program.
  Push "$OUTDIR\uninstall.exe"
  Call moveAside
  Push "$OUTDIR\installed.txt"
  Call moveAside
  FileWriteUTF16LE $Manifest "F $OUTDIR\uninstall.exe$\r$\n"
  FileWriteUTF16LE $Manifest "F $OUTDIR\installed.txt$\r$\n"
  ClearErrors
  WriteUninstaller "$OUTDIR\uninstall.exe"
  ${If} ${Errors}
    ${Fail} "$OUTDIR\uninstall.exe cannot be written."
  ${EndIf}
  ${Say} "installed file $OUTDIR\uninstall.exe"

  FileClose $Manifest
  StrCpy $Manifest ""
  System::Call 'kernel32::CopyFileW(w "$PLUGINSDIR\installed.txt", w "$OUTDIR\installed.txt", i 0) i .R0'
  ${If} $R0 = 0
    ${Fail} "$OUTDIR\installed.txt cannot be written."
  ${EndIf}
  ${Say} "installed file $OUTDIR\installed.txt"

  StrCpy $R0 "register --create"
  Call runStoreTool
  ${If} $R1 != 0
    ${Fail} "The driver cannot be registered in the configuration store: $R0"
  ${EndIf}
  ${If} $Previous == ""
    StrCpy $Entered 1
  ${EndIf}

  ClearErrors
  SetRegView 64
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "${PRODUCT}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" Publisher "${VENDOR}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$Root64"
  WriteRegStr HKLM "${UNINSTALL_KEY}" Root32 "$Root32"
  WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$OUTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$OUTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
  ${If} ${SectionIsSelected} ${STAND_INS}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" StandIns 1
  ${Else}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" StandIns 0
  ${EndIf}
  ${If} ${Errors}
    ${Fail} "The driver cannot be entered into the list of programs."
  ${EndIf}
  ${Say} "wrote registry key HKLM\${UNINSTALL_KEY}"
  FileClose $Aside
  Call removeAside
  ${Say} "done"
  ${If} $Log != ""
    FileClose $Log
    StrCpy $Log ""
  ${EndIf}
  SetOutPath "$TEMP"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${DRIVER} "The driver for programs of 64 and 32 bits, headers, examples and manual."
  !insertmacro MUI_DESCRIPTION_TEXT ${STAND_INS} "Small libraries in a folder of the driver, for a machine without VISA or the IVI shared components. What is installed of those comes first."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; ---- before anything is changed ------------------------------------------------------------------------------------

!macro Refuse CODE TEXT
  Push `${TEXT}`
  Push ${CODE}
  Call refuse
!macroend
!define Refuse `!insertmacro Refuse`

; The company that a file's version resource names, in place of the path on the stack; empty without one.
Function companyOf
  Exch $0
  Push $1
  Push $2
  Push $3
  Push $4
  Push $5
  StrCpy $5 ""
  System::Call 'version::GetFileVersionInfoSizeW(w r0, *i .r1) i .r1'
  ${If} $1 > 0
    System::Alloc $1
    Pop $2
    System::Call 'version::GetFileVersionInfoW(w r0, i 0, i r1, p r2) i .r1'
    System::Call 'version::VerQueryValueW(p r2, w "\VarFileInfo\Translation", *p .r3, *i .r4) i .r1'
    ${If} $1 <> 0
      System::Call '*$3(&i2 .r1, &i2 .r4)'
      IntFmt $1 "%04X" $1
      IntFmt $4 "%04X" $4
      System::Call 'version::VerQueryValueW(p r2, w "\StringFileInfo\$1$4\CompanyName", *p .r3, *i .r4) i .r1'
      ${If} $1 <> 0
        System::Call '*$3(&w512 .r5)'
      ${EndIf}
    ${EndIf}
    System::Free $2
  ${EndIf}
  StrCpy $0 $5
  Pop $5
  Pop $4
  Pop $3
  Pop $2
  Pop $1
  Exch $0
FunctionEnd

; Refuses when the driver on the stack is another vendor's, or newer than this one.
Function checkDriver
  Pop $R3
  ${IfNot} ${FileExists} "$R3"
    Return
  ${EndIf}
  Push $R3
  Call companyOf
  Pop $R4
  ${If} $R4 != "${VENDOR}"
    ${Refuse} ${EXIT_OTHER_VENDOR} "$R3 is a driver of another vendor: $R4"
  ${EndIf}
  GetDLLVersion "$R3" $R0 $R1
  IntOp $R5 $R0 >> 16
  IntOp $R5 $R5 & 0xFFFF
  IntOp $R6 $R0 & 0xFFFF
  IntOp $R7 $R1 >> 16
  IntOp $R7 $R7 & 0xFFFF
  IntOp $R8 $R1 & 0xFFFF
  StrCpy $R4 "$R5.$R6.$R7.$R8"
  ${VersionCompare} "$R4" "${VERSION4}" $R0
  ${If} $R0 = 1
    ${Refuse} ${EXIT_OLDER} "$R3 has the version $R4, which is newer than ${VERSION4}. Remove it first to install this one."
  ${EndIf}
FunctionEnd

; The root that the IVI shared components have registered in this view of the registry, in $R0; empty without one.
Function registeredRoot
  ReadRegStr $R0 HKLM "SOFTWARE\IVI" "IviStandardRootDir"
  StrCpy $R1 $R0 1 -1
  ${If} $R1 == "\"
    StrCpy $R0 $R0 -1
  ${EndIf}
FunctionEnd

; The roots: those that are registered, those of the command line or of the previous installation, the usual ones.
Function chooseRoots
  SetRegView 32
  Call registeredRoot
  StrCpy $Registered32 $R0
  SetRegView 64
  Call registeredRoot
  StrCpy $Registered64 $R0
  ReadRegStr $Previous HKLM "${UNINSTALL_KEY}" InstallLocation
  Push "/ROOT32="
  Call option
  Pop $Root32
  ; NSIS takes /D= only as the last argument, without quotes.
  ${If} $INSTDIR == ""
    Push "/D="
    Call option
    Pop $INSTDIR
  ${EndIf}

  ${If} $Registered64 != ""
  ${AndIf} $INSTDIR != ""
  ${AndIf} $INSTDIR != $Registered64
    ${Refuse} ${EXIT_COMMAND_LINE} "/D=$INSTDIR: IVI's root folder for 64 bits is $Registered64."
  ${EndIf}
  ${If} $Registered32 != ""
  ${AndIf} $Root32 != ""
  ${AndIf} $Root32 != $Registered32
    ${Refuse} ${EXIT_COMMAND_LINE} "/ROOT32=$Root32: IVI's root folder for 32 bits is $Registered32."
  ${EndIf}

  ${If} $Root32 == ""
    StrCpy $Root32 $Registered32
  ${EndIf}
  ${If} $Root32 == ""
  ${AndIf} $INSTDIR != ""
    StrCpy $Root32 "$INSTDIR (x86)"
  ${EndIf}
  ${If} $Root32 == ""
    ReadRegStr $Root32 HKLM "${UNINSTALL_KEY}" Root32
  ${EndIf}
  ${If} $Root32 == ""
    StrCpy $Root32 "$PROGRAMFILES32\IVI Foundation\IVI"
  ${EndIf}
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR $Registered64
  ${EndIf}
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR $Previous
  ${EndIf}
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR "$PROGRAMFILES64\IVI Foundation\IVI"
  ${EndIf}
FunctionEnd

; Refuses roots that cannot be, and what is not to be replaced there.
Function checkRoots
  ${If} $Root32 == $INSTDIR
    ${Refuse} ${EXIT_COMMAND_LINE} "$INSTDIR cannot be IVI's root folder for 64 and for 32 bits."
  ${EndIf}
  Push "$INSTDIR\Bin\KVX2800T_64.dll"
  Call checkDriver
  Push "$Root32\Bin\KVX2800T.dll"
  Call checkDriver
FunctionEnd

; Takes the stand-ins when they are asked for, or were before. Without them IVI's shared components have to be there.
Function chooseStandIns
  SetRegView 64
  StrCpy $R2 0
  ReadRegDWORD $R2 HKLM "${UNINSTALL_KEY}" StandIns
  Push "/STANDINS"
  Call option
  Pop $R1
  ${IfNot} ${Errors}
    StrCpy $R2 1
  ${EndIf}
  ${If} $R2 = 1
    !insertmacro SelectSection ${STAND_INS}
    Return
  ${EndIf}
  ${If} $Registered64 != ""
  ${AndIf} $Registered32 != ""
  ${AndIf} ${FileExists} "$Registered64\Bin\IviSharedComponentVersion.dll"
  ${AndIf} ${FileExists} "$Registered32\Bin\IviSharedComponentVersion.dll"
    Return
  ${EndIf}
  MessageBox MB_YESNO|MB_ICONQUESTION "The IVI shared components are not on this machine. The IVI Foundation has their installer; it is to be run first.$\r$\n$\r$\nInstall the driver with stand-ins for them instead?" /SD IDNO IDYES standIns
  ${Refuse} ${EXIT_NO_IVI} "The IVI shared components are not on this machine. Run their installer first, which the IVI Foundation has, or ask for stand-ins by /STANDINS."
standIns:
  IntOp $R0 ${SF_SELECTED} | ${SF_RO}
  SectionSetFlags ${STAND_INS} $R0
FunctionEnd

Function skipRegisteredRoot
  ${If} $Registered64 != ""
    Abort
  ${EndIf}
FunctionEnd

Function .onInit
  Call openLog
  ${IfNot} ${AtLeastWin10}
    ${Refuse} ${EXIT_MACHINE} "This driver needs Windows 10 or later."
  ${EndIf}
  Call requireAdministrator
  Call chooseRoots
  Call chooseStandIns
  Call checkRoots
FunctionEnd

; ---- removing it ---------------------------------------------------------------------------------------------------

Function un.onInit
  Call un.openLog
  Call un.requireAdministrator
  ${GetParent} "$INSTDIR" $Root64
  ${GetParent} "$Root64" $Root64
FunctionEnd

Section "Uninstall"
  InitPluginsDir
  StrCpy $R4 0
  StrCpy $R0 "unregister"
  Call un.runStoreTool
  ${If} $R1 != 0
    StrCpy $R4 ${EXIT_FAILED}
  ${EndIf}
  RMDir /r "$INSTDIR\Python\kvx2800t\__pycache__"
  System::Call 'kernel32::CopyFileW(w "$INSTDIR\installed.txt", w "$PLUGINSDIR\installed.txt", i 0)'
  StrCpy $R5 "$PLUGINSDIR\installed.txt"
  SetOutPath "$TEMP"
  Call un.removeListed
  SetRegView 64
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
  ${Say} "removed registry key HKLM\${UNINSTALL_KEY}"
  ${If} $R4 = 0
    ${Say} "done"
  ${Else}
    ${Say} "done, but for the configuration store"
  ${EndIf}
  ${If} $Log != ""
    FileClose $Log
    StrCpy $Log ""
  ${EndIf}
  SetErrorLevel $R4
SectionEnd
