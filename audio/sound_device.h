// The sound output: opens DirectSound, bound at run time, and hands out stream buffers. It mixes
// nothing and feeds nothing. Main thread only; the module player's thread uses a buffer's own
// methods and nothing of this.
//
// There is no fallback to silence: without a working output the set-up fails, and nothing may be
// asked of the device then.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>

struct IDirectSoundBuffer;

// The registry; null on any failure.
ObjectRegistry* Sound_SubsystemInit();

// Safe when set-up never ran, and after it failed. Stream buffers must be gone by then.
void Sound_SubsystemEnd();

// A looping 16-bit PCM ring of `bytes`, owned by the caller; null on failure. Its content is what
// the device gives it.
IDirectSoundBuffer* Sound_CreateStreamBuffer(int32_t channels, uint32_t samplesPerSecond,
                                             uint32_t bytes);
