// What the simulator replies to orders to move.
#include "simulator/replies.h"

namespace zk::test {

ReplyRows trajectory_rows(size_t joints) {
    const Json target{{"joint", array(joints, 2000)}, {"v", 1}, {"r", 0}, {"trajectory_connect", 0}};
    // Near to where the arm stands, and joined to what never comes.
    const auto nearby = [&](int aside, int below) {
        return joints == 7 ? Json{-422485, -203256 + aside, 368852 - below, -2344, -642, 2865}
                           : Json{352792, 42782 + aside, 507496 - below, 284, 454, 2184};
    };
    const auto joined = [](const Json& pose) {
        return Json{{"pose", pose}, {"v", 1}, {"r", 0}, {"loop", 0}, {"trajectory_connect", 1}};
    };
    const Json circle{{"pose_via", nearby(20000, 40000)}, {"pose_to", nearby(0, 40000)}};
    return {
        {"get_arm_current_trajectory", {}, 72, "string: type joints: data"},
        {"movej", target, 189, "true: receive_state"},
        {"get_arm_current_trajectory", {}, 72, "string: type joints: data"},
        {"set_arm_pause", {}, 68, "true: arm_pause"},
        {"set_arm_continue", {}, 69, "true: arm_continue"},
        {"timer", {{"wait_time", 1}}, 77, "true: wait_time"},
        // Replies about waypoints are taken for a streamed drag-teach point, by the five letters in their names.
        {"add_waypoint", {{"joint", array(joints, 0)}}, 231, "true: waypoint_state"},
        {"start_waypoint", {{"frequency", 50}}, 231, "true: waypoint_state"},
        {"stop_waypoint", {}, 231, "true: waypoint_state"},
        {"clear_waypoint", {}, 231, "true: waypoint_state"},
        {"set_arm_slow_stop", {}, 232, "true: arm_slow_stop"},
        {"set_arm_stop", {}, 67, "true: arm_stop"},
        {"set_delete_current_trajectory", {}, 70, "true: delete_current_trajectory"},
        {"set_install_pose", {{"pose", {0, 0, 0}}}, 63, "true: set_state"},
        {"movej_p", joined(nearby(0, 0)), 189, "true: receive_state"},
        {"movel", joined(nearby(20000, 0)), 189, "true: receive_state"},
        {"moves", joined(nearby(20000, 20000)), 189, "true: receive_state"},
        {"movec", joined(circle), 189, "true: receive_state"},
        {"set_arm_delete_trajectory", {}, 71, "true: arm_delete_trajectory"},
    };
}

ReplyRows streaming_rows(size_t joints) {
    return {
        {"movej_canfd", {{"joint", array(joints, 0)}}, 65, "joints: joint number: arm_err"},
        {"movep_canfd", {{"pose", array(6, 0)}}, 66, "pose: pose number: arm_err"},
        {"zk_sim_stream", {}, 0, "number: received refused"},
    };
}

ReplyRows teach_rows() {
    const Json jog{{"teach_joint", 1}, {"direction", "neg"}, {"v", 1}};
    return {
        {"set_joint_teach", jog, 78, "true: joint_teach"},
        {"set_stop_teach", {}, 81, "true: stop_teach"},
        {"set_pos_teach", {{"teach_type", "z"}, {"direction", "neg"}, {"v", 1}}, 79, "true: pos_teach"},
        {"set_stop_teach", {}, 81, "true: stop_teach"},
        {"set_ort_teach", {{"teach_type", "rz"}, {"direction", "pos"}, {"v", 1}}, 80, "true: ort_teach"},
        {"set_stop_teach", {}, 81, "true: stop_teach"},
        {"set_joint_step", {{"joint_step", {1, 10}}, {"v", 1}}, 82, "true: joint_step"},
        {"set_pos_step", {{"step_type", "z_step"}, {"step", -1}, {"v", 1}}, 83, "true: pos_step"},
        {"set_ort_step", {{"step_type", "rz_step"}, {"step", 1}, {"v", 1}}, 84, "true: ort_step"},
    };
}

}  // namespace zk::test
