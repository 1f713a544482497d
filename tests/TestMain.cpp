#include "TestSurroundings.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    makeTestSurroundings();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
