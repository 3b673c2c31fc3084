// The state of module_player.cpp, for that file and its tests only.
#pragma once

#include "runtime/object_registry.h"

#include <atomic>
#include <cstdint>
#include <windows.h>

#include <dsound.h>

struct _ModPlugFile;

// The main thread writes `playing`, the render thread writes `renderRunning`. There is no lock:
// these two flags are the whole hand-over. Module_Stop waits only for a thread that has set
// `renderRunning`. If a stop comes before the new thread has done that, it does not wait, and the
// thread then runs along with whatever follows: after an immediate restart two threads render the
// same song at the same time, until the next stop. Intentional: the launcher draws many frames
// between a start and the next stop.
struct ModulePlayer {
    _ModPlugFile* module;             // owned
    std::atomic<int32_t> playing;     // 1 from Module_Play to Module_Stop
    IDirectSoundBuffer* streamBuffer; // owned
    int32_t bufferBytes;
    std::atomic<int32_t> renderRunning; // 1 while the render thread lives
};
static_assert(sizeof(ModulePlayer) == 32 && sizeof(std::atomic<int32_t>) == 4);

inline ObjectRegistry* moduleRegistry = nullptr;

// The render thread of one record.
DWORD WINAPI Module_RenderThread(void* record);
