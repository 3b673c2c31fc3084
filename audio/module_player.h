// Plays a tracker module as endless background music: libmodplug renders it, a looping stream
// buffer of two halves plays it, and a render thread rewrites each half when the play cursor has
// left it.
//
// The song is endless only because it ends in a backward jump of its own; a song without one is
// heard once and then silence. Nothing here rewinds.
//
// All operations belong to one thread, the main one. While a module plays, no number beyond the
// registry's first capacity may be claimed, since the render thread holds its record's address; and
// only one module may play, since the library mixes process-wide.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>

struct ModulePlayer;

void Module_SubsystemInit();

// Stops and frees every module. To be run before the sound device ends.
void Module_SubsystemEnd();

// Loads a module, after freeing the one under that number. The record; null on failure, and the
// number is then empty. Needs the sound device.
ModulePlayer* Module_FromMemory(ObjectId number, const void* data, int32_t length);

// Begins the song or lets it go on from where rendering stopped, up to a whole buffer further than
// what was heard. 1 if the render thread was started.
int64_t Module_Play(ObjectId number);

// Stops the music and waits, without limit, until the render thread is gone. ObjectId_Any stops
// every module.
void Module_Stop(ObjectId number);

void Module_Free(ObjectId number);
