// Waits on the pending list. The receive path never marks an entry of the list as arrived, so these calls end in 7 at
// the limit although the controller has done what they asked.
#pragma once

#include "connection/request.h"
#include "connection/wait.h"

namespace zk {

struct PendingForm {
    bool clears_past_end = false;  // after a failed send, removes the entry past the last, not its own
    int32_t extra_ms = 0;          // ms to wait beyond m_nOutTime
};

// `parse` takes the text of the reply and returns the status.
template <class Parse>
int pending(const Request& request, int key_code, Parse parse, const PendingForm& form = {});

class PendingEntry {
 public:
    PendingEntry(ArmSocket socket, int key_code);
    int status() const { return status_; }  // 20 when the list is full
    // Writes the request to the socket, at once.
    int send(const Request& request, const PendingForm& form);
    // Returns 0 with the text of the reply; 5 when the connection is closed and 7 at the limit, its entry removed.
    int wait(char (&reply)[300], const PendingForm& form);

 private:
    bool take(char (&reply)[300]);
    void give_up();

    Wait connection_;
    int key_code_;
    int index_ = 0;
    int status_ = 0;
};

template <class Parse>
int pending(const Request& request, int key_code, Parse parse, const PendingForm& form) {
    PendingEntry entry(request.socket(), key_code);
    if (entry.status()) return entry.status();
    if (const int status = entry.send(request, form)) return status;
    char reply[300];
    if (const int status = entry.wait(reply, form)) return status;
    return parse(reply);
}

}  // namespace zk
