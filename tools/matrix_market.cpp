// Matrix Market reading and writing. The file is read in large blocks and split into lines in
// place; numbers are parsed with from_chars, so millions of entries read in about a second.
#include "matrix_market.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include <sys/stat.h>

namespace zel::tool {

const char *mm_field_name(mm_field field)
{
    switch (field) {
    case mm_field::real: return "real";
    case mm_field::integer: return "integer";
    case mm_field::complex: return "complex";
    default: return "pattern";
    }
}

const char *mm_symmetry_name(mm_symmetry value)
{
    switch (value) {
    case mm_symmetry::general: return "general";
    case mm_symmetry::symmetric: return "symmetric";
    case mm_symmetry::skew_symmetric: return "skew-symmetric";
    default: return "hermitian";
    }
}

bool mm_matrix::fits_32_bits() const
{
    constexpr int64_t most = std::numeric_limits<int32_t>::max();
    return header.rows <= most && header.cols <= most && entries() <= most;
}

bool mm_matrix::narrow(std::vector<int32_t> &row_ptr32, std::vector<int32_t> &col_idx32) const
{
    if (!fits_32_bits())
        return false;
    row_ptr32.assign(row_ptr.begin(), row_ptr.end());
    col_idx32.assign(col_idx.begin(), col_idx.end());
    return true;
}

namespace {

using std::string_view;

// Lines of a file, read in blocks; a line longer than the block grows it.
class line_reader {
public:
    explicit line_reader(std::FILE *file) : file_(file), buffer_(1 << 22) {}
    // The next line without its end ("\n" or "\r\n"); false at the end of the file or on a read error.
    bool next(string_view &line);
    int64_t number() const { return number_; }
    bool failed() const { return std::ferror(file_) != 0; }

private:
    bool refill();
    std::FILE *file_;
    std::vector<char> buffer_;
    size_t begin_ = 0, end_ = 0;
    bool at_end_ = false;
    int64_t number_ = 0;
};

bool line_reader::refill()
{
    if (at_end_)
        return false;
    if (begin_ == 0 && end_ == buffer_.size())
        buffer_.resize(buffer_.size() * 2);
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    const size_t got = std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_);
    end_ += got;
    at_end_ = got == 0;
    return got > 0;
}

bool line_reader::next(string_view &line)
{
    for (size_t scanned = begin_;;) {
        const void *found = std::memchr(buffer_.data() + scanned, '\n', end_ - scanned);
        if (found != nullptr || (at_end_ && begin_ < end_)) {
            const size_t stop = found ? static_cast<const char *>(found) - buffer_.data() : end_;
            line = string_view(buffer_.data() + begin_, stop - begin_);
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
            begin_ = found ? stop + 1 : end_;
            ++number_;
            return true;
        }
        scanned = end_ - begin_;
        if (!refill())
            return at_end_ && begin_ < end_ ? next(line) : false;
    }
}

// Up to max_tokens words of a line separated by blanks; count is max_tokens + 1 when there are more.
struct words {
    static constexpr int max_tokens = 5;
    string_view token[max_tokens];
    int count = 0;
};

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

words split(string_view line)
{
    words w;
    const char *at = line.data(), *const end = at + line.size();
    for (;;) {
        while (at != end && is_blank(*at))
            ++at;
        if (at == end)
            return w;
        if (w.count == words::max_tokens) {
            ++w.count;
            return w;
        }
        const char *const start = at;
        while (at != end && !is_blank(*at))
            ++at;
        w.token[w.count++] = string_view(start, static_cast<size_t>(at - start));
    }
}

bool equals_lower(string_view word, string_view lower)
{
    return word.size() == lower.size() &&
           std::equal(word.begin(), word.end(), lower.begin(), [](char a, char b) { return std::tolower(a) == b; });
}

bool parse_index(string_view text, int64_t &value)
{
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    return code == std::errc() && end == text.data() + text.size();
}

enum class parsed { ok, bad, too_large, not_finite };

// A value; a leading '+' is allowed, as C and Fortran write it. A value too small for a double
// becomes 0 (or the nearest subnormal), as strtod makes it; one too large is refused.
parsed parse_value(string_view text, bool integer, double &value)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+')
        text.remove_prefix(1);
    const char *first = text.data(), *last = first + text.size();
    if (integer) {
        int64_t whole = 0;
        const auto [end, code] = std::from_chars(first, last, whole);
        value = static_cast<double>(whole);
        return end != last ? parsed::bad : code == std::errc() ? parsed::ok : parsed::too_large;
    }
    const auto [end, code] = std::from_chars(first, last, value);
    if (end != last || (code != std::errc() && code != std::errc::result_out_of_range))
        return parsed::bad;
    if (code == std::errc::result_out_of_range) {
        value = std::strtod(std::string(text).c_str(), nullptr);
        if (std::isinf(value))
            return parsed::too_large;
    }
    return std::isfinite(value) ? parsed::ok : parsed::not_finite;
}

// A shortened copy of a line for messages.
std::string quoted(string_view line)
{
    constexpr size_t most = 60;
    return line.size() <= most ? std::string(line) : std::string(line.substr(0, most)) + "...";
}

// The state of one read: the file's lines, its header, and the message of the first fault.
struct reading {
    const char *path;
    line_reader &lines;
    std::string &error;
    mm_header header;

    bool fail_at(int64_t line, const char *format, ...) __attribute__((format(printf, 3, 4)));
    // The next line that is neither blank nor a comment.
    bool next_data(string_view &line);
};

bool reading::fail_at(int64_t line, const char *format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    error = std::string(path) + ":" + std::to_string(line) + ": " + text;
    return false;
}

bool reading::next_data(string_view &line)
{
    while (lines.next(line)) {
        const size_t first = line.find_first_not_of(" \t\r\v\f");
        if (first != string_view::npos && line[first] != '%')
            return true;
    }
    return false;
}

bool parse_field_and_symmetry(reading &r, const words &w)
{
    mm_header &h = r.header;
    if (equals_lower(w.token[3], "real"))
        h.field = mm_field::real;
    else if (equals_lower(w.token[3], "integer"))
        h.field = mm_field::integer;
    else if (equals_lower(w.token[3], "complex"))
        h.field = mm_field::complex;
    else if (equals_lower(w.token[3], "pattern"))
        h.field = mm_field::pattern;
    else
        return r.fail_at(1, "unknown field '%s' (real, integer, complex or pattern)", quoted(w.token[3]).c_str());
    if (equals_lower(w.token[4], "general"))
        h.symmetry = mm_symmetry::general;
    else if (equals_lower(w.token[4], "symmetric"))
        h.symmetry = mm_symmetry::symmetric;
    else if (equals_lower(w.token[4], "skew-symmetric"))
        h.symmetry = mm_symmetry::skew_symmetric;
    else if (equals_lower(w.token[4], "hermitian"))
        h.symmetry = mm_symmetry::hermitian;
    else
        return r.fail_at(1, "unknown symmetry '%s' (general, symmetric, skew-symmetric or hermitian)",
                         quoted(w.token[4]).c_str());
    return true;
}

// The banner: object, format, field and symmetry, and the combinations that make sense.
bool read_banner(reading &r)
{
    string_view line;
    if (!r.lines.next(line))
        return r.fail_at(1, "the file is empty; a Matrix Market file begins with %%%%MatrixMarket");
    const words w = split(line);
    if (w.count == 0 || !equals_lower(w.token[0], "%%matrixmarket"))
        return r.fail_at(1, "not a Matrix Market file: the first line must begin with %%%%MatrixMarket");
    if (w.count != 5)
        return r.fail_at(1, "the banner must read '%%%%MatrixMarket matrix FORMAT FIELD SYMMETRY', not '%s'",
                         quoted(line).c_str());
    if (!equals_lower(w.token[1], "matrix"))
        return r.fail_at(1, "the object is '%s'; only 'matrix' files are read", quoted(w.token[1]).c_str());
    mm_header &h = r.header;
    if (equals_lower(w.token[2], "array"))
        h.array = true;
    else if (!equals_lower(w.token[2], "coordinate"))
        return r.fail_at(1, "unknown format '%s' (coordinate or array)", quoted(w.token[2]).c_str());
    if (!parse_field_and_symmetry(r, w))
        return false;
    if (h.symmetry == mm_symmetry::hermitian && h.field != mm_field::complex)
        return r.fail_at(1, "hermitian storage needs complex values, not %s", mm_field_name(h.field));
    if (h.symmetry == mm_symmetry::skew_symmetric && h.field == mm_field::pattern)
        return r.fail_at(1, "skew-symmetric storage needs values; a pattern file has none");
    if (h.array && h.field == mm_field::pattern)
        return r.fail_at(1, "an array file holds values; pattern goes with the coordinate format");
    if (h.array && h.symmetry != mm_symmetry::general)
        return r.fail_at(1, "array files are read in general storage only, not %s", mm_symmetry_name(h.symmetry));
    return true;
}

// "rows cols entries" (coordinate) or "rows cols" (array).
bool read_size_line(reading &r)
{
    mm_header &h = r.header;
    string_view line;
    if (!r.next_data(line))
        return r.fail_at(r.lines.number() + 1, "the file ends before the size line");
    h.size_line = r.lines.number();
    const words w = split(line);
    const int wanted = h.array ? 2 : 3;
    int64_t stored = 0;
    if (w.count != wanted || !parse_index(w.token[0], h.rows) || !parse_index(w.token[1], h.cols) ||
        (!h.array && !parse_index(w.token[2], stored)) || h.rows < 0 || h.cols < 0 || stored < 0)
        return r.fail_at(h.size_line, "the size line must hold %s (whole numbers, none negative), not '%s'",
                         h.array ? "rows and columns" : "rows, columns and entries", quoted(line).c_str());
    if (h.symmetry != mm_symmetry::general && h.rows != h.cols)
        return r.fail_at(h.size_line, "%s storage needs a square matrix, not %lld × %lld",
                         mm_symmetry_name(h.symmetry), static_cast<long long>(h.rows), static_cast<long long>(h.cols));
    if (h.array && h.rows > 0 && h.cols > std::numeric_limits<int64_t>::max() / h.rows)
        return r.fail_at(h.size_line, "%lld × %lld values are more than can be counted",
                         static_cast<long long>(h.rows), static_cast<long long>(h.cols));
    h.stored = h.array ? h.rows * h.cols : stored;
    return true;
}

// One coordinate entry: indices 0-based, checked against the size and the storage.
struct entry {
    int64_t row, col;
    std::complex<double> value;
};

// One value of the current line, or the message saying what is wrong with it.
bool value_or_fail(reading &r, string_view text, bool integer, double &value)
{
    const parsed result = parse_value(text, integer, value);
    if (result == parsed::ok)
        return true;
    const std::string shown = quoted(text);
    if (result == parsed::bad)
        return r.fail_at(r.lines.number(), "bad %s value '%s'", integer ? "integer" : "real", shown.c_str());
    if (result == parsed::too_large)
        return r.fail_at(r.lines.number(), "value '%s' is too large for a double", shown.c_str());
    return r.fail_at(r.lines.number(), "value '%s' is not finite", shown.c_str());
}

bool parse_entry_words(reading &r, string_view line, entry &e)
{
    const mm_header &h = r.header;
    const words w = split(line);
    const int wanted = h.field == mm_field::pattern ? 2 : h.field == mm_field::complex ? 4 : 3;
    if (w.count != wanted) {
        static const char *const shapes[] = {"", "", "'row column'", "'row column value'",
                                             "'row column real imaginary'"};
        return r.fail_at(r.lines.number(), "an entry of a %s file is %s, not '%s'", mm_field_name(h.field),
                         shapes[wanted], quoted(line).c_str());
    }
    if (!parse_index(w.token[0], e.row))
        return r.fail_at(r.lines.number(), "bad row index '%s'", quoted(w.token[0]).c_str());
    if (!parse_index(w.token[1], e.col))
        return r.fail_at(r.lines.number(), "bad column index '%s'", quoted(w.token[1]).c_str());
    double re = 1.0, im = 0.0;
    const bool integer = h.field == mm_field::integer;
    for (int k = 2; k < wanted; ++k)
        if (!value_or_fail(r, w.token[k], integer, k == 2 ? re : im))
            return false;
    e.value = {re, im};
    return true;
}

bool check_entry(reading &r, entry &e)
{
    const mm_header &h = r.header;
    const int64_t line = r.lines.number();
    const long long i = e.row, j = e.col;
    if (e.row < 1 || e.row > h.rows)
        return r.fail_at(line, "row index %lld is outside 1..%lld", i, static_cast<long long>(h.rows));
    if (e.col < 1 || e.col > h.cols)
        return r.fail_at(line, "column index %lld is outside 1..%lld", j, static_cast<long long>(h.cols));
    if (h.symmetry != mm_symmetry::general && j > i)
        return r.fail_at(line, "entry (%lld, %lld) lies above the diagonal; %s storage holds the lower triangle only",
                         i, j, mm_symmetry_name(h.symmetry));
    if (h.symmetry == mm_symmetry::skew_symmetric && i == j)
        return r.fail_at(line, "entry (%lld, %lld) lies on the diagonal, which skew-symmetric storage leaves out",
                         i, j);
    if (h.symmetry == mm_symmetry::hermitian && i == j && e.value.imag() != 0.0)
        return r.fail_at(line, "diagonal entry (%lld, %lld) has imaginary part %g; a Hermitian diagonal is real", i,
                         j, e.value.imag());
    --e.row;
    --e.col;
    return true;
}

// Reads the entries announced by the size line, handing each to take(entry), then checks that
// nothing but comments and blank lines follows.
template <class Take> bool read_entries(reading &r, Take &&take)
{
    const int64_t stored = r.header.stored;
    string_view line;
    for (int64_t k = 0; k < stored; ++k) {
        if (!r.next_data(line))
            return r.fail_at(r.lines.number() + 1, "the file ends after %lld of %lld entries",
                             static_cast<long long>(k), static_cast<long long>(stored));
        entry e;
        if (!parse_entry_words(r, line, e) || !check_entry(r, e))
            return false;
        take(e);
    }
    if (r.next_data(line))
        return r.fail_at(r.lines.number(), "more entries than the %lld the size line announces",
                         static_cast<long long>(stored));
    return true;
}

// The values of an array file, column by column.
template <class V> bool read_array_values(reading &r, std::vector<V> &values)
{
    const mm_header &h = r.header;
    const bool complex = h.field == mm_field::complex;
    const int wanted = complex ? 2 : 1;
    string_view line;
    for (int64_t k = 0; k < h.stored; ++k) {
        if (!r.next_data(line))
            return r.fail_at(r.lines.number() + 1, "the file ends after %lld of %lld values",
                             static_cast<long long>(k), static_cast<long long>(h.stored));
        const words w = split(line);
        double part[2] = {0, 0};
        if (w.count != wanted)
            return r.fail_at(r.lines.number(), "a value of a %s array is %s, not '%s'", mm_field_name(h.field),
                             complex ? "'real imaginary'" : "one number", quoted(line).c_str());
        for (int p = 0; p < wanted; ++p)
            if (!value_or_fail(r, w.token[p], h.field == mm_field::integer, part[p]))
                return false;
        if constexpr (std::is_same_v<V, double>)
            values.push_back(part[0]);
        else
            values.emplace_back(part[0], part[1]);
    }
    if (r.next_data(line))
        return r.fail_at(r.lines.number(), "more values than the %lld × %lld the size line announces",
                         static_cast<long long>(h.rows), static_cast<long long>(h.cols));
    return true;
}

// Entries as read, before they become rows.
template <class V> struct triplets {
    std::vector<int64_t> row, col;
    std::vector<V> value;
};

template <class V> V mirrored(const V &value, mm_symmetry symmetry)
{
    if (symmetry == mm_symmetry::skew_symmetric)
        return -value;
    if constexpr (!std::is_same_v<V, double>)
        if (symmetry == mm_symmetry::hermitian)
            return std::conj(value);
    return value;
}

// Sorts one row's entries by column and sums repeated columns; returns the row's new length.
template <class V> int64_t sort_and_sum(int64_t *col, V *value, int64_t length, std::vector<int64_t> &order,
                                        std::vector<V> &scratch)
{
    if (!std::is_sorted(col, col + length) || std::adjacent_find(col, col + length) != col + length) {
        order.resize(length);
        for (int64_t k = 0; k < length; ++k)
            order[k] = k;
        // Stable, so that repeated entries are summed in file order.
        std::stable_sort(order.begin(), order.end(), [col](int64_t a, int64_t b) { return col[a] < col[b]; });
        scratch.assign(value, value + length);
        std::vector<int64_t> cols(col, col + length);
        int64_t kept = -1;
        for (int64_t k = 0; k < length; ++k) {
            const int64_t from = order[k];
            if (kept >= 0 && col[kept] == cols[from]) {
                value[kept] += scratch[from];
            } else {
                ++kept;
                col[kept] = cols[from];
                value[kept] = scratch[from];
            }
        }
        return kept + 1;
    }
    return length;
}

// Rows from the triplets: counted, scattered (mirror entries included), then each sorted and summed.
template <class V>
void assemble(const mm_header &h, triplets<V> &t, mm_matrix &m, std::vector<V> &values)
{
    const bool mirror = h.symmetry != mm_symmetry::general;
    m.row_ptr.assign(h.rows + 1, 0);
    for (size_t k = 0; k < t.row.size(); ++k) {
        ++m.row_ptr[t.row[k] + 1];
        if (mirror && t.row[k] != t.col[k])
            ++m.row_ptr[t.col[k] + 1];
    }
    for (int64_t i = 0; i < h.rows; ++i)
        m.row_ptr[i + 1] += m.row_ptr[i];
    m.col_idx.resize(m.row_ptr[h.rows]);
    values.resize(m.row_ptr[h.rows]);
    std::vector<int64_t> next(m.row_ptr.begin(), m.row_ptr.end() - 1);
    for (size_t k = 0; k < t.row.size(); ++k) {
        const int64_t i = t.row[k], j = t.col[k];
        m.col_idx[next[i]] = j;
        values[next[i]++] = t.value[k];
        if (mirror && i != j) {
            m.col_idx[next[j]] = i;
            values[next[j]++] = mirrored(t.value[k], h.symmetry);
        }
    }
    t = triplets<V>();
    std::vector<int64_t> order;
    std::vector<V> scratch;
    int64_t write = 0;
    for (int64_t i = 0; i < h.rows; ++i) {
        const int64_t begin = m.row_ptr[i], length = m.row_ptr[i + 1] - begin;
        const int64_t kept = sort_and_sum(&m.col_idx[begin], &values[begin], length, order, scratch);
        std::copy(m.col_idx.begin() + begin, m.col_idx.begin() + begin + kept, m.col_idx.begin() + write);
        std::copy(values.begin() + begin, values.begin() + begin + kept, values.begin() + write);
        m.row_ptr[i] = write;
        write += kept;
    }
    m.row_ptr[h.rows] = write;
    m.col_idx.resize(write);
    values.resize(write);
}

// A first guess at the entry count that a lying size line cannot inflate: an entry line takes at
// least four bytes ("1 1\n").
int64_t plausible_entries(std::FILE *file, int64_t announced)
{
    struct stat about;
    if (fstat(fileno(file), &about) != 0 || about.st_size <= 0)
        return 0;
    return std::min<int64_t>(announced, about.st_size / 4);
}

template <class V> bool read_sparse_values(reading &r, std::FILE *file, mm_matrix &m, std::vector<V> &values)
{
    triplets<V> t;
    const int64_t guess = plausible_entries(file, r.header.stored);
    t.row.reserve(guess);
    t.col.reserve(guess);
    t.value.reserve(guess);
    const bool ok = read_entries(r, [&t](const entry &e) {
        t.row.push_back(e.row);
        t.col.push_back(e.col);
        if constexpr (std::is_same_v<V, double>)
            t.value.push_back(e.value.real());
        else
            t.value.push_back(e.value);
    });
    if (!ok)
        return false;
    assemble(r.header, t, m, values);
    // A pattern entry given twice is still one entry.
    if (r.header.field == mm_field::pattern)
        std::fill(values.begin(), values.end(), V(1));
    return true;
}

bool read_coordinate(reading &r, std::FILE *file, mm_matrix &m)
{
    if (!read_banner(r))
        return false;
    if (r.header.array)
        return r.fail_at(1, "an array file holds a dense matrix; a sparse matrix needs the coordinate format");
    if (!read_size_line(r))
        return false;
    m.header = r.header;
    return m.is_complex() ? read_sparse_values(r, file, m, m.complex_values)
                          : read_sparse_values(r, file, m, m.real_values);
}

// A sparse matrix written out densely, column-major.
template <class V> void densify(const mm_matrix &m, const std::vector<V> &from, std::vector<V> &to)
{
    to.assign(m.header.rows * m.header.cols, V());
    for (int64_t i = 0; i < m.header.rows; ++i)
        for (int64_t k = m.row_ptr[i]; k < m.row_ptr[i + 1]; ++k)
            to[m.col_idx[k] * m.header.rows + i] = from[k];
}

bool read_dense(reading &r, std::FILE *file, mm_dense &d)
{
    if (!read_banner(r))
        return false;
    if (r.header.field == mm_field::pattern)
        return r.fail_at(1, "a pattern file has no values to read densely");
    if (!read_size_line(r))
        return false;
    const mm_header &h = r.header;
    if (h.array) {
        d.header = h;
        const int64_t guess = plausible_entries(file, h.stored);
        if (d.is_complex()) {
            d.complex_values.reserve(guess);
            return read_array_values(r, d.complex_values);
        }
        d.real_values.reserve(guess);
        return read_array_values(r, d.real_values);
    }
    if (h.rows > 0 && h.cols > std::numeric_limits<int64_t>::max() / 16 / h.rows)
        return r.fail_at(h.size_line, "%lld × %lld is too large to hold densely", static_cast<long long>(h.rows),
                         static_cast<long long>(h.cols));
    mm_matrix m;
    m.header = h;
    const bool ok = m.is_complex() ? read_sparse_values(r, file, m, m.complex_values)
                                   : read_sparse_values(r, file, m, m.real_values);
    if (!ok)
        return false;
    d.header = h;
    if (m.is_complex())
        densify(m, m.complex_values, d.complex_values);
    else
        densify(m, m.real_values, d.real_values);
    return true;
}

// Opens the file and runs one read, turning a read error or a lack of memory into a message.
template <class Read> bool with_file(const char *path, std::string &error, Read &&read)
{
    error.clear();
    std::FILE *file = std::fopen(path, "rb");
    if (file == nullptr) {
        error = std::string(path) + ": " + std::strerror(errno);
        return false;
    }
    bool ok = false;
    try {
        line_reader lines(file);
        reading r{path, lines, error, mm_header{}};
        ok = read(r, file);
        if (lines.failed()) {
            error = std::string(path) + ":" + std::to_string(lines.number() + 1) + ": read error";
            ok = false;
        }
    } catch (const std::bad_alloc &) {
        error = std::string(path) + ": out of memory while reading";
        ok = false;
    } catch (const std::length_error &) {
        error = std::string(path) + ": out of memory while reading";
        ok = false;
    }
    std::fclose(file);
    return ok;
}

template <class V> void write_value(std::FILE *out, const V &value)
{
    if constexpr (std::is_same_v<V, double>)
        std::fprintf(out, "%.17g\n", value);
    else
        std::fprintf(out, "%.17g %.17g\n", value.real(), value.imag());
}

template <class V>
bool write_array(const char *path, int64_t rows, int64_t cols, const V *values, int64_t ld, const char *comment,
                 std::string &error)
{
    error.clear();
    std::FILE *out = std::fopen(path, "w");
    if (out == nullptr) {
        error = std::string(path) + ": " + std::strerror(errno);
        return false;
    }
    std::fprintf(out, "%%%%MatrixMarket matrix array %s general\n", std::is_same_v<V, double> ? "real" : "complex");
    if (comment != nullptr && comment[0] != '\0')
        std::fprintf(out, "%% %s\n", comment);
    std::fprintf(out, "%lld %lld\n", static_cast<long long>(rows), static_cast<long long>(cols));
    for (int64_t j = 0; j < cols; ++j)
        for (int64_t i = 0; i < rows; ++i)
            write_value(out, values[j * ld + i]);
    const bool failed = std::ferror(out) != 0;
    const int saved = errno;
    if (std::fclose(out) != 0 || failed) {
        error = std::string(path) + ": cannot write: " + std::strerror(failed ? saved : errno);
        return false;
    }
    return true;
}

} // namespace

bool read_matrix_market(const char *path, mm_matrix &matrix, std::string &error)
{
    matrix = mm_matrix();
    return with_file(path, error, [&matrix](reading &r, std::FILE *file) { return read_coordinate(r, file, matrix); });
}

bool read_matrix_market_dense(const char *path, mm_dense &dense, std::string &error)
{
    dense = mm_dense();
    return with_file(path, error, [&dense](reading &r, std::FILE *file) { return read_dense(r, file, dense); });
}

bool write_matrix_market_array(const char *path, int64_t rows, int64_t cols, const double *values, int64_t ld,
                               const char *comment, std::string &error)
{
    return write_array(path, rows, cols, values, ld, comment, error);
}

bool write_matrix_market_array(const char *path, int64_t rows, int64_t cols, const std::complex<double> *values,
                               int64_t ld, const char *comment, std::string &error)
{
    return write_array(path, rows, cols, values, ld, comment, error);
}

} // namespace zel::tool
