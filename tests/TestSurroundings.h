#pragma once

#include <csignal>
#include <cstdlib>

/// Every test sees the same surroundings, whoever runs it and where.
inline void makeTestSurroundings() {
    setenv("LOCPATH", KWBASE_TEST_LOCPATH, 1);
    setenv("LANGUAGE", "en", 1);
    setenv("KWBASE_SAMPLES", KWBASE_TEST_SAMPLES, 1);
    setenv("KWBASE_TEST_DATA", KWBASE_TEST_DATA, 1);
    setenv("KWBASE_KWCHANNEL", KWBASE_TEST_KWCHANNEL, 1);
    setenv("KWBASE_PYTHON", KWBASE_TEST_PYTHON, 1);
    // A shell starts what runs in its background with interrupts ignored.
    std::signal(SIGINT, SIG_DFL);
}
