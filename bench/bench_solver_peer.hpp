// The solver suite's peers: programs beside zel-bench, each in a process of its own (they link
// the system's 32-bit-integer BLAS, which must not meet the core's), fed through files that this
// side writes and read back from the lines they print.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zel::bench {

// A symmetric matrix as its upper triangle with the diagonal: CSR, 0-based, columns ascending.
struct upper_csr {
    int64_t n = 0;
    std::vector<int64_t> row_ptr{0};
    std::vector<int64_t> col;
    std::vector<double> value;
    int64_t entries() const { return row_ptr.back(); }
};

// One analyse-factorise-solve run of a peer: seconds (best of the rounds), the factor's figures
// counted as zel counts its own, and the one-rhs residual.
struct peer_run {
    bool done = false;
    std::string ordering;
    double analyse = 0, factorise = 0, solve1 = 0, solve16 = 0;
    double entries = 0, exact_entries = 0, flops = 0, residual = 0;
    int64_t supernodes = 0;
};

struct peer_report {
    bool ran = false;
    std::string failure; // why it did not run, when !ran
    std::string version; // "cholmod 3.0.14"
    std::vector<std::string> blas; // the BLAS and LAPACK objects the peer's process mapped
    peer_run own;   // the peer's default ordering
    peer_run given; // zel's ordering, handed over
};

// The path of the peer program `name` beside this one, or "" when it was not built.
std::string peer_program(const char *name);

// Runs the CHOLMOD peer on `a` with `repeats` rounds of each phase, once with its own ordering and,
// when `perm` is not empty, once with `perm` (perm[k]: the column eliminated k-th).
peer_report run_cholmod(const std::string &program, const upper_csr &a, const std::vector<int64_t> &perm,
                        int repeats);

} // namespace zel::bench
