// Ending the waits of a connection: cancels and deadlines.
#include "connection/journal.h"
#include "connection/line.h"
#include "connection/wait.h"
#include "control/failure.h"

using namespace zk;

static void stop_at_deadline(ArmSocket arm) { (void)ZK_Stop(arm, ZK_STOP | ZK_DROP_QUEUED); }

// Atomic words alone: a signal handler may call it.
ZK_API int ZK_Cancel(ArmSocket arm) {
    Line* line = Line::of(arm);
    if (!line) return ZK_STALE_HANDLE;
    line->cancels.fetch_add(1, std::memory_order_release);
    return ZK_OK;
}

ZK_API int ZK_Set_Deadline(ArmSocket arm, int32_t ms, uint32_t flags) {
    if (ms < 0) return fail(ZK_BAD_ARGUMENT, "the deadline is %d ms", ms);
    if (flags & ~uint32_t{ZK_ALL_THREADS | ZK_STOP_AT_DEADLINE}) {
        return fail(ZK_BAD_ARGUMENT, "the flags 0x%x have unknown bits", flags);
    }
    if (!Line::of(arm)) return fail(ZK_STALE_HANDLE);
    const Deadline deadline{ms, flags & ZK_STOP_AT_DEADLINE ? stop_at_deadline : nullptr};
    (flags & ZK_ALL_THREADS ? set_deadline_of_all : set_deadline_of_thread)(arm, deadline);
    return ZK_OK;
}
