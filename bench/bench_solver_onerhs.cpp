// `zel bench solver --section onerhs`: the layer's one-right-hand-side kernels against the core's
// block sweep kernels at one right-hand side, on factors of the library's own analysis and
// factorisation (zel_pds_export_factor_i8), in GB/s of factor read, beside the processor's
// streaming read bandwidth measured in the same run.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench_solver_common.hpp"
#include "solver_problems.hpp"
#include "zel/pds.h"
#include "zel/pds_onerhs.h"
#include "zel/pds_solve.h"

namespace zel::bench {

namespace {

// The best rate at which one core sums a 256 MiB array of doubles (four partial sums, so that
// the additions never wait on each other), in GB/s.
double streaming_read(int repeats)
{
    const size_t count = size_t(32) << 20;
    std::vector<double> a(count, 1.0);
    volatile double sink = 0;
    const double best = best_of(std::max(repeats, 10), [&] {
        double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
        for (size_t i = 0; i < count; i += 4) {
            s0 += a[i];
            s1 += a[i + 1];
            s2 += a[i + 2];
            s3 += a[i + 3];
        }
        sink = s0 + s1 + s2 + s3;
    });
    (void)sink;
    return double(count * sizeof(double)) / best * 1e-9;
}

// A factor of the library's, kept alive with its solver.
struct held_factor {
    zel_pds_solver *solver = nullptr;
    zel_pds_factor_i8 f{};
    int type = 0;
    std::string failure;
    ~held_factor() { zel_pds_destroy(solver); }
};

// Analyse and factorise (matching and scaling as the library chooses; the kernels read the
// factor whatever made it).
bool factorise(const csr_matrix &a, int type, held_factor &h)
{
    h.type = type;
    zel_pds_options o;
    zel_pds_default_options(&o);
    int status = zel_pds_d_create(&h.solver, type);
    if (status == ZEL_PDS_STATUS_SUCCESS)
        status = zel_pds_set_options(h.solver, &o);
    if (status == ZEL_PDS_STATUS_SUCCESS)
        status = zel_pds_d_analyse_csr_values_i8(h.solver, a.n, a.row_ptr.data(), a.col.data(), a.value.data(), 0,
                                                 a.upper ? ZEL_PDS_STORAGE_UPPER : ZEL_PDS_STORAGE_FULL);
    if (status == ZEL_PDS_STATUS_SUCCESS)
        status = zel_pds_d_factorise(h.solver, a.value.data());
    if (status == ZEL_PDS_STATUS_SUCCESS)
        status = zel_pds_export_factor_i8(h.solver, &h.f);
    if (status != ZEL_PDS_STATUS_SUCCESS)
        h.failure = zel_pds_status_name(status);
    return status == ZEL_PDS_STATUS_SUCCESS;
}

// Bytes a whole solve reads of the factor: every value and row number, once per sweep.
double factor_bytes(const zel_pds_factor_i8 &f)
{
    const double values = double(f.col_ptr[f.n] - 1) + (f.u_values ? double(f.u_col_ptr[f.n] - 1) : 0.0);
    const double rows = double(f.row_ptr[f.nsuper] - 1);
    return 2.0 * (values * sizeof(double) + rows * sizeof(int64_t));
}

// The frame of the core's sweep kernels over the exported factor.
zel_pds_frame frame_of(const held_factor &h)
{
    const zel_pds_factor_i8 &f = h.f;
    zel_pds_frame fr{};
    fr.n = f.n;
    fr.nsuper = f.nsuper;
    fr.super_ptr = f.super_ptr;
    fr.col_ptr = f.col_ptr;
    fr.row_ptr = f.row_ptr;
    fr.row_index = f.row_index;
    fr.l_values = f.l_values;
    fr.u_col_ptr = f.u_col_ptr;
    fr.u_values = f.u_values;
    fr.row_pivots = f.row_pivots;
    fr.col_pivots = f.col_pivots;
    fr.diagonal = f.diagonal;
    fr.bk_pivots = f.bk_pivots;
    fr.perm = f.perm;
    fr.matrix_type = h.type;
    fr.pivoting = f.pivoting;
    fr.nrhs = 1;
    fr.ldb = fr.ldx = f.n;
    fr.partitions = 1;
    return fr;
}

// The one-right-hand-side kernel of the factor's type, whole solve, on x.
int64_t onerhs_solve(const held_factor &h, double *x)
{
    const zel_pds_factor_i8 &f = h.f;
    const int64_t control[3] = {0, 0, 0};
    int64_t error = 0;
    auto *solve = h.type == 2 ? zel_pds_blkslv_ll_posdef_real
                : h.type == 11 ? zel_pds_blkslv_ll_unsym_n_real
                : f.bk_pivots ? zel_pds_blkslv_ll_undef_bk_real
                              : zel_pds_blkslv_ll_undef_di_real;
    solve(f.n, f.nsuper, 1, f.nsuper, f.super_ptr, f.col_ptr, f.row_ptr, f.row_index,
          static_cast<const double *>(f.l_values), f.u_col_ptr, static_cast<const double *>(f.u_values),
          f.bk_pivots ? f.bk_pivots : f.row_pivots, f.col_pivots, x, control, 0, &error);
    return error;
}

// The diagonal step between the sweeps, as the solve driver takes it: D⁻¹ of each block by the
// core's Bunch–Kaufman routine, or the diagonal.
void diagonal_step(const zel_pds_factor_i8 &f, double *x)
{
    const auto *d = static_cast<const double *>(f.diagonal);
    if (f.bk_pivots == nullptr) {
        for (int64_t i = 0; i < f.n; ++i)
            x[i] /= d[i];
        return;
    }
    const auto *l = static_cast<const double *>(f.l_values);
    for (int64_t s = 0; s < f.nsuper; ++s) {
        const int64_t first = f.super_ptr[s] - 1, cols = f.super_ptr[s + 1] - 1 - first;
        const int64_t rows = f.col_ptr[first + 1] - f.col_ptr[first], one = 1;
        int64_t info = 0;
        zel_pds_dsytrs_bkl_scal_varisol("L", &cols, &one, l + f.col_ptr[first] - 1, &rows, f.bk_pivots + first,
                                        x + first, &f.n, &info);
    }
}

// The core's block sweeps at one right-hand side (and the diagonal step between them).
int64_t sweep_solve(const held_factor &h, const zel_pds_frame &fr, double *x)
{
    int64_t error = 0;
    const int64_t n = fr.n;
    if (h.type == 2) {
        zel_pds_pds_sym_pos_fwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
        zel_pds_pds_sym_pos_bwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
    } else if (h.type == 11) {
        zel_pds_pds_unsym_fwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
        zel_pds_pds_unsym_bwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
    } else if (h.f.bk_pivots) {
        zel_pds_pds_sym_indef_bk_fwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
        diagonal_step(h.f, x);
        zel_pds_pds_sym_indef_bk_bwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
    } else {
        zel_pds_pds_sym_indef_diag_fwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
        diagonal_step(h.f, x);
        zel_pds_pds_sym_indef_diag_bwd_ker_seq_nrhs_real(&fr, 1, x, n, &error);
    }
    return error;
}

// One row of the table: both kernels on the same right-hand side, best of the rounds.
int run_case(const char *name, const csr_matrix &a, int type, int repeats, double stream)
{
    held_factor h;
    if (!factorise(a, type, h)) {
        std::printf("%-22s skipped: %s\n", name, h.failure.c_str());
        return 0;
    }
    const zel_pds_frame fr = frame_of(h);
    const int64_t n = h.f.n;
    std::vector<double> b(static_cast<size_t>(n)), x(static_cast<size_t>(n));
    for (int64_t i = 0; i < n; ++i)
        b[size_t(i)] = 1.0 + double(i % 7) / 8;
    int64_t error = 0;
    const double t_one = best_of(repeats, [&] {
        std::copy(b.begin(), b.end(), x.begin());
        error |= onerhs_solve(h, x.data());
    });
    std::vector<double> x_one = x;
    const double t_sweep = best_of(repeats, [&] {
        std::copy(b.begin(), b.end(), x.begin());
        error |= sweep_solve(h, fr, x.data());
    });
    double gap = 0, size = 0;
    for (int64_t i = 0; i < n; ++i) {
        gap = std::max(gap, std::abs(x[size_t(i)] - x_one[size_t(i)]));
        size = std::max(size, std::abs(x[size_t(i)]));
    }
    const double bytes = factor_bytes(h.f);
    std::printf("%-22s %3d %9lld %7lld %9.1f %9s %6.2f %9s %6.2f %6.2f %6.2f %8.1e%s\n", name, type,
                static_cast<long long>(n), static_cast<long long>(h.f.nsuper), bytes * 1e-6, ms(t_one).c_str(),
                bytes / t_one * 1e-9, ms(t_sweep).c_str(), bytes / t_sweep * 1e-9, t_sweep / t_one,
                bytes / t_one * 1e-9 / stream, gap / std::max(size, 1e-300), error != 0 ? "  (error)" : "");
    return error != 0;
}

} // namespace

int onerhs_section(int repeats)
{
    const double stream = streaming_read(repeats);
    std::printf("One right-hand side: blkslv_ll (this layer) against the core's block sweeps at nrhs = 1, whole\n"
                "solve, factors of the library's analysis and factorisation (default options). MB: the factor's\n"
                "values and row numbers, read once per sweep; GB/s of that; ms best of %d rounds.\n"
                "Streaming read bandwidth of one core (sum of 256 MiB): %.2f GB/s.\n"
                "%-22s %3s %9s %7s %9s %9s %6s %9s %6s %6s %6s %8s\n",
                repeats, stream, "matrix", "typ", "n", "snodes", "MB", "ll ms", "GB/s", "sweep ms", "GB/s",
                "ratio", "/strm", "rel.gap");
    int status = 0;
    const int64_t k = bench_grid_edge() * 6 / 10;
    status |= run_case(("laplace3d " + std::to_string(k) + "^3").c_str(), grid_laplacian(k, k, k), 2, repeats,
                       stream);
    const int64_t k2 = bench_grid_edge() * 10;
    status |= run_case(("laplace2d " + std::to_string(k2) + "^2").c_str(), grid_laplacian(k2, k2, 1), 2, repeats,
                       stream);
    const int64_t k3 = bench_grid_edge() * 4 / 10, k4 = bench_grid_edge() * 5;
    status |= run_case(("convdiff3d " + std::to_string(k3) + "^3").c_str(), convection_diffusion(k3, k3, k3, 10.0),
                       11, repeats, stream);
    status |= run_case(("convdiff2d " + std::to_string(k4) + "^2").c_str(), convection_diffusion(k4, k4, 1, 10.0),
                       11, repeats, stream);
    status |= run_case(("kkt " + std::to_string(k4) + "^2").c_str(), saddle_point(k4), -2, repeats, stream);
    const std::string folder = matrix_folder();
    static const struct {
        const char *name;
        int type;
    } files[] = {{"bcsstk13", 2}, {"1138_bus", 2}, {"ani4", 11}, {"sherman3", 11}, {"watt_2", 11}, {"cryg2500", 11},
                 {"rajat19", 11}, {"bcsstk13", -2}};
    for (const auto &file : files) {
        csr_matrix a;
        std::string why;
        if (!read_matrix(folder + "/" + file.name + ".mtx", file.type != 11, a, why)) {
            std::printf("%-22s skipped: %s\n", file.name, why.c_str());
            continue;
        }
        status |= run_case(file.name, a, file.type, 10 * repeats, stream);
    }
    std::printf("ratio: sweep time / ll time (above 1: the one-right-hand-side kernel is faster); /strm: ll GB/s\n"
                "over the streaming read bandwidth; rel.gap: max |x_ll − x_sweep| / max |x|.\n");
    return status;
}

} // namespace zel::bench
