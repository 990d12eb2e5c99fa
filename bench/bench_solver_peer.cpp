// Running a solver peer program and reading what it prints.
#include "bench_solver_peer.hpp"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

extern char **environ;

namespace zel::bench {
namespace {

template <class T> bool write_all(FILE *file, const T *data, size_t count)
{
    return std::fwrite(data, sizeof(T), count, file) == count;
}

// The matrix (or upper triangle) by columns, as the peer reads it: the transpose of the CSR arrays.
bool write_matrix(const std::string &path, const csr_matrix &a)
{
    const int64_t n = a.n, nnz = a.entries();
    std::vector<int64_t> col_ptr(n + 1, 0), row(nnz);
    std::vector<double> value(nnz);
    for (int64_t p = 0; p < nnz; ++p)
        ++col_ptr[a.col[p] + 1];
    for (int64_t j = 0; j < n; ++j)
        col_ptr[j + 1] += col_ptr[j];
    std::vector<int64_t> next(col_ptr.begin(), col_ptr.end() - 1);
    for (int64_t i = 0; i < n; ++i) // rows ascending, so each column's rows come out ascending
        for (int64_t p = a.row_ptr[i]; p < a.row_ptr[i + 1]; ++p) {
            const int64_t q = next[a.col[p]]++;
            row[q] = i;
            value[q] = a.value[p];
        }
    FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return false;
    const bool ok = write_all(file, "ZELCSC01", 8) && write_all(file, &n, 1) && write_all(file, &nnz, 1) &&
                    write_all(file, col_ptr.data(), n + 1) && write_all(file, row.data(), nnz) &&
                    write_all(file, value.data(), nnz);
    return std::fclose(file) == 0 && ok;
}

bool write_perm(const std::string &path, const std::vector<int64_t> &perm)
{
    const int64_t n = int64_t(perm.size());
    FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return false;
    const bool ok = write_all(file, "ZELPRM01", 8) && write_all(file, &n, 1) && write_all(file, perm.data(), n);
    return std::fclose(file) == 0 && ok;
}

// Runs the program with its standard output into `out`; the exit status, or -1 when it could not
// start. Its standard error stays ours, so its complaints reach the terminal.
int run_program(const std::vector<std::string> &arguments, std::string &out)
{
    std::vector<char *> argv;
    for (const std::string &argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);
    int pipe_ends[2];
    if (pipe(pipe_ends) != 0)
        return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe_ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipe_ends[0]);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipe_ends[1]);
    char buffer[4096];
    for (ssize_t got; spawned == 0 && ((got = read(pipe_ends[0], buffer, sizeof buffer)) > 0 || (got < 0 && errno == EINTR));)
        if (got > 0)
            out.append(buffer, size_t(got));
    close(pipe_ends[0]);
    int status = 0;
    if (spawned != 0 || waitpid(pid, &status, 0) != pid)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// "run NAME key=value ..." into a run's fields.
void parse_run(std::istringstream &words, peer_run &run)
{
    run.done = true;
    for (std::string word; words >> word;) {
        const size_t equals = word.find('=');
        if (equals == std::string::npos)
            continue;
        const std::string key = word.substr(0, equals), text = word.substr(equals + 1);
        const double value = std::strtod(text.c_str(), nullptr);
        if (key == "ordering") run.ordering = text;
        else if (key == "strategy") run.strategy = text;
        else if (key == "note") run.note = text;
        else if (key == "berr") run.backward_error = value;
        else if (key == "refine") run.refine = int(value);
        else if (key == "memory") run.memory = value;
        else if (key == "negative_pivots") run.negative_pivots = int64_t(value);
        else if (key == "analyse") run.analyse = value;
        else if (key == "factorise") run.factorise = value;
        else if (key == "solve1") run.solve1 = value;
        else if (key == "solve16") run.solve16 = value;
        else if (key == "supernodes") run.supernodes = int64_t(value);
        else if (key == "entries") run.entries = value;
        else if (key == "exact_entries") run.exact_entries = value;
        else if (key == "flops") run.flops = value;
        else if (key == "residual") run.residual = value;
    }
}

void parse_report(const std::string &out, peer_report &report)
{
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string kind, name;
        words >> kind;
        if (kind == "peer") {
            std::getline(words >> std::ws, report.version);
        } else if (kind == "blas") {
            std::getline(words >> std::ws, name);
            report.blas.push_back(name);
        } else if (kind == "run" && words >> name) {
            parse_run(words, name == "given" ? report.given : report.own);
        } else if (kind == "fail" && words >> name) {
            std::string why;
            std::getline(words >> std::ws, why);
            report.refused = true;
            report.failure = name + ": " + why;
        }
    }
    std::sort(report.blas.begin(), report.blas.end()); // the order of the process's mappings varies
}

} // namespace

std::string peer_program(const char *name)
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0)
        return "";
    path[length] = '\0';
    char *slash = std::strrchr(path, '/');
    if (slash == nullptr)
        return "";
    const std::string program = std::string(path, slash + 1) + name;
    return access(program.c_str(), X_OK) == 0 ? program : "";
}

namespace {

// Runs the program on the input files; the report says how it went.
peer_report run_path(const std::string &program, const peer_input &input, const std::vector<std::string> &extra,
                     int repeats)
{
    peer_report report;
    if (!input.ok()) {
        report.failure = "cannot write the peer's input files (TMPDIR or /tmp)";
        return report;
    }
    std::vector<std::string> arguments = {program, input.matrix(), "--repeats", std::to_string(repeats)};
    if (!input.perm().empty())
        arguments.insert(arguments.end(), {"--perm", input.perm()});
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    // OpenBLAS takes its thread count from the environment when it loads; the peer also sees to
    // it itself, but a run from here should not depend on that.
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    setenv("OMP_NUM_THREADS", "1", 1);
    std::string out;
    const int status = run_program(arguments, out);
    parse_report(out, report);
    report.ran = status == 0 && report.own.done && (input.perm().empty() || report.given.done);
    if (!report.ran && !report.refused)
        report.failure = status < 0                ? "could not start " + program
                         : status == 128 + SIGXCPU ? "stopped at its processor-time limit (ZEL_BENCH_PEER_MINUTES)"
                         : status == 128 + SIGKILL ? "killed (the processor-time limit, or the kernel out of memory)"
                         : status == 128 + SIGSEGV ? "crashed (segmentation fault)"
                                                   : program + " failed (exit status " + std::to_string(status) + ")";
    return report;
}

} // namespace

peer_input::peer_input(const csr_matrix &a, const std::vector<int64_t> &perm)
{
    const char *tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/zel-bench-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        return;
    folder_ = pattern;
    matrix_ = folder_ + "/matrix.bin";
    ok_ = write_matrix(matrix_, a);
    if (ok_ && !perm.empty()) {
        perm_ = folder_ + "/perm.bin";
        ok_ = write_perm(perm_, perm);
    }
}

peer_input::~peer_input()
{
    for (const std::string *file : {&matrix_, &perm_})
        if (!file->empty())
            std::remove(file->c_str());
    if (!folder_.empty())
        rmdir(folder_.c_str());
}

peer_report run_cholmod(const std::string &program, const upper_csr &a, const std::vector<int64_t> &perm,
                        int repeats)
{
    const peer_input input(a, perm);
    return run_path(program, input, {}, repeats);
}

peer_report run_peer(const char *name, const peer_input &input, const std::vector<std::string> &extra, int repeats)
{
    const std::string full_name = std::string("zel-bench-") + name;
    const std::string program = peer_program(full_name.c_str());
    if (program.empty()) {
        peer_report report;
        report.failure = full_name + " was not built (scripts/install-bench-peers.sh installs its library)";
        return report;
    }
    return run_path(program, input, extra, repeats);
}

} // namespace zel::bench
