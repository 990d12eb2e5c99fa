// Verbose mode: the one-time banner and the line reported for each call.
#include <atomic>
#include <cstdio>

#include "cbwr_names.hpp"
#include "zel/runtime.h"
#include "zel/serv.h"

namespace {

constexpr size_t banner_capacity = 400;
constexpr size_t settings_capacity = 200;
constexpr size_t code_name_capacity = 31;

std::atomic<int32_t> header_printed{0};
int32_t header_lock = 0;
int32_t stdout_lock = 0;

// Word for the caller's interface, or null for none. Unnamed values are spelled into `buffer`.
const char *interface_word(int iface, char *buffer)
{
    switch (iface) {
    case 0: return nullptr;
    case -1: return "cdecl";
    case 1: return "lp64";
    case 2: return "ilp64";
    default: std::snprintf(buffer, code_name_capacity, "iface%x", static_cast<unsigned>(iface)); return buffer;
    }
}

void compose_banner(int iface, char *banner)
{
    zel_version version{};
    zel_serv_get_version(&version);
    size_t remaining = banner_capacity;
    char *end = zel_serv_sprintf_s(banner, &remaining, "ZEL_VERBOSE Zelmath %d", version.major_version);
    if (version.update_version > 0)
        end = zel_serv_sprintf_s(end, &remaining, " Update %d", version.update_version);
    if (version.patch_version > 0)
        end = zel_serv_sprintf_s(end, &remaining, " Patch %d", version.patch_version);
    // Platform before processor: the banner has always read that way.
    end = zel_serv_sprintf_s(end, &remaining, " %s build %s for %s %s", version.product_status, version.build,
                             version.platform, version.processor);
    end = zel_serv_sprintf_char_s(end, &remaining, ", %s", "Lnx");
    end = zel_serv_sprintf_s(end, &remaining, " %.2fGHz", zel_serv_get_max_cpu_frequency());
    char word_buffer[code_name_capacity];
    if (const char *word = interface_word(iface, word_buffer))
        end = zel_serv_sprintf_char_s(end, &remaining, " %s", word);
    zel_serv_sprintf_char_s(end, &remaining, " %s", "sequential");
}

void warn_unwritable_output()
{
    zel_serv_format_print(1, "ZEL_VERBOSE WARNING: %s\n", "unable to open output file. Print to STDOUT");
}

// Opens the output file for one append; null, after the warning, when that fails.
FILE *open_output_file(const char *path)
{
    FILE *file = zel_serv_fopen(path, "a");
    if (file == nullptr)
        warn_unwritable_output();
    return file;
}

bool has_output_file(const char *path) { return path != nullptr && path[0] != '\0'; }

// Elapsed time in the largest unit that keeps it above 1.
char *append_time(char *end, size_t *remaining, double seconds)
{
    if (!(seconds > 0.0))
        return zel_serv_sprintf_s(end, remaining, "%.2fs", 0.0);
    if (seconds > 1.0)
        return zel_serv_sprintf_s(end, remaining, "%.2fs", seconds);
    if (seconds * 1000.0 > 1.0)
        return zel_serv_sprintf_s(end, remaining, "%.2fms", seconds * 1000.0);
    if (seconds * 1000000.0 > 1.0)
        return zel_serv_sprintf_s(end, remaining, "%.2fus", seconds * 1000000.0);
    return zel_serv_sprintf_s(end, remaining, "%.0fns", seconds * 1000000000.0);
}

char *append_cbwr(char *end, size_t *remaining)
{
    const int code = zel_serv_cbwr_get(1);
    char unnamed[code_name_capacity];
    const char *name = zel::serv::cbwr_mode_name(code);
    if (name == nullptr) {
        std::snprintf(unnamed, sizeof unnamed, "?%x", static_cast<unsigned>(code));
        name = unnamed;
    }
    end = zel_serv_sprintf_char_s(end, remaining, " CNR:%s", name);
    if (zel_serv_cbwr_get(-1) & zel::serv::cbwr_strict_bit)
        end = zel_serv_sprintf_char_s(end, remaining, "%s", ",STRICT");
    return end;
}

void compose_settings(double seconds, char *settings)
{
    size_t remaining = settings_capacity;
    char *end = append_time(settings, &remaining, seconds);
    end = append_cbwr(end, &remaining);
    end = zel_serv_sprintf_s(end, &remaining, " Dyn:%d", zel_serv_get_dynamic());
    zel_serv_sprintf_s(end, &remaining, " FastMM:%d", zel_serv_get_fast_mm_status() == 0 ? 1 : 0);
}

} // namespace

extern "C" {

ZEL_API void zel_serv_print_verbose_header(int iface)
{
    if (header_printed.load(std::memory_order_acquire) != 0)
        return;
    char banner[banner_capacity];
    compose_banner(iface, banner);
    zel_serv_lock(&header_lock);
    if (header_printed.load(std::memory_order_relaxed) == 0) {
        const char *path = zel_serv_verbose_output_file_mode();
        FILE *file = has_output_file(path) ? open_output_file(path) : nullptr;
        if (file != nullptr) {
            zel_serv_file_format_print(file, "%s\n", banner);
            zel_serv_fclose(file);
        } else {
            zel_serv_format_print(0, "%s\n", banner);
        }
        header_printed.store(1, std::memory_order_release);
    }
    zel_serv_unlock(&header_lock);
}

ZEL_API void zel_serv_print_verbose_info(int iface, const char *text, double seconds)
{
    char settings[settings_capacity];
    compose_settings(seconds, settings);
    zel_serv_print_verbose_header(iface);
    if (text == nullptr)
        text = "";
    // A file line is opened, written and closed on its own, without a lock.
    const char *path = zel_serv_verbose_output_file_mode();
    if (has_output_file(path)) {
        if (FILE *file = open_output_file(path)) {
            zel_serv_file_format_print(file, "ZEL_VERBOSE %s %s\n", text, settings);
            zel_serv_fclose(file);
        } else {
            zel_serv_format_print(0, "ZEL_VERBOSE %s %s\n", text, settings);
        }
        return;
    }
    zel_serv_lock(&stdout_lock);
    zel_serv_format_print(0, "ZEL_VERBOSE %s %s\n", text, settings);
    zel_serv_unlock(&stdout_lock);
}

} // extern "C"
