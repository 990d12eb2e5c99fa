// Replaceable error, progress and pivot callbacks, the clean-up registry and pointer checks.
#include <atomic>

#include "zel/runtime.h"
#include "zel/serv.h"

namespace {

std::atomic<zel_xerbla_handler> xerbla_slot{nullptr};
std::atomic<zel_progress_handler> progress_slot{nullptr};
std::atomic<zel_pivot_handler> pivot_slot{nullptr};
int32_t xerbla_lock = 0;

struct cleanup_entry {
    void (*function)(void *);
    void *argument;
};
constexpr int cleanup_capacity = 8;
cleanup_entry cleanup_registry[cleanup_capacity];
int32_t cleanup_count = 0;
// Registration and the run lock different words on purpose: they do not exclude each other.
int32_t register_lock = 0;
int32_t cleanup_lock = 0;

constexpr int64_t code_null_pointer = 1103;

// The default pivot rule: a pivot no larger than eps in magnitude becomes +-eps.
int replace_small_pivot(double *bii, const double *eps)
{
    if (*bii > *eps || *bii < -*eps)
        return 0;
    *bii = *bii > 0.0 ? *eps : -*eps; // an exact zero becomes -eps
    return 1;
}

} // namespace

extern "C" {

ZEL_API void zel_serv_default_xerbla(const char *name, const int64_t *info, int32_t name_len)
{
    if (name == nullptr || info == nullptr || name_len < 0)
        return;
    char routine[21];
    zel_serv_strncpy_s(routine, sizeof routine, name, name_len < 20 ? static_cast<size_t>(name_len) : 20);
    zel_serv_print(0, 0, 0);
    const long long code = *info;
    switch (code) {
    case 1000: zel_serv_print(0, 8, 1, routine); break;
    case 1001: zel_serv_print(0, 9, 1, routine); break;
    case 1103: zel_serv_print(0, 1103, 1, routine); break;
    case 1226: zel_serv_print(0, 1226, 1, routine); break;
    default:
        if (code >= 1)
            zel_serv_print(0, 6, 2, code, routine);
        else
            zel_serv_print(0, 7, 2, -code, routine);
    }
}

ZEL_API void zel_serv_xerbla(const char *name, const int64_t *info, int32_t name_len)
{
    if (name == nullptr || info == nullptr)
        return;
    zel_xerbla_handler handler = xerbla_slot.load(std::memory_order_acquire);
    (handler ? handler : zel_serv_default_xerbla)(name, info, name_len);
}

ZEL_API zel_xerbla_handler zel_serv_set_xerbla(zel_xerbla_handler handler)
{
    zel_xerbla_handler previous = xerbla_slot.exchange(handler);
    return previous ? previous : zel_serv_default_xerbla;
}

ZEL_API void zel_serv_set_xerbla_interface(zel_xerbla_handler handler)
{
    if (xerbla_slot.load() != nullptr)
        return;
    zel_serv_lock(&xerbla_lock);
    if (xerbla_slot.load() == nullptr)
        xerbla_slot.store(handler);
    zel_serv_unlock(&xerbla_lock);
}

ZEL_API int zel_serv_default_progress(const int *, const int *, const char *, int32_t) { return 0; }

ZEL_API int zel_serv_progress(const int *thread, const int *step, const char *stage, int32_t stage_len)
{
    zel_progress_handler handler = progress_slot.load(std::memory_order_acquire);
    return handler ? handler(thread, step, stage, stage_len) : 0;
}

ZEL_API zel_progress_handler zel_serv_set_progress(zel_progress_handler handler)
{
    zel_progress_handler previous = progress_slot.exchange(handler);
    return previous ? previous : zel_serv_default_progress;
}

ZEL_API void zel_serv_set_progress_interface(zel_progress_handler handler)
{
    if (progress_slot.load() == nullptr)
        progress_slot.store(handler);
}

ZEL_API int zel_serv_default_varisol_pivot(const double *, double *bii, const double *eps)
{
    return replace_small_pivot(bii, eps);
}

ZEL_API int zel_serv_varisol_pivot(const double *aii, double *bii, const double *eps)
{
    zel_pivot_handler handler = pivot_slot.load(std::memory_order_acquire);
    return handler ? handler(aii, bii, eps) : replace_small_pivot(bii, eps);
}

ZEL_API zel_pivot_handler zel_serv_set_varisol_pivot(zel_pivot_handler handler)
{
    zel_pivot_handler previous = pivot_slot.exchange(handler);
    return previous ? previous : zel_serv_default_varisol_pivot;
}

ZEL_API void zel_serv_set_varisol_pivot_interface(zel_pivot_handler handler)
{
    if (pivot_slot.load() == nullptr)
        pivot_slot.store(handler);
}

ZEL_API int zel_serv_thr_register_cleanup(void (*function)(void *), void *argument)
{
    zel_serv_lock(&register_lock);
    if (cleanup_count >= cleanup_capacity) {
        zel_serv_unlock(&register_lock);
        zel_serv_exit(3); // a full registry is fatal by design
    }
    cleanup_registry[cleanup_count] = {function, argument};
    ++cleanup_count;
    zel_serv_unlock(&register_lock);
    return 0;
}

ZEL_API void zel_serv_thr_cleanup(void)
{
    zel_serv_lock(&cleanup_lock);
    while (cleanup_count != 0) {
        --cleanup_count;
        const cleanup_entry entry = cleanup_registry[cleanup_count];
        if (entry.function)
            entry.function(entry.argument);
    }
    zel_serv_unlock(&cleanup_lock);
}

ZEL_API int zel_serv_check_ptr(const void *pointer, const char *name)
{
    if (pointer != nullptr)
        return 0;
    if (name != nullptr) {
        const int64_t code = code_null_pointer;
        zel_serv_xerbla(name, &code, static_cast<int32_t>(zel_serv_strnlen_s(name, 4096)));
    }
    return 1;
}

ZEL_API int zel_serv_check_ptr_and_warn(const void *pointer) { return pointer == nullptr ? 1 : 0; }

} // extern "C"

// Registered clean-up functions also run when the library is unloaded or the process exits.
__attribute__((destructor)) static void run_cleanup_at_unload() { zel_serv_thr_cleanup(); }
