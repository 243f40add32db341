// Looking at a connection.
#include <algorithm>
#include <cstring>
#include <new>

#include "connection/journal.h"
#include "connection/line.h"
#include "connection/wait.h"
#include "control/arms.h"
#include "control/failure.h"
#include "control/stream.h"

using namespace zk;

namespace {

template <size_t size>
void copy_cut(const std::string& text, char (&field)[size]) {
    field[text.copy(field, size - 1)] = '\0';
}

}  // namespace

ZK_API int ZK_Connection(ArmSocket arm, ZK_ConnectionRecord* record) try {
    if (!record) return fail(ZK_BAD_ARGUMENT, "the place for the record is null");
    *record = {};
    Line* line = Line::of(arm);
    const Arm known = arm_of(arm);
    if (!line || known.handle == 0) return fail(ZK_STALE_HANDLE);
    const Connection connection(arm);
    copy_cut(line->cause(), record->cause);
    copy_cut(known.host, record->host);
    copy_cut(known.address, record->address);
    record->state = line->is_lost() ? ZK_CONNECTION_LOST : ZK_CONNECTION_UP;
    record->port = known.port;
    record->arm_mode = read(SockInfo[connection.slot()].arm_mode);
    record->joint_count = joint_count_of_slot(connection.slot());
    record->model = known.model;
    record->sensor = known.sensor;
    const Traffic& traffic = line->traffic();
    record->frames_sent = traffic.frames_sent;
    record->bytes_sent = traffic.bytes_sent;
    record->messages_received = traffic.messages_received;
    record->bytes_received = traffic.bytes_received;
    record->unmatched = traffic.unmatched;
    record->dropped = traffic.dropped;
    record->late = traffic.late;
    const StreamCounts stream = stream_counts(arm);
    record->datagrams = stream.datagrams;
    record->datagrams_dropped = stream.dropped;
    const RoundTrips trips = round_trips(connection.slot());
    record->round_trip_last_ms = trips.last;
    record->round_trip_median_ms = trips.median;
    record->round_trip_worst_ms = trips.worst;
    return connection.is_open() ? int(ZK_OK) : fail(ZK_STALE_HANDLE);
} catch (const std::bad_alloc&) {
    return fail(ZK_NO_MEMORY);
}

ZK_API void ZK_Set_Connection_Callback(ZK_ConnectionCallback callback, void* context) {
    set_connection_callback(callback, context);
}

ZK_API void ZK_Set_Log(ZK_LogCallback callback, void* context, ZK_LogLevel level) { set_log(callback, context, level); }
