#include "model/model_tables.h"

#include <algorithm>
#include <iterator>

#include "zk/model.h"

namespace zk {
namespace {

constexpr int kModels = 10;
constexpr int kAnySensor = -1;
constexpr float kDegree = 0.017453292f;

// How many joints, and how many sensor numbers from 0 up, each model has. There is no model 2.
constexpr struct {
    int16_t joints;
    int sensors;
} kArm[kModels] = {{6, 3}, {7, 3}, {0, 0}, {6, 3}, {6, 3}, {6, 3}, {6, 1}, {7, 1}, {6, 3}, {7, kAnySensor}};

// clang-format off
// Lengths in metres; the last joint's d is the flange length below.
constexpr float kD[kModels][8] = {
    /* 0 */ {0.2405f,       0,      0,     0.21f,       0, 0},
    /* 1 */ {0.2405f,       0, 0.256f,         0,   0.21f, 0, 0},
    /* 2 */ {},
    /* 3 */ { 0.172f,       0,      0,    0.405f,       0, 0},
    /* 4 */ { 0.172f, -0.0084f,     0,    0.405f,       0, 0},
    /* 5 */ {0.1625f,       0,      0, -0.05888f,   0.11f, 0},
    /* 6 */ { 0.136f,       0,      0,  -0.0585f,  0.071f, 0},
    /* 7 */ { 0.218f,       0,  0.28f,         0, 0.2525f, 0, 0},
    /* 8 */ {0.1625f,       0,      0,  -0.0589f,   0.11f, 0},
    /* 9 */ {},
};

// The last joint's d, by sensor: from the wrist to the face of the flange or of the sensor on it.
constexpr float kFlange[kModels][3] = {
    /* 0 */ { 0.144f,  0.152f, 0.1725f},
    /* 1 */ { 0.144f,  0.152f, 0.1725f},
    /* 2 */ {},
    /* 3 */ { 0.115f,  0.123f, 0.1435f},
    /* 4 */ { 0.115f,  0.123f, 0.1435f},
    /* 5 */ {0.0795f, 0.0875f,  0.108f},
    /* 6 */ {0.0707f},
    /* 7 */ {0.0905f},
    /* 8 */ {0.0795f, 0.0875f,  0.108f},
    /* 9 */ {},
};

constexpr float kBaseOfBareModel4 = 0.162f;  // d of joint 1; with a sensor the arm has the higher base of model 3

constexpr float kA[kModels][8] = {
    /* 0 */ {0,       0, 0.256f,      0,       0, 0},
    /* 1 */ {},
    /* 2 */ {},
    /* 3 */ {0, -0.086f,  0.38f, 0.069f,       0, 0},
    /* 4 */ {0, -0.086f,  0.38f, 0.069f,       0, 0},
    /* 5 */ {0, -0.086f,  0.26f,  0.24f,       0, 0},
    /* 6 */ {0,  -0.07f, 0.148f, 0.136f,       0, 0},
    /* 7 */ {0,       0,      0,  0.04f, -0.019f, 0, 0.067f},
    /* 8 */ {0, -0.086f,  0.41f,  0.38f,       0, 0},
    /* 9 */ {},
};

// Radians.
constexpr float k90 = 1.5707964f, k180 = 3.1415927f;
constexpr float kAlpha[kModels][8] = {
    /* 0 */ {   0,  k90,    0, k90, -k90,  k90},
    /* 1 */ {-k90,  k90, -k90, k90, -k90,  k90,   0},
    /* 2 */ {},
    /* 3 */ {   0, -k90,    0, k90, -k90, -k90},
    /* 4 */ {   0, -k90,    0, k90, -k90, -k90},
    /* 5 */ {   0, -k90,    0,   0,  k90, -k90},
    /* 6 */ {   0, -k90,    0,   0,  k90, -k90},
    /* 7 */ {   0, -k90,  k90, k90, -k90,  k90, k90},
    /* 8 */ {   0, -k90,    0,   0,  k90, -k90},
    /* 9 */ {},
};

constexpr float kOffset[kModels][8] = {
    /* 0 */ {0,  k90, k90,   0,    0,    0},
    /* 1 */ {},
    /* 2 */ {},
    /* 3 */ {0, -k90, k90,   0, k180, k180},
    /* 4 */ {0, -k90, k90,   0,    0,    0},
    /* 5 */ {0, -k90,   0, k90,    0,    0},
    /* 6 */ {0, -k90,   0, k90,    0,    0},
    /* 7 */ {0,    0,   0,   0,    0,  k90,    0},
    /* 8 */ {0, -k90,   0, k90,    0,    0},
    /* 9 */ {},
};

// Position limits in degrees.
constexpr float kMax[kModels][8] = {
    /* 0 */ {178, 130, 135, 178, 128, 360},
    /* 1 */ {178, 130, 178, 135, 178, 128, 360},
    /* 2 */ {},
    /* 3 */ {178, 178, 145, 178, 178, 360},
    /* 4 */ {178, 178, 145, 178, 178, 360},
    /* 5 */ {180, 180, 145, 140, 180, 180},
    /* 6 */ {180, 180, 145, 140, 180, 180},
    /* 7 */ {172, 105, 172,  55, 172, 120, 172},
    /* 8 */ {180, 180, 145, 140, 180, 180},
    /* 9 */ {360, 360, 360, 360, 360, 360, 360},
};

constexpr float kMin[kModels][8] = {
    /* 0 */ {-178, -130, -135, -178, -128, -360},
    /* 1 */ {-178, -130, -178, -135, -178, -128, -360},
    /* 2 */ {},
    /* 3 */ {-178, -178, -178, -178, -178, -360},
    /* 4 */ {-178, -178, -178, -178, -178, -360},
    /* 5 */ {-180, -180, -160, -140, -180, -180},
    /* 6 */ {-180, -180, -160, -140, -180, -180},
    /* 7 */ {-172, -105, -172, -170, -172,  -90, -172},
    /* 8 */ {-180, -180, -160, -140, -180, -180},
    /* 9 */ {-360, -360, -360, -360, -360, -360, -360},
};

// Degrees per second, and per second squared.
constexpr float kSpeed[kModels][8] = {
    /* 0 */ {180, 180, 225, 225, 225, 225},
    /* 1 */ {180, 180, 225, 225, 225, 225, 225},
    /* 2 */ {},
    /* 3 */ {180, 180, 225, 225, 225, 225},
    /* 4 */ {180, 180, 225, 225, 225, 225},
    /* 5 */ {180, 180, 225, 225, 225, 225},
    /* 6 */ {225, 225, 225, 180, 180, 180},
    /* 7 */ {180, 180, 180, 180, 225, 225, 225},
    /* 8 */ {180, 180, 225, 225, 225, 225},
    /* 9 */ {300, 300, 300, 300, 300, 300, 300},
};
constexpr float kAcceleration = 1000;

constexpr float kDirection[kModels][8] = {
    /* 0 */ { 1,  1,  1,  1,  1,  1,  1},
    /* 1 */ { 1,  1,  1,  1,  1,  1,  1},
    /* 2 */ {},
    /* 3 */ { 1, -1,  1,  1,  1,  1,  1},
    /* 4 */ { 1, -1,  1,  1,  1,  1,  1},
    /* 5 */ { 1, -1,  1, -1,  1,  1,  1},
    /* 6 */ { 1, -1,  1, -1,  1,  1,  1},
    /* 7 */ {-1,  1, -1,  1, -1,  1, -1},
    /* 8 */ { 1, -1,  1, -1,  1,  1,  1},
    /* 9 */ { 1,  1,  1,  1,  1,  1,  1},
};

constexpr float kTcpConfig[4] = {0.25f, 1.6f, 0.6f, 4.0f};

// Link masses in kilograms; kBySensor is the last link, which is the sensor's.
constexpr float kBySensor = -1;
constexpr float kMass[kModels][8] = {
    /* 0 */ {   1.51f,    1.653f,    0.726f,     0.671f,     0.647f, kBySensor},
    /* 1 */ {  1.574f,    1.217f,     1.11f,     0.685f,     0.619f,    0.602f, kBySensor},
    /* 2 */ {},
    /* 3 */ {  1.837f,    2.006f,    1.961f,     1.201f,     1.026f, kBySensor},
    /* 4 */ {},
    /* 5 */ {1.50782f, 2.022748f, 1.885823f, 0.5700811f, 0.6413858f, kBySensor},
    /* 6 */ {1.19575f,   0.8055f,    0.413f,    0.2386f,    0.2633f,   0.0667f},
    /* 7 */ {  0.849f,    0.954f,    1.166f,     0.501f,     0.164f,     0.92f},
    /* 8 */ { 1.6026f,   2.8169f,   2.6857f,     0.625f,    0.6743f, kBySensor},
    /* 9 */ {},
};

// The links whose inertia is known; the record of the others has only the mass.
constexpr LinkDynamics kFirstLinkOf0 =
    {{0.0029285f, -3.26e-05f, -5.8e-06f, 0.0025064f, 4.79e-05f,  0.001756f}, { 0.0007414f, 0.0117825f, -0.0162234f},  1.51f};
constexpr LinkDynamics kFirstLinkOf7 =
    {{0.0006195f,   -6e-07f,   -3e-07f, 0.0007587f,   -7e-07f,  0.000455f}, {  1.53e-05f, 0.0004118f, -0.0042976f}, 0.849f};
constexpr LinkDynamics kSensorLink[3] = {
    {{ 5.09e-05f,  -3.1e-06f,   -7e-07f,  4.74e-05f,    4e-07f,  6.04e-05f}, { -5.41e-05f,  2.73e-05f, -0.0011557f}, 0.107f},
    {{ 8.24e-05f,  -2.6e-06f,   -8e-07f,  7.95e-05f,    5e-07f,  7.73e-05f}, { -3.98e-05f,  1.92e-05f, -0.0020675f},  0.15f},
    {{0.0003088f,  -3.8e-06f,  -1.5e-06f, 0.0003046f,    9e-07f, 0.0001226f}, {-0.0001056f,  5.88e-05f, -0.0067513f}, 0.248f},
};
// clang-format on

bool exists(int model, int sensor) {
    if (model < 0 || model >= kModels || kArm[model].joints == 0) return false;
    return kArm[model].sensors == kAnySensor || (sensor >= 0 && sensor < kArm[model].sensors);
}

DhParams default_dh(int model, int sensor) {
    DhParams dh{};
    std::copy_n(kD[model], 8, dh.d);
    std::copy_n(kA[model], 8, dh.a);
    std::copy_n(kAlpha[model], 8, dh.alpha);
    std::copy_n(kOffset[model], 8, dh.offset);
    if (kArm[model].sensors != kAnySensor) dh.d[kArm[model].joints - 1] = kFlange[model][sensor];
    if (model == 4 && sensor == 0) dh.d[0] = kBaseOfBareModel4;
    return dh;
}

JointConfig default_limits(int model, int joint) {
    JointConfig config{};
    if (joint >= kArm[model].joints) return config;
    config.pos_max = kMax[model][joint] * kDegree;
    config.pos_min = kMin[model][joint] * kDegree;
    config.vel_max = kSpeed[model][joint] * kDegree;
    config.acc_max = kAcceleration * kDegree;
    return config;
}

LinkDynamics default_link(int model, int sensor, int joint) {
    if (kMass[model][joint] == kBySensor) return kSensorLink[sensor];
    if (joint == 0 && model == 0) return kFirstLinkOf0;
    if (joint == 0 && model == 7) return kFirstLinkOf7;
    LinkDynamics link{};
    link.mass = kMass[model][joint];
    return link;
}

}  // namespace

bool configure(RobotModel& robot, int model, int sensor) {
    if (!exists(model, sensor)) return false;
    robot.dof = kArm[model].joints;
    robot.dh = default_dh(model, sensor);
    for (int joint = 0; joint < 8; ++joint) {
        robot.joint_config[joint] = default_limits(model, joint);
        robot.joint_direction[joint] = kDirection[model][joint];
        robot.dynamics_params.link[joint] = default_link(model, sensor, joint);
    }
    std::copy(std::begin(kTcpConfig), std::end(kTcpConfig), robot.tcp_config);
    return true;
}

}  // namespace zk
