/* Built as strict C99 so a C++-only construct in the public header breaks the build. */
#include <stddef.h>

#include "zolvex/zolvex_tp.h"

int zolvex_tp_c_header_check(void);

static void do_nothing(void* argument) {
    (void)argument;
}

int zolvex_tp_c_header_check(void) {
    zolvex_tp_status status;
    zolvex_tp_task* task = zolvex_tp_context_new_task(NULL, do_nothing, NULL);
    int32_t result = zolvex_tp_wait(task, ZOLVEX_TP_WAIT_INFINITE);
    result += zolvex_tp_task_delete(task);
    result += zolvex_tp_get_status(&status, (uint32_t)sizeof status);
    return (int)result + status.threads;
}
