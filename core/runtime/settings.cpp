// Build identity, processor frequency and the settings read once from the environment.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "zel/runtime.h"

namespace {

struct process_settings {
    int cbwr_mode = 1; // OFF
    int cbwr_strict = 0;
    int fast_mm_disabled = 0;
    char verbose_file[4096] = {0};
};

struct cbwr_name {
    const char *name;
    int code;
};

constexpr cbwr_name cbwr_names[] = {
    {"OFF", 1},   {"AUTO", 2}, {"COMPATIBLE", 3}, {"SSE2", 4},  {"SSSE3", 6},   {"SSE4_1", 7},
    {"SSE4_2", 8}, {"AVX", 9},  {"AVX2", 10},      {"AVX512", 12},
};

bool is_decimal(const char *word)
{
    if (*word == '\0')
        return false;
    for (; *word != '\0'; ++word)
        if (*word < '0' || *word > '9')
            return false;
    return true;
}

// ZEL_CBWR holds a mode name or its numeric code, optionally followed by ",STRICT".
void parse_cbwr(const char *text, process_settings &settings)
{
    char word[64] = {0};
    size_t length = std::strcspn(text, ",");
    if (length >= sizeof word)
        return;
    std::memcpy(word, text, length);
    for (const cbwr_name &entry : cbwr_names)
        if (std::strcmp(word, entry.name) == 0)
            settings.cbwr_mode = entry.code;
    // Codes without a name (a newer mode, say) pass through numerically.
    if (is_decimal(word) && length <= 9)
        settings.cbwr_mode = static_cast<int>(std::strtol(word, nullptr, 10));
    if (text[length] == ',' && std::strcmp(text + length + 1, "STRICT") == 0)
        settings.cbwr_strict = 1;
}

const process_settings &settings()
{
    static process_settings value;
    static std::once_flag once;
    std::call_once(once, [] {
        char buffer[4096];
        if (zel_serv_getenv("ZEL_CBWR", buffer, sizeof buffer) > 0)
            parse_cbwr(buffer, value);
        if (zel_serv_getenv("ZEL_DISABLE_FAST_MM", buffer, sizeof buffer) > 0)
            value.fast_mm_disabled = 1;
        if (zel_serv_getenv("ZEL_VERBOSE_OUTPUT_FILE", buffer, sizeof buffer) > 0)
            std::memcpy(value.verbose_file, buffer, sizeof buffer);
    });
    return value;
}

double read_cpufreq_max_khz()
{
    FILE *file = std::fopen("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "r");
    if (file == nullptr)
        return 0.0;
    double khz = 0.0;
    if (std::fscanf(file, "%lf", &khz) != 1)
        khz = 0.0;
    std::fclose(file);
    return khz;
}

// Highest "cpu MHz" line of /proc/cpuinfo, for systems without cpufreq.
double read_cpuinfo_max_mhz()
{
    FILE *file = std::fopen("/proc/cpuinfo", "r");
    if (file == nullptr)
        return 0.0;
    char line[512];
    double best = 0.0;
    while (std::fgets(line, sizeof line, file)) {
        if (std::strncmp(line, "cpu MHz", 7) != 0)
            continue;
        const char *colon = std::strchr(line, ':');
        double mhz = colon ? std::strtod(colon + 1, nullptr) : 0.0;
        if (mhz > best)
            best = mhz;
    }
    std::fclose(file);
    return best;
}

const char *processor_description()
{
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f"))
        return "AVX-512 processors";
    if (__builtin_cpu_supports("avx2"))
        return "AVX2 processors";
    return "x86-64 processors";
}

} // namespace

extern "C" {

ZEL_API void zel_serv_get_version(zel_version *version)
{
    if (version == nullptr)
        return;
    version->major_version = 2;
    version->minor_version = 0;
    version->update_version = 0;
    version->patch_version = 0;
    version->product_status = "Product";
    version->build = ZEL_BUILD_DATE;
    version->processor = processor_description();
    version->platform = "x86-64 architecture";
}

ZEL_API double zel_serv_get_max_cpu_frequency(void)
{
    double khz = read_cpufreq_max_khz();
    if (khz > 0.0)
        return khz / 1e6;
    return read_cpuinfo_max_mhz() / 1e3;
}

ZEL_API int zel_serv_cbwr_get(int selector)
{
    const process_settings &value = settings();
    if (selector == -1)
        return value.cbwr_mode | (value.cbwr_strict ? 65536 : 0);
    return value.cbwr_mode;
}

ZEL_API int zel_serv_get_fast_mm_status(void) { return settings().fast_mm_disabled; }

ZEL_API const char *zel_serv_verbose_output_file_mode(void) { return settings().verbose_file; }

} // extern "C"
