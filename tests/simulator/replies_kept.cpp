// What the simulator replies about what it keeps: fences, files, programs, waypoints.
#include "simulator/replies.h"

namespace zk::test {

ReplyRows fence_rows() {
    const Json sphere{{"form", 3}, {"radius", 500}, {"x", 1}, {"y", 2}, {"z", 3}};
    Json named = sphere;
    named["form_name"] = "ball";
    const Json name{{"form_name", "ball"}}, ball{{"name", "b"}, {"radius", 50}, {"x", 1}, {"y", 2}, {"z", 3}};
    const Json enable{{"set_enable", true}, {"in_out_side", 0}, {"effective_region", 0}};
    const char* const enabled = "boolean: enable_state number: in_out_side effective_region";
    const std::string shape = "number: form radius x y z";
    return {
        {"set_electronic_fence_config", sphere, 244, "true: set_config"},
        {"get_electronic_fence_config", {}, 245, shape},
        {"set_electronic_fence_enable", enable, 242, "true: set_state"},
        {"get_electronic_fence_enable", {}, 243, enabled},
        {"add_electronic_fence_config", named, 246, "true: add_config"},
        {"update_electronic_fence_config", named, 247, "true: update_config"},
        {"given_electronic_fence_config", name, 250, shape + " string: form_name"},
        {"given_electronic_fence_config", {{"form_name", "none"}}, 250, "boolean: given_state"},
        {"get_electronic_fence_list_names", {}, 249, "strings: name_list"},
        {"get_electronic_fence_list_infos", {}, 251, under("info_list/0/", shape + " string: form_name")},
        {"delete_electronic_fence_config", name, 248, "true: delete_config"},
        {"set_virtual_wall_config", sphere, 256, "true: set_config"},
        {"get_virtual_wall_config", {}, 257, shape},
        {"set_virtual_wall_enable", enable, 258, "true: set_state"},
        {"get_virtual_wall_enable", {}, 259, enabled},
        {"set_self_collision_enable", {{"set_enable", true}}, 254, "true: set_state"},
        {"get_self_collision_enable", {}, 255, "number: enable_state"},
        {"set_tool_envelope", {{"tool_name", "Arm_Tip"}, {"list", Json::array({ball})}}, 190, "true: set_state"},
        {"get_tool_envelope", {{"tool_name", "Arm_Tip"}}, 191, "string: tool_name list/0/name number: list/0/radius"},
        {"get_tool_envelope", {{"tool_name", "none"}}, 191, "boolean: get_state"},
    };
}

ReplyRows file_rows() {
    const Json project{{"project_name", "p"}, {"file_size", 0}, {"plan_speed", 20}, {"save_id", 1}, {"only_save", 1}};
    return {
        {"run_project", project, 163, "true: project_state"},
        {"update_software", {{"file_size", 2}, {"update_name", "u"}}, 183, "true: update_state"},
        {"popup", {{"popup_result", true}}, 197, "true: popup_result"},
        {"online_next", {}, 184, "boolean: state"},
        // Taken for another command of the lift.
        {"set_lift_version", {{"lift_version", 1}}, 148, "true: lift_version"},
        {"set_sale_version", {{"sale_version", 1}}, 192, "true: sale_version"},
        {"get_tool_hardware_version", {}, 193, "number: version"},
        {"save_trajectory", {{"trajectory_name", "t"}}, 194, "number: total_num boolean: save_state"},
        {"zk_sim_files", {}, 0, ""},
    };
}

ReplyRows program_rows(size_t joints) {
    const Json page{{"page_num", 1}, {"page_size", 10}, {"vague_search", ""}};
    const Json waypoint{{"point_name", "w"},    {"joint", array(joints, 0)}, {"pose", array(6, 0)},
                        {"work_frame", "Base"}, {"tool_frame", "Arm_Tip"},   {"time", "now"}};
    const Json renamed{{"id", 1}, {"project_name", "q"}, {"plan_speed", 30}};
    const std::string pages = "number: page_num page_size total_size string: vague_search ";
    return {
        {"get_program_trajectory_list", page, 235,
         pages + under("list/0/", "number: id size speed string: trajectory_name")},
        {"get_program_run_state", {}, 236, "number: run_state"},
        {"update_program_trajectory", renamed, 262, "true: update_state"},
        {"set_default_run_program", {{"id", 1}}, 263, "true: set_state"},
        {"get_default_run_program", {}, 264, "number: id"},
        {"set_program_id_start", {{"id", 1}, {"speed", 20}}, 237, "true: start_state"},
        {"delete_program_trajectory", {{"id", 1}}, 239, "boolean: delete_state"},
        {"add_global_waypoint", waypoint, 265, "true: add_state"},
        {"update_global_waypoint", waypoint, 266, "true: update_state"},
        {"given_global_waypoint", {{"point_name", "w"}}, 268, "string: point_name time joints: joint pose: pose"},
        {"get_global_waypoints_list", page, 269, pages + under("list/0/", "string: point_name joints: joint")},
        {"delete_global_waypoint", {{"point_name", "w"}}, 267, "true: delete_state"},
    };
}

}  // namespace zk::test
