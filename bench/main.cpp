// zel-bench: the benchmark suites, run by `zel bench` (or directly, with the same arguments).
#include <unistd.h>

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "cli.hpp"
#include "suite.hpp"

namespace zel::bench {
namespace {

struct registered_suite {
    const char *name;
    suite_main run;
};
registered_suite registry[8];
int registry_size = 0;

bool progress_on = false;
const auto started = std::chrono::steady_clock::now();

suite_main runner_of(const char *name)
{
    for (int i = 0; i < registry_size; ++i)
        if (std::strcmp(registry[i].name, name) == 0)
            return registry[i].run;
    return nullptr;
}

} // namespace

bool register_suite(const char *name, suite_main run)
{
    if (registry_size < static_cast<int>(sizeof registry / sizeof registry[0]))
        registry[registry_size++] = {name, run};
    return true;
}

void enable_progress(bool on) { progress_on = on; }

void progress(const char *format, ...)
{
    if (!progress_on)
        return;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    std::fprintf(stderr, "[%6.1f s] ", seconds);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
}

} // namespace zel::bench

int main(int argc, char **argv)
{
    using namespace zel::bench;
    request what;
    const int status = parse_bench_request(argc, argv, &what);
    if (status != -1)
        return status;
    const suite_main run = runner_of(what.suite->name);
    if (run == nullptr) {
        std::fprintf(stderr, "zel bench: the %s suite is described but not built into this program\n",
                     what.suite->name);
        return zel::tool::exit_failure;
    }
    enable_progress(isatty(STDERR_FILENO) == 1);
    return run(what);
}
