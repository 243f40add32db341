#include "support/simulated_arm.h"

#include <stdexcept>

#include "support/arm.h"
#include "zk/connection.h"
#include "zk/status.h"

namespace zk::test {

SimulatedArm::SimulatedArm(const std::vector<std::string>& arguments, int arm_mode) : simulator_(arguments) {
    ZK_API_Init(arm_mode, nullptr);
    set_shared(m_nOutTime, 60000);
    set_shared(m_nOutTime_max, 60000);
    arm_ = Arm_Socket_Start("127.0.0.1", simulator_.port(), 1000);
    if (arm_ <= ZK_LARGEST_STATUS) throw std::runtime_error(ZK_Status_Text(arm_));
}

}  // namespace zk::test
