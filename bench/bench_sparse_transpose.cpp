// `zel bench sparse`: the library's sparse operations against CSparse in the same run. The
// suite is a table of sections; each prints its own rows.
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "suite.hpp"
#include "zel/runtime.h"
#include "zel/sparse_transpose.h"

#include <suitesparse/cs.h>

namespace {

struct bench_options {
    int repeats = 7;
};

// A CSR matrix with 32-bit indices and double values.
struct csr_matrix {
    const char *name = "";
    int32_t rows = 0, cols = 0;
    std::vector<int32_t> starts, indices;
    std::vector<double> values;
    int64_t nnz() const { return static_cast<int64_t>(indices.size()); }
};

double seconds_now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Best of `repeats` timings of f, in seconds.
template <class F> double best_time(int repeats, F f)
{
    double best = 1e30;
    for (int r = 0; r < repeats; ++r) {
        const double start = seconds_now();
        f();
        best = std::min(best, seconds_now() - start);
    }
    return best;
}

// n x n with `per_row` distinct random columns in every row.
csr_matrix random_matrix(int32_t n, int per_row)
{
    csr_matrix a;
    a.name = "random";
    a.rows = a.cols = n;
    a.starts.resize(n + 1);
    a.indices.reserve(static_cast<size_t>(n) * per_row);
    std::mt19937 rng(12345);
    std::uniform_int_distribution<int32_t> col(0, n - 1);
    std::uniform_real_distribution<double> val(-1.0, 1.0);
    int32_t row[64];
    for (int32_t i = 0; i < n; ++i) {
        for (int k = 0; k < per_row; ++k)
            row[k] = col(rng);
        std::sort(row, row + per_row);
        const int kept = static_cast<int>(std::unique(row, row + per_row) - row);
        a.indices.insert(a.indices.end(), row, row + kept);
        a.starts[i + 1] = static_cast<int32_t>(a.indices.size());
    }
    a.values.resize(a.indices.size());
    for (double &v : a.values)
        v = val(rng);
    return a;
}

// 7-point Laplacian on a k x k x k grid.
csr_matrix laplacian_3d(int32_t k)
{
    csr_matrix a;
    a.name = "laplace3d";
    const int32_t n = k * k * k;
    a.rows = a.cols = n;
    a.starts.resize(n + 1);
    a.indices.reserve(static_cast<size_t>(n) * 7);
    const int32_t steps[] = {k * k, k, 1};
    for (int32_t i = 0; i < n; ++i) {
        const int32_t x = i % k, y = (i / k) % k, z = i / (k * k);
        const int32_t coord[] = {z, y, x};
        for (int d = 0; d < 3; ++d)
            if (coord[d] > 0)
                a.indices.push_back(i - steps[d]), a.values.push_back(-1.0);
        a.indices.push_back(i), a.values.push_back(6.0);
        for (int d = 2; d >= 0; --d)
            if (coord[d] < k - 1)
                a.indices.push_back(i + steps[d]), a.values.push_back(-1.0);
        a.starts[i + 1] = static_cast<int32_t>(a.indices.size());
    }
    return a;
}

// Copy bandwidth (bytes read plus written per second) of a large warm memcpy.
double copy_bandwidth(int repeats)
{
    const size_t bytes = size_t(256) << 20;
    std::vector<char> from(bytes, 1), to(bytes, 2);
    const double t = best_time(repeats, [&] { std::memcpy(to.data(), from.data(), bytes); });
    return 2.0 * bytes / t;
}

// The CSR arrays of A read by CSparse as the CSC arrays of A^T (no copy).
cs_di csparse_view(const csr_matrix &a)
{
    cs_di source{};
    source.nzmax = static_cast<int>(a.nnz());
    source.m = a.cols;
    source.n = a.rows;
    source.p = const_cast<int *>(a.starts.data());
    source.i = const_cast<int *>(a.indices.data());
    source.x = const_cast<double *>(a.values.data());
    source.nz = -1;
    return source;
}

double csparse_time(const csr_matrix &a, int repeats)
{
    cs_di source = csparse_view(a);
    return best_time(repeats, [&] { cs_di_spfree(cs_di_transpose(&source, 1)); });
}

// Transposed record and bare kernel against cs_transpose on warm memory; t_cs_default is
// cs_transpose under the allocator's default settings (fresh pages for its large results).
void transpose_row(const csr_matrix &a, double bandwidth, int repeats, double t_cs_default)
{
    const int32_t n_in = a.rows, n_out = a.cols;
    const int64_t nnz = a.nnz();
    std::vector<int32_t> out_starts(n_out + 1), out_indices(nnz), work(n_out);
    std::vector<double> out_values(nnz);
    auto kernel = [&] {
        zel_sparse_d_transpose_matrix_i4(n_out, n_in, static_cast<int32_t>(nnz), 1, ZEL_SPARSE_OPERATION_TRANSPOSE, 0, 1,
                                         a.starts.data(), a.starts.data() + 1, a.indices.data(), a.values.data(),
                                         out_starts.data(), out_indices.data(), out_values.data(), work.data());
    };
    kernel(); // touches the output once

    // The whole record through the handle entry, arrays from the (warm) heap.
    zel_sparse_csr_record_i4 record{};
    record.rows = a.rows;
    record.cols = a.cols;
    record.nnz = static_cast<int32_t>(nnz);
    record.block_size = 1;
    record.inplace_copy = 1;
    record.three_array = 1;
    record.rows_start = const_cast<int32_t *>(a.starts.data());
    record.rows_end = record.rows_start + 1;
    record.col_indx = const_cast<int32_t *>(a.indices.data());
    record.values = const_cast<double *>(a.values.data());
    zel_sparse_matrix_i4 handle{};
    handle.data_type = ZEL_SPARSE_DATA_D;
    handle.format = ZEL_SPARSE_FORMAT_CSR;
    handle.rows = a.rows;
    handle.cols = a.cols;
    handle.data = &record;
    auto drop_transposed = [&] {
        zel_sparse_csr_record_i4 *t = handle.transposed;
        if (t == nullptr)
            return;
        zel_serv_free(t->rows_start), zel_serv_free(t->col_indx), zel_serv_free(t->values);
        zel_serv_free(t->opt_record->sub_three), zel_serv_free(t->opt_record->sub_four);
        zel_serv_free(t->opt_record), zel_serv_free(t->opt_words), zel_serv_free(t);
        handle.transposed = nullptr;
    };
    auto build_record = [&] {
        drop_transposed();
        zel_sparse_d_transposeMatrix_i4(&handle, ZEL_SPARSE_OPERATION_TRANSPOSE);
    };
    cs_di source = csparse_view(a);
    auto csparse = [&] { cs_di_spfree(cs_di_transpose(&source, 1)); };
    build_record();
    csparse();

    // Rounds alternate the three so that a busy machine slows them alike; best of each.
    double t_kernel = 1e30, t_record = 1e30, t_cs = 1e30;
    for (int r = 0; r < repeats; ++r) {
        t_kernel = std::min(t_kernel, best_time(1, kernel));
        t_cs = std::min(t_cs, best_time(1, csparse));
        t_record = std::min(t_record, best_time(1, build_record));
    }
    cs_di *c = cs_di_transpose(&source, 1);
    const zel_sparse_csr_record_i4 &t = *handle.transposed;
    const bool same = std::equal(c->p, c->p + n_out + 1, t.rows_start) && std::equal(c->i, c->i + nnz, t.col_indx) &&
                      std::equal(c->x, c->x + nnz, static_cast<double *>(t.values)) &&
                      std::equal(c->p, c->p + n_out + 1, out_starts.data()) &&
                      std::equal(c->i, c->i + nnz, out_indices.data()) &&
                      std::equal(c->x, c->x + nnz, out_values.data());
    cs_di_spfree(c);
    drop_transposed();

    // Bytes that must move at least: the source read once, the result written once.
    const double bytes = (n_in + 1 + n_out + 1) * 4.0 + 2.0 * nnz * (4.0 + 8.0);
    const double t_bound = bytes / bandwidth;
    std::printf("%-10s %8d %9lld %8.2f %8.2f %8.2f %8.2f %6.2fx %6.2fx %6.2fx %8.2f %6.2f  %s\n", a.name, n_in,
                static_cast<long long>(nnz), 1e3 * t_kernel, 1e3 * t_record, 1e3 * t_cs, 1e3 * t_cs_default,
                t_cs / t_kernel, t_cs / t_record, t_cs_default / t_record, 1e3 * t_bound, t_bound / t_kernel,
                same ? "same" : "DIFFERENT");
}

int transpose_section(const bench_options &options)
{
    zel::bench::progress("sparse transpose: building the matrices, timing cs_transpose on fresh pages");
    const csr_matrix matrices[] = {laplacian_3d(100), random_matrix(1000000, 10)};
    // cs_transpose as an application runs it by default, before the heap is told to keep blocks.
    const double cs_default[] = {csparse_time(matrices[0], options.repeats),
                                 csparse_time(matrices[1], options.repeats)};
    // From here on freed blocks stay in the heap: every timed run works on pages already touched.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
    const double bandwidth = copy_bandwidth(options.repeats);
    std::printf("transpose of a CSR matrix (double, 32-bit indices), best of %d runs.\n"
                "Warm memory: the kernel's output is touched before timing, and the heap keeps freed blocks\n"
                "so the record's arrays and cs_transpose's results reuse touched pages ('cs dflt': cs_transpose\n"
                "under default allocator settings, its large results on fresh pages each call).\n"
                "kernel = zel_sparse_d_transpose_matrix_i4 into given arrays; record = zel_sparse_d_transposeMatrix_i4\n"
                "building the cached record (allocation included). Copy bandwidth %.1f GB/s (read + write);\n"
                "bound = bytes read and written once / copy bandwidth; 'of bnd' = bound / kernel time.\n\n",
                options.repeats, bandwidth / 1e9);
    std::printf("%-10s %8s %9s %8s %8s %8s %8s %7s %7s %7s %8s %6s  %s\n", "matrix", "n", "nnz", "kernel", "record",
                "cs", "cs dflt", "cs/kern", "cs/rec", "dflt/rec", "bound", "of bnd", "arrays");
    std::printf("%-10s %8s %9s %8s %8s %8s %8s %7s %7s %7s %8s %6s\n", "", "", "", "ms", "ms", "ms", "ms", "", "", "",
                "ms", "");
    for (int m = 0; m < 2; ++m) {
        zel::bench::progress("sparse transpose: %s", matrices[m].name);
        transpose_row(matrices[m], bandwidth, options.repeats, cs_default[m]);
    }
    return 0;
}

} // namespace

namespace zel::bench {
int syrk_section(int repeats); // bench_sparse_syrk.cpp
}

namespace {

int syrk_section(const bench_options &options) { return zel::bench::syrk_section(options.repeats); }

struct bench_section {
    const char *name;
    int (*run)(const bench_options &);
};
const bench_section sections[] = {
    {"transpose", transpose_section},
    {"syrk", syrk_section},
};

// Sections run in the order of the suite's table (tools/bench_request.cpp), each named first.
int run_sparse_bench(const zel::bench::request &what)
{
    bench_options options;
    options.repeats = what.repeats;
    int status = 0;
    for (const auto &s : sections)
        if (what.runs(zel::bench::find_section(*what.suite, s.name))) {
            std::printf("== %s\n", s.name);
            status |= s.run(options);
            std::printf("\n");
        }
    return status;
}

} // namespace

ZEL_BENCH_SUITE("sparse", run_sparse_bench);
