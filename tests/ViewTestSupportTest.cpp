#include "ViewTestSupport.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QDebug>
#include <cstdio>
#include <string>

TEST(ViewTestSupport, AWarningThatIsNotDeclaredFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(qWarning("no such thing"), "Qt warns: no such thing");
}

TEST(ViewTestSupport, ADeclaredWarningMayComeOnce) {
    const QtWarningExpected expected("such");
    qWarning("no such thing");
    EXPECT_NONFATAL_FAILURE(qWarning("no such thing"), "Qt warns: no such thing");
}

TEST(ViewTestSupport, ADeclaredWarningThatDoesNotComeFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(QtWarningExpected("such"), "Qt did not warn of: such");
}

TEST(ViewTestSupport, TheProcessWritesADecimalComma) {
    char text[8];
    std::snprintf(text, sizeof text, "%.1f", 2.5);
    EXPECT_EQ(std::string(text), "2,5");
}
