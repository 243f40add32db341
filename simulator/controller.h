#pragma once

#include "devices/devices.h"
#include "devices/drag_teach.h"
#include "devices/fault_effects.h"
#include "devices/force_control.h"
#include "devices/modbus.h"
#include "motion/tool.h"
#include "options.h"
#include "programs/files.h"
#include "programs/program.h"
#include "push/push.h"
#include "wire/dispatcher.h"
#include "wire/memory.h"
#include "world/guard.h"
#include "world/ports.h"
#include "world/scenario.h"
#include "world/time.h"

namespace sim {

// All parts of the controller. It runs in one thread and knows no sockets. Simulated time passes only in `step`.
class Controller {
 public:
    // `kept` is what an earlier one kept over a loss of power, `progress` where it left the scenario. Throws
    // std::invalid_argument for something else, and for options that contradict each other.
    explicit Controller(const Options& options, const Json& kept = Json::object(), Scenario::Progress progress = {});
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    static constexpr int kStepMs = PushSettings::kCycleMs;

    Dispatcher& dispatcher() { return dispatcher_; }
    const Push& push() const { return push_; }

    const SimulatedTime& time() const { return time_; }
    const Memory& memory() const { return memory_; }
    Scenario::Progress progress() const { return scenario_ ? scenario_->progress() : Scenario::Progress(); }

    // Advances the simulated time by `kStepMs`.
    void step();

    // True when nothing changes before the next request.
    bool rests() const;

 private:
    void add_commands();
    void set_faults(const Options& options);

    SimulatedTime time_;
    Arm arm_;
    Tool tool_{arm_};
    ForceControl force_;
    DragTeach drag_{arm_};
    Devices devices_;
    ModbusMaster modbus_;
    Ports ports_;
    Files files_;
    Memory memory_;
    Dispatcher dispatcher_;
    Programs programs_{dispatcher_, arm_};
    Push push_;
    Guard guard_{arm_, tool_};
    FaultEffects fault_effects_{arm_, tool_, devices_};
    std::optional<Scenario> scenario_;
};

}  // namespace sim
