// The verbose banner and call lines: formats, reproducibility names, once-only banner, output file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "test_serv_child.hpp"
#include "zel/runtime.h"
#include "zel/serv.h"

using zel::test::environment;
using zel::test::lines_of;
using zel::test::run_in_child;

namespace {

bool starts_with(const std::string &text, const std::string &prefix) { return text.rfind(prefix, 0) == 0; }

int count_banners(const std::vector<std::string> &lines)
{
    return static_cast<int>(std::count_if(lines.begin(), lines.end(), [](const std::string &line) {
        return starts_with(line, "ZEL_VERBOSE Zelmath");
    }));
}

// The call line's settings part ("<time> CNR:... Dyn:1 FastMM:1") for one call in a fresh process.
std::string call_settings(const environment &env, double seconds)
{
    const auto child = run_in_child(env, [seconds] {
        zel_serv_print_verbose_info(1, "dgetrf(3,3)", seconds);
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    const auto lines = lines_of(child.out);
    EXPECT_EQ(lines.size(), 2u) << child.out;
    const std::string prefix = "ZEL_VERBOSE dgetrf(3,3) ";
    if (lines.size() != 2 || !starts_with(lines[1], prefix))
        return "<" + child.out + ">";
    return lines[1].substr(prefix.size());
}

// The banner as its parts say it must read, in this process (same build and machine).
std::string expected_banner(const std::string &interface_word)
{
    zel_version v{};
    zel_serv_get_version(&v);
    char text[400];
    std::snprintf(text, sizeof text, "ZEL_VERBOSE Zelmath %d", v.major_version);
    std::string banner = text;
    if (v.update_version > 0)
        banner += " Update " + std::to_string(v.update_version);
    if (v.patch_version > 0)
        banner += " Patch " + std::to_string(v.patch_version);
    banner += std::string(" ") + v.product_status + " build " + v.build + " for " + v.platform + " " + v.processor;
    std::snprintf(text, sizeof text, ", Lnx %.2fGHz", zel_serv_get_max_cpu_frequency());
    banner += text;
    if (!interface_word.empty())
        banner += " " + interface_word;
    return banner + " sequential";
}

} // namespace

TEST(VerboseLine, TimeFormatsAtTheirBoundaries)
{
    const std::vector<std::pair<double, std::string>> cases = {
        {2.5, "2.50s"},         {1.0000001, "1.00s"},   {1.0, "1000.00ms"}, {0.0015, "1.50ms"},
        {0.001, "1000.00us"},   {0.0005, "500.00us"},   {1e-6, "1000ns"},   {3.4e-7, "340ns"},
        {1e-10, "0ns"},         {0.0, "0.00s"},         {-2.0, "0.00s"},
    };
    // One process, many lines: the banner comes first and only once.
    const auto child = run_in_child({}, [&cases] {
        for (const auto &c : cases)
            zel_serv_print_verbose_info(0, "call", c.first);
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    const auto lines = lines_of(child.out);
    ASSERT_EQ(lines.size(), cases.size() + 1) << child.out;
    EXPECT_EQ(count_banners(lines), 1);
    for (size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(lines[i + 1], "ZEL_VERBOSE call " + cases[i].second + " CNR:OFF Dyn:1 FastMM:1") << cases[i].first;
}

TEST(VerboseLine, ReproducibilityNamesAndSettings)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"OFF", "CNR:OFF"},       {"AUTO", "CNR:AUTO"},       {"COMPATIBLE", "CNR:COMPATIBLE"},
        {"SSE2", "CNR:SSE2"},     {"SSSE3", "CNR:SSSE3"},     {"SSE4_1", "CNR:SSE4_1"},
        {"SSE4_2", "CNR:SSE4_2"}, {"AVX", "CNR:AVX"},         {"AVX2", "CNR:AVX2"},
        {"AVX512", "CNR:AVX512"}, {"5", "CNR:?5"},            {"11", "CNR:?b"},
        {"0", "CNR:?0"},          {"255", "CNR:?ff"},         {"AVX2,STRICT", "CNR:AVX2,STRICT"},
        {"5,STRICT", "CNR:?5,STRICT"},
    };
    for (const auto &[value, cnr] : cases)
        EXPECT_EQ(call_settings({{"ZEL_CBWR", value}}, 0.5), "500.00ms " + cnr + " Dyn:1 FastMM:1") << value;
    // Dyn is the layer's answer, not ZEL_DYNAMIC; FastMM is 1 when the fast manager is on.
    EXPECT_EQ(call_settings({{"ZEL_DYNAMIC", "false"}, {"ZEL_DISABLE_FAST_MM", "1"}}, 2.0),
              "2.00s CNR:OFF Dyn:1 FastMM:0");
}

TEST(VerboseBanner, ReadsAsItsPartsAndNamesTheInterface)
{
    const std::vector<std::pair<int, std::string>> cases = {
        {0, ""}, {-1, "cdecl"}, {1, "lp64"}, {2, "ilp64"}, {0x1f, "iface1f"}, {-2, "ifacefffffffe"},
    };
    for (const auto &[iface, word] : cases) {
        const auto child = run_in_child({}, [iface = iface] {
            zel_serv_print_verbose_header(iface);
            zel_serv_print_verbose_header(iface);
            zel_serv_print_verbose_info(iface, "x", 1.0);
            return 0;
        });
        EXPECT_EQ(child.exit_code, 0) << child.err;
    const auto lines = lines_of(child.out);
        ASSERT_EQ(lines.size(), 2u) << child.out;
        EXPECT_EQ(lines[0], expected_banner(word)) << iface;
        EXPECT_EQ(child.err, "");
    }
}

TEST(VerboseBanner, PrintedOnceAcrossThreads)
{
    const auto child = run_in_child({}, [] {
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([] {
                for (int i = 0; i < 50; ++i)
                    zel_serv_print_verbose_info(2, "ddot(1000)", 1e-5);
            });
        for (std::thread &t : threads)
            t.join();
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    const auto lines = lines_of(child.out);
    ASSERT_EQ(lines.size(), 201u);
    EXPECT_EQ(count_banners(lines), 1);
    EXPECT_EQ(lines[0], expected_banner("ilp64"));
    for (size_t i = 1; i < lines.size(); ++i)
        EXPECT_EQ(lines[i], "ZEL_VERBOSE ddot(1000) 10.00us CNR:OFF Dyn:1 FastMM:1");
}

TEST(VerboseOutput, AppendsToTheNamedFile)
{
    const std::string path = zel::test::temporary_file();
    {
        std::ofstream earlier(path);
        earlier << "earlier line\n";
    }
    const auto child = run_in_child({{"ZEL_VERBOSE_OUTPUT_FILE", path}}, [] {
        zel_serv_print_verbose_info(1, "first", 2.5);
        zel_serv_print_verbose_info(1, "second", 0.0005);
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_EQ(child.out, "");
    EXPECT_EQ(child.err, "");
    const auto lines = lines_of(zel::test::slurp_and_remove(path));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "earlier line");
    EXPECT_EQ(lines[1], expected_banner("lp64"));
    EXPECT_EQ(lines[2], "ZEL_VERBOSE first 2.50s CNR:OFF Dyn:1 FastMM:1");
    EXPECT_EQ(lines[3], "ZEL_VERBOSE second 500.00us CNR:OFF Dyn:1 FastMM:1");
}

TEST(VerboseOutput, UnwritableFileFallsBackToStdoutWithAWarningPerAttempt)
{
    const auto child = run_in_child({{"ZEL_VERBOSE_OUTPUT_FILE", "/nonexistent/dir/f"}}, [] {
        zel_serv_print_verbose_info(0, "first", 2.5);
        zel_serv_print_verbose_info(0, "second", 0.0);
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0);
    const auto out = lines_of(child.out);
    ASSERT_EQ(out.size(), 3u) << child.out;
    EXPECT_EQ(out[0], expected_banner(""));
    EXPECT_EQ(out[1], "ZEL_VERBOSE first 2.50s CNR:OFF Dyn:1 FastMM:1");
    EXPECT_EQ(out[2], "ZEL_VERBOSE second 0.00s CNR:OFF Dyn:1 FastMM:1");
    const auto err = lines_of(child.err);
    ASSERT_EQ(err.size(), 3u) << child.err; // the banner and each line tried the file
    for (const std::string &line : err)
        EXPECT_EQ(line, "ZEL_VERBOSE WARNING: unable to open output file. Print to STDOUT");
}
