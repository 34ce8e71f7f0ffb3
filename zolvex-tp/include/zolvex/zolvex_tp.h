/*
 * zolvex/zolvex_tp.h - process-wide worker thread pool.
 *
 * Life cycle: the pool is reference counted. The first zolvex_tp_init()
 * starts the workers, the matching last zolvex_tp_fini() drains the queue and
 * joins them. Tasks may be created while the pool is stopped; they then run
 * immediately in the calling thread, so code using the pool never depends on
 * it being started.
 *
 * Every function is callable from any thread, never lets an exception escape
 * and reports failure through its return value.
 */
#ifndef ZOLVEX_TP_H
#define ZOLVEX_TP_H

#include <stdint.h>

#if defined(__GNUC__)
#define ZOLVEX_TP_API __attribute__((visibility("default")))
#else
#define ZOLVEX_TP_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Handle to one submitted piece of work. Owned by the caller that received it
 * and released with zolvex_tp_task_delete(). */
typedef struct zolvex_tp_task zolvex_tp_task;

/* Work function. It must not throw; should a C++ exception escape anyway it
 * is discarded and the task still counts as finished. */
typedef void (*zolvex_tp_work_fn)(void* argument);

/* Snapshot of the pool. The counters are read without stopping the pool, so
 * while tasks move between states they may be momentarily off by the tasks
 * in transit. */
typedef struct zolvex_tp_status {
    uint16_t threads;  /* worker threads; 0 while the pool is stopped */
    uint16_t reserved; /* always 0 */
    uint32_t queued;   /* tasks waiting to start */
    uint32_t running;  /* tasks currently executing on a worker or in a waiter */
} zolvex_tp_status;

#if defined(__cplusplus)
static_assert(sizeof(zolvex_tp_status) == 12, "zolvex_tp_status must stay 12 bytes for ABI stability");
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
_Static_assert(sizeof(zolvex_tp_status) == 12, "zolvex_tp_status must stay 12 bytes for ABI stability");
#else
typedef char zolvex_tp_status_must_be_12_bytes[(sizeof(zolvex_tp_status) == 12) ? 1 : -1];
#endif

/* Time-out value for zolvex_tp_wait() meaning "no time-out". */
#define ZOLVEX_TP_WAIT_INFINITE 0xFFFFFFFFu

/* Takes a reference on the pool. The first reference starts
 * std::thread::hardware_concurrency() workers (at least one, at most 65535).
 * init and fini are serialised; while the last fini is stopping the pool,
 * other callers wait for it to finish. Returns 0, or -1 without taking a
 * reference if the workers could not be started or if called from a pool
 * task while the pool is stopping. */
ZOLVEX_TP_API int32_t zolvex_tp_init(void);

/* Drops a reference. Dropping the last one stops accepting new work (later
 * tasks run inline), lets every queued task finish and joins the workers;
 * init may then start the pool again. A call without an outstanding
 * reference does nothing and returns 0. Returns 0, or -1 without dropping
 * anything when called from a pool task that would drop the last reference
 * (a worker cannot join itself) or, from a pool task, while the pool is
 * stopping. */
ZOLVEX_TP_API int32_t zolvex_tp_fini(void);

/* Copies a zolvex_tp_status into record, which needs no particular
 * alignment. Only the first 12 bytes are written even if size is larger.
 * Returns 0, or -1 without writing anything when record is NULL or size is
 * below 12. */
ZOLVEX_TP_API int32_t zolvex_tp_get_status(void* record, uint32_t size);

/* Schedules work(argument) and returns a new handle owned by the caller.
 * context is reserved for per-caller pools and must be NULL (it is ignored).
 * If the pool is not running, work runs to completion in the calling thread
 * before this returns and the handle refers to a finished task. argument is
 * passed through untouched; keeping it alive until the task has run is the
 * caller's responsibility. Returns NULL if work is NULL or memory runs out
 * (work is then not run). */
ZOLVEX_TP_API zolvex_tp_task* zolvex_tp_context_new_task(void* context, zolvex_tp_work_fn work,
                                                         void* argument);

/* Waits until the task has run and returns 0; returns 1 if timeout_ms
 * milliseconds pass first (the task keeps going), -1 for a NULL task.
 * ZOLVEX_TP_WAIT_INFINITE waits without limit. If the task has not started
 * yet, the calling thread runs it itself rather than waiting, so waiting
 * from inside a pool task cannot starve a small pool; in that case the call
 * returns 0 once the work is done, however long that takes. Any number of
 * threads may wait on the same task concurrently; the effects of the work
 * are visible to the caller when 0 is returned. */
ZOLVEX_TP_API int32_t zolvex_tp_wait(zolvex_tp_task* task, uint32_t timeout_ms);

/* Waits for the task as zolvex_tp_wait(task, ZOLVEX_TP_WAIT_INFINITE) does,
 * then releases the handle. The handle must not be used afterwards, and no
 * other thread may still be using it. NULL is ignored. Returns 0 (-1 only if
 * the wait itself failed; the handle is released regardless). */
ZOLVEX_TP_API int32_t zolvex_tp_task_delete(zolvex_tp_task* task);

#ifdef __cplusplus
}
#endif

#endif /* ZOLVEX_TP_H */
