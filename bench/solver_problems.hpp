// The matrices of `zel bench solver`: generated problems (Laplacians, convection-diffusion, a
// saddle-point system) and the test folder's Matrix Market files, with the products that judge a
// solve.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench_solver_peer.hpp"

namespace zel::bench {

// The Laplacian of a grid of nx × ny × nz points (Dirichlet boundary) as its upper triangle:
// 2·dimensions on the diagonal, -1 to each neighbour.
csr_matrix grid_laplacian(int64_t nx, int64_t ny, int64_t nz);

// Convection-diffusion −Δu + w·∇u on a grid of nx × ny × nz points (Dirichlet boundary), the
// velocity w along the diagonal (1, 1, 1) of the grid's dimensions, first-order upwind
// differences, scaled by h²: with cell Péclet number P = |w_x|·h, the diagonal is 2·d + d·P
// (d dimensions), the upwind neighbour −1 − P and the downwind one −1. The whole matrix: an
// unsymmetric M-matrix, diagonally dominant (strictly in the rows at the boundary).
csr_matrix convection_diffusion(int64_t nx, int64_t ny, int64_t nz, double cell_peclet);

// The saddle-point system [[H, Bᵀ], [B, 0]] as its upper triangle, H the Laplacian of a g × g
// grid (g even, m = g² nodes) and B one constraint for each 2 × 2 block of nodes (m/4 rows): a
// coefficient of magnitude 1 to 2 on the block's first node and one or two of magnitude 0.1 to 1
// on others of the block, drawn from a fixed seed. Each row owns its block's first node, so B has full row
// rank and the system is nonsingular, with m positive and m/4 negative eigenvalues. The zero
// block is not stored.
csr_matrix saddle_point(int64_t g);

// A real square Matrix Market file: the whole matrix, or (upper) the upper triangle of one whose
// values are symmetric (stored as symmetric or as general); false with a message otherwise.
bool read_matrix(const std::string &path, bool upper, csr_matrix &a, std::string &error);

// The grid edge the generated problems scale with: ZEL_BENCH_GRID (2 to 400), else 100. The 3-D
// problems use k³ points, the 2-D ones (10k)², the saddle-point system (5k)² nodes.
int64_t bench_grid_edge();

// y = A·x (the stored triangle mirrored when a.upper).
void multiply(const csr_matrix &a, const double *x, double *y);

// b = A·1, so that a solve's error means something.
std::vector<double> ones_rhs(const csr_matrix &a);

// The two measures of a solve x of A·x = b: componentwise max_i |b − A·x|_i / (|A|·|x| + |b|)_i and
// normwise ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞).
struct solve_error {
    double componentwise, normwise;
};
solve_error error_of(const csr_matrix &a, const std::vector<double> &x, const std::vector<double> &b);

} // namespace zel::bench
