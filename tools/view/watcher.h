// Watches one arm: connects, reads what it pushes, asks for the rest now and then, and tells the feed.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "view/feed.h"
#include "view/geometry.h"
#include "view/view.h"
#include "zk/arm.hpp"

namespace zk::view {

class Watcher {
 public:
    // number: of the arm among those that the page shows. The feed lives longer.
    Watcher(std::size_t number, Address address, Feed& feed);
    ~Watcher();
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    // Connects for the first time, and watches from then on.
    [[nodiscard]] Result<void> start();

    // Ends the watch; the destructor waits for it.
    void end();

    // Stops the arm. Any thread.
    [[nodiscard]] Result<void> stop() const { return call<ZK_Stop>(handle_.load(), ZK_STOP | ZK_DROP_QUEUED); }

    std::string name() const;

 private:
    [[nodiscard]] Result<Arm> connect();
    void run(Arm arm);
    void watch(const Arm& arm);
    void say(const Json& link);
    // Whether the watch goes on after this pause.
    bool pause(std::chrono::milliseconds time);

    std::size_t number_;
    Address address_;
    Feed& feed_;
    std::atomic<ArmSocket> handle_{0};
    std::mutex lock_;
    std::condition_variable ends_;
    bool ended_ = false;
    std::thread thread_;
};

}  // namespace zk::view
