// The state of an arm, as its real-time stream reports it.
#include <ctime>

#include "connection/line.h"
#include "control/failure.h"
#include "control/stream.h"
#include "zk/control.h"

using namespace zk;

namespace {

ZK_State state_of(const StreamRecord& record, int slot) {
    return {.status = record.status,
            .joint_count = joint_count_of_slot(slot),
            .sequence = record.sequence,
            .host_ns = record.host_ns,
            .age_ms = static_cast<double>(monotonic_ns() - record.host_ns) / 1e6,
            .controller_ms = record.controller_ms,
            .clock_offset_ms = record.clock_offset_ms};
}

int open_slot_of(ArmSocket arm) { return Line::of(arm) ? slot_of(arm) : -1; }

}  // namespace

ZK_API int ZK_Get_State(ArmSocket arm, ZK_State* state, int32_t max_age_ms) {
    if (!state) return fail(ZK_BAD_ARGUMENT, "the place for the state is null");
    if (max_age_ms < 0) return fail(ZK_BAD_ARGUMENT, "the age is %d ms", max_age_ms);
    const int slot = open_slot_of(arm);
    if (slot < 0) return fail(ZK_STALE_HANDLE);
    StreamRecord record;
    if (!last_record(slot, arm, record)) return fail(ZK_NO_STATE);
    *state = state_of(record, slot);
    if (max_age_ms == 0 || state->age_ms <= max_age_ms) return ZK_OK;
    return fail(ZK_STATE_TOO_OLD, "the last real-time record is %.0f ms old, %d ms were asked for", state->age_ms,
                max_age_ms);
}

ZK_API int ZK_Get_State_After(ArmSocket arm, uint32_t sequence, ZK_State* state) {
    if (!state) return fail(ZK_BAD_ARGUMENT, "the place for the state is null");
    const int slot = open_slot_of(arm);
    if (slot < 0) return fail(ZK_STALE_HANDLE);
    StreamRecord record;
    if (!record_after(slot, arm, sequence, record)) return fail(ZK_NO_STATE);
    *state = state_of(record, slot);
    return ZK_OK;
}
