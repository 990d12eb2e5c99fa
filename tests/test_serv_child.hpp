// Running a piece of a service test in a fresh child process with a controlled environment:
// the environment scan, the topology probe, the processes-per-node cache and the banner are
// fixed once per process.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace zel::test {

struct child_outcome {
    int exit_code; // 128 + signal when the child was killed
    std::string out;
    std::string err;
};

using environment = std::vector<std::pair<const char *, std::string>>;

// Everything the service layer reads; a child starts with none of them set.
inline constexpr const char *steering_variables[] = {
    "ZEL_NUM_THREADS", "ZEL_NUM_STRIPES", "ZEL_DOMAIN_NUM_THREADS", "ZEL_DYNAMIC", "OMP_NUM_THREADS",
    "ZMPI_THREAD_LEVEL", "ZEL_MPI_PPN", "ZMPI_NUMBER_OF_MPI_PROCESSES_PER_NODE", "ZMPI_PIN_MAPPING",
    "OMPI_COMM_WORLD_LOCAL_SIZE", "MPI_LOCALNRANKS", "ZEL_CBWR", "ZEL_DISABLE_FAST_MM",
    "ZEL_VERBOSE_OUTPUT_FILE",
};

inline std::string slurp_and_remove(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    std::remove(path.c_str());
    return text.str();
}

inline std::string temporary_file()
{
    const char *dir = std::getenv("TMPDIR");
    std::string pattern = std::string(dir && *dir ? dir : "/tmp") + "/zel_serv_XXXXXX";
    int fd = mkstemp(pattern.data());
    if (fd >= 0)
        close(fd);
    return pattern;
}

// Forks; the child sets `env`, runs `body` with stdout and stderr captured, and exits with its
// result without running the process's finalisers (a body that wants them calls std::exit).
template <class Body> child_outcome run_in_child(const environment &env, Body body)
{
    const std::string out_path = temporary_file(), err_path = temporary_file();
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        std::FILE *out = std::freopen(out_path.c_str(), "w", stdout);
        std::FILE *err = std::freopen(err_path.c_str(), "w", stderr);
        if (out == nullptr || err == nullptr)
            _exit(120);
        for (const char *name : steering_variables)
            unsetenv(name);
        for (const auto &[name, value] : env)
            setenv(name, value.c_str(), 1);
        const int code = body();
        std::fflush(nullptr);
        _exit(code);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid)
        status = 255 << 8;
    child_outcome outcome;
    outcome.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.out = slurp_and_remove(out_path);
    outcome.err = slurp_and_remove(err_path);
    return outcome;
}

// Lines of a captured output.
inline std::vector<std::string> lines_of(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

} // namespace zel::test
