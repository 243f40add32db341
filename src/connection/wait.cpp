#include "connection/wait.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "connection/black_box.h"
#include "connection/elapsed.h"
#include "connection/journal.h"
#include "connection/line.h"

extern "C" [[gnu::visibility("hidden")]] void zk_usual_sleep(int32_t milliseconds);  // the library's own sleep_cp

namespace zk {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int32_t kStepMs = 10;
constexpr size_t kKeptTrips = 64;
// Volatile: a compiler may take two names for two addresses without a look.
void (*const volatile kSleepInUse)(int32_t) = sleep_cp;

// The outermost call of this thread on a connection of ZK_Connect.
struct Call {
    ArmSocket socket = 0;
    unsigned cancels = 0;
    int32_t start = 0;
    Deadline deadline;
    bool ended = false;  // by a cancel or the deadline, which is logged
    int depth = 0;
};
thread_local std::array<Call, ZK_SLOTS> calls;

struct BoundOfThread {
    ArmSocket socket = 0;
    Deadline deadline;
};
thread_local std::array<BoundOfThread, ZK_SLOTS> bounds;

// A mailbox that a call waits at.
struct Claim {
    Mailbox mailbox;
    std::thread::id owner;
    const Wait* call;  // which releases it
    ArmSocket socket;
    Clock::time_point since;
    bool is_timed;  // until its reply arrives
};

struct Desk {
    std::mutex lock;
    std::condition_variable message_came;
    std::vector<Claim> claims;
    Deadline bound_of_all;
    std::array<double, kKeptTrips> trips{};
    size_t trip_count = 0;
    double last = 0, worst = 0;
};
std::array<Desk, ZK_SLOTS>& desks() {
    static auto& only = *new std::array<Desk, ZK_SLOTS>;  // never destroyed: the receive thread outlives main
    return only;
}
Desk& desk(int slot) { return desks()[static_cast<size_t>(slot)]; }

Call* call_on(const Connection& connection) {
    Call& call = calls[static_cast<size_t>(connection.slot())];
    return call.depth > 0 && call.socket == connection.socket() ? &call : nullptr;
}

Deadline earlier(const Deadline& a, const Deadline& b) {
    if (a.milliseconds == 0 || b.milliseconds == 0) return a.milliseconds == 0 ? b : a;
    return a.milliseconds <= b.milliseconds ? a : b;
}

Deadline deadline_of(const Connection& connection) {
    const BoundOfThread& own = bounds[static_cast<size_t>(connection.slot())];
    Desk& here = desk(connection.slot());
    const std::lock_guard guard(here.lock);
    return earlier(own.socket == connection.socket() ? own.deadline : Deadline{}, here.bound_of_all);
}

int ended(Call& call, int status) {
    if (!call.ended) {
        call.ended = true;
        log(ZK_LOG_EVENTS, call.socket, status == ZK_CANCELLED ? "a call was cancelled" : "a call met its deadline");
        if (status == ZK_DEADLINE) black_box::keep("deadline");
        if (status == ZK_DEADLINE && call.deadline.expired) call.deadline.expired(call.socket);
    }
    return status;
}

// Takes the mailbox if it is free or the thread's own.
bool take(Desk& here, Mailbox mailbox, const Wait* call, bool is_timed) {
    const std::lock_guard guard(here.lock);
    const auto held = std::find_if(here.claims.begin(), here.claims.end(), [&](const Claim& claim) {
        return claim.mailbox == mailbox && claim.socket == call->socket();
    });
    if (held != here.claims.end()) return held->owner == std::this_thread::get_id();
    here.claims.push_back({mailbox, std::this_thread::get_id(), call, call->socket(), Clock::now(), is_timed});
    return true;
}

// Returns early, and true, when a message has made it true. An application that defines sleep_cp, and so controls the
// library's time, gets every sleep.
bool sleep_until(int slot, int32_t milliseconds, const std::function<bool()>& done) {
    if (!done || kSleepInUse != zk_usual_sleep) return sleep_cp(milliseconds), done && done();
    Desk& here = desk(slot);
    std::unique_lock guard(here.lock);
    return here.message_came.wait_for(guard, std::chrono::milliseconds(milliseconds), done);
}

void add_trip(Desk& here, double milliseconds) {
    here.trips[here.trip_count++ % kKeptTrips] = milliseconds;
    here.last = milliseconds;
    here.worst = std::max(here.worst, milliseconds);
}

}  // namespace

int Connection::status() const {
    if (!is_open()) return ZK_NOT_CONNECTED;
    if (!is_handle(socket_)) return ZK_OK;
    const Line& line = Line::at(slot_);
    if (line.handle() != socket_) return ZK_NOT_CONNECTED;
    if (line.is_lost()) return ZK_LOST;
    Call* call = call_on(*this);
    if (!call) return ZK_OK;
    if (call->cancels != line.cancels.load(std::memory_order_acquire)) return ended(*call, ZK_CANCELLED);
    const int32_t limit = call->deadline.milliseconds;
    return limit > 0 && elapsed_since(call->start) >= limit ? ended(*call, ZK_DEADLINE) : int(ZK_OK);
}

Wait::Wait(ArmSocket socket) : Connection(socket) {
    if (!is_handle(socket) || slot() < 0) return;
    Call& call = calls[static_cast<size_t>(slot())];
    if (call.depth == 0 || call.socket != socket) {
        call = {socket, Line::at(slot()).cancels.load(std::memory_order_acquire), Get_Program_Runtime(),
                deadline_of(*this)};
    }
    ++call.depth;
}

Wait::~Wait() {
    if (!is_handle(socket()) || slot() < 0) return;
    Call& call = calls[static_cast<size_t>(slot())];
    if (call.socket == socket()) --call.depth;
    Desk& here = desk(slot());
    const std::lock_guard guard(here.lock);
    std::erase_if(here.claims, [this](const Claim& claim) { return claim.call == this; });
}

int Wait::claim(Mailbox mailbox, Sharing sharing, int32_t limit) const {
    if (const int status = this->status()) return status;
    if (!is_handle(socket())) return ZK_OK;
    const bool alone = sharing == Sharing::kAlone;
    for (const int32_t start = Get_Program_Runtime(); !take(desk(slot()), mailbox, this, !alone); sleep_cp(1)) {
        if (const int status = this->status()) return status;
        if (alone || elapsed_since(start) >= (limit > 0 ? limit : read(m_nOutTime))) return ZK_BUSY;
    }
    return ZK_OK;
}

void pause(const Connection& connection, int32_t milliseconds, const std::function<bool()>& done) {
    if (!is_handle(connection.socket())) return sleep_cp(milliseconds);
    for (int32_t left = milliseconds; left > 0 && connection.status() == ZK_OK; left -= kStepMs) {
        if (sleep_until(connection.slot(), std::min(left, kStepMs), done)) return;
    }
}

void set_deadline_of_thread(ArmSocket handle, const Deadline& deadline) {
    const int slot = slot_of(handle);
    if (slot >= 0) bounds[static_cast<size_t>(slot)] = {handle, deadline};
}

void set_deadline_of_all(ArmSocket handle, const Deadline& deadline) {
    const int slot = slot_of(handle);
    if (slot < 0) return;
    const std::lock_guard guard(desk(slot).lock);
    desk(slot).bound_of_all = deadline;
}

void note_arrivals(int slot) {
    Desk& here = desk(slot);
    {
        const std::lock_guard guard(here.lock);
        for (Claim& claim : here.claims) {
            if (!claim.is_timed || claim.mailbox.count(slot) == 0) continue;
            claim.is_timed = false;
            add_trip(here, std::chrono::duration<double, std::milli>(Clock::now() - claim.since).count());
        }
    }
    here.message_came.notify_all();
}

bool is_claimed(int slot, Mailbox mailbox) {
    Desk& here = desk(slot);
    const std::lock_guard guard(here.lock);
    return std::any_of(here.claims.begin(), here.claims.end(),
                       [&](const Claim& claim) { return claim.mailbox == mailbox; });
}

RoundTrips round_trips(int slot) {
    Desk& here = desk(slot);
    const std::lock_guard guard(here.lock);
    const size_t kept = std::min(here.trip_count, kKeptTrips);
    if (kept == 0) return {};
    std::array<double, kKeptTrips> sorted = here.trips;
    std::nth_element(sorted.begin(), sorted.begin() + kept / 2, sorted.begin() + kept);
    return {here.last, sorted[kept / 2], here.worst};
}

void forget_round_trips(int slot) {
    Desk& here = desk(slot);
    const std::lock_guard guard(here.lock);
    here.bound_of_all = {};
    here.trip_count = 0;
    here.last = here.worst = 0;
}

}  // namespace zk
