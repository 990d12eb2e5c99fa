// Error, progress and pivot callbacks, pointer checks and the clean-up registry.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "test_serv_child.hpp"
#include "zel/runtime.h"
#include "zel/serv.h"

namespace {

struct xerbla_call {
    const char *name;
    const int64_t *info;
    int64_t value;
    int32_t name_len;
};
std::vector<xerbla_call> xerbla_calls;
std::vector<xerbla_call> other_calls;

void recording_xerbla(const char *name, const int64_t *info, int32_t name_len)
{
    xerbla_calls.push_back({name, info, *info, name_len});
}

void other_xerbla(const char *name, const int64_t *info, int32_t name_len)
{
    other_calls.push_back({name, info, *info, name_len});
}

// Starts a case with no handler installed and nothing recorded.
void reset_xerbla()
{
    zel_serv_set_xerbla(nullptr);
    xerbla_calls.clear();
    other_calls.clear();
}

std::string default_report(const char *name, int64_t info, int32_t name_len)
{
    testing::internal::CaptureStdout();
    zel_serv_default_xerbla(name, &info, name_len);
    return testing::internal::GetCapturedStdout();
}

// The expected report, from the catalogue's own texts.
std::string catalogue_report(int message, const char *routine, long long value = 0)
{
    char body[512];
    if (message == 6 || message == 7)
        std::snprintf(body, sizeof body, zel_serv_message_text(message), value, routine);
    else
        std::snprintf(body, sizeof body, zel_serv_message_text(message), routine);
    return std::string(zel_serv_message_text(0)) + body;
}

} // namespace

TEST(Xerbla, SettersReturnThePreviousHandler)
{
    reset_xerbla();
    EXPECT_EQ(zel_serv_set_xerbla(recording_xerbla), &zel_serv_default_xerbla);
    EXPECT_EQ(zel_serv_set_xerbla(other_xerbla), &recording_xerbla);
    // An interface adapter never replaces a handler the user installed.
    zel_serv_set_xerbla_interface(recording_xerbla);
    const int64_t info = -2;
    zel_serv_xerbla("dpotrf_batch", &info, 12);
    EXPECT_EQ(other_calls.size(), 1u);
    EXPECT_TRUE(xerbla_calls.empty());
    EXPECT_EQ(zel_serv_set_xerbla(nullptr), &other_xerbla);
    // With the slot empty again, the adapter is installed.
    zel_serv_set_xerbla_interface(recording_xerbla);
    zel_serv_xerbla("dpotrf_batch", &info, 12);
    EXPECT_EQ(xerbla_calls.size(), 1u);
    EXPECT_EQ(zel_serv_set_xerbla(nullptr), &recording_xerbla);
}

TEST(Xerbla, ForwardsItsArgumentsUnchangedAndIgnoresNulls)
{
    reset_xerbla();
    zel_serv_set_xerbla(recording_xerbla);
    const char name[6] = {'s', 'g', 'e', 't', 'r', 'f'}; // not terminated
    const int64_t info = 4;
    zel_serv_xerbla(name, &info, 6);
    zel_serv_xerbla(nullptr, &info, 6);
    zel_serv_xerbla(name, nullptr, 6);
    ASSERT_EQ(xerbla_calls.size(), 1u);
    EXPECT_EQ(xerbla_calls[0].name, name);
    EXPECT_EQ(xerbla_calls[0].info, &info);
    EXPECT_EQ(xerbla_calls[0].name_len, 6);
    reset_xerbla();
}

TEST(Xerbla, DefaultReportChoosesTheMessage)
{
    EXPECT_EQ(default_report("dgetrf_batch", -3, 12), catalogue_report(7, "dgetrf_batch", 3));
    EXPECT_EQ(default_report("dgetrf_batch", 0, 12), catalogue_report(7, "dgetrf_batch", 0));
    EXPECT_EQ(default_report("dgetrf_batch", 5, 12), catalogue_report(6, "dgetrf_batch", 5));
    EXPECT_EQ(default_report("spotri", 1000, 6), catalogue_report(8, "spotri"));
    EXPECT_EQ(default_report("spotri", 1001, 6), catalogue_report(9, "spotri"));
    EXPECT_EQ(default_report("spotri", 1103, 6), catalogue_report(1103, "spotri"));
    EXPECT_EQ(default_report("spotri", 1226, 6), catalogue_report(1226, "spotri"));
    EXPECT_EQ(default_report("spotri", 1002, 6), catalogue_report(6, "spotri", 1002));
    // Names are cut to 20 characters and to the given length.
    EXPECT_EQ(default_report("abcdefghijklmnopqrstuvwxyz0123", -1, 30),
              catalogue_report(7, "abcdefghijklmnopqrst", 1));
    const char unterminated[6] = {'z', 'g', 'e', 'l', 's', 'x'};
    EXPECT_EQ(default_report(unterminated, -2, 5), catalogue_report(7, "zgels", 2));
}

TEST(Xerbla, DefaultReportIsSilentOnBadArguments)
{
    const int64_t info = -1;
    testing::internal::CaptureStdout();
    zel_serv_default_xerbla(nullptr, &info, 4);
    zel_serv_default_xerbla("name", nullptr, 4);
    zel_serv_default_xerbla("name", &info, -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    // Through the entry point with no handler installed, the default speaks.
    reset_xerbla();
    testing::internal::CaptureStdout();
    zel_serv_xerbla("cgetri", &info, 6);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), catalogue_report(7, "cgetri", 1));
}

TEST(PointerChecks, NullPointerReportsCode1103ForItsName)
{
    reset_xerbla();
    zel_serv_set_xerbla(recording_xerbla);
    int value = 0;
    EXPECT_EQ(zel_serv_check_ptr(&value, "a"), 0);
    EXPECT_EQ(zel_serv_check_ptr(nullptr, nullptr), 1);
    EXPECT_TRUE(xerbla_calls.empty());
    EXPECT_EQ(zel_serv_check_ptr(nullptr, "ipiv"), 1);
    ASSERT_EQ(xerbla_calls.size(), 1u);
    EXPECT_EQ(xerbla_calls[0].value, 1103);
    EXPECT_EQ(xerbla_calls[0].name_len, 4);
    const std::string long_name(5000, 'n');
    EXPECT_EQ(zel_serv_check_ptr(nullptr, long_name.c_str()), 1);
    EXPECT_EQ(xerbla_calls.back().name_len, 4096);
    EXPECT_EQ(zel_serv_check_ptr_and_warn(nullptr), 1);
    EXPECT_EQ(zel_serv_check_ptr_and_warn(&value), 0);
    EXPECT_EQ(xerbla_calls.size(), 2u);
    reset_xerbla();
}

namespace {

const int *seen_thread;
const int *seen_step;
const char *seen_stage;
int32_t seen_stage_len;

int recording_progress(const int *thread, const int *step, const char *stage, int32_t stage_len)
{
    seen_thread = thread;
    seen_step = step;
    seen_stage = stage;
    seen_stage_len = stage_len;
    return *step > 2 ? 1 : 0; // ask to stop after step 2
}

int stopping_progress(const int *, const int *, const char *, int32_t) { return 7; }

} // namespace

TEST(Progress, ForwardsToTheInstalledHandler)
{
    zel_serv_set_progress(nullptr);
    const int thread = 0, step = 3;
    EXPECT_EQ(zel_serv_progress(&thread, &step, "factor", 6), 0);
    EXPECT_EQ(zel_serv_default_progress(&thread, &step, "factor", 6), 0);
    EXPECT_EQ(zel_serv_set_progress(recording_progress), &zel_serv_default_progress);
    zel_serv_set_progress_interface(stopping_progress);
    EXPECT_EQ(zel_serv_progress(&thread, &step, "factor", 6), 1);
    EXPECT_EQ(seen_thread, &thread);
    EXPECT_EQ(seen_step, &step);
    EXPECT_STREQ(seen_stage, "factor");
    EXPECT_EQ(seen_stage_len, 6);
    EXPECT_EQ(zel_serv_set_progress(nullptr), &recording_progress);
    zel_serv_set_progress_interface(stopping_progress);
    EXPECT_EQ(zel_serv_progress(&thread, &step, "solve", 5), 7);
    zel_serv_set_progress(nullptr);
}

namespace {

int pivot_calls = 0;
int recording_pivot(const double *aii, double *bii, const double *)
{
    ++pivot_calls;
    *bii = *aii;
    return 5;
}

} // namespace

TEST(Pivot, DefaultRuleReplacesSmallPivots)
{
    struct pivot_case {
        double bii, eps, replaced_by;
        int result;
    };
    const double eps = 1e-8;
    const pivot_case cases[] = {
        {0.0, eps, -eps, 1},  {-0.0, eps, -eps, 1}, {eps, eps, eps, 1},      {-eps, eps, -eps, 1},
        {5e-9, eps, eps, 1},  {-5e-9, eps, -eps, 1}, {2e-8, eps, 2e-8, 0},    {-2e-8, eps, -2e-8, 0},
        {1.0, 0.0, 1.0, 0},   {0.0, 0.0, -0.0, 1},  {-3.0, 4.0, -4.0, 1},
    };
    zel_serv_set_varisol_pivot(nullptr);
    for (const pivot_case &c : cases) {
        double by_default = c.bii, inline_rule = c.bii;
        // The diagonal value is not read by the default rule.
        EXPECT_EQ(zel_serv_default_varisol_pivot(nullptr, &by_default, &c.eps), c.result) << c.bii;
        EXPECT_EQ(zel_serv_varisol_pivot(nullptr, &inline_rule, &c.eps), c.result) << c.bii;
        EXPECT_EQ(by_default, c.replaced_by) << c.bii;
        EXPECT_EQ(inline_rule, c.replaced_by) << c.bii;
    }
}

TEST(Pivot, InstalledHandlerTakesOver)
{
    zel_serv_set_varisol_pivot(nullptr);
    EXPECT_EQ(zel_serv_set_varisol_pivot(recording_pivot), &zel_serv_default_varisol_pivot);
    zel_serv_set_varisol_pivot_interface(zel_serv_default_varisol_pivot);
    const double aii = 42.0, eps = 1e-8;
    double bii = 0.0;
    EXPECT_EQ(zel_serv_varisol_pivot(&aii, &bii, &eps), 5);
    EXPECT_EQ(bii, 42.0);
    EXPECT_EQ(pivot_calls, 1);
    EXPECT_EQ(zel_serv_set_varisol_pivot(nullptr), &recording_pivot);
    zel_serv_set_varisol_pivot_interface(recording_pivot);
    bii = 0.0;
    EXPECT_EQ(zel_serv_varisol_pivot(&aii, &bii, &eps), 5);
    EXPECT_EQ(pivot_calls, 2);
    zel_serv_set_varisol_pivot(nullptr);
}

namespace {

std::string cleanup_order;
void record_cleanup(void *argument) { cleanup_order += *static_cast<const char *>(argument); }

const char labels[] = "abcdefghi";

void write_label(void *argument) { (void)!write(1, argument, 1); }

} // namespace

TEST(CleanupRegistry, RunsLastRegisteredFirstAndEmpties)
{
    zel_serv_thr_cleanup(); // start empty
    cleanup_order.clear();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(zel_serv_thr_register_cleanup(record_cleanup, const_cast<char *>(labels + i)), 0);
    zel_serv_thr_cleanup();
    EXPECT_EQ(cleanup_order, "cba");
    zel_serv_thr_cleanup();
    EXPECT_EQ(cleanup_order, "cba");
    // Emptied, the registry holds all eight entries again.
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(zel_serv_thr_register_cleanup(record_cleanup, const_cast<char *>(labels + i)), 0);
    zel_serv_thr_cleanup();
    EXPECT_EQ(cleanup_order, "cbahgfedcba");
}

TEST(CleanupRegistry, NinthRegistrationEndsTheProcessWithCode3)
{
    const auto child = zel::test::run_in_child({}, [] {
        for (int i = 0; i < 9; ++i)
            zel_serv_thr_register_cleanup(write_label, const_cast<char *>(labels + i));
        return 0; // not reached
    });
    EXPECT_EQ(child.exit_code, 3);
    EXPECT_EQ(child.out, ""); // ended without running the registry
}

TEST(CleanupRegistry, RunsWhenTheProcessExits)
{
    const auto child = zel::test::run_in_child({}, [] {
        zel_serv_thr_register_cleanup(write_label, const_cast<char *>(labels));
        zel_serv_thr_register_cleanup(write_label, const_cast<char *>(labels + 1));
        std::fflush(nullptr);
        std::exit(0);
        return 1;
    });
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_EQ(child.out, "ba");
}
