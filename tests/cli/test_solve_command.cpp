// `zel solve` run as a user runs it, on systems this test writes: the exit status, the report,
// and the solution it writes, judged by a residual computed here from the test's own copy of
// the matrix. Matrices the command cannot factor must give the "not supported yet" message.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

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

// A pattern gets its graph Laplacian plus the identity, whose rows sum to 1: x = 1 solves b = A·1
// only if the diagonal is the degree + 1 and every neighbour -1.
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

TEST_F(SolveCommand, UnsupportedMatricesSaySo)
{
    struct unsupported {
        const char *text;
        const char *why;
    } cases[] = {
        {"%%MatrixMarket matrix coordinate real general\n2 2 3\n1 1 4\n1 2 1\n2 2 4\n", "not symmetric: entry (1, 2)"},
        {"%%MatrixMarket matrix coordinate real symmetric\n2 2 3\n1 1 1\n2 1 2\n2 2 1\n",
         "ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE"},
        {"%%MatrixMarket matrix coordinate real symmetric\n2 2 2\n1 1 1\n2 2 -1\n", "diagonal entry 2 is -1"},
        {"%%MatrixMarket matrix coordinate real symmetric\n2 2 2\n1 1 1\n2 1 1\n", "row 2 has no diagonal entry"},
        {"%%MatrixMarket matrix coordinate complex symmetric\n2 2 3\n1 1 4 0\n2 1 0 1\n2 2 4 0\n",
         "complex symmetric, not Hermitian"},
        {"%%MatrixMarket matrix coordinate real skew-symmetric\n2 2 1\n2 1 1\n", "skew-symmetric"},
        // Triangles apart by more than rounding.
        {"%%MatrixMarket matrix coordinate real general\n2 2 4\n1 1 4\n1 2 0.3\n2 1 0.3000000000001\n2 2 4\n",
         "entry (1, 2) is 0.3 but entry (2, 1) is 0.3000000000001"},
    };
    for (const unsupported &c : cases) {
        SCOPED_TRACE(c.text);
        std::ofstream(path("a.mtx")) << c.text;
        const run_result r = solve(path("a.mtx"));
        EXPECT_EQ(r.status, 1);
        EXPECT_NE(r.err.find("not supported yet"), std::string::npos) << r.err;
        EXPECT_NE(r.err.find("next release adds unsymmetric and indefinite"), std::string::npos) << r.err;
        EXPECT_NE(r.err.find(c.why), std::string::npos) << r.err;
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

// The definite real matrices among the test matrices are solved; the others are refused with the
// message, never a crash or a wrong answer.
TEST(SolveCommandMatrices, RealMatrices)
{
    const std::string dir = zel::test::test_matrix_dir();
    if (dir.empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    const char *definite[] = {"bcsstk13", "1138_bus", "494_bus", "ani4", "mhd1280b", "can___24", "dwt_878"};
    const char *refused[] = {"hangGlider_2", "tumorAntiAngiogenesis_2", "west0479", "young4c", "young1c"};
    const std::string out = std::filesystem::temp_directory_path() / ("zel_solve_m" + std::to_string(getpid()));
    for (const char *name : definite) {
        const std::string command = std::string(ZEL_PROGRAM) + " solve " + dir + "/" + name + ".mtx >" + out + " 2>&1";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 0) << name << ": " << slurp(out);
        run_result r;
        r.out = slurp(out);
        EXPECT_LT(reported_residual(r), tolerance) << name << ": " << r.out;
    }
    for (const char *name : refused) {
        const std::string command = std::string(ZEL_PROGRAM) + " solve " + dir + "/" + name + ".mtx >" + out + " 2>&1";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1) << name << ": " << slurp(out);
        EXPECT_NE(slurp(out).find("not supported yet"), std::string::npos) << name << ": " << slurp(out);
    }
    std::filesystem::remove(out);
}

} // namespace
