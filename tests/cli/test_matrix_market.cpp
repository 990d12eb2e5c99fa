// The Matrix Market reader of the zel command: good files against dense matrices written out by
// hand, every malformed file against the line its message must name, the array writer read
// back, and the real test matrices against the test suite's own (iostream) reader.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include "matrix_market.hpp"
#include "mm_reader.hpp"
#include "solve_problem.hpp"

namespace {

using zel::tool::mm_dense;
using zel::tool::mm_field;
using zel::tool::mm_matrix;
using zel::tool::mm_symmetry;
using cplx = std::complex<double>;
using dense = std::vector<std::vector<cplx>>;

class MatrixMarketFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir_ = std::filesystem::temp_directory_path() / ("zel_mm_" + std::to_string(getpid()));
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    std::string write(const std::string &text, const char *name = "a.mtx")
    {
        const std::string path = (dir_ / name).string();
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    std::filesystem::path dir_;
};

// The CSR's shape: row pointers from 0 to the entry count, columns in range and strictly
// ascending in each row, one value array of the right length.
void check_shape(const mm_matrix &m)
{
    ASSERT_EQ(m.row_ptr.size(), size_t(m.header.rows + 1));
    EXPECT_EQ(m.row_ptr.front(), 0);
    EXPECT_EQ(m.row_ptr.back(), m.entries());
    EXPECT_EQ(m.is_complex() ? m.complex_values.size() : m.real_values.size(), size_t(m.entries()));
    EXPECT_TRUE(m.is_complex() ? m.real_values.empty() : m.complex_values.empty());
    for (int64_t i = 0; i < m.header.rows; ++i)
        for (int64_t k = m.row_ptr[i]; k < m.row_ptr[i + 1]; ++k) {
            ASSERT_TRUE(m.col_idx[k] >= 0 && m.col_idx[k] < m.header.cols) << "row " << i;
            ASSERT_TRUE(k == m.row_ptr[i] || m.col_idx[k - 1] < m.col_idx[k]) << "row " << i << " not ascending";
        }
}

dense dense_of(const mm_matrix &m)
{
    check_shape(m);
    dense a(m.header.rows, std::vector<cplx>(m.header.cols));
    for (int64_t i = 0; i < m.header.rows; ++i)
        for (int64_t k = m.row_ptr[i]; k < m.row_ptr[i + 1]; ++k)
            a[i][m.col_idx[k]] = m.is_complex() ? m.complex_values[k] : cplx(m.real_values[k]);
    return a;
}

mm_matrix read_ok(const std::string &path)
{
    mm_matrix m;
    std::string error;
    EXPECT_TRUE(zel::tool::read_matrix_market(path.c_str(), m, error)) << error;
    EXPECT_EQ(error, "");
    return m;
}

TEST_F(MatrixMarketFile, StoredTrianglesAreMirroredAndDuplicatesSummed)
{
    const cplx i1(0, 1);
    struct good {
        const char *text;
        mm_field field;
        mm_symmetry symmetry;
        dense expected;
    } cases[] = {
        {"%%MatrixMarket matrix coordinate real symmetric\n% comment\n\n3 3 4\n1 1 4\n3 1 -1.5\n2 2 5e0\n3 3 +6\n",
         mm_field::real, mm_symmetry::symmetric, {{4, 0, -1.5}, {0, 5, 0}, {-1.5, 0, 6}}},
        // Keywords in any case, CRLF line ends, blanks and tabs, comments between entries.
        {"%%MatrixMarket MATRIX Coordinate Complex Hermitian\r\n2 2 3\r\n1 1 2 0\r\n%x\r\n\r\n2\t1  1 -3\r\n2 2 7 0\r\n",
         mm_field::complex, mm_symmetry::hermitian, {{2, 1.0 + 3.0 * i1}, {1.0 - 3.0 * i1, 7}}},
        // Unsorted entries, a duplicate summed in place, an empty row.
        {"%%MatrixMarket matrix coordinate real general\n3 4 5\n1 4 2\n1 2 1\n3 1 -1\n1 4 0.5\n1 1 .25\n",
         mm_field::real, mm_symmetry::general, {{0.25, 1, 0, 2.5}, {0, 0, 0, 0}, {-1, 0, 0, 0}}},
        // A pattern entry given twice is one entry.
        {"%%MatrixMarket matrix coordinate pattern symmetric\n3 3 4\n2 1\n3 3\n2 1\n3 2\n", mm_field::pattern,
         mm_symmetry::symmetric, {{0, 1, 0}, {1, 0, 1}, {0, 1, 1}}},
        {"%%MatrixMarket matrix coordinate integer skew-symmetric\n3 3 2\n2 1 3\n3 2 -7\n", mm_field::integer,
         mm_symmetry::skew_symmetric, {{0, -3, 0}, {3, 0, 7}, {0, -7, 0}}},
        {"%%MatrixMarket matrix coordinate complex symmetric\n2 2 2\n2 1 1 2\n1 1 0 -1\n", mm_field::complex,
         mm_symmetry::symmetric, {{-i1, 1.0 + 2.0 * i1}, {1.0 + 2.0 * i1, 0}}},
        {"%%MatrixMarket matrix coordinate complex general\n2 3 2\n2 3 1e-300 -2.5e300\n1 1 -0 1\n",
         mm_field::complex, mm_symmetry::general, {{i1, 0, 0}, {0, 0, cplx(1e-300, -2.5e300)}}},
        // No final line end; an empty matrix.
        {"%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 3", mm_field::real, mm_symmetry::general, {{3}}},
        {"%%MatrixMarket matrix coordinate real general\n0 0 0\n", mm_field::real, mm_symmetry::general, {}},
    };
    for (const good &c : cases) {
        SCOPED_TRACE(c.text);
        const mm_matrix m = read_ok(write(c.text));
        EXPECT_EQ(m.header.field, c.field);
        EXPECT_EQ(m.header.symmetry, c.symmetry);
        EXPECT_FALSE(m.header.array);
        EXPECT_EQ(dense_of(m), c.expected);
    }
}

TEST_F(MatrixMarketFile, ArraysAndDenseCoordinateFiles)
{
    mm_dense d;
    std::string error;
    ASSERT_TRUE(zel::tool::read_matrix_market_dense(
        write("%%MatrixMarket matrix array real general\n% b\n3 2\n1\n2\n\n3\n-4e1\n5\n+6\n").c_str(), d, error))
        << error;
    EXPECT_TRUE(d.header.array);
    EXPECT_EQ(d.real_values, (std::vector<double>{1, 2, 3, -40, 5, 6}));
    ASSERT_TRUE(zel::tool::read_matrix_market_dense(
        write("%%MatrixMarket matrix array complex general\n2 1\n1 -1\n0.5 2\n").c_str(), d, error));
    EXPECT_EQ(d.complex_values, (std::vector<cplx>{{1, -1}, {0.5, 2}}));
    EXPECT_TRUE(d.real_values.empty());
    // A coordinate file as right-hand sides: dense, mirrored, duplicates summed.
    ASSERT_TRUE(zel::tool::read_matrix_market_dense(
        write("%%MatrixMarket matrix coordinate real symmetric\n2 2 3\n2 1 4\n2 2 1\n2 2 2\n").c_str(), d, error));
    EXPECT_EQ(d.real_values, (std::vector<double>{0, 4, 4, 3}));
    EXPECT_FALSE(zel::tool::read_matrix_market_dense(
        write("%%MatrixMarket matrix coordinate pattern general\n1 1 1\n1 1\n").c_str(), d, error));
    EXPECT_NE(error.find(":1: a pattern file has no values"), std::string::npos) << error;
}

TEST_F(MatrixMarketFile, MalformedFilesNameTheLine)
{
    const std::string head = "%%MatrixMarket matrix coordinate real general\n";
    const std::string sym = "%%MatrixMarket matrix coordinate real symmetric\n";
    struct bad {
        std::string text;
        int line;
        const char *says;
    } cases[] = {
        {"", 1, "the file is empty"},
        {"%%MatrixMarkt matrix coordinate real general\n1 1 0\n", 1, "not a Matrix Market file"},
        {"\n%%MatrixMarket matrix coordinate real general\n1 1 0\n", 1, "not a Matrix Market file"},
        {"%%MatrixMarket matrix coordinate real\n1 1 0\n", 1, "the banner must read"},
        {"%%MatrixMarket vector coordinate real general\n1 1 0\n", 1, "only 'matrix' files"},
        {"%%MatrixMarket matrix sparse real general\n1 1 0\n", 1, "unknown format 'sparse'"},
        {"%%MatrixMarket matrix coordinate double general\n1 1 0\n", 1, "unknown field 'double'"},
        {"%%MatrixMarket matrix coordinate real upper\n1 1 0\n", 1, "unknown symmetry 'upper'"},
        {"%%MatrixMarket matrix coordinate real hermitian\n1 1 0\n", 1, "hermitian storage needs complex values"},
        {"%%MatrixMarket matrix coordinate pattern skew-symmetric\n1 1 0\n", 1, "skew-symmetric storage needs values"},
        {"%%MatrixMarket matrix array real general\n1 1\n1\n", 1, "needs the coordinate format"},
        {head + "% only comments\n\n", 4, "ends before the size line"},
        {head + "%\n3 3\n", 3, "the size line must hold rows, columns and entries"},
        {head + "3 -3 1\n1 1 1\n", 2, "the size line must hold"},
        {head + "3 3 x\n", 2, "the size line must hold"},
        {head + "3 3 1 1\n1 1 1\n", 2, "the size line must hold"},
        {sym + "3 4 1\n1 1 1\n", 2, "symmetric storage needs a square matrix, not 3 × 4"},
        {head + "3 3 2\n1 1 1\n4 1 1\n", 4, "row index 4 is outside 1..3"},
        {head + "3 3 2\n% c\n1 0 1\n1 1 1\n", 4, "column index 0 is outside 1..3"},
        {head + "3 3 2\n1 1 1\n1 x 1\n", 4, "bad column index 'x'"},
        {head + "3 3 2\n1.0 1 1\n", 3, "bad row index '1.0'"},
        {head + "3 3 3\n1 1 1\n\n2 2 2\n", 6, "the file ends after 2 of 3 entries"},
        {head + "3 3 1\n1 1 1\n% fine\n2 2 2\n", 5, "more entries than the 1 the size line announces"},
        {head + "3 3 1\n1 1 1.0.0\n", 3, "bad real value '1.0.0'"},
        {head + "3 3 1\n1 1 abc\n", 3, "bad real value 'abc'"},
        {head + "3 3 1\n1 1 1e999\n", 3, "value '1e999' is too large for a double"},
        {"%%MatrixMarket matrix coordinate integer general\n2 2 1\n2 2 99999999999999999999\n", 3, "too large"},
        {head + "3 3 1\n1 1 nan\n", 3, "value 'nan' is not finite"},
        {head + "3 3 1\n1 1\n", 3, "an entry of a real file is 'row column value'"},
        {head + "3 3 1\n1 1 1 0\n", 3, "an entry of a real file is 'row column value'"},
        {sym + "3 3 2\n1 1 1\n1 3 1\n", 4, "entry (1, 3) lies above the diagonal"},
        {"%%MatrixMarket matrix coordinate real skew-symmetric\n2 2 1\n2 2 1\n", 3, "lies on the diagonal"},
        {"%%MatrixMarket matrix coordinate complex hermitian\n2 2 1\n2 2 1 0.5\n", 3, "a Hermitian diagonal is real"},
        {"%%MatrixMarket matrix coordinate complex general\n2 2 1\n2 2 1\n", 3, "'row column real imaginary'"},
        {"%%MatrixMarket matrix coordinate pattern general\n2 2 1\n2 2 1\n", 3, "is 'row column', not '2 2 1'"},
        {"%%MatrixMarket matrix coordinate integer general\n2 2 1\n2 2 1.5\n", 3, "bad integer value '1.5'"},
    };
    for (const bad &c : cases) {
        SCOPED_TRACE(c.text);
        const std::string path = write(c.text);
        mm_matrix m;
        std::string error;
        EXPECT_FALSE(zel::tool::read_matrix_market(path.c_str(), m, error));
        EXPECT_EQ(error.rfind(path + ":" + std::to_string(c.line) + ": ", 0), 0u) << error;
        EXPECT_NE(error.find(c.says), std::string::npos) << error;
    }
    const bad arrays[] = {
        {"%%MatrixMarket matrix array real symmetric\n2 2\n", 1, "general storage only"},
        {"%%MatrixMarket matrix array real general\n2 2\n1\n2\n3\n", 6, "the file ends after 3 of 4 values"},
        {"%%MatrixMarket matrix array real general\n1 1\n1\n2\n", 4, "more values than the 1 × 1"},
        {"%%MatrixMarket matrix array complex general\n1 1\n1\n", 3, "is 'real imaginary', not '1'"},
        {"%%MatrixMarket matrix array real general\n1 1 1\n1\n", 2, "must hold rows and columns"},
    };
    mm_dense d;
    std::string error;
    for (const bad &c : arrays) {
        SCOPED_TRACE(c.text);
        const std::string path = write(c.text);
        EXPECT_FALSE(zel::tool::read_matrix_market_dense(path.c_str(), d, error));
        EXPECT_EQ(error.rfind(path + ":" + std::to_string(c.line) + ": ", 0), 0u) << error;
        EXPECT_NE(error.find(c.says), std::string::npos) << error;
    }
    mm_matrix m;
    const std::string absent = (dir_ / "absent.mtx").string();
    EXPECT_FALSE(zel::tool::read_matrix_market(absent.c_str(), m, error));
    EXPECT_EQ(error, absent + ": No such file or directory");
}

TEST_F(MatrixMarketFile, WrittenArraysReadBackExactly)
{
    // Column-major with a leading dimension beyond the rows: the padding must not be written.
    const std::vector<double> real = {1.0 / 3, -2e-310, 99, 7e300, 0.1, -0.0, 5, 8};
    const std::string path = (dir_ / "x.mtx").string();
    std::string error;
    ASSERT_TRUE(zel::tool::write_matrix_market_array(path.c_str(), 3, 2, real.data(), 4, "a note", error)) << error;
    mm_dense d;
    ASSERT_TRUE(zel::tool::read_matrix_market_dense(path.c_str(), d, error)) << error;
    EXPECT_EQ(d.header.rows, 3);
    EXPECT_EQ(d.header.cols, 2);
    EXPECT_EQ(d.real_values, (std::vector<double>{1.0 / 3, -2e-310, 99, 0.1, -0.0, 5}));
    const std::vector<cplx> complex = {{1.0 / 7, -1e-20}, {3, 4}};
    ASSERT_TRUE(zel::tool::write_matrix_market_array(path.c_str(), 2, 1, complex.data(), 2, nullptr, error));
    ASSERT_TRUE(zel::tool::read_matrix_market_dense(path.c_str(), d, error)) << error;
    EXPECT_EQ(d.complex_values, complex);
    EXPECT_FALSE(zel::tool::write_matrix_market_array((dir_ / "no/such/dir/x.mtx").c_str(), 2, 1, complex.data(), 2,
                                                      nullptr, error));
    EXPECT_NE(error.find("no/such/dir/x.mtx: "), std::string::npos) << error;
}

// Sums of a triplet list, the independent view of what a file holds.
std::map<std::pair<int64_t, int64_t>, cplx> summed(const zel::test::mm_triplets &t)
{
    std::map<std::pair<int64_t, int64_t>, cplx> sums;
    for (size_t k = 0; k < t.size(); ++k)
        sums[{t.row[k], t.col[k]}] += t.value[k];
    return sums;
}

std::map<std::pair<int64_t, int64_t>, cplx> summed(const mm_matrix &m)
{
    std::map<std::pair<int64_t, int64_t>, cplx> sums;
    for (int64_t i = 0; i < m.header.rows; ++i)
        for (int64_t k = m.row_ptr[i]; k < m.row_ptr[i + 1]; ++k)
            sums[{i, m.col_idx[k]}] = m.is_complex() ? m.complex_values[k] : cplx(m.real_values[k]);
    return sums;
}

// A file larger than the reader's block, so that lines straddle block ends, in random order
// with repeated entries, against the test suite's reader.
TEST_F(MatrixMarketFile, LargeFileAcrossBlocks)
{
    std::mt19937_64 random(7);
    std::uniform_int_distribution<int64_t> index(1, 5000);
    std::uniform_real_distribution<double> value(-1, 1);
    std::string text = "%%MatrixMarket matrix coordinate real general\n5000 5000 200000\n";
    char line[96];
    for (int k = 0; k < 200000; ++k) {
        std::snprintf(line, sizeof line, "%lld %lld %.17g\n", static_cast<long long>(index(random)),
                      static_cast<long long>(index(random)), value(random));
        text += line;
    }
    const std::string path = write(text);
    ASSERT_GT(text.size(), size_t(1) << 22);
    const mm_matrix m = read_ok(path);
    check_shape(m);
    EXPECT_EQ(summed(m), summed(zel::test::read_matrix_market(path)));
    std::vector<int32_t> row_ptr, col_idx;
    ASSERT_TRUE(m.fits_32_bits());
    ASSERT_TRUE(m.narrow(row_ptr, col_idx));
    EXPECT_TRUE(std::equal(row_ptr.begin(), row_ptr.end(), m.row_ptr.begin(), m.row_ptr.end()));
    EXPECT_TRUE(std::equal(col_idx.begin(), col_idx.end(), m.col_idx.begin(), m.col_idx.end()));
    mm_matrix wide = m;
    wide.header.rows = int64_t(1) << 31;
    EXPECT_FALSE(wide.fits_32_bits());
    EXPECT_FALSE(wide.narrow(row_ptr, col_idx));
}

// zel solve's built-in problem against the grid it stands for, and the residual it reports on
// solutions known to be wrong (so that a residual that always looks small cannot pass).
TEST(SolveProblem, LaplacianAndResidual)
{
    const mm_matrix a = zel::tool::laplacian_3d(3);
    const dense d = dense_of(a);
    ASSERT_EQ(d.size(), 27u);
    for (int p = 0; p < 27; ++p)
        for (int q = 0; q < 27; ++q) {
            const int distance = std::abs(p % 3 - q % 3) + std::abs(p / 3 % 3 - q / 3 % 3) + std::abs(p / 9 - q / 9);
            EXPECT_EQ(d[p][q], distance == 0 ? 6.0 : distance == 1 ? -1.0 : 0.0) << p << ", " << q;
        }
    // A·1 has 6 − (neighbours) in each row: 3 at the corners of a 2×2×2 grid; ‖A‖∞ = 9.
    const mm_matrix corner = zel::tool::laplacian_3d(2);
    const std::vector<double> ones(8, 1.0), zeros(8, 0.0), twice(16, 2.0);
    EXPECT_DOUBLE_EQ(zel::tool::relative_residual(corner, zeros.data(), ones.data(), 1), 3.0 / 9.0);
    std::vector<double> b(16);
    zel::tool::multiply(corner, twice.data(), b.data(), 2);
    b[15] += 1; // the second column is off by 1 in one entry: 1 / (9·2 + 7)
    EXPECT_DOUBLE_EQ(zel::tool::relative_residual(corner, b.data(), twice.data(), 2), 1.0 / 25.0);
    std::vector<double> broken = ones;
    broken[5] = NAN;
    EXPECT_TRUE(std::isnan(zel::tool::relative_residual(corner, zeros.data(), broken.data(), 1)));
}

// zel solve's choice of matrix type from the values of small files, with and without --type: the
// type, the indefinite type behind a positive definite one, the arithmetic, and the reason given.
TEST_F(MatrixMarketFile, MatrixTypeChoice)
{
    using zel::tool::type_request;
    const char *spd = "%%MatrixMarket matrix coordinate real symmetric\n2 2 3\n1 1 4\n2 1 1\n2 2 4\n";
    const char *unsym = "%%MatrixMarket matrix coordinate real general\n2 2 3\n1 1 4\n1 2 1\n2 2 4\n";
    const char *csym = "%%MatrixMarket matrix coordinate complex symmetric\n2 2 3\n1 1 4 0\n2 1 0 1\n2 2 4 0\n";
    const struct {
        const char *text;
        bool complex_rhs;
        type_request request;
        int type, fallback;
        bool complex;
        const char *why; // or the refusal
        int refusal_status;
    } cases[] = {
        {spd, false, type_request::automatic, 2, -2, false, "symmetric values with a positive diagonal", 0},
        {spd, true, type_request::automatic, 4, -4, true,
         "symmetric values with a positive diagonal; complex right-hand sides", 0},
        {"%%MatrixMarket matrix coordinate real symmetric\n2 2 3\n1 1 4\n2 1 1\n2 2 -1\n", false,
         type_request::automatic, -2, 0, false, "symmetric values, but diagonal entry 2 is -1, not positive", 0},
        {"%%MatrixMarket matrix coordinate real general\n2 2 3\n1 1 4\n1 2 1\n2 1 1\n", false, type_request::automatic,
         -2, 0, false, "symmetric values, but row 2 has no diagonal entry", 0},
        {unsym, false, type_request::automatic, 11, 0, false,
         "not symmetric: entry (1, 2) is 1 but entry (2, 1) is absent", 0},
        {unsym, true, type_request::automatic, 13, 0, true,
         "not symmetric: entry (1, 2) is 1 but entry (2, 1) is absent; complex right-hand sides", 0},
        {"%%MatrixMarket matrix coordinate real general\n2 2 4\n1 1 4\n1 2 0.30000000000000004\n2 1 0.3\n2 2 4\n",
         false, type_request::automatic, 2, -2, false, "positive diagonal (the triangles differ by up to 1.9e-16", 0},
        {"%%MatrixMarket matrix coordinate real general\n2 2 4\n1 1 4\n1 2 0.3\n2 1 0.3000000000001\n2 2 4\n", false,
         type_request::automatic, 11, 0, false,
         "not symmetric: entry (1, 2) is 0.3 but entry (2, 1) is 0.3000000000001", 0},
        {"%%MatrixMarket matrix coordinate real skew-symmetric\n2 2 1\n2 1 1\n", false, type_request::automatic, 11, 0,
         false, "not symmetric: the file is skew-symmetric", 0},
        {"%%MatrixMarket matrix coordinate complex hermitian\n2 2 3\n1 1 4 0\n2 1 1 1\n2 2 4 0\n", false,
         type_request::automatic, 4, -4, true, "Hermitian values with a positive real diagonal", 0},
        {"%%MatrixMarket matrix coordinate complex hermitian\n2 2 3\n1 1 4 0\n2 1 1 1\n2 2 -4 0\n", false,
         type_request::automatic, -4, 0, true, "Hermitian values, but diagonal entry 2 is (-4, 0), not positive", 0},
        {csym, false, type_request::automatic, 6, 0, true,
         "complex symmetric values, not Hermitian: entry (1, 2) is (0, 1) but entry (2, 1) is (0, 1)", 0},
        // Hermitian off the diagonal, but a diagonal entry with an imaginary part.
        {"%%MatrixMarket matrix coordinate complex general\n2 2 4\n1 1 4 1\n1 2 1 1\n2 1 1 -1\n2 2 4 0\n", false,
         type_request::automatic, 13, 0, true,
         "neither symmetric nor Hermitian: entry (1, 2) is (1, 1) but entry (2, 1) is (1, -1)", 0},
        {"%%MatrixMarket matrix coordinate complex general\n2 2 4\n1 1 4 0\n1 2 1 0\n2 1 1 0\n2 2 4 0\n", false,
         type_request::automatic, 4, -4, true, "Hermitian values with a positive real diagonal", 0},
        {spd, false, type_request::unsym, 11, 0, false, "asked for with --type unsym", 0},
        {spd, false, type_request::sid, -2, 0, false, "asked for with --type sid", 0},
        {spd, false, type_request::csym, 6, 0, true, "asked for with --type csym", 0},
        {spd, false, type_request::hpd, 4, 0, true, "asked for with --type hpd", 0},
        {csym, false, type_request::unsym, 13, 0, true, "asked for with --type unsym", 0},
        {unsym, false, type_request::sid, 0, 0, false,
         "--type sid asks for symmetric values, but it is not symmetric: entry (1, 2)", 2},
        {csym, false, type_request::hid, 0, 0, true,
         "--type hid asks for Hermitian values, but it is not Hermitian: entry (1, 2)", 2},
        {"%%MatrixMarket matrix coordinate real symmetric\n2 2 2\n1 1 1\n2 2 -1\n", false, type_request::spd, 2, 0,
         false, "diagonal entry 2 is -1, not positive, so it is not positive definite", 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.text) + "request " + std::to_string(int(c.request)));
        const zel::tool::type_plan p = zel::tool::plan_matrix_type(read_ok(write(c.text)), c.complex_rhs, c.request);
        EXPECT_EQ(p.refusal_status, c.refusal_status);
        EXPECT_NE((c.refusal_status ? p.refusal : p.why).find(c.why), std::string::npos) << p.why << p.refusal;
        if (c.refusal_status != 0)
            continue;
        EXPECT_EQ(p.type, c.type);
        EXPECT_EQ(p.fallback, c.fallback);
        EXPECT_EQ(p.complex, c.complex);
        EXPECT_EQ(p.refusal, "");
    }
}

TEST(MatrixMarketMatrices, SameEntriesAsTheTestReader)
{
    const auto files = zel::test::test_matrix_files();
    if (files.empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    for (const std::string &path : files) {
        SCOPED_TRACE(path);
        const mm_matrix m = read_ok(path);
        const zel::test::mm_triplets t = zel::test::read_matrix_market(path);
        EXPECT_EQ(m.header.rows, t.rows);
        EXPECT_EQ(m.header.cols, t.cols);
        EXPECT_EQ(zel::tool::mm_field_name(m.header.field), t.field);
        EXPECT_EQ(zel::tool::mm_symmetry_name(m.header.symmetry), t.symmetry);
        check_shape(m);
        EXPECT_EQ(summed(m), summed(t));
    }
}

} // namespace
