/* Loaded before a program by LD_PRELOAD: makes one of its allocations, or of its attempts to create a thread, fail.

   orvikFailAllocation(n) arms it: allocation n from then on, of whichever thread, fails; a negative number disarms it.
   ORVIK_FAIL_THREAD=N: attempt N to create a thread, counted from 0 from the start of the program, fails.
   ORVIK_MAX_THREADS=N: attempts fail while N threads besides the first one are there, as under a limit. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <stdatomic.h>
#include <stdlib.h>

#define VISIBLE __attribute__((visibility("default")))

extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* block, size_t size);
extern void* __libc_memalign(size_t alignment, size_t size);

static atomic_long g_nbLeft = -1, g_nbFailed = 0, g_nbAttempts = 0, g_nbThreads = 0;

VISIBLE void orvikFailAllocation(long n)
{
    atomic_store(&g_nbLeft, n);
}

VISIBLE long orvikNbFailedAllocations(void)
{
    return atomic_load(&g_nbFailed);
}

static int fails(void)
{
    if (atomic_load(&g_nbLeft) < 0 || atomic_fetch_sub(&g_nbLeft, 1) != 0)
        return 0;
    atomic_fetch_add(&g_nbFailed, 1);
    errno = ENOMEM;
    return 1;
}

VISIBLE void* malloc(size_t size)
{
    return fails() ? 0 : __libc_malloc(size);
}

VISIBLE void* calloc(size_t count, size_t size)
{
    return fails() ? 0 : __libc_calloc(count, size);
}

VISIBLE void* realloc(void* block, size_t size)
{
    return fails() ? 0 : __libc_realloc(block, size);
}

VISIBLE void* memalign(size_t alignment, size_t size)
{
    return fails() ? 0 : __libc_memalign(alignment, size);
}

VISIBLE void* aligned_alloc(size_t alignment, size_t size)
{
    return fails() ? 0 : __libc_memalign(alignment, size);
}

VISIBLE int posix_memalign(void** block, size_t alignment, size_t size)
{
    void* const made = fails() ? 0 : __libc_memalign(alignment, size);
    if (!made)
        return ENOMEM;
    *block = made;
    return 0;
}

struct Start
{
    void* (*function)(void*);
    void* argument;
};

static void* start(void* given)
{
    const struct Start asked = *(struct Start*)given;
    free(given);
    void* const result = asked.function(asked.argument);
    atomic_fetch_sub(&g_nbThreads, 1);
    return result;
}

static long number(const char* name, long otherwise)
{
    const char* const text = getenv(name);
    return text ? atol(text) : otherwise;
}

typedef int (*Create)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

VISIBLE int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*), void* argument)
{
    const int chosen = atomic_fetch_add(&g_nbAttempts, 1) == number("ORVIK_FAIL_THREAD", -1);
    if (atomic_fetch_add(&g_nbThreads, 1) >= number("ORVIK_MAX_THREADS", 1 << 20) || chosen) {
        atomic_fetch_sub(&g_nbThreads, 1);
        return EAGAIN;
    }
    struct Start* const asked = __libc_malloc(sizeof *asked);
    asked->function = function;
    asked->argument = argument;
    return ((Create)dlsym(RTLD_NEXT, "pthread_create"))(thread, attributes, &start, asked);
}
