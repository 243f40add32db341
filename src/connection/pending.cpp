#include "connection/pending.h"

#include <algorithm>
#include <cstring>

#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "zk/queue.h"
#include "zk/replies/pending.h"

PendingReply SockeRIinfos[200];
int32_t m_nSockeRIinfosLen = 0;

namespace zk {
namespace {

constexpr int kLongestList = 200;

void clear_text(PendingReply& record) {
    std::memset(record.reply_text, 0, strnlen(record.reply_text, sizeof record.reply_text));
}

bool waits_for(const PendingReply& record, ArmSocket socket, int key_code) {
    return record.socket == socket && record.in_use == 1 && record.key_code == key_code;
}

class ListLock {
 public:
    ListLock() { ZK_Mutex_Lock(); }
    ~ListLock() { ZK_Mutex_UnLock(); }
    ListLock(const ListLock&) = delete;
    ListLock& operator=(const ListLock&) = delete;
};

void remove(PendingReply* list, int32_t* count, int32_t index) {
    if (*count <= 0) return;
    if (*count == 1) {
        clear_text(list[0]);
        list[0].socket = list[0].key_code = list[0].arrived = 0;
        list[0].in_use = 1;
        *count = 0;
        return;
    }
    if (index < 0 || index >= *count) return;
    for (int32_t i = index; i < *count - 1; ++i) {
        clear_text(list[i]);
        std::memcpy(list[i].reply_text, list[i + 1].reply_text,
                    strnlen(list[i + 1].reply_text, sizeof list[i].reply_text));
        list[i].socket = list[i + 1].socket;
        list[i].key_code = list[i + 1].key_code;
        list[i].arrived = list[i + 1].arrived;
        list[i].in_use = list[i + 1].in_use;
    }
    --*count;
}

}  // namespace

PendingEntry::PendingEntry(ArmSocket socket, int key_code) : connection_(socket), key_code_(key_code) {
    if (is_handle(socket) && (status_ = connection_.status())) return;
    ListLock lock;
    index_ = m_nSockeRIinfosLen;
    status_ = Add_List(SockeRIinfos, index_, socket, key_code, 0, 1);
    if (status_ == 0) ++m_nSockeRIinfosLen;
}

int PendingEntry::send(const Request& request, const PendingForm& form) {
    const int status = stream(request);
    if (status == ZK_OK) return ZK_OK;
    ListLock lock;
    remove(SockeRIinfos, &m_nSockeRIinfosLen, form.clears_past_end ? m_nSockeRIinfosLen : index_);
    return status;
}

bool PendingEntry::take(char (&reply)[300]) {
    ListLock lock;
    for (int i = 0; i < m_nSockeRIinfosLen; ++i) {
        if (!waits_for(SockeRIinfos[i], connection_.socket(), key_code_) || SockeRIinfos[i].arrived != 1) continue;
        std::memcpy(reply, SockeRIinfos[index_].reply_text, sizeof reply);
        reply[sizeof reply - 1] = '\0';
        remove(SockeRIinfos, &m_nSockeRIinfosLen, index_);
        return true;
    }
    return false;
}

void PendingEntry::give_up() {
    ListLock lock;
    for (int i = 0; i < m_nSockeRIinfosLen; ++i) {
        if (waits_for(SockeRIinfos[i], connection_.socket(), key_code_)) remove(SockeRIinfos, &m_nSockeRIinfosLen, i);
    }
}

int PendingEntry::wait(char (&reply)[300], const PendingForm& form) {
    const int32_t start = Get_Program_Runtime();
    for (;;) {
        sleep_cp(kPollMs);
        const bool timed_out = elapsed_since(start) >= limit_beyond(form.extra_ms);
        if (const int status = timed_out ? int(ZK_TIMEOUT) : connection_.status()) {
            give_up();
            return status;
        }
        if (take(reply)) return ZK_OK;
    }
}

}  // namespace zk

ZK_API int Add_List(PendingReply* list, int32_t index, int32_t socket, int32_t key_code, int32_t arrived,
                    int32_t in_use) {
    if (index < 0 || index >= zk::kLongestList) return ZK_LIST_FULL;
    PendingReply& record = list[index];
    std::memset(record.reply_text, 0, sizeof record.reply_text);
    record.socket = socket;
    record.key_code = key_code;
    record.arrived = arrived;
    record.in_use = in_use;
    return ZK_OK;
}

ZK_API void ClearList(PendingReply* list, int32_t* count, int32_t index) {
    zk::ListLock lock;
    zk::remove(list, count, index);
}
