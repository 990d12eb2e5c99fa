// The message catalogue and the console, file and bounded-buffer printers.
#include <cstdarg>
#include <cstdio>

#include "zel/runtime.h"

namespace {

struct catalogue_entry {
    int id;
    const char *format;
};

// Arguments: integers are long long, names are const char *.
constexpr catalogue_entry catalogue[] = {
    {0, "\nZelmath: error report\n"},
    {6, "  Parameter %lld was incorrect on entry to %s.\n"},
    {7, "  Parameter %lld had an illegal value on entry to %s (reported as a negative code).\n"},
    {8, "  Routine %s could not allocate its workspace (not enough memory).\n"},
    {9, "  Routine %s could not allocate its internal buffers (not enough memory).\n"},
    {1103, "  Routine %s was given a null pointer where an array or value is required.\n"},
    {1226, "  Routine %s was given a problem whose size does not fit the 32-bit integer interface.\n"},
};

FILE *channel_stream(int channel) { return channel == 1 ? stderr : stdout; }

} // namespace

extern "C" {

ZEL_API const char *zel_serv_message_text(int message_id)
{
    for (const catalogue_entry &entry : catalogue)
        if (entry.id == message_id)
            return entry.format;
    return nullptr;
}

ZEL_API void zel_serv_print(int channel, int message_id, int argument_count, ...)
{
    const char *format = zel_serv_message_text(message_id);
    FILE *stream = channel_stream(channel);
    if (format == nullptr) {
        std::fprintf(stream, "Zelmath: message %d (%d arguments) is not in the catalogue\n", message_id,
                     argument_count);
        return;
    }
    va_list arguments;
    va_start(arguments, argument_count);
    std::vfprintf(stream, format, arguments);
    va_end(arguments);
    std::fflush(stream);
}

ZEL_API FILE *zel_serv_fopen(const char *path, const char *mode)
{
    if (path == nullptr || mode == nullptr)
        return nullptr;
    return std::fopen(path, mode);
}

ZEL_API int zel_serv_fclose(FILE *file) { return file ? std::fclose(file) : EOF; }

ZEL_API int zel_serv_file_format_print(FILE *file, const char *format, ...)
{
    if (file == nullptr || format == nullptr)
        return -1;
    va_list arguments;
    va_start(arguments, format);
    int written = std::vfprintf(file, format, arguments);
    va_end(arguments);
    return written;
}

ZEL_API int zel_serv_format_print(int channel, const char *format, ...)
{
    if (format == nullptr)
        return -1;
    FILE *stream = channel_stream(channel);
    va_list arguments;
    va_start(arguments, format);
    int written = std::vfprintf(stream, format, arguments);
    va_end(arguments);
    std::fflush(stream);
    return written;
}

ZEL_API int zel_serv_printf_s(const char *format, ...)
{
    if (format == nullptr)
        return -1;
    va_list arguments;
    va_start(arguments, format);
    int written = std::vprintf(format, arguments);
    va_end(arguments);
    return written;
}

ZEL_API char *zel_serv_sprintf_s(char *end, size_t *remaining, const char *format, ...)
{
    if (end == nullptr || remaining == nullptr || *remaining == 0 || format == nullptr)
        return end;
    va_list arguments;
    va_start(arguments, format);
    int wanted = std::vsnprintf(end, *remaining, format, arguments);
    va_end(arguments);
    if (wanted < 0)
        return end;
    // A text that does not fit is cut; the terminator always stays.
    size_t written = static_cast<size_t>(wanted) < *remaining ? static_cast<size_t>(wanted) : *remaining - 1;
    *remaining -= written;
    return end + written;
}

ZEL_API char *zel_serv_sprintf_char_s(char *end, size_t *remaining, const char *format, const char *text)
{
    return zel_serv_sprintf_s(end, remaining, format, text ? text : "");
}

} // extern "C"
