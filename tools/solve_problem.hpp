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

// Why the matrix cannot be tried as (Hermitian) positive definite, or "" when it can: it must
// be symmetric (Hermitian when complex) in its values and have a positive real diagonal.
// `structural` is set when the reason is the symmetry rather than the diagonal.
std::string positive_definite_obstacle(const mm_matrix &matrix, bool &structural);

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
