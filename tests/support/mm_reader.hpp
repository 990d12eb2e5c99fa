// Matrix Market coordinate files as 0-based triplets, for tests that run on real matrices.
#pragma once

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

namespace zel::test {

struct mm_triplets {
    int64_t rows = 0;
    int64_t cols = 0;
    std::string field;    // "real", "complex", "pattern" or "integer"
    std::string symmetry; // "general", "symmetric", "skew-symmetric" or "hermitian"
    // Entries after expansion of the stored triangle, 0-based, in file order (each mirrored
    // entry right after its original). Pattern entries have the value 1.
    std::vector<int64_t> row;
    std::vector<int64_t> col;
    std::vector<std::complex<double>> value;

    bool is_complex() const { return field == "complex"; }
    size_t size() const { return row.size(); }
};

// Reads a coordinate Matrix Market file; throws std::runtime_error naming the file and the
// problem on anything it cannot read (array format, bad header, index out of range, short file).
mm_triplets read_matrix_market(const std::string &path);

// Folder of the test matrices from ZEL_TEST_MATRICES, or "" when unset or missing.
std::string test_matrix_dir();

// Paths of the *.mtx files in that folder, sorted; empty when there is none.
std::vector<std::string> test_matrix_files();

} // namespace zel::test
