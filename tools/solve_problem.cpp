// The system `zel solve` works on, apart from the solver.
#include "solve_problem.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "zel/pds.h"

namespace zel::tool {
namespace {

mm_header real_symmetric(int64_t n)
{
    mm_header h;
    h.field = mm_field::real;
    h.symmetry = mm_symmetry::symmetric;
    h.rows = h.cols = n;
    return h;
}

// Row i of Aᵀ for every i: the rows in which each column appears, ascending.
void transpose_pattern(const mm_matrix &a, std::vector<int64_t> &ptr, std::vector<int64_t> &idx)
{
    const int64_t n = a.header.rows;
    ptr.assign(n + 1, 0);
    for (int64_t j : a.col_idx)
        ++ptr[j + 1];
    for (int64_t i = 0; i < n; ++i)
        ptr[i + 1] += ptr[i];
    idx.resize(a.col_idx.size());
    std::vector<int64_t> next(ptr.begin(), ptr.end() - 1);
    for (int64_t i = 0; i < n; ++i)
        for (int64_t k = a.row_ptr[i]; k < a.row_ptr[i + 1]; ++k)
            idx[next[a.col_idx[k]]++] = i;
}

// The shortest text that reads back as the same double.
std::string entry_text(const double &v)
{
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, v).ptr);
}

std::string entry_text(const std::complex<double> &v)
{
    std::string text = "(";
    text.append(entry_text(v.real())).append(", ").append(entry_text(v.imag())).append(")");
    return text;
}

// The stored value at (i, j), or null.
template <class T> const T *find_entry(const mm_matrix &a, const std::vector<T> &values, int64_t i, int64_t j)
{
    const auto first = a.col_idx.begin() + a.row_ptr[i], last = a.col_idx.begin() + a.row_ptr[i + 1];
    const auto at = std::lower_bound(first, last, j);
    return at != last && *at == j ? &values[at - a.col_idx.begin()] : nullptr;
}

// The first off-diagonal pair whose a_ji differs from mirror(a_ij) by more than rounding,
// described ("" when there is none); `largest` gets the largest relative difference within it.
template <class T, class Mirror>
std::string first_asymmetry(const mm_matrix &a, const std::vector<T> &values, Mirror mirror, double &largest)
{
    largest = 0;
    for (int64_t i = 0; i < a.header.rows; ++i)
        for (int64_t k = a.row_ptr[i]; k < a.row_ptr[i + 1]; ++k) {
            const int64_t j = a.col_idx[k];
            if (j == i)
                continue;
            const T *partner = find_entry(a, values, j, i);
            const T image = mirror(values[k]), other = partner ? *partner : T{};
            const double scale = std::max(std::abs(image), std::abs(other));
            const double difference = scale > 0 ? std::abs(image - other) / scale : 0.0;
            if (difference <= symmetry_tolerance) {
                largest = std::max(largest, difference);
                continue;
            }
            return "entry (" + std::to_string(i + 1) + ", " + std::to_string(j + 1) + ") is " +
                   entry_text(values[k]) + " but entry (" + std::to_string(j + 1) + ", " + std::to_string(i + 1) +
                   ") is " + (partner ? entry_text(*partner) : std::string("absent"));
        }
    return "";
}

// The first diagonal entry that is missing or not positive and real, described, or "".
template <class T> std::string diagonal_obstacle(const mm_matrix &a, const std::vector<T> &values)
{
    for (int64_t i = 0; i < a.header.rows; ++i) {
        const T *d = find_entry(a, values, i, i);
        if (d == nullptr)
            return "row " + std::to_string(i + 1) + " has no diagonal entry";
        if (!(std::real(*d) > 0) || std::imag(*d) != 0)
            return "diagonal entry " + std::to_string(i + 1) + " is " + entry_text(*d) + ", not positive";
    }
    return "";
}

// The first diagonal entry with an imaginary part, described, or "".
std::string complex_diagonal(const mm_matrix &a)
{
    for (int64_t i = 0; i < a.header.rows; ++i) {
        const std::complex<double> *d = find_entry(a, a.complex_values, i, i);
        if (d != nullptr && d->imag() != 0)
            return "diagonal entry " + std::to_string(i + 1) + " is " + entry_text(*d) + ", not real";
    }
    return "";
}

// m = max(m, v), where a NaN stays: a residual that is not a number must say so.
void widen(double &m, double v) { m = std::isnan(m) || std::isnan(v) ? NAN : std::max(m, v); }

} // namespace

mm_matrix laplacian_3d(int64_t size)
{
    const int64_t n = size * size * size, plane = size * size;
    mm_matrix a;
    a.header = real_symmetric(n);
    a.row_ptr.reserve(n + 1);
    a.col_idx.reserve(7 * n);
    a.real_values.reserve(7 * n);
    a.row_ptr.push_back(0);
    for (int64_t z = 0; z < size; ++z)
        for (int64_t y = 0; y < size; ++y)
            for (int64_t x = 0; x < size; ++x) {
                const int64_t p = x + size * y + plane * z;
                const int64_t neighbour[7] = {z > 0 ? p - plane : -1, y > 0 ? p - size : -1, x > 0 ? p - 1 : -1, p,
                                              x + 1 < size ? p + 1 : -1, y + 1 < size ? p + size : -1,
                                              z + 1 < size ? p + plane : -1};
                for (int64_t q : neighbour)
                    if (q >= 0) {
                        a.col_idx.push_back(q);
                        a.real_values.push_back(q == p ? 6.0 : -1.0);
                    }
                a.row_ptr.push_back(static_cast<int64_t>(a.col_idx.size()));
            }
    a.header.stored = a.entries();
    return a;
}

mm_matrix pattern_laplacian(const mm_matrix &pattern)
{
    const int64_t n = pattern.header.rows;
    std::vector<int64_t> t_ptr, t_idx;
    transpose_pattern(pattern, t_ptr, t_idx);
    mm_matrix a;
    a.header = real_symmetric(n);
    a.row_ptr.assign(1, 0);
    std::vector<int64_t> merged;
    for (int64_t i = 0; i < n; ++i) {
        // Row i of A + Aᵀ without the diagonal, then the diagonal in its place.
        merged.clear();
        std::set_union(pattern.col_idx.begin() + pattern.row_ptr[i], pattern.col_idx.begin() + pattern.row_ptr[i + 1],
                       t_idx.begin() + t_ptr[i], t_idx.begin() + t_ptr[i + 1], std::back_inserter(merged));
        merged.erase(std::remove(merged.begin(), merged.end(), i), merged.end());
        const auto diagonal_at = std::lower_bound(merged.begin(), merged.end(), i) - merged.begin();
        for (size_t k = 0; k <= merged.size(); ++k) {
            if (static_cast<int64_t>(k) == diagonal_at) {
                a.col_idx.push_back(i);
                a.real_values.push_back(static_cast<double>(merged.size()) + 1.0);
            }
            if (k < merged.size()) {
                a.col_idx.push_back(merged[k]);
                a.real_values.push_back(-1.0);
            }
        }
        a.row_ptr.push_back(a.entries());
    }
    a.header.stored = a.entries();
    return a;
}

void make_complex(mm_matrix &matrix)
{
    if (matrix.is_complex())
        return;
    matrix.complex_values.assign(matrix.real_values.begin(), matrix.real_values.end());
    matrix.real_values = std::vector<double>();
    matrix.header.field = mm_field::complex;
    if (matrix.header.symmetry == mm_symmetry::symmetric)
        matrix.header.symmetry = mm_symmetry::hermitian;
}

matrix_kind classify_matrix(const mm_matrix &a)
{
    matrix_kind k;
    const mm_symmetry s = a.header.symmetry;
    const auto same = [](auto v) { return v; };
    const auto conjugate = [](std::complex<double> v) { return std::conj(v); };
    double &symmetric_gap = k.symmetric_gap, &hermitian_gap = k.hermitian_gap;
    if (s == mm_symmetry::skew_symmetric) {
        k.not_symmetric = k.not_hermitian = "the file is skew-symmetric";
    } else if (!a.is_complex()) {
        if (s != mm_symmetry::symmetric)
            k.not_symmetric = first_asymmetry(a, a.real_values, same, symmetric_gap);
        k.not_hermitian = k.not_symmetric;
        hermitian_gap = symmetric_gap;
    } else {
        if (s != mm_symmetry::symmetric)
            k.not_symmetric = first_asymmetry(a, a.complex_values, same, symmetric_gap);
        if (s != mm_symmetry::hermitian)
            k.not_hermitian = first_asymmetry(a, a.complex_values, conjugate, hermitian_gap);
        if (k.not_hermitian.empty())
            k.not_hermitian = complex_diagonal(a);
    }
    k.symmetric = k.not_symmetric.empty();
    k.hermitian = k.not_hermitian.empty();
    k.diagonal = a.is_complex() ? diagonal_obstacle(a, a.complex_values) : diagonal_obstacle(a, a.real_values);
    k.positive_diagonal = k.diagonal.empty();
    return k;
}

bool reads_one_triangle(int matrix_type)
{
    return matrix_type != ZEL_PDS_REAL_UNSYMMETRIC && matrix_type != ZEL_PDS_COMPLEX_UNSYMMETRIC &&
           matrix_type != ZEL_PDS_REAL_STRUCTURALLY_SYMMETRIC && matrix_type != ZEL_PDS_COMPLEX_STRUCTURALLY_SYMMETRIC;
}

namespace {

const char *request_name(type_request request)
{
    static const char *const names[] = {"auto", "spd", "hpd", "sid", "hid", "csym", "unsym"};
    return names[static_cast<int>(request)];
}

// The automatic choice, from the values alone.
type_plan automatic_type(const matrix_kind &k, bool complex_values, bool complex)
{
    type_plan p;
    const std::string values = complex_values ? "Hermitian values" : "symmetric values";
    const std::string with = complex && !complex_values ? "; complex right-hand sides" : "";
    if (complex ? k.hermitian : k.symmetric) {
        const bool definite = k.positive_diagonal;
        if (complex)
            p.type = definite ? ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE : ZEL_PDS_COMPLEX_HERMITIAN_INDEFINITE;
        else
            p.type = definite ? ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE : ZEL_PDS_REAL_SYMMETRIC_INDEFINITE;
        if (definite)
            p.fallback = complex ? ZEL_PDS_COMPLEX_HERMITIAN_INDEFINITE : ZEL_PDS_REAL_SYMMETRIC_INDEFINITE;
        p.why = values + (definite ? std::string(complex_values ? " with a positive real diagonal"
                                                                : " with a positive diagonal")
                                   : ", but " + k.diagonal) +
                with;
    } else if (complex && k.symmetric) {
        p.type = ZEL_PDS_COMPLEX_SYMMETRIC;
        p.why = "complex symmetric values, not Hermitian: " + k.not_hermitian;
    } else {
        p.type = complex ? ZEL_PDS_COMPLEX_UNSYMMETRIC : ZEL_PDS_REAL_UNSYMMETRIC;
        p.why = (complex_values ? "neither symmetric nor Hermitian: " : "not symmetric: ") + k.not_symmetric + with;
    }
    return p;
}

// The type --type names, or the reason it does not fit.
type_plan requested_type(const matrix_kind &k, bool complex, type_request request)
{
    type_plan p;
    const std::string option = std::string("--type ") + request_name(request);
    p.why = "asked for with " + option;
    const bool hermitian = complex && request != type_request::csym;
    const bool fits = hermitian ? k.hermitian : k.symmetric;
    if (request != type_request::unsym && !fits) {
        p.refusal = option + " asks for " +
                    (hermitian ? "Hermitian values, but it is not Hermitian: " + k.not_hermitian
                               : "symmetric values, but it is not symmetric: " + k.not_symmetric);
        p.refusal_status = 2;
        return p;
    }
    switch (request) {
    case type_request::spd:
    case type_request::hpd:
        if (!k.positive_diagonal) {
            p.refusal = k.diagonal + ", so it is not positive definite";
            p.refusal_status = 1;
        }
        p.type = complex ? ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE : ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE;
        return p;
    case type_request::sid:
    case type_request::hid:
        p.type = complex ? ZEL_PDS_COMPLEX_HERMITIAN_INDEFINITE : ZEL_PDS_REAL_SYMMETRIC_INDEFINITE;
        return p;
    case type_request::csym: p.type = ZEL_PDS_COMPLEX_SYMMETRIC; return p;
    default: p.type = complex ? ZEL_PDS_COMPLEX_UNSYMMETRIC : ZEL_PDS_REAL_UNSYMMETRIC; return p;
    }
}

} // namespace

type_plan plan_matrix_type(const mm_matrix &a, bool complex_rhs, type_request request)
{
    const matrix_kind k = classify_matrix(a);
    const bool complex = a.is_complex() || complex_rhs || request == type_request::hpd ||
                         request == type_request::hid || request == type_request::csym;
    type_plan p = request == type_request::automatic ? automatic_type(k, a.is_complex(), complex)
                                                     : requested_type(k, complex, request);
    p.complex = complex;
    const double gap = p.type == ZEL_PDS_COMPLEX_SYMMETRIC ? k.symmetric_gap
                       : complex                          ? k.hermitian_gap
                                                          : k.symmetric_gap;
    if (p.refusal.empty() && reads_one_triangle(p.type) && gap > 0) {
        char text[96];
        std::snprintf(text, sizeof text, " (the triangles differ by up to %.1e relative; the upper one is used)", gap);
        p.why += text;
    }
    return p;
}

template <class T> void multiply(const mm_matrix &a, const T *x, T *y, int64_t nrhs)
{
    const int64_t n = a.header.rows;
    const std::vector<T> &values = values_of<T>(a);
    for (int64_t j = 0; j < nrhs; ++j)
        for (int64_t i = 0; i < n; ++i) {
            T sum{};
            for (int64_t k = a.row_ptr[i]; k < a.row_ptr[i + 1]; ++k)
                sum += values[k] * x[j * n + a.col_idx[k]];
            y[j * n + i] = sum;
        }
}

std::vector<double> reference_solutions(int64_t n, int64_t nrhs)
{
    std::vector<double> x(n * nrhs);
    for (int64_t j = 0; j < nrhs; ++j)
        for (int64_t i = 0; i < n; ++i)
            x[j * n + i] = 1.0 + 0.5 * std::sin(static_cast<double>((i + 1) * j));
    return x;
}

template <class T> double relative_residual(const mm_matrix &a, const T *b, const T *x, int64_t nrhs)
{
    const int64_t n = a.header.rows;
    const std::vector<T> &values = values_of<T>(a);
    double norm_a = 0;
    for (int64_t i = 0; i < n; ++i) {
        double row = 0;
        for (int64_t k = a.row_ptr[i]; k < a.row_ptr[i + 1]; ++k)
            row += std::abs(values[k]);
        widen(norm_a, row);
    }
    std::vector<T> ax(n);
    double worst = 0;
    for (int64_t j = 0; j < nrhs; ++j) {
        multiply(a, x + j * n, ax.data(), 1);
        double r = 0, norm_x = 0, norm_b = 0;
        for (int64_t i = 0; i < n; ++i) {
            widen(r, std::abs(b[j * n + i] - ax[i]));
            widen(norm_x, std::abs(x[j * n + i]));
            widen(norm_b, std::abs(b[j * n + i]));
        }
        const double scale = norm_a * norm_x + norm_b;
        widen(worst, scale > 0 ? r / scale : r);
    }
    return worst;
}

template void multiply(const mm_matrix &, const double *, double *, int64_t);
template void multiply(const mm_matrix &, const std::complex<double> *, std::complex<double> *, int64_t);
template double relative_residual(const mm_matrix &, const double *, const double *, int64_t);
template double relative_residual(const mm_matrix &, const std::complex<double> *, const std::complex<double> *,
                                  int64_t);

} // namespace zel::tool
