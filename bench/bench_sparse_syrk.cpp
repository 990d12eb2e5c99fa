// The A·Aᵀ section of `zel bench sparse`: the products against their peers in the same process.
//   sparse result (upper triangle, sorted columns) vs CSparse cs_multiply(A, cs_transpose(A))
//   (full product, unsorted); dense result vs densifying A and calling OpenBLAS dsyrk_.
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

#include "suite.hpp"
#include "zel/sparse_handle.h"
#include "zel/sparse_syrk.h"

#include <cs.h>

extern "C" {
// OpenBLAS ILP64.
void dsyrk_(const char *uplo, const char *trans, const int64_t *n, const int64_t *k, const double *alpha,
            const double *a, const int64_t *lda, const double *beta, double *c, const int64_t *ldc, size_t, size_t);
}

namespace {

struct csr {
    int32_t rows = 0, cols = 0;
    std::vector<int32_t> rows_start, col_indx;
    std::vector<double> values;
};

uint64_t next_random(uint64_t &state)
{
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return state;
}

// Each row holds `per_row` distinct uniformly random columns, sorted.
csr random_csr(int32_t rows, int32_t cols, int32_t per_row, uint64_t seed)
{
    csr a;
    a.rows = rows;
    a.cols = cols;
    a.rows_start.reserve(rows + 1);
    a.col_indx.reserve(int64_t(rows) * per_row);
    a.values.reserve(int64_t(rows) * per_row);
    a.rows_start.push_back(0);
    std::vector<int32_t> row;
    for (int32_t i = 0; i < rows; ++i) {
        row.clear();
        for (int32_t t = 0; t < per_row; ++t)
            row.push_back(int32_t(next_random(seed) % uint64_t(cols)));
        std::sort(row.begin(), row.end());
        row.erase(std::unique(row.begin(), row.end()), row.end());
        for (int32_t j : row) {
            a.col_indx.push_back(j);
            a.values.push_back(double(next_random(seed) % 2000) / 1000.0 - 1.0);
        }
        a.rows_start.push_back(int32_t(a.col_indx.size()));
    }
    return a;
}

// 7-point Laplacian on an n³ grid.
csr laplacian(int32_t n)
{
    csr a;
    a.rows = a.cols = n * n * n;
    a.rows_start.push_back(0);
    for (int32_t z = 0; z < n; ++z)
        for (int32_t y = 0; y < n; ++y)
            for (int32_t x = 0; x < n; ++x) {
                const int32_t i = (z * n + y) * n + x;
                auto add = [&](int32_t j, double v) {
                    a.col_indx.push_back(j);
                    a.values.push_back(v);
                };
                if (z > 0) add(i - n * n, -1.0);
                if (y > 0) add(i - n, -1.0);
                if (x > 0) add(i - 1, -1.0);
                add(i, 6.0);
                if (x < n - 1) add(i + 1, -1.0);
                if (y < n - 1) add(i + n, -1.0);
                if (z < n - 1) add(i + n * n, -1.0);
                a.rows_start.push_back(int32_t(a.col_indx.size()));
            }
    return a;
}

double seconds_of(const std::function<void()> &body)
{
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Best of `reps` timed runs after one untimed run (which also touches the memory).
double best_of(int reps, const std::function<void()> &body)
{
    body();
    double best = 1e300;
    for (int r = 0; r < reps; ++r)
        best = std::min(best, seconds_of(body));
    return best;
}

void print_row(const char *name, double zel, const char *peer_name, double peer, double goal)
{
    std::printf("%-34s %10.4f %-28s %10.4f %7.2fx %6.1fx %s\n", name, zel, peer_name, peer, peer / zel, goal,
                peer / zel >= goal ? "met" : "MISSED");
}

// Sparse result of A·Aᵀ against CSparse on the same matrix.
void sparse_case(const char *name, const csr &a, int reps, double goal)
{
    zel::bench::progress("sparse syrk: %s, %d rounds", name, reps);
    // CSparse's A in compressed columns: our CSR arrays read as columns are Aᵀ, transposed once.
    cs_di at_view{};
    at_view.nzmax = int32_t(a.col_indx.size());
    at_view.m = a.cols;
    at_view.n = a.rows;
    at_view.p = const_cast<int32_t *>(a.rows_start.data());
    at_view.i = const_cast<int32_t *>(a.col_indx.data());
    at_view.x = const_cast<double *>(a.values.data());
    at_view.nz = -1;
    cs_di *A = cs_di_transpose(&at_view, 1);
    int64_t peer_nnz = 0;
    auto peer_run = [&] {
        cs_di *T = cs_di_transpose(A, 1);
        cs_di *P = cs_di_multiply(A, T);
        peer_nnz = P ? P->p[P->n] : -1;
        cs_di_spfree(P);
        cs_di_spfree(T);
    };

    zel_sparse_matrix_i4 *h = nullptr;
    auto *rs = const_cast<int32_t *>(a.rows_start.data());
    zel_sparse_d_create_csr_i4(&h, 0, a.rows, a.cols, rs, rs + 1, const_cast<int32_t *>(a.col_indx.data()),
                               const_cast<double *>(a.values.data()));
    int64_t nnz = 0;
    auto cached_run = [&] { // A's transposed record is built by the first run and kept
        zel_sparse_matrix_i4 *c = nullptr;
        if (zel_sparse_syrk_i4(10, h, &c) == 0)
            nnz = static_cast<zel_sparse_csr_record_i4 *>(c->data)->nnz;
        zel_sparse_destroy_i4(c);
    };
    // The transposed record built inside the timed run (and freed in it, as the peer frees its
    // transpose), on a handle created before the timing: creating a handle checks the arrays, which
    // the peer's run does not.
    auto fresh_seconds = [&] {
        zel_sparse_matrix_i4 *g = nullptr;
        zel_sparse_d_create_csr_i4(&g, 0, a.rows, a.cols, rs, rs + 1, const_cast<int32_t *>(a.col_indx.data()),
                                   const_cast<double *>(a.values.data()));
        return seconds_of([&] {
            zel_sparse_matrix_i4 *c = nullptr;
            zel_sparse_syrk_i4(10, g, &c);
            zel_sparse_destroy_i4(c);
            zel_sparse_destroy_i4(g);
        });
    };
    // The runs alternate, so that a slow spell of the machine falls on both sides alike.
    peer_run();
    cached_run();
    fresh_seconds();
    double peer = 1e300, cached = 1e300, fresh = 1e300;
    for (int r = 0; r < reps; ++r) {
        peer = std::min(peer, seconds_of(peer_run));
        cached = std::min(cached, seconds_of(cached_run));
        fresh = std::min(fresh, fresh_seconds());
    }
    zel_sparse_destroy_i4(h);
    cs_di_spfree(A);

    std::printf("%s: %d x %d, nnz %zu; result upper %lld entries (CSparse full %lld)\n", name, a.rows, a.cols,
                a.col_indx.size(), static_cast<long long>(nnz), static_cast<long long>(peer_nnz));
    print_row("  zel_sparse_syrk, transpose cached", cached, "cs_multiply(A, cs_transpose(A))", peer, goal);
    print_row("  zel_sparse_syrk, transpose built", fresh, "cs_multiply(A, cs_transpose(A))", peer, goal);
}

// Dense result of A·Aᵀ (2000 × 2000) against densifying A and calling dsyrk_.
void dense_case(const csr &a, double density, int reps, double goal)
{
    const int64_t m = a.rows, n = a.cols;
    zel::bench::progress("sparse syrk: dense result at %g%%", density * 100);
    std::vector<double> c(m * m, 0.0);
    zel_sparse_matrix_i4 *h = nullptr;
    auto *rs = const_cast<int32_t *>(a.rows_start.data());
    zel_sparse_d_create_csr_i4(&h, 0, a.rows, a.cols, rs, rs + 1, const_cast<int32_t *>(a.col_indx.data()),
                               const_cast<double *>(a.values.data()));
    double zel[2];
    for (int layout : {101, 102})
        zel[layout - 101] = best_of(reps, [&] { zel_sparse_d_syrkd_i4(10, h, 1.0, 0.0, c.data(), layout, int32_t(m)); });
    zel_sparse_destroy_i4(h);

    std::vector<double> dense(m * n);
    double dsyrk_only = 1e300;
    const double peer = best_of(1, [&] {
        std::fill(dense.begin(), dense.end(), 0.0);
        for (int64_t i = 0; i < m; ++i)
            for (int32_t p = a.rows_start[i]; p < a.rows_start[i + 1]; ++p)
                dense[i + a.col_indx[p] * m] = a.values[p];
        const double one = 1.0, zero = 0.0;
        dsyrk_only = std::min(dsyrk_only, seconds_of([&] {
                                  dsyrk_("U", "N", &m, &n, &one, dense.data(), &m, &zero, c.data(), &m, 1, 1);
                              }));
    });
    char label[64];
    std::snprintf(label, sizeof label, "  %lldx%lld at %g%%, row-major C", static_cast<long long>(m),
                  static_cast<long long>(n), density * 100);
    print_row(label, zel[0], "densify + dsyrk_", peer, goal);
    std::snprintf(label, sizeof label, "  %lldx%lld at %g%%, column-major C", static_cast<long long>(m),
                  static_cast<long long>(n), density * 100);
    print_row(label, zel[1], "densify + dsyrk_", peer, goal);
    std::printf("  (dsyrk_ alone %.4f s)\n", dsyrk_only);
}

} // namespace

namespace zel::bench {

// The `syrk` section of `zel bench sparse`: the Laplacian with `repeats` timed rounds,
// the large random matrix with five, the dense products with three.
int syrk_section(int repeats)
{
    // Freed memory stays with the process, so repeated runs work on memory already touched.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
    // The heap is grown and touched once up front: a run whose arrays land above the highest
    // address so far would otherwise pay the kernel's first-touch faults, on either side.
    const size_t heap_reserve = size_t(4) << 30;
    if (void *reserve = std::malloc(heap_reserve)) {
        std::memset(reserve, 1, heap_reserve);
        std::free(reserve);
    }
    std::printf("A·Aᵀ products (seconds, best of runs after a warm-up; ratio = peer / zel)\n");
    std::printf("%-34s %10s %-28s %10s %8s %7s\n", "case", "zel", "peer", "peer", "ratio", "goal");
    sparse_case("7-point Laplacian 100^3", laplacian(100), repeats, 1.4);
    sparse_case("random", random_csr(1000000, 1000000, 10, 12345), 5, 1.1);
    std::printf("dense result C = A·Aᵀ\n");
    for (double density : {0.01, 0.10})
        dense_case(random_csr(2000, 20000, int32_t(density * 20000), 777), density, 3, density < 0.05 ? 5.0 : 1.5);
    return 0;
}

} // namespace zel::bench
