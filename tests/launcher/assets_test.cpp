#include "assets/assets.h"

#include "tests/support/launcher_stage.h"

// The linker leads the product's calls of ModPlug_Load to the first of these.
struct _ModPlugFile;
extern "C" _ModPlugFile* __wrap_ModPlug_Load(const void* data, int size);
extern "C" _ModPlugFile* __real_ModPlug_Load(const void* data, int size);

namespace {

const void* loadedData = nullptr;
int loadedSize = 0;

} // namespace

_ModPlugFile* __wrap_ModPlug_Load(const void* data, int size) {
    loadedData = data;
    loadedSize = size;
    return __real_ModPlug_Load(data, size);
}

TEST(Assets, LieBackToBack) {
    EXPECT_EQ(ModuleData - BannerData, 259254);
    EXPECT_EQ(ModuleDataEnd - ModuleData, 13933);
}

TEST(Assets, ModuleIsHandedOverWithItsExactLength) {
    onStage([](LauncherStage& stage) {
        stage.run();
        EXPECT_EQ(loadedData, ModuleData);
        EXPECT_EQ(loadedSize, 13933);
    });
}
