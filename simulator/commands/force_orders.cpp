#include "commands/force_orders.h"

#include <cmath>
#include <numbers>

namespace sim {
namespace {

constexpr int kMaxTenths = 10'000;  // 1000 newtons

void read_direction(const Request& request, HoldOrder& order) {
    const bool streamed = request.has("dir");
    const int direction = request.integer(streamed ? "dir" : "direction", 0, 5);
    const double tenths = request.number(streamed ? "force" : "N");
    if (!(std::abs(tenths) <= kMaxTenths)) throw BadRequest("a force out of range");
    order.held[direction] = true;
    order.press[direction] = tenths / 10;
}

void read_directions(const Request& request, HoldOrder& order) {
    const std::vector<int> modes = request.integers("control_mode", 6);
    const std::vector<double> tenths = request.numbers("desired_force", 6), speeds = request.numbers("limit_vel", 6);
    for (size_t i = 0; i < 6; ++i) {
        if (!(std::abs(tenths[i]) <= kMaxTenths) || !(speeds[i] >= 0))
            throw BadRequest("a force or speed out of range");
        order.held[i] = modes[i] != 0;
        order.press[i] = tenths[i] / 10;
        order.speed[i] = speeds[i] / 1000 * (i < 3 ? 1 : std::numbers::pi / 180);
    }
}

}  // namespace

HoldOrder hold_order(const Request& request, Sensor sensor) {
    const Sensor asked = request.integer("sensor", 0, 1) == 0 ? Sensor::kOneForce : Sensor::kSixForce;
    if (asked != sensor) throw BadRequest(request.command() + ": the arm has no such sensor");
    HoldOrder order;
    order.of_tool = request.integer("mode", 0, 1) == 1;
    request.has("control_mode") ? read_directions(request, order) : read_direction(request, order);
    for (size_t i = 0; i < 6; ++i) {
        if (order.held[i] && sensor == Sensor::kOneForce && (i != 2 || !order.of_tool))
            throw BadRequest(request.command() + ": the sensor feels the z direction of the tool alone");
    }
    return order;
}

}  // namespace sim
