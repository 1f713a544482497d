#include <apps/common/KWProgress.h>
#include <gtest/gtest.h>

TEST(KWProgress, ShowsBarRateAndTimeLeft) {
    EXPECT_EQ(kwProgressLine("Baking", "times", 500, 1000, 10, 80),
              "Baking [==========>         ]  50%  50 times/s  0:10 left");
}

TEST(KWProgress, ShowsThousandsAndHours) {
    EXPECT_EQ(kwProgressLine("Baking", "times", 125000, 125000 * 1000ULL, 10, 80),
              "Baking [>                   ]   0%  12.5k times/s  2:46:30 left");
}

TEST(KWProgress, ShowsNoRateBeforeAnythingIsDone) {
    EXPECT_EQ(kwProgressLine("Baking", "times", 0, 1000, 0, 80),
              "Baking [>                   ]   0%");
}

TEST(KWProgress, IsFullAtTheEndAndForNothing) {
    EXPECT_EQ(kwProgressLine("Baking", "times", 7, 7, 7, 80),
              "Baking [====================] 100%  1 times/s  0:00 left");
    EXPECT_EQ(kwProgressLine("Baking", "times", 9, 7, 0, 80), "Baking [====================] 100%");
    EXPECT_EQ(kwProgressLine("Baking", "times", 0, 0, 1, 80), "Baking [====================] 100%");
}

TEST(KWProgress, LeavesOutWhatDoesNotFit) {
    EXPECT_EQ(kwProgressLine("Baking", "times", 500, 1000, 10, 50),
              "Baking [==========>         ]  50%  50 times/s");
    EXPECT_EQ(kwProgressLine("Baking", "times", 500, 1000, 10, 10), "");
}
