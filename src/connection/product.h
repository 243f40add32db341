// What the text of a product says about the arm.
#pragma once

#include <cstdint>

namespace zk {

struct Product {
    int32_t model = -1;   // as libalgo_set_robot_and_sensor_type; -1 without a mark of one
    int32_t sensor = -1;  // 0 -B, 1 -ZF, 2 -6F; -1 without a mark of one
};

Product product_of(const char* text);

}  // namespace zk
