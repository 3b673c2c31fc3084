// The road of the intros: the data file is copied into a private folder under the temp folder and
// run there, so that it unpacks the intros beside itself; later each launch runs one of them from
// there. The extractor runs unwatched: the menu comes up at once and never learns when, or whether,
// it has finished.
#pragma once

#include "launcher/joined_text.h"

constexpr char Staging_FolderName[] = "Qev\\"; // under the temp folder

// Takes the folders and builds the paths.
void Staging_BuildPaths();

// Clears the folder, stages the data file and starts it. Does not come back if there is no data
// file: the program ends with a message.
void Staging_Run();

// Deletes the folder with all that is in it.
void Staging_RemoveFolder();

// The folder's path. It is not stored: it is joined again at each use.
JoinedText Staging_Folder();
