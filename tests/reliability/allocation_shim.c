/* Preloaded before the C library: makes the Nth allocation of the calling
 * thread fail from the moment a test arms it, once. Every allocation
 * function of the C library comes here (operator new and the C++ library
 * allocate through malloc), and hands on to glibc's own allocator. */
#define _GNU_SOURCE
#include <errno.h>
#include <stddef.h>

extern void* __libc_malloc(size_t);
extern void* __libc_calloc(size_t, size_t);
extern void* __libc_realloc(void*, size_t);
extern void* __libc_memalign(size_t, size_t);

/* Per thread, so that the thread pool's own allocations do not take the
 * fault meant for the caller's thread. */
static __thread long countdown __attribute__((tls_model("initial-exec")));
static __thread int fired __attribute__((tls_model("initial-exec")));

__attribute__((visibility("default"))) void zolvex_m_allocation_shim_arm(long nth) {
    countdown = nth;
    fired = 0;
}
/* Disarms, and says whether an allocation failed since arming. */
__attribute__((visibility("default"))) int zolvex_m_allocation_shim_disarm(void) {
    countdown = 0;
    return fired;
}

static int fail_now(void) {
    if (countdown <= 0 || --countdown != 0) return 0;
    fired = 1;
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size) { return fail_now() ? NULL : __libc_malloc(size); }
void* calloc(size_t count, size_t size) { return fail_now() ? NULL : __libc_calloc(count, size); }
void* realloc(void* p, size_t size) { return fail_now() ? NULL : __libc_realloc(p, size); }
void* aligned_alloc(size_t alignment, size_t size) { return fail_now() ? NULL : __libc_memalign(alignment, size); }
void* memalign(size_t alignment, size_t size) { return fail_now() ? NULL : __libc_memalign(alignment, size); }
int posix_memalign(void** out, size_t alignment, size_t size) {
    if (fail_now()) return ENOMEM;
    void* p = __libc_memalign(alignment, size);
    if (p == NULL) return ENOMEM;
    *out = p;
    return 0;
}
