// What ZK_Connect learned of each arm.
#pragma once

#include <memory>
#include <string>

#include "zk/control.h"

namespace zk {

struct ModelDeleter {
    void operator()(ZK_Model* model) const { ZK_Model_Free(model); }
};

struct Arm {
    ArmSocket handle = 0;
    std::string host;
    std::string address;
    int32_t port = 0;
    int32_t model = 0, sensor = 0;
    std::shared_ptr<const ZK_Model> geometry;  // null for an arm without
};

void add_arm(int slot, Arm arm);
Arm arm_of(ArmSocket handle);  // with handle 0 when it is closed
void remove_arm(ArmSocket handle);

}  // namespace zk
