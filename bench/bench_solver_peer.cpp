// Running a solver peer program and reading what it prints.
#include "bench_solver_peer.hpp"

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

// Removes its files and folder when the run is over, whichever way it ends.
struct scratch_folder {
    std::string path;
    std::vector<std::string> files;
    scratch_folder()
    {
        const char *tmp = std::getenv("TMPDIR");
        std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/zel-bench-XXXXXX";
        if (mkdtemp(pattern.data()) != nullptr)
            path = pattern;
    }
    ~scratch_folder()
    {
        for (const std::string &file : files)
            std::remove(file.c_str());
        if (!path.empty())
            rmdir(path.c_str());
    }
    std::string add(const char *name)
    {
        files.push_back(path + "/" + name);
        return files.back();
    }
};

template <class T> bool write_all(FILE *file, const T *data, size_t count)
{
    return std::fwrite(data, sizeof(T), count, file) == count;
}

// The upper triangle by columns, as the peer reads it: the transpose of the CSR arrays.
bool write_matrix(const std::string &path, const upper_csr &a)
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

peer_report run_cholmod(const std::string &program, const upper_csr &a, const std::vector<int64_t> &perm,
                        int repeats)
{
    peer_report report;
    scratch_folder folder;
    const std::string matrix = folder.add("matrix.bin"), order = folder.add("perm.bin");
    if (folder.path.empty() || !write_matrix(matrix, a) || (!perm.empty() && !write_perm(order, perm))) {
        report.failure = "cannot write the peer's input files (TMPDIR or /tmp)";
        return report;
    }
    std::vector<std::string> arguments = {program, matrix, "--repeats", std::to_string(repeats)};
    if (!perm.empty())
        arguments.insert(arguments.end(), {"--perm", order});
    // OpenBLAS takes its thread count from the environment when it loads; the peer also sees to
    // it itself, but a run from here should not depend on that.
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    setenv("OMP_NUM_THREADS", "1", 1);
    std::string out;
    const int status = run_program(arguments, out);
    parse_report(out, report);
    report.ran = status == 0 && report.own.done && (perm.empty() || report.given.done);
    if (!report.ran)
        report.failure = status < 0 ? "could not start " + program
                                    : program + " failed (exit status " + std::to_string(status) + ")";
    return report;
}

} // namespace zel::bench
