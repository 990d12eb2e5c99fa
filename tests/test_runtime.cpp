// Core runtime: allocator replacement, bounded text, strings, messages and settings.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "alloc_fault.hpp"
#include "zel/runtime.h"

TEST(Allocator, AlignedAndReplaceable)
{
    for (int alignment : {64, 128, 4096}) {
        void *p = zel_serv_malloc(1000, alignment);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % alignment, 0u);
        zel_serv_free(p);
    }
    zel::test::allocator_probe probe;
    probe.fail_at(1);
    void *first = zel_serv_malloc(8, 64);
    void *second = zel_serv_malloc(8, 64);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(probe.live(), 1);
    zel_serv_free(first);
    zel_serv_free(nullptr);
    EXPECT_EQ(probe.live(), 0);
    EXPECT_EQ(probe.requests(), 2);
}

TEST(BoundedText, AppendsCutAndTerminate)
{
    char buffer[16];
    size_t remaining = sizeof buffer;
    char *end = zel_serv_sprintf_s(buffer, &remaining, "%s %d", "abc", 42);
    EXPECT_STREQ(buffer, "abc 42");
    EXPECT_EQ(end, buffer + 6);
    EXPECT_EQ(remaining, sizeof buffer - 6);
    end = zel_serv_sprintf_char_s(end, &remaining, " %s", "0123456789abcdef");
    EXPECT_EQ(std::strlen(buffer), sizeof buffer - 1);
    EXPECT_EQ(remaining, 1u);
    EXPECT_EQ(end, buffer + 15);
    EXPECT_EQ(zel_serv_sprintf_s(end, &remaining, "more"), end); // full: nothing written
}

TEST(Strings, BoundedCopiesAndLengths)
{
    char small[4];
    EXPECT_EQ(zel_serv_strncpy_s(small, sizeof small, "abc", 3), 0);
    EXPECT_STREQ(small, "abc");
    EXPECT_NE(zel_serv_strncpy_s(small, sizeof small, "abcd", 4), 0);
    EXPECT_STREQ(small, "");
    const char unterminated[3] = {'x', 'y', 'z'};
    EXPECT_EQ(zel_serv_strnlen_s(unterminated, 3), 3u);
    EXPECT_EQ(zel_serv_strnlen_s(nullptr, 3), 0u);
    int target[2] = {0, 0};
    const int source[2] = {7, 8};
    EXPECT_EQ(zel_serv_memcpy_s(target, sizeof target, source, sizeof source), 0);
    EXPECT_EQ(target[1], 8);
    EXPECT_NE(zel_serv_memcpy_s(target, sizeof target - 1, source, sizeof source), 0);
    EXPECT_EQ(zel_serv_lsame("n", "N"), 1);
    EXPECT_EQ(zel_serv_lsame("t", "C"), 0);
}

TEST(Environment, GetenvCopiesAndReportsLength)
{
    setenv("ZEL_TEST_RUNTIME_VALUE", "0123456789", 1);
    char buffer[5];
    EXPECT_EQ(zel_serv_getenv("ZEL_TEST_RUNTIME_VALUE", buffer, sizeof buffer), 10);
    EXPECT_STREQ(buffer, "0123");
    unsetenv("ZEL_TEST_RUNTIME_VALUE");
    EXPECT_LE(zel_serv_getenv("ZEL_TEST_RUNTIME_VALUE", buffer, sizeof buffer), 0);
}

TEST(Messages, CatalogueHasTheReportTexts)
{
    for (int id : {0, 6, 7, 8, 9, 1103, 1226})
        EXPECT_NE(zel_serv_message_text(id), nullptr) << id;
    EXPECT_EQ(zel_serv_message_text(12345), nullptr);
    testing::internal::CaptureStdout();
    zel_serv_print(0, 7, 2, 3LL, "dgetrf_batch");
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Parameter 3"), std::string::npos);
    EXPECT_NE(out.find("dgetrf_batch"), std::string::npos);
}

TEST(Version, RecordIsFilled)
{
    zel_version version{};
    zel_serv_get_version(&version);
    EXPECT_EQ(version.major_version, 2);
    ASSERT_NE(version.build, nullptr);
    EXPECT_EQ(std::strlen(version.build), 8u);
    EXPECT_NE(version.processor, nullptr);
    EXPECT_NE(version.platform, nullptr);
    EXPECT_GE(zel_serv_get_max_cpu_frequency(), 0.0);
    EXPECT_GT(zel_serv_dsecnd(), 0.0);
}
