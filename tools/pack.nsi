; A silent self-extractor that unpacks its files beside itself. tools/pack calls it; by hand:
;   makensis -DLIST=files.nsh -DOUTPUT=OstrikVelmora2009.dat pack.nsi
; where files.nsh holds a line  File "PATH\NAME.exe"  for each intro.

Unicode true
Target amd64-unicode            ; 64 bits, as everything here
SetCompressor /SOLID lzma
SetDateSave off                 ; the same files give the same bytes
RequestExecutionLevel user      ; no question for administrator's rights
SilentInstall silent
Name "Ostrik Tessel Intros"
OutFile "${OUTPUT}"

Section
    SetOutPath "$EXEDIR"
    !include "${LIST}"
SectionEnd
