# The data file: a self-extractor that shows nothing and writes the intros into the folder in which
# it lies itself. tools/pack runs this; by hand, also on Windows, with NSIS 3 for 64 bits:
#
#     makensis -DFOLDER=folder-of-intros -DOUTPUT=OstrikVelmora2009.dat pack.nsi

Unicode true
Target amd64-unicode
Name "Ostrik Tessel Intros"
OutFile "${OUTPUT}"

SilentInstall silent
RequestExecutionLevel user   # the temp folder is the user's own
SetCompressor /SOLID lzma    # the intros share their stage: together they pack far better
SetDateSave off              # the same intros give the same data file

Section
    SetOutPath "$EXEDIR"
    File "${FOLDER}/*.exe"
SectionEnd
