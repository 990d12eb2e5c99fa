// `zel info`'s warnings about environment values the library reads but does not understand, or
// understands otherwise than a user may expect. The rules mirror the library's readers
// (serv/environment.cpp, serv/mpi_ppn.cpp, core/runtime/settings.cpp, common/zel_internal/isa.hpp);
// the library itself stays silent, as its callers expect.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "environment_check.hpp"

extern char **environ;

namespace zel::tool {
namespace {

int warnings = 0;

void warn(const char *variable, const char *value, const char *consequence)
{
    std::fprintf(stderr, "zel info: warning: %s='%s' %s\n", variable, value, consequence);
    ++warnings;
}

bool all_digits(const char *text, size_t length)
{
    for (size_t k = 0; k < length; ++k)
        if (text[k] < '0' || text[k] > '9')
            return false;
    return true;
}

bool is_digits(const char *text) { return all_digits(text, std::strlen(text)); }

// A variable's value, or null when unset or empty (the library treats empty as unset).
const char *value_of(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr && value[0] != '\0' ? value : nullptr;
}

void check_counts()
{
    if (const char *value = value_of("ZEL_NUM_THREADS")) {
        if (!is_digits(value))
            warn("ZEL_NUM_THREADS", value, "is not a count; the library records a request for 1 thread");
        else if (std::strtoll(value, nullptr, 10) == 0)
            warn("ZEL_NUM_THREADS", value, "asks for no threads; the library ignores it");
    }
    if (const char *value = value_of("ZEL_NUM_STRIPES"); value != nullptr && !is_digits(value))
        warn("ZEL_NUM_STRIPES", value, "is not a count; the library ignores it");
    if (const char *value = value_of("ZEL_MPI_PPN"))
        if (!is_digits(value) || std::strlen(value) > 10 || std::strtoll(value, nullptr, 10) <= 0 ||
            std::strtoll(value, nullptr, 10) > 2147483647)
            warn("ZEL_MPI_PPN", value, "is not a positive count; the library ignores it");
}

bool is_list_separator(char c) { return c != '\0' && std::strchr(" \"',:;", c) != nullptr; }
bool ends_key(char c) { return c == ' ' || c == '"' || c == '\'' || c == '=' || c == '\0'; }

bool is_domain_key(const char *key, size_t length)
{
    for (const char *known : {"ZEL_DOMAIN_ALL", "ZEL_DOMAIN_BLAS", "ZEL_DOMAIN_FFT", "ZEL_DOMAIN_VML",
                              "ZEL_DOMAIN_VARISOL", "ZEL_DOMAIN_LAPACK"})
        if (std::strlen(known) == length && std::strncmp(known, key, length) == 0)
            return true;
    return false;
}

// One KEY=value entry of ZEL_DOMAIN_NUM_THREADS, split the way the library splits the list.
void check_domain_entry(const char *key, size_t key_length, const char *value, size_t value_length)
{
    char entry[160];
    std::snprintf(entry, sizeof entry, "%.*s=%.*s", static_cast<int>(key_length), key,
                  static_cast<int>(value_length), value);
    if (!is_domain_key(key, key_length))
        warn("ZEL_DOMAIN_NUM_THREADS", entry,
             "has an unknown key; the keys are ZEL_DOMAIN_ALL, _BLAS, _FFT, _VML, _VARISOL and _LAPACK");
    else if (value_length == 0 || !all_digits(value, value_length))
        warn("ZEL_DOMAIN_NUM_THREADS", entry, "has no count for its key; the library records 1 thread");
    else if (std::strtoll(value, nullptr, 10) == 0)
        warn("ZEL_DOMAIN_NUM_THREADS", entry, "asks for no threads; the library ignores the entry");
}

void check_domain_list()
{
    const char *text = value_of("ZEL_DOMAIN_NUM_THREADS");
    if (text == nullptr)
        return;
    const char *cursor = text;
    for (;;) {
        while (is_list_separator(*cursor))
            ++cursor;
        if (*cursor == '\0')
            return;
        const char *key = cursor;
        while (!ends_key(*cursor))
            ++cursor;
        const size_t key_length = static_cast<size_t>(cursor - key);
        if (key_length == 0) {
            warn("ZEL_DOMAIN_NUM_THREADS", text, "has an entry without a key; the library reads no further");
            return;
        }
        while (*cursor == '=' || *cursor == ' ')
            ++cursor;
        const char *value = cursor;
        while (*cursor != '\0' && !is_list_separator(*cursor))
            ++cursor;
        check_domain_entry(key, key_length, value, static_cast<size_t>(cursor - value));
        if (*cursor == '\0')
            return;
        ++cursor;
    }
}

void check_dynamic()
{
    const char *text = value_of("ZEL_DYNAMIC");
    if (text == nullptr)
        return;
    const char *word = text + std::strspn(text, " \"'");
    const size_t length = std::strcspn(word, " \"'");
    for (const char *known : {"TRUE", "true", "FALSE", "false"})
        if (std::strlen(known) == length && std::strncmp(known, word, length) == 0)
            return;
    warn("ZEL_DYNAMIC", text, "is neither TRUE nor FALSE; only FALSE or false turn it off, so it reads as on");
}

void check_cbwr()
{
    const char *text = value_of("ZEL_CBWR");
    if (text == nullptr)
        return;
    static const char *const modes[] = {"OFF", "AUTO", "COMPATIBLE", "SSE2", "SSSE3", "SSE4_1",
                                        "SSE4_2", "AVX", "AVX2", "AVX512"};
    const size_t length = std::strcspn(text, ",");
    bool known = length > 0 && length <= 9 && all_digits(text, length);
    for (const char *mode : modes)
        known = known || (std::strlen(mode) == length && std::strncmp(mode, text, length) == 0);
    if (!known)
        warn("ZEL_CBWR", text,
             "names no mode (OFF AUTO COMPATIBLE SSE2 SSSE3 SSE4_1 SSE4_2 AVX AVX2 AVX512, or a code); "
             "the library keeps OFF");
    if (text[length] == ',' && std::strcmp(text + length + 1, "STRICT") != 0)
        warn("ZEL_CBWR", text, "has a suffix other than ',STRICT'; the library ignores the suffix");
}

void check_switches()
{
    if (const char *value = value_of("ZEL_DISABLE_FAST_MM"))
        for (const char *off : {"0", "no", "NO", "false", "FALSE", "off", "OFF"})
            if (std::strcmp(value, off) == 0)
                warn("ZEL_DISABLE_FAST_MM", value,
                     "still disables the fast memory manager: any value does; unset it to keep it on");
    for (const char *variable : {"ZEL_DENSE_ISA", "ZEL_SPARSE_ISA"})
        if (const char *value = std::getenv(variable))
            if (std::strcmp(value, "avx512") != 0 && std::strcmp(value, "avx2") != 0 &&
                std::strcmp(value, "baseline") != 0)
                warn(variable, value, "is not avx512, avx2 or baseline; the library takes it as baseline");
}

// ZEL_ variables the library does not read at all: usually a misspelling.
void check_unknown_names()
{
    static const char *const read_by_library[] = {
        "ZEL_NUM_THREADS", "ZEL_NUM_STRIPES", "ZEL_DOMAIN_NUM_THREADS", "ZEL_DYNAMIC", "ZEL_MPI_PPN",
        "ZEL_CBWR", "ZEL_DISABLE_FAST_MM", "ZEL_VERBOSE_OUTPUT_FILE", "ZEL_DENSE_ISA", "ZEL_SPARSE_ISA"};
    // Read by the test suite and its scripts, not by the library.
    static const char *const read_by_tests[] = {"ZEL_TEST_MATRICES", "ZEL_BINARY_DIR", "ZEL_SOURCE_DIR"};
    for (char **entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        if (std::strncmp(*entry, "ZEL_", 4) != 0)
            continue;
        const size_t length = std::strcspn(*entry, "=");
        bool known = false;
        for (const char *name : read_by_library)
            known = known || (std::strlen(name) == length && std::strncmp(name, *entry, length) == 0);
        for (const char *name : read_by_tests)
            known = known || (std::strlen(name) == length && std::strncmp(name, *entry, length) == 0);
        if (!known) {
            std::fprintf(stderr, "zel info: warning: %.*s is not a variable the library reads\n",
                         static_cast<int>(length), *entry);
            ++warnings;
        }
    }
}

} // namespace

int warn_about_environment()
{
    warnings = 0;
    check_counts();
    check_domain_list();
    check_dynamic();
    check_cbwr();
    check_switches();
    check_unknown_names();
    return warnings;
}

} // namespace zel::tool
