// Requests have the bytes that cJSON prints.
#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <random>

#include "support/arm.h"
#include "zk_base.h"

namespace {

using namespace zk::test;

// A number in the format of the wire.
cJSON* wire_number(double value) {
    const double size = std::fabs(value);
    if (!std::isfinite(value)) return cJSON_CreateRaw("null");
    if (size < 2.3e-16) return cJSON_CreateRaw("0");
    char text[80];
    const bool is_whole = std::floor(value) == value;
    std::snprintf(text, sizeof text, is_whole ? "%.0f" : size < 1e-6 || size > 1e9 ? "%e" : "%f", value);
    return cJSON_CreateRaw(text);
}

std::string printed(cJSON* tree) {
    char* const text = cJSON_Print(tree);
    std::string copy(text);
    cJSON_free(text);
    cJSON_Delete(tree);
    return copy;
}

template <class Values>
void add_numbers(cJSON* object, const char* key, const Values& values) {
    cJSON* const array = cJSON_AddArrayToObject(object, key);
    for (const double value : values) cJSON_AddItemToArray(array, wire_number(value));
}

class Requests : public ConnectedArm {};

TEST_F(Requests, NumbersOfEverySize) {
    std::mt19937 bits(1);
    for (int i = 0; i < 1000; ++i) {
        const float any = std::bit_cast<float>(static_cast<uint32_t>(bits()));
        const float usual = 1e-4f * static_cast<float>(static_cast<int32_t>(bits() % 2'000'000) - 1'000'000);
        const ForcePositionMove move{0, {}, {usual}, 0, 0, 0, {}, {any, usual}, {0.25f, usual}};
        ASSERT_EQ(Force_Position_Move(arm_, move), 0);

        cJSON* const tree = cJSON_CreateObject();
        cJSON_AddStringToObject(tree, "command", "Force_Position_Move");
        cJSON_AddNumberToObject(tree, "sensor", 0);
        cJSON_AddNumberToObject(tree, "mode", 0);
        cJSON_AddBoolToObject(tree, "follow", false);
        add_numbers(tree, "joint", std::array<double, 6>{std::trunc(usual * 1000.0f)});
        add_numbers(tree, "desired_force", std::array<double, 6>{any * 10.0f, usual * 10.0f});
        add_numbers(tree, "control_mode", std::array<double, 6>{});
        add_numbers(tree, "limit_vel", std::array<double, 6>{250, usual * 1000.0f});
        ASSERT_EQ(controller_.wait_for_request("Force_Position_Move"), printed(tree)) << any << ' ' << usual;
    }
}

TEST_F(Requests, TextsOfEveryByte) {
    for (int first = 1; first < 256; first += 25) {
        std::string text;
        for (int byte = first; byte < std::min(first + 25, 256); ++byte) text += static_cast<char>(byte);
        ASSERT_EQ(Set_WiFI_STA_Data(arm_, text.c_str(), ""), 0);

        cJSON* const tree = cJSON_CreateObject();
        cJSON_AddStringToObject(tree, "command", "set_wifi_sta");
        cJSON_AddStringToObject(tree, "router_name", text.c_str());
        cJSON_AddStringToObject(tree, "password", "");
        ASSERT_EQ(controller_.wait_for_request("set_wifi_sta"), printed(tree)) << first;
    }
}

}  // namespace
