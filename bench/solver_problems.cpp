// The solver suite's matrices and the products that judge a solve.
#include "solver_problems.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "matrix_market.hpp"

namespace zel::bench {
namespace {

// The grid's point (x, y, z) as a row, or -1 off the grid.
struct grid {
    int64_t nx, ny, nz;
    int64_t at(int64_t x, int64_t y, int64_t z) const
    {
        return x < 0 || y < 0 || z < 0 || x >= nx || y >= ny || z >= nz ? -1 : (z * ny + y) * nx + x;
    }
    int dimensions() const { return (nx > 1) + (ny > 1) + (nz > 1); }
};

void push(csr_matrix &a, int64_t column, double value)
{
    a.col.push_back(column);
    a.value.push_back(value);
}

// A small deterministic generator (splitmix64), so that every run builds the same system.
struct splitmix {
    uint64_t state;
    uint64_t next()
    {
        uint64_t z = (state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    double uniform() { return double(next() >> 11) * 0x1.0p-53; } // [0, 1)
    int64_t below(int64_t bound) { return int64_t(next() % uint64_t(bound)); }
};

// B's row for the 2 × 2 block whose first node is (x, y): that node and one or two of the other
// three, as (node, coefficient) pairs with the owned node first.
std::vector<std::pair<int64_t, double>> constraint(const grid &g, int64_t x, int64_t y, splitmix &random)
{
    const int64_t others[3] = {g.at(x + 1, y, 0), g.at(x, y + 1, 0), g.at(x + 1, y + 1, 0)};
    const double owned = (1.0 + random.uniform()) * (random.next() & 1 ? 1.0 : -1.0);
    std::vector<std::pair<int64_t, double>> row = {{g.at(x, y, 0), owned}};
    // one other node (the drawn one) or two (all but the drawn one)
    const int64_t drawn = random.below(3);
    const bool one = random.next() & 1;
    for (int64_t k = 0; k < 3; ++k)
        if (one == (k == drawn)) {
            double value = 2.0 * random.uniform() - 1.0;
            value = std::abs(value) < 0.1 ? std::copysign(0.1, value) : value;
            row.push_back({others[k], value});
        }
    return row;
}

// Whether every entry (i, j) has its mirror (j, i) with the same value (rows sorted by column).
bool symmetric(const zel::tool::mm_matrix &m)
{
    for (int64_t i = 0; i < m.header.rows; ++i)
        for (int64_t p = m.row_ptr[i]; p < m.row_ptr[i + 1]; ++p) {
            const int64_t j = m.col_idx[p];
            const auto first = m.col_idx.begin() + m.row_ptr[j], last = m.col_idx.begin() + m.row_ptr[j + 1];
            const auto mirror = std::lower_bound(first, last, i);
            if (mirror == last || *mirror != i || m.real_values[size_t(mirror - m.col_idx.begin())] != m.real_values[p])
                return false;
        }
    return true;
}

} // namespace

csr_matrix grid_laplacian(int64_t nx, int64_t ny, int64_t nz)
{
    const grid g{nx, ny, nz};
    csr_matrix a;
    a.n = nx * ny * nz;
    a.upper = true;
    const double diagonal = 2.0 * g.dimensions();
    a.col.reserve(size_t(4 * a.n));
    a.value.reserve(size_t(4 * a.n));
    for (int64_t z = 0; z < nz; ++z)
        for (int64_t y = 0; y < ny; ++y)
            for (int64_t x = 0; x < nx; ++x) {
                push(a, g.at(x, y, z), diagonal);
                for (int64_t j : {g.at(x + 1, y, z), g.at(x, y + 1, z), g.at(x, y, z + 1)})
                    if (j >= 0)
                        push(a, j, -1.0);
                a.row_ptr.push_back(int64_t(a.col.size()));
            }
    return a;
}

csr_matrix convection_diffusion(int64_t nx, int64_t ny, int64_t nz, double cell_peclet)
{
    const grid g{nx, ny, nz};
    csr_matrix a;
    a.n = nx * ny * nz;
    const double diagonal = (2.0 + cell_peclet) * g.dimensions(), upwind = -1.0 - cell_peclet;
    a.col.reserve(size_t(7 * a.n));
    a.value.reserve(size_t(7 * a.n));
    for (int64_t z = 0; z < nz; ++z)
        for (int64_t y = 0; y < ny; ++y)
            for (int64_t x = 0; x < nx; ++x) {
                // columns ascending: −z, −y, −x neighbours (upwind), the point, +x, +y, +z
                const int64_t below[3] = {g.at(x, y, z - 1), g.at(x, y - 1, z), g.at(x - 1, y, z)};
                const int64_t above[3] = {g.at(x + 1, y, z), g.at(x, y + 1, z), g.at(x, y, z + 1)};
                for (int64_t j : below)
                    if (j >= 0)
                        push(a, j, upwind);
                push(a, g.at(x, y, z), diagonal);
                for (int64_t j : above)
                    if (j >= 0)
                        push(a, j, -1.0);
                a.row_ptr.push_back(int64_t(a.col.size()));
            }
    return a;
}

csr_matrix saddle_point(int64_t edge)
{
    const grid g{edge, edge, 1};
    const int64_t m = edge * edge;
    // Bᵀ by rows of H: the constraints that touch each node.
    std::vector<std::vector<std::pair<int64_t, double>>> touching(static_cast<size_t>(m));
    splitmix random{20240611};
    int64_t row = m;
    for (int64_t y = 0; y + 1 < edge; y += 2)
        for (int64_t x = 0; x + 1 < edge; x += 2, ++row)
            for (const auto &[node, value] : constraint(g, x, y, random))
                touching[size_t(node)].push_back({row, value});
    const csr_matrix h = grid_laplacian(edge, edge, 1);
    csr_matrix a;
    a.n = row;
    a.upper = true;
    for (int64_t i = 0; i < m; ++i) {
        for (int64_t p = h.row_ptr[i]; p < h.row_ptr[i + 1]; ++p)
            push(a, h.col[p], h.value[p]);
        for (const auto &[column, value] : touching[size_t(i)]) // constraint rows come after every node
            push(a, column, value);
        a.row_ptr.push_back(int64_t(a.col.size()));
    }
    a.row_ptr.resize(size_t(a.n + 1), a.row_ptr.back()); // the zero block's rows are empty
    return a;
}

bool read_matrix(const std::string &path, bool upper, csr_matrix &a, std::string &error)
{
    zel::tool::mm_matrix m;
    if (!zel::tool::read_matrix_market(path.c_str(), m, error))
        return false;
    if (m.is_complex() || m.header.rows != m.header.cols) {
        error = path + ": not a real square matrix";
        return false;
    }
    if (upper && !symmetric(m)) {
        error = path + ": not symmetric, so its upper triangle does not describe it";
        return false;
    }
    a = csr_matrix{};
    a.n = m.header.rows;
    a.upper = upper;
    for (int64_t i = 0; i < a.n; ++i) {
        for (int64_t p = m.row_ptr[i]; p < m.row_ptr[i + 1]; ++p)
            if (!upper || m.col_idx[p] >= i)
                push(a, m.col_idx[p], m.real_values[p]);
        a.row_ptr.push_back(int64_t(a.col.size()));
    }
    return true;
}

int64_t bench_grid_edge()
{
    const char *text = std::getenv("ZEL_BENCH_GRID");
    if (text == nullptr || *text == '\0')
        return 100;
    char *end = nullptr;
    const long long edge = std::strtoll(text, &end, 10);
    return *end == '\0' && edge >= 2 && edge <= 400 ? edge : 100;
}

void multiply(const csr_matrix &a, const double *x, double *y)
{
    std::fill(y, y + a.n, 0.0);
    for (int64_t i = 0; i < a.n; ++i)
        for (int64_t p = a.row_ptr[i]; p < a.row_ptr[i + 1]; ++p) {
            const int64_t j = a.col[p];
            y[i] += a.value[p] * x[j];
            if (a.upper && j != i)
                y[j] += a.value[p] * x[i];
        }
}

std::vector<double> ones_rhs(const csr_matrix &a)
{
    std::vector<double> ones(size_t(a.n), 1.0), b(size_t(a.n));
    multiply(a, ones.data(), b.data());
    return b;
}

solve_error error_of(const csr_matrix &a, const std::vector<double> &x, const std::vector<double> &b)
{
    const size_t n = size_t(a.n);
    std::vector<double> r(n), abs_ax(n, 0.0), row_sum(n, 0.0);
    multiply(a, x.data(), r.data());
    for (int64_t i = 0; i < a.n; ++i)
        for (int64_t p = a.row_ptr[i]; p < a.row_ptr[i + 1]; ++p) {
            const int64_t j = a.col[p];
            const double v = std::abs(a.value[p]);
            abs_ax[i] += v * std::abs(x[j]);
            row_sum[i] += v;
            if (a.upper && j != i) {
                abs_ax[j] += v * std::abs(x[i]);
                row_sum[j] += v;
            }
        }
    solve_error out{0, 0};
    double r_norm = 0, a_norm = 0, x_norm = 0, b_norm = 0;
    for (size_t i = 0; i < n; ++i) {
        const double residual = std::abs(b[i] - r[i]), scale = abs_ax[i] + std::abs(b[i]);
        const double ratio = scale > 0 ? residual / scale
                           : residual > 0 ? std::numeric_limits<double>::infinity() : 0.0;
        out.componentwise = std::isnan(ratio) || ratio > out.componentwise ? ratio : out.componentwise;
        r_norm = std::max(r_norm, residual);
        a_norm = std::max(a_norm, row_sum[i]);
        x_norm = std::max(x_norm, std::abs(x[i]));
        b_norm = std::max(b_norm, std::abs(b[i]));
    }
    const double scale = a_norm * x_norm + b_norm;
    out.normwise = scale > 0 ? r_norm / scale : r_norm;
    return out;
}

} // namespace zel::bench
