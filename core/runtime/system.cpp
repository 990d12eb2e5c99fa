// Locks, environment access, bounded strings, clock and process exit.
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sched.h>
#include <unistd.h>

#include "zel/runtime.h"

extern "C" {

ZEL_API void zel_serv_lock(int32_t *lock_word)
{
    for (;;) {
        int32_t expected = 0;
        if (__atomic_compare_exchange_n(lock_word, &expected, 1, false, __ATOMIC_ACQUIRE,
                                        __ATOMIC_RELAXED))
            return;
        while (__atomic_load_n(lock_word, __ATOMIC_RELAXED) != 0)
            sched_yield();
    }
}

ZEL_API void zel_serv_unlock(int32_t *lock_word) { __atomic_store_n(lock_word, 0, __ATOMIC_RELEASE); }

ZEL_API int zel_serv_getenv(const char *name, char *buffer, int capacity)
{
    if (name == nullptr || buffer == nullptr || capacity <= 0)
        return -1;
    const char *value = std::getenv(name);
    if (value == nullptr) {
        buffer[0] = '\0';
        return 0;
    }
    size_t length = std::strlen(value);
    size_t copied = length < static_cast<size_t>(capacity) ? length : static_cast<size_t>(capacity) - 1;
    std::memcpy(buffer, value, copied);
    buffer[copied] = '\0';
    return static_cast<int>(length);
}

ZEL_API int zel_serv_strncpy_s(char *dest, size_t dest_capacity, const char *src, size_t count)
{
    if (dest == nullptr || dest_capacity == 0)
        return EINVAL;
    if (src == nullptr) {
        dest[0] = '\0';
        return EINVAL;
    }
    size_t length = zel_serv_strnlen_s(src, count);
    if (length >= dest_capacity) {
        dest[0] = '\0';
        return ERANGE;
    }
    std::memcpy(dest, src, length);
    dest[length] = '\0';
    return 0;
}

ZEL_API int zel_serv_memcpy_s(void *dest, size_t dest_capacity, const void *src, size_t count)
{
    if (dest == nullptr)
        return EINVAL;
    if (src == nullptr || count > dest_capacity) {
        std::memset(dest, 0, dest_capacity);
        return src == nullptr ? EINVAL : ERANGE;
    }
    std::memmove(dest, src, count);
    return 0;
}

ZEL_API size_t zel_serv_strnlen_s(const char *text, size_t max_length)
{
    if (text == nullptr)
        return 0;
    size_t length = 0;
    while (length < max_length && text[length] != '\0')
        ++length;
    return length;
}

ZEL_API int zel_serv_lsame(const char *a, const char *b)
{
    if (a == nullptr || b == nullptr)
        return 0;
    return std::toupper(static_cast<unsigned char>(*a)) == std::toupper(static_cast<unsigned char>(*b));
}

ZEL_API double zel_serv_dsecnd(void)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

ZEL_API float zel_serv_libm_powf(float x, float y)
{
    return powf(x, y);
}

ZEL_API void zel_serv_exit(int code)
{
    std::fflush(nullptr);
    _exit(code);
}

} // extern "C"
