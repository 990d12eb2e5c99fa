// The solver suite's peers: programs beside zel-bench, each in a process of its own (they link
// the system's 32-bit-integer BLAS, which must not meet the core's), fed through files that this
// side writes and read back from the lines they print.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zel::bench {

// A sparse matrix in CSR, 0-based, columns ascending in each row: the whole matrix, or (upper)
// the upper triangle with the diagonal of a symmetric one.
struct csr_matrix {
    int64_t n = 0;
    bool upper = false;
    std::vector<int64_t> row_ptr{0};
    std::vector<int64_t> col;
    std::vector<double> value;
    int64_t entries() const { return row_ptr.back(); }
};
using upper_csr = csr_matrix; // with upper set

// One analyse-factorise-solve run of a peer: seconds (best of the rounds), the factor's figures
// (CHOLMOD's counted as zel counts its own, the others' as each reports them), the one-rhs
// residual and, from the LU and L·D·Lᵀ peers, the componentwise backward error of that solve, the
// refinement steps it took, the peak memory of the peer's process (bytes) and the negative
// pivots (L·D·Lᵀ; -1 when not reported).
struct peer_run {
    bool done = false;
    std::string ordering, strategy, note;
    double analyse = 0, factorise = 0, solve1 = 0, solve16 = 0;
    double entries = 0, exact_entries = 0, flops = 0, residual = 0;
    double backward_error = 0, memory = 0;
    int refine = 0;
    int64_t supernodes = 0, negative_pivots = -1;
};

struct peer_report {
    bool ran = false;
    bool refused = false; // the peer ran but refused the matrix (failure says where and why)
    std::string failure;  // why it did not run, when !ran
    std::string version;  // "cholmod 3.0.14"
    std::vector<std::string> blas; // the BLAS and LAPACK objects the peer's process mapped
    peer_run own;   // the peer's default ordering
    peer_run given; // zel's ordering, handed over
};

// The path of the peer program `name` beside this one, or "" when it was not built.
std::string peer_program(const char *name);

// A matrix written once for the peers to read (removed with this object).
class peer_input {
public:
    explicit peer_input(const csr_matrix &a, const std::vector<int64_t> &perm = {});
    ~peer_input();
    peer_input(const peer_input &) = delete;
    peer_input &operator=(const peer_input &) = delete;
    bool ok() const { return ok_; }
    const std::string &matrix() const { return matrix_; }
    const std::string &perm() const { return perm_; } // "" when there is none
private:
    std::string folder_, matrix_, perm_;
    bool ok_ = false;
};

// Runs the peer program zel-bench-NAME on the input with `repeats` rounds of each phase and the
// extra arguments (--sym 2); failure says why when it was not built, could not run or refused.
peer_report run_peer(const char *name, const peer_input &input, const std::vector<std::string> &extra, int repeats);

// Runs the CHOLMOD peer on `a` with `repeats` rounds of each phase, once with its own ordering and,
// when `perm` is not empty, once with `perm` (perm[k]: the column eliminated k-th).
peer_report run_cholmod(const std::string &program, const upper_csr &a, const std::vector<int64_t> &perm,
                        int repeats);

} // namespace zel::bench
