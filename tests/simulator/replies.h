// Every reply of the simulator, family by family. In a family the rows stand in the order in which they are asked.
#pragma once

#include <string>
#include <vector>

#include "simulator/talk.h"

namespace zk::test {

struct ReplyRow {
    std::string command;
    Json keys;
    int code;          // by which the library knows the reply
    std::string told;  // kinds, and the places where each must stand: "number: id list/0/size string: name"
};
using ReplyRows = std::vector<ReplyRow>;

// So many values, as whatever an array holds.
inline Json array(size_t size, int value) { return Json(std::vector<int>(size, value)); }

// The same places, one level further down.
std::string under(const std::string& place, const std::string& told);

ReplyRows drag_rows(size_t joints);
ReplyRows six_force_rows(size_t joints);
ReplyRows one_force_rows(size_t joints);
ReplyRows joint_rows(size_t joints);
ReplyRows state_rows(size_t joints);
ReplyRows limit_rows(size_t joints);
ReplyRows frame_rows();
ReplyRows trajectory_rows(size_t joints);
ReplyRows streaming_rows(size_t joints);
ReplyRows teach_rows();
ReplyRows push_rows();
ReplyRows system_rows();
ReplyRows network_rows();
ReplyRows modbus_rows();
ReplyRows io_rows();
ReplyRows gripper_rows();
ReplyRows axis_rows();
ReplyRows fence_rows();
ReplyRows file_rows();
ReplyRows program_rows(size_t joints);

}  // namespace zk::test
