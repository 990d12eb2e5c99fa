// The one-time scan of the thread-steering environment variables.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "environment.hpp"
#include "zel/runtime.h"

namespace zel::serv {
namespace {

constexpr int env_capacity = 256;

// -1 everywhere: not set. A field once set keeps its first value.
zel_thread_settings thread_settings = {-1, -1, -1, -1, -1, -1, -1, -1};

enum class count_kind { unset, malformed, number };

struct env_count {
    count_kind kind;
    int32_t value;
};

bool all_digits(const char *text)
{
    for (; *text != '\0'; ++text)
        if (*text < '0' || *text > '9')
            return false;
    return true;
}

// Counts too large for the record saturate rather than wrap.
int32_t to_count(const char *digits)
{
    long value = std::strtol(digits, nullptr, 10);
    return value > INT32_MAX ? INT32_MAX : static_cast<int32_t>(value);
}

// A variable's value as a count: set only when every character is a decimal digit.
env_count parse_env_count(const char *name)
{
    char text[env_capacity];
    if (zel_serv_getenv(name, text, env_capacity) <= 0)
        return {count_kind::unset, 0};
    if (!all_digits(text))
        return {count_kind::malformed, 0};
    return {count_kind::number, to_count(text)};
}

void keep_first(int32_t &field, int32_t value)
{
    if (field == -1)
        field = value;
}

void read_num_threads()
{
    const env_count count = parse_env_count("ZEL_NUM_THREADS");
    const int32_t value = count.kind == count_kind::malformed ? 1 : count.value; // garbage still asks for one
    if (count.kind != count_kind::unset && value > 0)
        keep_first(thread_settings.num_threads, value);
}

void read_num_stripes()
{
    const env_count count = parse_env_count("ZEL_NUM_STRIPES");
    if (count.kind == count_kind::number)
        keep_first(thread_settings.num_stripes, count.value);
}

bool is_list_separator(char c) { return std::strchr(" \"',:;", c) != nullptr && c != '\0'; }
bool ends_domain_name(char c) { return c == ' ' || c == '"' || c == '\'' || c == '=' || c == '\0'; }

int32_t *domain_field(const char *name, size_t length)
{
    struct domain_entry {
        const char *name;
        int32_t *field;
    };
    const domain_entry domains[] = {
        {"ZEL_DOMAIN_ALL", &thread_settings.num_threads},
        {"ZEL_DOMAIN_BLAS", &thread_settings.domain_blas},
        {"ZEL_DOMAIN_FFT", &thread_settings.domain_fft},
        {"ZEL_DOMAIN_VML", &thread_settings.domain_vml},
        {"ZEL_DOMAIN_VARISOL", &thread_settings.domain_varisol},
        {"ZEL_DOMAIN_LAPACK", &thread_settings.domain_lapack},
    };
    for (const domain_entry &entry : domains)
        if (std::strlen(entry.name) == length && std::strncmp(entry.name, name, length) == 0)
            return entry.field;
    return nullptr;
}

// An entry's value: 1 unless it is a non-empty run of digits.
int32_t domain_value(char *value, char *value_end)
{
    if (value == value_end)
        return 1;
    const char saved = *value_end;
    *value_end = '\0';
    const int32_t result = all_digits(value) ? to_count(value) : 1;
    *value_end = saved;
    return result;
}

// ZEL_DOMAIN_NUM_THREADS: a list of name=value entries, e.g. "ZEL_DOMAIN_ALL=2, ZEL_DOMAIN_BLAS=1".
void read_domain_list()
{
    char text[env_capacity];
    if (zel_serv_getenv("ZEL_DOMAIN_NUM_THREADS", text, env_capacity) <= 0)
        return;
    char *cursor = text;
    for (;;) {
        while (is_list_separator(*cursor))
            ++cursor;
        if (*cursor == '\0')
            return;
        char *name = cursor;
        while (!ends_domain_name(*cursor))
            ++cursor;
        const size_t name_length = static_cast<size_t>(cursor - name);
        if (name_length == 0)
            return;
        while (*cursor == '=' || *cursor == ' ')
            ++cursor;
        char *value = cursor;
        while (*cursor != '\0' && !is_list_separator(*cursor))
            ++cursor;
        const int32_t count = domain_value(value, cursor);
        int32_t *field = domain_field(name, name_length);
        if (field != nullptr && count > 0)
            keep_first(*field, count);
        if (*cursor == '\0')
            return;
        ++cursor; // past the separator that ended the value
    }
}

bool is_dynamic_quote(char c) { return c == ' ' || c == '"' || c == '\''; }

// ZEL_DYNAMIC is off only for the exact words FALSE and false.
void read_dynamic()
{
    if (thread_settings.dynamic != -1)
        return;
    char text[env_capacity];
    if (zel_serv_getenv("ZEL_DYNAMIC", text, env_capacity) <= 0) {
        thread_settings.dynamic = 1;
        return;
    }
    char *word = text;
    while (is_dynamic_quote(*word))
        ++word;
    char *end = word;
    while (*end != '\0' && !is_dynamic_quote(*end))
        ++end;
    *end = '\0';
    thread_settings.dynamic = std::strcmp(word, "FALSE") == 0 || std::strcmp(word, "false") == 0 ? 0 : 1;
}

} // namespace

void scan_environment()
{
    read_num_threads();
    read_num_stripes();
    read_domain_list();
    read_dynamic();
    (void)parse_env_count("OMP_NUM_THREADS"); // read for parity with threaded layers; one thread here
    (void)zel_serv_mpi_get_ppn();              // fills the processes-per-node cache
    (void)parse_env_count("ZMPI_THREAD_LEVEL");
}

const zel_thread_settings &recorded_thread_settings() { return thread_settings; }

} // namespace zel::serv
