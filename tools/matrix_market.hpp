// Matrix Market files: a sparse matrix read into 0-based CSR, a dense array (or a sparse file
// made dense) for right-hand sides, and a dense array written out for solutions.
//
// What is read: the banner `%%MatrixMarket matrix coordinate FIELD SYMMETRY` with FIELD real,
// integer, complex or pattern and SYMMETRY general, symmetric, skew-symmetric or hermitian (keywords
// in any case), or `%%MatrixMarket matrix array real|integer|complex general`; comment lines (%)
// and blank lines anywhere after the banner; 1-based indices. Rules a file must follow (each
// breach is a message "FILE:LINE: ..." and nothing else happens; see docs/matrix_market.md):
// symmetric, skew-symmetric and Hermitian files store the lower triangle only and are square;
// skew-symmetric files store no diagonal; Hermitian diagonals are real; hermitian goes with complex
// values only and skew-symmetric not with pattern; values are finite; the entry count is exact.
// An entry given more than once is summed (as sparse assembly does).
//
// No exception leaves these functions: a failed read returns false with the message set,
// out of memory included.
#pragma once

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

namespace zel::tool {

enum class mm_field { real, integer, complex, pattern };
enum class mm_symmetry { general, symmetric, skew_symmetric, hermitian };

const char *mm_field_name(mm_field field);       // "real", ...
const char *mm_symmetry_name(mm_symmetry value); // "skew-symmetric", ...

// What a file says about itself.
struct mm_header {
    bool array = false; // dense array format; otherwise coordinate
    mm_field field = mm_field::real;
    mm_symmetry symmetry = mm_symmetry::general;
    int64_t rows = 0;
    int64_t cols = 0;
    int64_t stored = 0;    // entry lines in the file (rows·cols for an array)
    int64_t size_line = 0; // line number of the size line, for messages about the dimensions
};

// A sparse matrix with both triangles present (a stored triangle is mirrored: transposed,
// negated for skew-symmetric, conjugated for Hermitian), rows in ascending column order,
// duplicates summed. Values are real (real, integer and pattern files; pattern entries are 1)
// or complex (complex files): exactly one of the two value arrays is filled.
struct mm_matrix {
    mm_header header;
    std::vector<int64_t> row_ptr; // rows + 1
    std::vector<int64_t> col_idx;
    std::vector<double> real_values;
    std::vector<std::complex<double>> complex_values;

    bool is_complex() const { return header.field == mm_field::complex; }
    int64_t entries() const { return static_cast<int64_t>(col_idx.size()); }
    // True when the dimensions and the entry count fit 32-bit indices.
    bool fits_32_bits() const;
    // The indices as 32-bit integers; false (and nothing written) when they do not fit.
    bool narrow(std::vector<int32_t> &row_ptr32, std::vector<int32_t> &col_idx32) const;
};

// A dense matrix, column-major with leading dimension rows; one value array filled, as above.
struct mm_dense {
    mm_header header;
    std::vector<double> real_values;
    std::vector<std::complex<double>> complex_values;

    bool is_complex() const { return header.field == mm_field::complex; }
};

// A coordinate file (an array file is refused: it names the array reader).
bool read_matrix_market(const char *path, mm_matrix &matrix, std::string &error);

// An array file, or a coordinate file made dense (mirrored and summed as above). Pattern files
// are refused: a right-hand side needs values.
bool read_matrix_market_dense(const char *path, mm_dense &dense, std::string &error);

// Writes a rows × cols column-major array (leading dimension ld) as `matrix array real general`
// (or complex), 17 significant digits, after an optional comment line.
bool write_matrix_market_array(const char *path, int64_t rows, int64_t cols, const double *values, int64_t ld,
                               const char *comment, std::string &error);
bool write_matrix_market_array(const char *path, int64_t rows, int64_t cols, const std::complex<double> *values,
                               int64_t ld, const char *comment, std::string &error);

} // namespace zel::tool
