#include "audio/module_player.h"

#include "audio/module_player_state.h"
#include "audio/sound_device.h"

#include <libmodplug/modplug.h>

namespace {

constexpr int32_t registryStep = 16;
constexpr int32_t masterVolume = 512; // the library's ceiling; the loud setting is meant
constexpr int32_t streamBytes = 204800;
constexpr DWORD pollInterval = 10; // milliseconds
constexpr SIZE_T threadStack = 8192;

ModulePlayer* lookUp(ObjectId number) {
    return static_cast<ModulePlayer*>(Registry_Lookup(moduleRegistry, number));
}

// Renders the half at `offset`. False if the buffer could not be locked: then the old bytes stand.
bool renderHalf(ModulePlayer* player, DWORD offset, DWORD half) {
    void* region;
    DWORD size;
    if (player->streamBuffer->Lock(offset, half, &region, &size, nullptr, nullptr, 0) != DS_OK)
        return false;
    ModPlug_Read(player->module, region, static_cast<int>(half));
    player->streamBuffer->Unlock(region, size, nullptr, 0);
    return true;
}

// What the render thread knows of the buffer between two looks at the play cursor.
struct RenderState {
    DWORD half;    // bytes
    int32_t phase; // 1: the second half is due next; 0: the first
    bool pending;  // a half is due and not rendered yet
    DWORD offset;  // of that half
};

// A half is due once the cursor has left it. A cursor exactly on the middle triggers neither.
void lookAtCursor(RenderState* state, DWORD cursor) {
    if (state->phase == 0 && cursor > state->half) {
        state->pending = true;
        state->offset = 0;
    }
    if (state->phase == 1 && cursor < state->half) {
        state->pending = true;
        state->offset = state->half;
    }
}

void renderPass(ModulePlayer* player, RenderState* state) {
    DWORD cursor = 0;
    player->streamBuffer->GetCurrentPosition(&cursor, nullptr);
    lookAtCursor(state, cursor);
    if (state->pending && renderHalf(player, state->offset, state->half)) {
        state->pending = false;
        state->phase = 1 - state->phase;
    }
}

bool startThread(ModulePlayer* player) {
    HANDLE thread = CreateThread(nullptr, threadStack, Module_RenderThread, player, 0, nullptr);
    if (!thread)
        return false;
    CloseHandle(thread); // its end shows in renderRunning alone
    return true;
}

void stopEvery() {
    ObjectId number;
    Registry_IterStart(moduleRegistry);
    while (Registry_IterNext(moduleRegistry, &number))
        Module_Stop(number);
}

// A module without a stream buffer must not look alive: playing or freeing it would go astray.
bool giveBuffer(ModulePlayer* player) {
    player->bufferBytes = streamBytes;
    player->streamBuffer = Sound_CreateStreamBuffer(2, 44100, streamBytes);
    if (player->streamBuffer)
        return true;
    ModPlug_Unload(player->module);
    return false;
}

} // namespace

void Module_SubsystemInit() {
    moduleRegistry = Registry_New(sizeof(ModulePlayer), registryStep, Module_Free);
    ModPlug_Settings settings;
    ModPlug_GetSettings(&settings);
    settings.mLoopCount = -1; // every backward jump of a song is taken
    ModPlug_SetSettings(&settings);
}

void Module_SubsystemEnd() { Registry_FreeAll(moduleRegistry); }

ModulePlayer* Module_FromMemory(ObjectId number, const void* data, int32_t length) {
    auto* player = static_cast<ModulePlayer*>(Registry_Claim(moduleRegistry, number));
    player->module = ModPlug_Load(data, length);
    if (player->module) {
        ModPlug_SetMasterVolume(player->module, masterVolume);
        if (giveBuffer(player))
            return player;
    }
    Registry_GiveUp(moduleRegistry, number, player);
    return nullptr;
}

int64_t Module_Play(ObjectId number) {
    ModulePlayer* player = lookUp(number);
    if (!player)
        return 0;
    Module_Stop(number);
    player->playing = 1;
    renderHalf(player, 0, static_cast<DWORD>(player->bufferBytes / 2));
    const bool started = startThread(player);
    player->streamBuffer->SetCurrentPosition(0);
    player->streamBuffer->Play(0, 0, DSBPLAY_LOOPING);
    return started ? 1 : 0;
}

void Module_Stop(ObjectId number) {
    if (number == ObjectId_Any) {
        stopEvery();
        return;
    }
    ModulePlayer* player = lookUp(number);
    if (!player || player->playing == 0)
        return;
    player->playing = 0;
    player->streamBuffer->Stop();
    while (player->renderRunning != 0)
        Sleep(pollInterval);
}

void Module_Free(ObjectId number) {
    ModulePlayer* player = lookUp(number);
    if (!player)
        return;
    Module_Stop(number);
    ModPlug_Unload(player->module);
    player->streamBuffer->Release();
    Registry_Release(moduleRegistry, number);
}

DWORD WINAPI Module_RenderThread(void* record) {
    auto* player = static_cast<ModulePlayer*>(record);
    RenderState state{static_cast<DWORD>(player->bufferBytes / 2), 1, false, 0};
    player->renderRunning = 1;
    while (player->playing == 1) {
        Sleep(pollInterval);
        renderPass(player, &state);
    }
    player->renderRunning = 0;
    return 0;
}
