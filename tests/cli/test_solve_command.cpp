// `zel solve` run as a user runs it, on systems this test writes: the exit status, the type it
// chose, the report, and the solution it writes, judged by a residual computed here from the
// test's own copy of the matrix; the inertia it reports against matrices whose inertia is known
// by construction; singular matrices get their status and exit status 1.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "mm_reader.hpp"

namespace {

using cplx = std::complex<double>;
constexpr double tolerance = 1e-12; // far above a backward-stable solve, far below a wrong one

struct run_result {
    int status = -1;
    std::string out, err;
};

std::string slurp(const std::string &path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// A dense square matrix and how it is written to a file.
struct test_matrix {
    int n = 0;
    std::vector<cplx> a; // row-major
    bool complex = false;
    cplx &at(int i, int j) { return a[size_t(i) * n + j]; }
    cplx at(int i, int j) const { return a[size_t(i) * n + j]; }
};

// Sparse, diagonally dominant, so positive definite: random couplings, Hermitian when complex.
test_matrix definite_matrix(int n, bool complex, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> value(-1, 1);
    std::uniform_int_distribution<int> column(0, n - 1);
    test_matrix m{n, std::vector<cplx>(size_t(n) * n), complex};
    for (int i = 0; i < n; ++i)
        for (int k = 0; k < 3; ++k) {
            const int j = column(random);
            if (j == i)
                continue;
            const cplx v(value(random), complex ? value(random) : 0.0);
            m.at(i, j) = v;
            m.at(j, i) = std::conj(v);
        }
    for (int i = 0; i < n; ++i) {
        double sum = 1;
        for (int j = 0; j < n; ++j)
            sum += j == i ? 0 : std::abs(m.at(i, j));
        m.at(i, i) = sum;
    }
    return m;
}

// The saddle-point matrix [[H, B], [Bᴴ, εI]] with H = definite_matrix(n1) (Hermitian, diagonally
// dominant: positive definite with ‖H‖ below 20) and B = [D; R], D diagonal with |d_jj| ≥ 1, so
// that BᴴH⁻¹B ≥ BᴴB/‖H‖ ≥ I/20. For ε < 1/20 the Schur complement εI − BᴴH⁻¹B is negative
// definite and the inertia is n1 positive, m negative, none zero. ε = 0 leaves those diagonal
// entries out; ε > 0 gives a positive diagonal to a matrix that is not positive definite.
test_matrix saddle_matrix(int n1, int m, bool complex, double epsilon, unsigned seed)
{
    const test_matrix h = definite_matrix(n1, complex, seed);
    std::mt19937 random(seed + 1);
    std::uniform_real_distribution<double> value(-1, 1);
    std::uniform_int_distribution<int> below(m, n1 - 1);
    const int n = n1 + m;
    test_matrix a{n, std::vector<cplx>(size_t(n) * n), complex};
    for (int i = 0; i < n1; ++i)
        for (int j = 0; j < n1; ++j)
            a.at(i, j) = h.at(i, j);
    for (int j = 0; j < m; ++j) {
        const double magnitude = 1.5 + 0.5 * value(random);
        a.at(j, n1 + j) =
            complex ? std::polar(magnitude, 3 * value(random)) : cplx(value(random) < 0 ? -magnitude : magnitude);
        for (int k = 0; k < 2; ++k)
            a.at(below(random), n1 + j) = cplx(value(random), complex ? value(random) : 0.0);
        a.at(n1 + j, n1 + j) = epsilon;
    }
    for (int i = 0; i < n1; ++i)
        for (int j = 0; j < m; ++j)
            a.at(n1 + j, i) = std::conj(a.at(i, n1 + j));
    return a;
}

enum class shape { unsymmetric, complex_symmetric, skew };

// Three random couplings a row, not diagonally dominant: unsymmetric (diagonal entries of
// magnitude 0.5 to 1.5), complex symmetric (a_ji = a_ij, complex diagonal) or skew-symmetric (no
// diagonal; n even, so that it is not singular by its shape).
test_matrix random_matrix(int n, bool complex, shape form, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> value(-1, 1);
    std::uniform_int_distribution<int> column(0, n - 1);
    const auto draw = [&] { return cplx(value(random), complex ? value(random) : 0.0); };
    test_matrix m{n, std::vector<cplx>(size_t(n) * n), complex};
    for (int i = 0; i < n; ++i) {
        for (int k = 0; k < 3; ++k) {
            const int j = column(random);
            if (j == i)
                continue;
            m.at(i, j) = draw();
            if (form != shape::unsymmetric)
                m.at(j, i) = form == shape::skew ? -m.at(i, j) : m.at(i, j);
        }
        if (form != shape::skew) {
            const cplx d = draw();
            m.at(i, i) = d / std::abs(d) * (1.0 + 0.5 * value(random));
        }
    }
    return m;
}

void write_value(std::ostream &out, cplx v, bool complex)
{
    out << v.real();
    if (complex)
        out << ' ' << v.imag();
}

// Lower triangle under "symmetric"/"hermitian", or every entry under "general".
void write_coordinate(const std::string &path, const test_matrix &m, const char *symmetry)
{
    const bool lower_only = std::string(symmetry) != "general";
    std::vector<std::string> lines;
    for (int j = 0; j < m.n; ++j)
        for (int i = lower_only ? j : 0; i < m.n; ++i)
            if (m.at(i, j) != cplx(0)) {
                std::ostringstream line;
                line.precision(17);
                line << i + 1 << ' ' << j + 1 << ' ';
                write_value(line, m.at(i, j), m.complex);
                lines.push_back(line.str());
            }
    std::ofstream out(path);
    out << "%%MatrixMarket matrix coordinate " << (m.complex ? "complex " : "real ") << symmetry << "\n";
    out << m.n << ' ' << m.n << ' ' << lines.size() << "\n";
    for (const auto &line : lines)
        out << line << "\n";
}

// A column-major array file, read here without the command's reader.
std::vector<cplx> read_array(const std::string &path, int &rows, int &cols)
{
    std::ifstream in(path);
    std::string line, banner;
    std::getline(in, banner);
    const bool complex = banner.find("complex") != std::string::npos;
    EXPECT_EQ(banner.rfind("%%MatrixMarket matrix array ", 0), 0u) << banner;
    while (std::getline(in, line) && (line.empty() || line[0] == '%')) {
    }
    std::istringstream(line) >> rows >> cols;
    std::vector<cplx> values;
    for (double re, im = 0; in >> re && (!complex || in >> im);)
        values.emplace_back(re, im);
    EXPECT_EQ(values.size(), size_t(rows) * cols) << path;
    return values;
}

// max over columns of ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞)
double residual(const test_matrix &m, const std::vector<cplx> &b, const std::vector<cplx> &x, int nrhs)
{
    double norm_a = 0, worst = 0;
    for (int i = 0; i < m.n; ++i) {
        double row = 0;
        for (int j = 0; j < m.n; ++j)
            row += std::abs(m.at(i, j));
        norm_a = std::max(norm_a, row);
    }
    for (int c = 0; c < nrhs; ++c) {
        double r = 0, nx = 0, nb = 0;
        for (int i = 0; i < m.n; ++i) {
            cplx ax = 0;
            for (int j = 0; j < m.n; ++j)
                ax += m.at(i, j) * x[size_t(c) * m.n + j];
            r = std::max(r, std::abs(b[size_t(c) * m.n + i] - ax));
            nx = std::max(nx, std::abs(x[size_t(c) * m.n + i]));
            nb = std::max(nb, std::abs(b[size_t(c) * m.n + i]));
        }
        worst = std::max(worst, r / (norm_a * nx + nb));
    }
    return std::isnan(worst) ? INFINITY : worst;
}

class SolveCommand : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir_ = std::filesystem::temp_directory_path() / ("zel_solve_" + std::to_string(getpid()));
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    std::string path(const char *name) const { return (dir_ / name).string(); }
    // Runs `zel solve ARGS` with both streams kept.
    run_result solve(const std::string &args) const
    {
        const std::string out = path("stdout"), err = path("stderr");
        const std::string command = std::string(ZEL_PROGRAM) + " solve " + args + " >" + out + " 2>" + err;
        run_result r;
        const int raw = std::system(command.c_str());
        r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        r.out = slurp(out);
        r.err = slurp(err);
        return r;
    }
    std::filesystem::path dir_;
};

// The residual the report prints, or infinity when there is none.
double reported_residual(const run_result &r)
{
    std::smatch found;
    static const std::regex residual("\nresidual +([0-9.e+-]+) ");
    return std::regex_search(r.out, found, residual) ? std::stod(found[1]) : INFINITY;
}

#define EXPECT_SOLVED(r)                                                                                      \
    do {                                                                                                      \
        EXPECT_EQ((r).status, 0) << (r).err;                                                                  \
        EXPECT_LT(reported_residual(r), tolerance) << (r).out;                                                \
        EXPECT_EQ((r).err, "");                                                                               \
    } while (0)

TEST_F(SolveCommand, BuiltInLaplacian)
{
    const run_result r = solve("--size 9 --ordering nd");
    EXPECT_SOLVED(r);
    EXPECT_NE(r.out.find("n = 729, 4,617 entries"), std::string::npos) << r.out; // 729·7 − 6·81
    EXPECT_NE(r.out.find("real symmetric positive definite (matrix type 2)"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("nested dissection"), std::string::npos) << r.out;
    std::smatch backward;
    ASSERT_TRUE(std::regex_search(r.out, backward, std::regex("\nbackward error +([0-9.e+-]+) "))) << r.out;
    EXPECT_LT(std::stod(backward[1]), 1e-13) << r.out;
    EXPECT_NE(r.out.find("\nmatching        no (a positive definite matrix needs none)\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\nstatus          ZEL_PDS_STATUS_SUCCESS\n"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("\npivots"), std::string::npos) << r.out;
    // The empty system is solved too, and its solution is an empty array.
    std::ofstream(path("empty.mtx")) << "%%MatrixMarket matrix coordinate real symmetric\n0 0 0\n";
    const run_result empty = solve(path("empty.mtx") + " --out " + path("x.mtx"));
    EXPECT_EQ(empty.status, 0) << empty.err;
    EXPECT_NE(empty.out.find("n = 0, 0 entries"), std::string::npos) << empty.out;
    EXPECT_NE(slurp(path("x.mtx")).find("\n0 1\n"), std::string::npos);
    const run_result plain = solve("--size 5 --refine 0 --ordering amd");
    EXPECT_SOLVED(plain);
    EXPECT_NE(plain.out.find("minimum degree"), std::string::npos) << plain.out;
    EXPECT_NE(plain.out.find("not measured (refinement off)"), std::string::npos) << plain.out;
    EXPECT_NE(plain.out.find("\nrefinement      off\n"), std::string::npos) << plain.out;
    EXPECT_NE(plain.out.find("ZEL_PDS_STATUS_SUCCESS (accuracy not measured)"), std::string::npos) << plain.out;
}

// Each storage of a definite matrix, solved for b = A·1 (so x must be the ones) and for right-hand
// sides from a file; the written solution is judged here.
TEST_F(SolveCommand, FilesAndTheirSolutions)
{
    struct form {
        bool complex;
        const char *symmetry;
        const char *type;
    } forms[] = {{false, "symmetric", "matrix type 2"},
                 {false, "general", "matrix type 2"},
                 {true, "hermitian", "matrix type 4"},
                 {true, "general", "matrix type 4"}};
    for (const form &f : forms) {
        SCOPED_TRACE(std::string(f.complex ? "complex " : "real ") + f.symmetry);
        const test_matrix m = definite_matrix(60, f.complex, 11);
        write_coordinate(path("a.mtx"), m, f.symmetry);
        run_result r = solve(path("a.mtx") + " --out " + path("x.mtx"));
        EXPECT_SOLVED(r);
        EXPECT_NE(r.out.find(f.type), std::string::npos) << r.out;
        int rows = 0, cols = 0;
        std::vector<cplx> x = read_array(path("x.mtx"), rows, cols);
        ASSERT_EQ(rows, 60);
        ASSERT_EQ(cols, 1);
        for (const cplx &v : x)
            EXPECT_LT(std::abs(v - 1.0), 1e-12);
        // Three right-hand sides from a file (complex ones for the real matrix too).
        std::vector<cplx> b(180);
        std::mt19937 random(5);
        std::uniform_real_distribution<double> value(-10, 10);
        for (cplx &v : b)
            v = {value(random), value(random)};
        {
            std::ofstream out(path("b.mtx"));
            out.precision(17);
            out << "%%MatrixMarket matrix array complex general\n60 3\n";
            for (const cplx &v : b)
                out << v.real() << ' ' << v.imag() << "\n";
        }
        r = solve(path("a.mtx") + " --rhs " + path("b.mtx") + " --out " + path("x.mtx"));
        EXPECT_SOLVED(r);
        EXPECT_NE(r.out.find("matrix type 4"), std::string::npos) << r.out;
        x = read_array(path("x.mtx"), rows, cols);
        ASSERT_EQ(cols, 3);
        EXPECT_LT(residual(m, b, x, 3), tolerance);
    }
}

// Triangles written apart by rounding still make a symmetric matrix; the report says by how much.
TEST_F(SolveCommand, TrianglesApartByRounding)
{
    std::ofstream(path("a.mtx")) << "%%MatrixMarket matrix coordinate real general\n2 2 4\n1 1 4\n"
                                    "1 2 0.30000000000000004\n2 1 0.3\n2 2 4\n";
    const run_result r = solve(path("a.mtx"));
    EXPECT_SOLVED(r);
    EXPECT_NE(r.out.find("the triangles differ by up to 1.9e-16 relative"), std::string::npos) << r.out;
}

// --nrhs K: K different right-hand sides, each solved (the written columns differ and each
// satisfies its own system only if the command built and solved K distinct systems).
TEST_F(SolveCommand, SeveralGeneratedRightHandSides)
{
    const test_matrix m = definite_matrix(40, false, 3);
    write_coordinate(path("a.mtx"), m, "symmetric");
    const run_result r = solve(path("a.mtx") + " --nrhs 4 --out " + path("x.mtx"));
    EXPECT_SOLVED(r);
    EXPECT_NE(r.out.find("4 right-hand sides"), std::string::npos) << r.out;
    int rows = 0, cols = 0;
    const std::vector<cplx> x = read_array(path("x.mtx"), rows, cols);
    ASSERT_EQ(cols, 4);
    for (int c = 1; c < 4; ++c)
        EXPECT_NE(std::vector<cplx>(x.begin(), x.begin() + 40), std::vector<cplx>(x.begin() + 40 * c, x.begin() + 40 * (c + 1)));
    for (int i = 0; i < 40; ++i)
        EXPECT_LT(std::abs(x[i] - 1.0), 1e-12); // the first is always A·1
}

// A pattern gets its graph Laplacian plus the identity (the pattern symmetrised, stored diagonal
// entries ignored): the solution for a given b is judged against that matrix built here.
TEST_F(SolveCommand, PatternFileBecomesLaplacianPlusIdentity)
{
    std::ofstream(path("p.mtx")) << "%%MatrixMarket matrix coordinate pattern general\n5 5 6\n1 2\n3 2\n5 1\n4 4\n"
                                    "2 5\n2 1\n";
    std::ofstream(path("b.mtx")) << "%%MatrixMarket matrix array real general\n5 1\n3\n-4\n0\n1\n2\n";
    const run_result r = solve(path("p.mtx") + " --out " + path("x.mtx") + " --rhs " + path("b.mtx"));
    EXPECT_SOLVED(r);
    EXPECT_NE(r.out.find("graph Laplacian"), std::string::npos);
    EXPECT_NE(r.out.find("(matrix type 2): symmetric values with a positive diagonal\n"), std::string::npos) << r.out;
    test_matrix m{5, std::vector<cplx>(25), false};
    const int edges[][2] = {{0, 1}, {2, 1}, {4, 0}, {1, 4}};
    for (int i = 0; i < 5; ++i)
        m.at(i, i) = 1.0;
    for (const auto &e : edges) {
        m.at(e[0], e[1]) = m.at(e[1], e[0]) = -1.0;
        m.at(e[0], e[0]) += 1.0;
        m.at(e[1], e[1]) += 1.0;
    }
    int rows = 0, cols = 0;
    const std::vector<cplx> x = read_array(path("x.mtx"), rows, cols);
    EXPECT_LT(residual(m, {3, -4, 0, 1, 2}, x, 1), tolerance);
}

// Random right-hand sides written as an array file (complex only for a complex matrix: complex
// right-hand sides would turn a real matrix complex).
std::vector<cplx> write_rhs(const std::string &path, int n, int nrhs, bool complex, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> value(-10, 10);
    std::vector<cplx> b(size_t(n) * nrhs);
    for (cplx &v : b)
        v = {value(random), complex ? value(random) : 0.0};
    std::ofstream out(path);
    out.precision(17);
    out << "%%MatrixMarket matrix array " << (complex ? "complex" : "real") << " general\n" << n << ' ' << nrhs << "\n";
    for (const cplx &v : b) {
        write_value(out, v, complex);
        out << "\n";
    }
    return b;
}

// The numbers of a report line ("inertia         30 positive, 10 negative, 0 zero"), or none.
std::vector<double> numbers_on(const run_result &r, const std::string &label)
{
    std::smatch found;
    std::vector<double> values;
    if (!std::regex_search(r.out, found, std::regex("(^|\n)" + label + " +([^\n]*)")))
        return values;
    const std::string text = std::regex_replace(found[2].str(), std::regex(","), "");
    static const std::regex number("[-+]?[0-9]+(\\.[0-9]+)?(e[-+][0-9]+)?");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), number); it != std::sregex_iterator(); ++it)
        values.push_back(std::stod(it->str()));
    return values;
}

// Every kind of matrix, each solved as the type its values call for, with right-hand sides from a
// file; the solution is judged here against the test's own matrix.
TEST_F(SolveCommand, EveryKindOfMatrix)
{
    struct kind {
        const char *name;
        test_matrix m;
        const char *symmetry;
        const char *type; // the type line's start
        const char *why;
        int positive = -1, negative = -1; // the inertia, where the type reports it
    } kinds[] = {
        {"real unsymmetric", random_matrix(50, false, shape::unsymmetric, 1), "general",
         "real unsymmetric (matrix type 11)", "not symmetric: entry ("},
        {"complex unsymmetric", random_matrix(50, true, shape::unsymmetric, 2), "general",
         "complex unsymmetric (matrix type 13)", "neither symmetric nor Hermitian"},
        // No diagonal at all: the matching puts one there.
        {"skew-symmetric", random_matrix(40, false, shape::skew, 3), "skew-symmetric",
         "real unsymmetric (matrix type 11)", "not symmetric: the file is skew-symmetric"},
        {"complex symmetric", random_matrix(50, true, shape::complex_symmetric, 4), "symmetric",
         "complex symmetric (matrix type 6)", "complex symmetric values, not Hermitian"},
        {"complex symmetric, both triangles", random_matrix(50, true, shape::complex_symmetric, 5), "general",
         "complex symmetric (matrix type 6)", "complex symmetric values, not Hermitian"},
        {"saddle point", saddle_matrix(30, 10, false, 0, 6), "symmetric", "real symmetric indefinite (matrix type -2)",
         "symmetric values, but row 31 has no diagonal entry", 30, 10},
        {"saddle point with a positive diagonal", saddle_matrix(30, 12, false, 1e-3, 7), "general",
         "real symmetric indefinite (matrix type -2)",
         "symmetric values with a positive diagonal; not positive definite (the Cholesky factorisation met a pivot "
         "that is not positive at column ",
         30, 12},
        {"Hermitian saddle point", saddle_matrix(30, 10, true, 0, 8), "hermitian",
         "complex Hermitian indefinite (matrix type -4)", "Hermitian values, but row 31 has no diagonal entry", 30, 10},
        {"Hermitian saddle point with a positive diagonal", saddle_matrix(25, 15, true, 1e-3, 9), "hermitian",
         "complex Hermitian indefinite (matrix type -4)",
         "Hermitian values with a positive real diagonal; not positive definite", 25, 15},
    };
    for (const kind &k : kinds) {
        SCOPED_TRACE(k.name);
        write_coordinate(path("a.mtx"), k.m, k.symmetry);
        const std::vector<cplx> b = write_rhs(path("b.mtx"), k.m.n, 2, k.m.complex, 21);
        const run_result r = solve(path("a.mtx") + " --rhs " + path("b.mtx") + " --out " + path("x.mtx"));
        EXPECT_SOLVED(r);
        EXPECT_NE(r.out.find(std::string("\ntype            ") + k.type + ": " + k.why), std::string::npos) << r.out;
        int rows = 0, cols = 0;
        const std::vector<cplx> x = read_array(path("x.mtx"), rows, cols);
        ASSERT_EQ(cols, 2);
        EXPECT_LT(residual(k.m, b, x, 2), tolerance);
        EXPECT_NE(r.out.find("\nstatus          ZEL_PDS_STATUS_SUCCESS"), std::string::npos) << r.out;
        // One backward error before refinement and one after each step the solve line counts.
        const std::vector<double> solve_line = numbers_on(r, "solve"), history = numbers_on(r, "refinement");
        ASSERT_GE(solve_line.size(), 4u) << r.out;
        EXPECT_EQ(history.size(), size_t(solve_line.back()) + 1) << r.out;
        EXPECT_LT(history.back(), 1e-10) << r.out;
        // The unsymmetric types match; the indefinite ones group rows whose diagonal is absent.
        const char *matching = std::string(k.type).find("unsymmetric") != std::string::npos
                                   ? "yes: a maximum-product matching put large entries on the diagonal"
                               : k.positive >= 0 ? "yes: rows with weak diagonals grouped" : "no";
        EXPECT_NE(r.out.find(std::string("\nmatching        ") + matching), std::string::npos) << r.out;
        const std::vector<double> pivots = numbers_on(r, "pivots"), inertia = numbers_on(r, "inertia");
        EXPECT_FALSE(pivots.empty()) << r.out;
        if (k.positive < 0) {
            EXPECT_TRUE(inertia.empty()) << r.out;
            continue;
        }
        ASSERT_EQ(inertia.size(), 3u) << r.out;
        EXPECT_EQ(inertia[0], k.positive) << r.out;
        EXPECT_EQ(inertia[1], k.negative) << r.out;
        EXPECT_EQ(inertia[2], 0) << r.out;
    }
}

// --type asks for a type: the matrix is factored as that type when its values allow it, and the
// request is refused (exit status 2) when they do not; a positive definite type asked for on a
// matrix that is not positive definite fails with the column of the pivot (exit status 1).
TEST_F(SolveCommand, TypeAskedFor)
{
    const test_matrix definite = definite_matrix(40, false, 12);
    write_coordinate(path("spd.mtx"), definite, "symmetric");
    write_coordinate(path("saddle.mtx"), saddle_matrix(20, 8, false, 1e-3, 13), "symmetric");
    write_coordinate(path("unsym.mtx"), random_matrix(30, false, shape::unsymmetric, 14), "general");
    write_coordinate(path("csym.mtx"), random_matrix(30, true, shape::complex_symmetric, 15), "symmetric");
    const struct {
        std::string args;
        const char *type;
        std::vector<double> inertia; // where the type reports it
    } solved[] = {
        {"spd.mtx --type unsym", "real unsymmetric (matrix type 11): asked for with --type unsym", {}},
        {"spd.mtx --type sid", "real symmetric indefinite (matrix type -2): asked for with --type sid", {40, 0, 0}},
        {"spd.mtx --type hid", "complex Hermitian indefinite (matrix type -4): asked for with --type hid", {40, 0, 0}},
        {"spd.mtx --type csym", "complex symmetric (matrix type 6): asked for with --type csym", {}},
        {"spd.mtx --type hpd", "complex Hermitian positive definite (matrix type 4): asked for with --type hpd", {}},
        {"csym.mtx --type unsym", "complex unsymmetric (matrix type 13): asked for with --type unsym", {}},
        {"saddle.mtx --type sid", "real symmetric indefinite (matrix type -2): asked for with --type sid", {20, 8, 0}},
    };
    for (const auto &c : solved) {
        SCOPED_TRACE(c.args);
        const run_result r = solve(path("") + c.args);
        EXPECT_SOLVED(r);
        EXPECT_NE(r.out.find(c.type), std::string::npos) << r.out;
        EXPECT_EQ(numbers_on(r, "inertia"), c.inertia) << r.out;
    }
    const struct {
        std::string args;
        int status;
        const char *says;
    } refused[] = {
        {"saddle.mtx --type spd", 1,
         "the factorisation failed (real symmetric positive definite, matrix type 2): "
         "ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE: a pivot that is not positive at column "},
        {"unsym.mtx --type sid", 2, "--type sid asks for symmetric values, but it is not symmetric: entry ("},
        {"unsym.mtx --type hpd", 2, "--type hpd asks for Hermitian values, but it is not Hermitian: entry ("},
        {"csym.mtx --type hid", 2, "--type hid asks for Hermitian values, but it is not Hermitian: "},
        {"csym.mtx --type sid", 2, "--type sid needs real values"},
        {"unsym.mtx --type csym", 2, "--type csym asks for symmetric values, but it is not symmetric"},
    };
    for (const auto &c : refused) {
        SCOPED_TRACE(c.args);
        const run_result r = solve(path("") + c.args);
        EXPECT_EQ(r.status, c.status);
        EXPECT_NE(r.err.find(c.says), std::string::npos) << r.err;
        EXPECT_EQ(r.out, "");
    }
    std::ofstream(path("negative.mtx")) << "%%MatrixMarket matrix coordinate real symmetric\n2 2 2\n1 1 1\n2 2 -1\n";
    const run_result r = solve(path("negative.mtx") + " --type spd");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("diagonal entry 2 is -1, not positive, so it is not positive definite"), std::string::npos)
        << r.err;
}

// Singular systems. A symmetric one whose right-hand side puts a nonzero beside a row of zeros: no
// x gives that row a backward error below 1, so the report is printed for the best iterate with
// the status, and the exit status is 1; its zero pivot is replaced and counted as zero in the
// inertia (its eigenvalues are 3, 1 and 0). Unsymmetric ones without a full matching are refused
// by the analysis, with their structural rank.
TEST_F(SolveCommand, SingularSystems)
{
    std::ofstream(path("b.mtx")) << "%%MatrixMarket matrix array real general\n3 1\n1\n2\n3\n";
    std::ofstream(path("sym.mtx")) << "%%MatrixMarket matrix coordinate real symmetric\n3 3 4\n1 1 2\n2 1 1\n2 2 2\n"
                                      "3 3 0\n";
    run_result r = solve(path("sym.mtx") + " --rhs " + path("b.mtx") + " --out " + path("x.mtx"));
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("\ntype            real symmetric indefinite (matrix type -2): symmetric values, but "
                         "diagonal entry 3 is 0, not positive\n"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("\nstatus          ZEL_PDS_STATUS_NOT_ACCURATE: the backward error stayed above 1e-10"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.err.find("the solution did not reach a backward error of 1e-10 (ZEL_PDS_STATUS_NOT_ACCURATE)"),
              std::string::npos)
        << r.err;
    EXPECT_EQ(numbers_on(r, "inertia"), (std::vector<double>{2, 0, 1})) << r.out;
    EXPECT_EQ(numbers_on(r, "pivots").at(0), 1) << r.out;
    EXPECT_EQ(numbers_on(r, "backward error"), std::vector<double>{1}) << r.out;
    int rows = 0, cols = 0;
    EXPECT_EQ(read_array(path("x.mtx"), rows, cols).size(), 3u);

    // The matching finds the structural rank: explicit zeros are no entries to it, and a row may
    // hold none at all.
    std::ofstream(path("zeros.mtx")) << "%%MatrixMarket matrix coordinate real general\n3 3 5\n1 1 1\n1 2 2\n2 1 3\n"
                                        "2 2 4\n3 3 0\n";
    std::ofstream(path("empty_row.mtx")) << "%%MatrixMarket matrix coordinate real general\n4 4 5\n1 1 2\n2 2 3\n"
                                            "1 3 1\n4 3 1\n4 4 5\n";
    std::ofstream(path("b4.mtx")) << "%%MatrixMarket matrix array real general\n4 1\n1\n2\n3\n4\n";
    const std::pair<std::string, std::string> structural[] = {
        {"zeros.mtx --rhs " + path("b.mtx"), "2 of 3"}, {"empty_row.mtx --rhs " + path("b4.mtx"), "3 of 4"}};
    for (const auto &[args, rank] : structural) {
        r = solve(path("") + args);
        EXPECT_EQ(r.status, 1);
        EXPECT_NE(r.err.find("the analysis failed (real unsymmetric, matrix type 11): "
                             "ZEL_PDS_STATUS_STRUCTURALLY_SINGULAR: the structural rank is " + rank +
                             ": no permutation puts a nonzero entry on every diagonal position"),
                  std::string::npos)
            << r.err;
        EXPECT_EQ(r.out, "");
    }
}

TEST_F(SolveCommand, BadInputIsAUsageError)
{
    std::ofstream(path("bad.mtx")) << "%%MatrixMarket matrix coordinate real general\n2 2 1\n1 3 1\n";
    std::ofstream(path("wide.mtx")) << "%%MatrixMarket matrix coordinate real general\n2 3 1\n1 3 1\n";
    const test_matrix m = definite_matrix(4, true, 1);
    write_coordinate(path("c.mtx"), m, "hermitian");
    std::ofstream(path("b3.mtx")) << "%%MatrixMarket matrix array real general\n3 1\n1\n2\n3\n";
    const std::pair<std::string, std::string> cases[] = {
        {path("bad.mtx"), path("bad.mtx") + ":3: column index 3 is outside 1..2"},
        {path("wide.mtx"), path("wide.mtx") + ":2: the matrix is 2 × 3"},
        {path("absent.mtx"), path("absent.mtx") + ": No such file or directory"},
        {path("c.mtx") + " --type spd", "--type spd needs real values"},
        {path("c.mtx") + " --rhs " + path("b3.mtx"), path("b3.mtx") + ":2: the right-hand sides are 3 × 1"},
    };
    for (const auto &[args, says] : cases) {
        const run_result r = solve(args);
        EXPECT_EQ(r.status, 2) << args;
        EXPECT_NE(r.err.find(says), std::string::npos) << r.err;
        EXPECT_EQ(r.out, "");
    }
}

// The first "(matrix type N)" the command printed on either stream, or 0.
int reported_type(const run_result &r)
{
    std::smatch found;
    static const std::regex type("\\(matrix type (-?[0-9]+)\\)");
    return std::regex_search(r.out, found, type) || std::regex_search(r.err, found, type) ? std::stoi(found[1]) : 0;
}

// A retry's note ("with the matching on the backward error stayed at 2.36e-06: retried with it
// off: 1.74e-16; kept the solve with it off") against the rest of the report: the smaller of the
// two backward errors is kept, and the report describes that solve.
void check_retry(const run_result &r)
{
    std::smatch note;
    static const std::regex retry("\n {16}with the matching (on|off) the backward error stayed at ([0-9.e+-]+): "
                                  "retried with it (on|off): ([0-9.e+-]+); kept the solve with it (on|off)\n");
    if (!std::regex_search(r.out, note, retry))
        return;
    const double first = std::stod(note[2]), second = std::stod(note[4]);
    const bool second_kept = second < first;
    EXPECT_EQ(note[5].str(), second_kept ? note[3].str() : note[1].str()) << r.out;
    EXPECT_EQ(numbers_on(r, "backward error").at(0), std::min(first, second)) << r.out;
    const bool matched = r.out.find("\nmatching        yes") != std::string::npos;
    EXPECT_EQ(matched, note[5].str() == "on") << r.out;
}

// Every square test matrix is solved as the type its values call for (a matrix not marked
// must_solve may instead fail with a status that says why: exit status 1 with a report and
// NOT_ACCURATE, or a singular status). A rectangular one is a usage error. An unsymmetric solve
// retried with the other matching choice keeps the better of the two. The lines printed are the
// record.
TEST(SolveCommandMatrices, RealMatrices)
{
    const std::vector<std::string> files = zel::test::test_matrix_files();
    if (files.empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    const struct {
        const char *name;
        int type; // 0: rectangular
        bool must_solve;
    } expected[] = {
        {"1138_bus", 2, true},    {"494_bus", 2, true},      {"ani4", 2, true},         {"bcsstk13", 2, true},
        {"can___24", 2, true},    {"dwt_878", 2, true},      {"mhd1280b", 4, true},     {"pts5ldd03", 2, true},
        {"hangGlider_2", -2, true},    {"reorientation_1", -2, true},    {"tumorAntiAngiogenesis_2", -2, true},
        {"young4c", 6, true},     {"young1c", 13, true},     {"w156", 13, true},        {"cryg2500", 11, true},
        {"impcol_a", 11, true},   {"nnc1374", 11, true},     {"nontrivial_mc64_example", 11, true},
        {"nontrivial_mc64_result", 11, true},   {"olm500", 11, true},   {"rajat19", 11, true},
        {"sherman3", 11, true},   {"temp", 11, true},        {"watt_2", 11, true},      {"west0479", 11, true},
        {"west0497", 11, true},   {"bp_1200", 11, true},     {"lp_e226", 0, false},     {"lp_share1b", 0, false},
    };
    const std::string out = std::filesystem::temp_directory_path() / ("zel_solve_m" + std::to_string(getpid()));
    for (const std::string &file : files) {
        const std::string name = std::filesystem::path(file).stem();
        SCOPED_TRACE(name);
        const auto *e =
            std::find_if(std::begin(expected), std::end(expected), [&](const auto &x) { return name == x.name; });
        if (e == std::end(expected)) {
            ADD_FAILURE() << "no expectation for " << file;
            continue;
        }
        const std::string command = std::string(ZEL_PROGRAM) + " solve " + file + " >" + out + " 2>" + out + ".err";
        run_result r;
        const int raw = std::system(command.c_str());
        r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        r.out = slurp(out);
        r.err = slurp(out + ".err");
        if (e->type == 0) {
            EXPECT_EQ(r.status, 2);
            EXPECT_NE(r.err.find("a system to solve needs a square one"), std::string::npos) << r.err;
            continue;
        }
        EXPECT_EQ(reported_type(r), e->type) << r.out << r.err;
        const std::vector<double> backward = numbers_on(r, "backward error"), pivots = numbers_on(r, "pivots");
        char backward_text[16] = "-", replaced_text[24] = "-";
        if (!backward.empty())
            std::snprintf(backward_text, sizeof backward_text, "%.1e", backward[0]);
        if (!pivots.empty())
            std::snprintf(replaced_text, sizeof replaced_text, "%.0f", pivots[0]);
        std::printf("%-24s type %3d  exit %d  backward error %-8s  replaced pivots %-5s  %s\n", name.c_str(),
                    reported_type(r), r.status, backward_text, replaced_text,
                    r.status == 0 ? "solved" : r.err.substr(0, r.err.find('\n')).c_str());
        if (e->type == 11 || e->type == 13)
            check_retry(r);
        if (r.status == 0) {
            EXPECT_LT(reported_residual(r), e->must_solve ? tolerance : 1e-10) << r.out;
            EXPECT_EQ(r.err, "");
            continue;
        }
        EXPECT_FALSE(e->must_solve) << r.out << r.err;
        EXPECT_EQ(r.status, 1) << r.err;
        const bool inaccurate = r.out.find("\nstatus          ZEL_PDS_STATUS_NOT_ACCURATE") != std::string::npos &&
                                r.err.find("did not reach a backward error of 1e-10") != std::string::npos;
        const bool singular = std::regex_search(r.err, std::regex("ZEL_PDS_STATUS_(STRUCTURALLY_)?SINGULAR: "));
        EXPECT_TRUE(inaccurate || singular) << r.out << r.err;
        // An unsymmetric solve that missed the goal was tried with both matching choices.
        if (inaccurate && (e->type == 11 || e->type == 13)) {
            EXPECT_TRUE(std::regex_search(r.out, std::regex("\n {16}with the matching (on|off) the backward error "
                                                        "stayed at [^\n]*: retried with it (on|off): [^\n]*; kept "
                                                        "the solve with it (on|off)\n")))
            << r.out;
        }
    }
    std::filesystem::remove(out);
    std::filesystem::remove(out + ".err");
}

} // namespace
