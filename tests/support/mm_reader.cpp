#include "mm_reader.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zel::test {
namespace {

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

[[noreturn]] void fail(const std::string &path, const std::string &what)
{
    throw std::runtime_error(path + ": " + what);
}

// Next line that is neither a comment nor blank.
bool next_data_line(std::istream &in, std::string &line)
{
    while (std::getline(in, line)) {
        size_t first = line.find_first_not_of(" \t\r");
        if (first != std::string::npos && line[first] != '%')
            return true;
    }
    return false;
}

void read_header(std::istream &in, const std::string &path, mm_triplets &m)
{
    std::string line;
    if (!std::getline(in, line))
        fail(path, "empty file");
    std::istringstream header(line);
    std::string banner, object, format;
    header >> banner >> object >> format >> m.field >> m.symmetry;
    if (banner != "%%MatrixMarket" || lower(object) != "matrix")
        fail(path, "not a Matrix Market matrix");
    if (lower(format) != "coordinate")
        fail(path, "only the coordinate format is read");
    m.field = lower(m.field);
    m.symmetry = lower(m.symmetry);
    if (m.field != "real" && m.field != "complex" && m.field != "pattern" && m.field != "integer")
        fail(path, "unknown field '" + m.field + "'");
    if (m.symmetry != "general" && m.symmetry != "symmetric" && m.symmetry != "skew-symmetric" &&
        m.symmetry != "hermitian")
        fail(path, "unknown symmetry '" + m.symmetry + "'");
}

} // namespace

mm_triplets read_matrix_market(const std::string &path)
{
    std::ifstream in(path);
    if (!in)
        fail(path, "cannot open");
    mm_triplets m;
    read_header(in, path, m);
    std::string line;
    int64_t stored = 0;
    if (!next_data_line(in, line) || !(std::istringstream(line) >> m.rows >> m.cols >> stored) || m.rows < 0 ||
        m.cols < 0 || stored < 0)
        fail(path, "bad size line");
    const bool mirrored = m.symmetry != "general";
    m.row.reserve(mirrored ? 2 * stored : stored);
    m.col.reserve(m.row.capacity());
    m.value.reserve(m.row.capacity());
    for (int64_t k = 0; k < stored; ++k) {
        if (!next_data_line(in, line))
            fail(path, "file ends after " + std::to_string(k) + " of " + std::to_string(stored) + " entries");
        std::istringstream entry(line);
        int64_t i = 0, j = 0;
        double re = 1.0, im = 0.0;
        if (!(entry >> i >> j) || (m.field != "pattern" && !(entry >> re)) || (m.is_complex() && !(entry >> im)))
            fail(path, "bad entry line '" + line + "'");
        if (i < 1 || i > m.rows || j < 1 || j > m.cols)
            fail(path, "index out of range in '" + line + "'");
        const std::complex<double> v(re, im);
        m.row.push_back(i - 1);
        m.col.push_back(j - 1);
        m.value.push_back(v);
        if (mirrored && i != j) {
            m.row.push_back(j - 1);
            m.col.push_back(i - 1);
            m.value.push_back(m.symmetry == "symmetric" ? v : m.symmetry == "hermitian" ? std::conj(v) : -v);
        }
    }
    return m;
}

std::string test_matrix_dir()
{
    const char *dir = std::getenv("ZEL_TEST_MATRICES");
    if (dir == nullptr || *dir == '\0' || !std::filesystem::is_directory(dir))
        return "";
    return dir;
}

std::vector<std::string> test_matrix_files()
{
    std::vector<std::string> files;
    const std::string dir = test_matrix_dir();
    if (dir.empty())
        return files;
    for (const auto &entry : std::filesystem::directory_iterator(dir))
        if (entry.is_regular_file() && entry.path().extension() == ".mtx")
            files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace zel::test
