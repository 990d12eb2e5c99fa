// Runs tests of this program again in child processes whose vector paths are held to AVX2 and to
// the baseline, through the environment variable that lowers a family's instruction-set choice.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace zel::test {

inline void expect_every_isa_variant_passes(const char *variable, const char *filter)
{
    char self[4096] = {};
    ASSERT_GT(readlink("/proc/self/exe", self, sizeof self - 1), 0);
    for (const char *isa : {"avx2", "baseline"}) {
        const std::string command = std::string(variable) + "=" + isa + " '" + self + "' --gtest_filter='" + filter +
                                    "' > /dev/null 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << "variant " << isa;
    }
}

} // namespace zel::test
