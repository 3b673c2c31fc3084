#include "tests/support/product_state.h"

#include <gtest/gtest.h>

namespace {

// Many tests run in one process, in any order: each begins as if the process had just started.
class FreshProduct : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override { resetProduct(); }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new FreshProduct);
    return RUN_ALL_TESTS();
}
