// The system `zel solve` works on, apart from the solver: the built-in Laplacian, values for a
// pattern file, the choice of matrix type, generated right-hand sides and the residual the tool
// measures itself.
#pragma once

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

#include "matrix_market.hpp"

namespace zel::tool {

// The 7-point Laplacian of a size³ grid with Dirichlet boundaries (6 on the diagonal, -1 for each
// neighbour), both triangles, as a real symmetric matrix.
mm_matrix laplacian_3d(int64_t size);

// Values for a pattern: the graph Laplacian of the symmetrised pattern plus the identity
// (degree + 1 on the diagonal, -1 for each neighbour; stored diagonal entries are ignored),
// which is symmetric positive definite. The result is a real symmetric matrix.
mm_matrix pattern_laplacian(const mm_matrix &pattern);

// Complex values in place of real ones (a real matrix solved as a Hermitian one).
void make_complex(mm_matrix &matrix);

// Entries and the mirror images of their transposed partners may differ by this much, relative
// to the larger, and still count as symmetric: a matrix whose two triangles were computed apart
// and written with 16 digits differs by tens of units in the last place (ani4 of the test
// matrices by up to 7.8e-15). The solver then reads the upper triangle; the difference is a
// backward error of that size, which the residual (measured against the whole matrix) shows.
constexpr double symmetry_tolerance = 1e-14;

// What the values of a square matrix are, for the choice of matrix type. Each text names the
// first entry that breaks the property ("entry (2, 1) is 3 but entry (1, 2) is absent"), or is "".
struct matrix_kind {
    bool symmetric = false;         // a_ji = a_ij, to within symmetry_tolerance
    bool hermitian = false;         // a_ji = conj(a_ij) and a real diagonal; for real values, symmetric
    bool positive_diagonal = false; // every diagonal entry present, real and positive
    std::string not_symmetric, not_hermitian, diagonal;
    double symmetric_gap = 0, hermitian_gap = 0; // the largest relative differences tolerated
};
matrix_kind classify_matrix(const mm_matrix &matrix);

// What --type asks for.
enum class type_request { automatic, spd, hpd, sid, hid, csym, unsym };

// The matrix type to factor (the solver's ZEL_PDS_* code) and why. A positive definite type
// comes with the indefinite one to fall back on when the factorisation finds a pivot that is not
// positive (automatic choice only). When the request does not fit the matrix, `refusal` says why
// and `refusal_status` is the exit status (2: the request contradicts the file; 1: the matrix is
// not positive definite).
struct type_plan {
    int type = 0;
    int fallback = 0;
    bool complex = false; // solved in complex arithmetic (complex values or right-hand sides)
    std::string why;
    std::string refusal;
    int refusal_status = 0;
};
type_plan plan_matrix_type(const mm_matrix &matrix, bool complex_rhs, type_request request);

// Symmetric and Hermitian types read one triangle of the matrix; the others all of it.
bool reads_one_triangle(int matrix_type);

template <class T> const std::vector<T> &values_of(const mm_matrix &matrix);
template <> inline const std::vector<double> &values_of(const mm_matrix &m) { return m.real_values; }
template <> inline const std::vector<std::complex<double>> &values_of(const mm_matrix &m) { return m.complex_values; }

// y = A·x for nrhs columns (leading dimension n).
template <class T> void multiply(const mm_matrix &a, const T *x, T *y, int64_t nrhs);

// The vectors b = A·x_j are made from: column j (0-based) has entries 1 + sin((i+1)·j)/2, so the
// first is the vector of ones.
std::vector<double> reference_solutions(int64_t n, int64_t nrhs);

// max over columns of ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞), from the matrix as given (both triangles).
template <class T> double relative_residual(const mm_matrix &a, const T *b, const T *x, int64_t nrhs);

} // namespace zel::tool
