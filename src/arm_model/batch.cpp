// Many poses at once, over some threads.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <thread>

#include "arm_model/four.h"
#include "zk/arm_model.h"
#include "zk/status.h"

namespace zk::arm {
namespace {

constexpr int kMostThreads = 64, kAllFour = (1 << kFour) - 1;

// Calls part(begin, end) for shares of 0 ... count on as many threads, this one among them. Each takes the next share
// when it is done with one, since a new thread begins late. Shares are large at first, since neighbours disturb each
// other's caches, and small at the end, so that all end together. This thread also does what the system has no other
// for.
template <class Part>
void share_out(int count, int threads, Part part) {
    constexpr int kShare = 64;
    std::atomic<int> next = 0;
    const auto work = [&] {
        for (int begin = next; begin < count;) {
            const int left = count - begin, share = std::max(kShare, left / (2 * threads) / kShare * kShare);
            const int end = begin + std::min(share, left);
            if (!next.compare_exchange_weak(begin, end)) continue;
            part(begin, end);
            begin = next;
        }
    };
    std::array<std::thread, kMostThreads> others;
    int started = 1;
    try {
        for (; started < threads && (started - 1) * kShare < count; ++started) others[started] = std::thread(work);
    } catch (const std::exception&) {
    }
    work();
    for (int i = 1; i < started; ++i) others[i].join();
}

// Calls row(i), which returns a status, for each row that four(i) leaves: it is called for row i and the three after,
// and returns a bit for each of them that is done. Returns the status of the first row that is not ZK_OK.
template <class Four, class Row>
int for_rows(int count, int threads, Four four, Row row) {
    constexpr std::int64_t kNone = INT64_MAX, kStatuses = 256;
    std::atomic<std::int64_t> first = kNone;
    const auto do_row = [&](int i) {
        const int status = row(i);
        std::int64_t known = first, here = i * kStatuses + status;
        while (status != ZK_OK && here < known && !first.compare_exchange_weak(known, here)) {
        }
    };
    const bool in_fours = can_do_four();
    share_out(count, threads, [&](int begin, int end) {
        for (int i = begin; i < end; i += kFour) {
            const int rows = std::min(kFour, end - i), done = in_fours && rows == kFour ? four(i) : 0;
            for (int k = 0; k < rows; ++k) {
                if ((done & (1 << k)) == 0) do_row(i + k);
            }
        }
    });
    return first == kNone ? ZK_OK : static_cast<int>(first % kStatuses);
}

bool is_count(int count, int threads) { return count >= 0 && threads >= 1 && threads <= kMostThreads; }

}  // namespace
}  // namespace zk::arm

using namespace zk::arm;

ZK_API int ZK_Model_Forward_Batch(const ZK_Model* model, const float* joint, int count, Pose* pose, int threads) {
    if (!model || !is_count(count, threads) || (count > 0 && (!joint || !pose))) return ZK_BAD_ARGUMENT;
    const std::int64_t joints = ZK_Model_Joint_Count(model);
    return for_rows(
        count, threads, [=](int i) { return forward_four(*model, joint + i * joints, pose + i) ? kAllFour : 0; },
        [=](int i) { return ZK_Model_Forward(model, joint + i * joints, pose + i); });
}

ZK_API int ZK_Model_Inverse_Batch(const ZK_Model* model, const Pose* target, const float* seed, int count,
                                  const ZK_InverseOptions* options, float* joint, int* status, int threads) {
    if (!model || !is_count(count, threads) || (count > 0 && (!target || !seed || !joint))) return ZK_BAD_ARGUMENT;
    const std::int64_t joints = ZK_Model_Joint_Count(model);
    static constexpr ZK_InverseOptions kDefaults = {};
    if (!options) options = &kDefaults;
    const auto four = [=](int i) {
        const int done = inverse_four(*model, target + i, seed + i * joints, *options, joint + i * joints);
        for (int k = 0; status && k < kFour; ++k) {
            if (done & (1 << k)) status[i + k] = ZK_OK;
        }
        return done;
    };
    return for_rows(count, threads, four, [=](int i) {
        const int result = ZK_Model_Inverse(model, target + i, seed + i * joints, options, joint + i * joints, nullptr);
        if (status) status[i] = result;
        return result;
    });
}
