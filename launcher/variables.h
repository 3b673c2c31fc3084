// The launcher's one block of variables, cleared to zero as its very first act. Its logic keeps
// nothing anywhere else. Numbers are signed 64-bit; a null text is the empty text.
#pragma once

#include "launcher/catalogue.h"
#include "runtime/linked_list.h"
#include "runtime/text.h"

#include <cstdint>

struct ProcessHandle;

constexpr int64_t MenuMode_Catalogue = 0;
constexpr int64_t MenuMode_Info = 1;

struct LauncherVariables {
    int64_t ExitCode;           // nothing ever writes it: the exit code is 0 on every road
    TextVariable CurrentDir;    // holds the data file; ends in a backslash
    TextVariable TempDir;       // ends in a backslash
    int64_t SelectedRow;        // index of the highlighted catalogue row
    int64_t ModuleNumber;       // the tracker module's object number
    ProcessHandle* ChildHandle; // of the intro that ran last
    int64_t InfoLineCount;      // lines in InfoLines, at least 1 once the file was read
    int64_t MenuMode;           // which page is shown
    int64_t InfoFirstLine;      // first line shown on the info page
    int64_t InfoPageSize;       // lines a page, and step of paging
    int64_t RowIndex;           // loop counter, and scratch for results that nobody reads
    TextVariable DataFileName;
    TextVariable StagedExeName;  // what the data file is called once it is staged
    TextVariable DataSourcePath; // CurrentDir and DataFileName
    TextVariable StagedExePath;  // the staging folder and StagedExeName
    int64_t MenuTop;             // y of the first row or line
    int64_t DrawY;               // y of the line being drawn
    int64_t DrawX;               // x of the line being drawn
    TextVariable IntroPath;      // of the intro being run
    int64_t WaitResult;          // of the last Proc_WaitEnd
    IntroEntry* IntroCatalogue;
    LinkedList* InfoLines;
    ListElement* InfoLineCurrent; // kept by the list
};

inline LauncherVariables Launcher = {};

// Clears the block, and the two program variables that the runtime reads.
void Variables_Clear();
