#include <KWBase/KWVectorTarget.h>

#include <gtest/gtest.h>
#include <tests/VectorTargets.h>

#include <algorithm>
#include <string>
#include <vector>

TEST(KWVectorTarget, TheBestComesFirstAndTheBaselineLast) {
    const auto targets = KWVectorTargets();
    ASSERT_FALSE(targets.empty());
    EXPECT_EQ(targets.back(), KWVectorTarget::baseline);
    EXPECT_TRUE(std::is_sorted(targets.rbegin(), targets.rend()));
    EXPECT_EQ(std::adjacent_find(targets.begin(), targets.end()), targets.end());
}

TEST(KWVectorTarget, TheBestIsInUseUntilAnotherIsSet) {
    EXPECT_EQ(KWVectorTargetInUse(), KWVectorTargets().front());
    KWUseVectorTarget(KWVectorTarget::baseline);
    EXPECT_EQ(KWVectorTargetInUse(), KWVectorTarget::baseline);
    KWUseVectorTarget(KWVectorTargets().front());
    EXPECT_EQ(KWVectorTargetInUse(), KWVectorTargets().front());
}

#if defined(__x86_64__)
// What the compiler's own run-time library finds.
TEST(KWVectorTarget, AreThoseThatTheProcessorHas) {
    const auto targets = KWVectorTargets();
    const auto has = [&](KWVectorTarget target) {
        return std::find(targets.begin(), targets.end(), target) != targets.end();
    };
    EXPECT_EQ(has(KWVectorTarget::ssse3), __builtin_cpu_supports("ssse3") != 0);
    EXPECT_EQ(has(KWVectorTarget::avx2), __builtin_cpu_supports("avx2") &&
                                             __builtin_cpu_supports("fma") &&
                                             __builtin_cpu_supports("bmi2"));
    EXPECT_EQ(has(KWVectorTarget::avx512),
              __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                  __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"));
}
#endif

TEST(KWVectorTarget, EachHasAName) {
    std::vector<std::string> names;
    underEachTarget([&](const char* name) { names.push_back(name); });
    EXPECT_EQ(names.back(), "baseline");
    EXPECT_EQ(names.size(), KWVectorTargets().size());
}
