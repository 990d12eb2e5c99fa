// Argument errors of the dense kernels, ours and OpenBLAS's, reach the layer's replaceable
// error handler when the layer is loaded, and are silent otherwise.
#include "report.hpp"

#include <cstddef>

extern "C" {
// Resolved from the process: the layer that defines it is not a dependency of the core.
__attribute__((weak)) void zel_serv_xerbla(const char *name, const int64_t *info, int32_t name_len);

// Replaces the archive's printing handler for every routine linked into the core.
__attribute__((visibility("hidden"))) void xerbla_(const char *name, const int64_t *info, size_t name_len);
}

namespace zel::dense {
namespace {

void forward(const char *name, size_t length, int64_t position)
{
    char lower[16];
    size_t used = 0;
    for (; used < length && used + 1 < sizeof lower; ++used) {
        const char c = name[used];
        if (c == ' ' || c == '\0')
            break;
        lower[used] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    lower[used] = '\0';
    if (zel_serv_xerbla != nullptr)
        zel_serv_xerbla(lower, &position, static_cast<int32_t>(used));
}

} // namespace

void report_argument(char precision, const char *routine, int64_t position)
{
    char name[16] = {precision};
    size_t length = 1;
    while (length + 1 < sizeof name && routine[length - 1] != '\0') {
        name[length] = routine[length - 1];
        ++length;
    }
    forward(name, length, position);
}

} // namespace zel::dense

void xerbla_(const char *name, const int64_t *info, size_t name_len)
{
    zel::dense::forward(name, name_len, *info);
}
