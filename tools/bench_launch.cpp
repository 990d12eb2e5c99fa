// `zel bench`: checks the request, then runs the zel-bench program beside this one. The
// benchmarks link the peers (OpenBLAS, CSparse), which the library itself does not need, so they
// live in a program of their own that an install leaves out unless asked.
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "bench_request.hpp"
#include "cli.hpp"
#include "command.hpp"

namespace {

// The directory of the running program, from the kernel rather than argv[0].
bool own_directory(char *path, size_t capacity)
{
    const ssize_t length = readlink("/proc/self/exe", path, capacity - 1);
    if (length <= 0)
        return false;
    path[length] = '\0';
    char *slash = std::strrchr(path, '/');
    if (slash == nullptr)
        return false;
    *slash = '\0';
    return true;
}

int run_bench(int argc, char **argv)
{
    zel::bench::request request;
    const int status = zel::bench::parse_bench_request(argc, argv, &request);
    if (status != -1)
        return status;
    char program[PATH_MAX];
    if (!own_directory(program, sizeof program - 16)) {
        std::fprintf(stderr, "zel bench: cannot tell where this program lives (/proc/self/exe)\n");
        return zel::tool::exit_failure;
    }
    std::strcat(program, "/zel-bench");
    // zel-bench reads the same arguments: argv[0] becomes its name, the suite and options follow.
    argv[0] = program;
    execv(program, argv);
    const int error = errno;
    if (error == ENOENT)
        std::fprintf(stderr,
                     "zel bench: the benchmark program is not installed (looked for %s).\n"
                     "It is built with -DZEL_BUILD_BENCH=ON (the default) and installed with "
                     "-DZEL_INSTALL_BENCH=ON.\n",
                     program);
    else
        std::fprintf(stderr, "zel bench: cannot run %s: %s\n", program, std::strerror(error));
    return zel::tool::exit_failure;
}

} // namespace

ZEL_TOOL_COMMAND("bench", "measure the library against its peers (zel bench --help lists the suites)", run_bench);
