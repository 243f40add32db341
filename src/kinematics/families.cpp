// Forward kinematics of each family of arms: the chain of its links. The twists are those of the arm, not of the
// model's alpha row; d and a are the model's.
#include <math.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

#include "kinematics/chain.h"
#include "kinematics/forward.h"
#include "kinematics/statics.h"
#include "zk/kinematics.h"

namespace zk {
namespace {

// Sines and cosines of all joints. They are kept apart, since a pair that two stores wrote and one load takes stalls.
struct Turns {
    float s[8], c[8];
    SineCosine operator()(int i) const { return {s[i], c[i]}; }
};

template <int joints>
struct ModifiedConvention {
    static constexpr int kJoints = joints;
    static std::array<float, joints> angles(const DhParams& dh, const float* joint) {
        std::array<float, joints> theta;
        for (int i = 0; i < joints; ++i) theta[i] = joint[i] + dh.offset[i];
        return theta;
    }
};

// Modified convention (Craig): link i is Rx(alpha) Tx(a) Rz(theta) Tz(d), one line each.

struct Zk65 : ModifiedConvention<6> {
    template <Want want>
    static void links(Chain<want>& t, const Turns& theta, const DhParams& dh) {
        t.rz(theta(0)).tz(dh.d[0]);
        t.rx_plus_90().rz(theta(1));
        t.tx(dh.a[2]).rz(theta(2));
        t.rx_plus_90().rz(theta(3)).tz(dh.d[3]);
        t.rx_minus_90().rz(theta(4));
        t.rx_plus_90().last_rz(theta(5)).tz(dh.d[5]);
    }
};

struct Zkl63_2 : ModifiedConvention<6> {
    template <Want want>
    static void links(Chain<want>& t, const Turns& theta, const DhParams& dh) {
        t.rz(theta(0)).tz(dh.d[0]);
        t.rx_minus_90().tx(dh.a[1]).rz(theta(1));
        t.tx(dh.a[2]).rz(theta(2));
        t.rx_plus_90().tx(dh.a[3]).rz(theta(3)).tz(dh.d[3]);
        t.rx_minus_90().rz(theta(4));
        t.rx_minus_90().last_rz(theta(5)).tz(dh.d[5]);
    }
};

// The arm of zkl63_2 with joint 2 set aside, and the wrist counted without half turns: its last twist is +90.
struct Zkl63_3 : ModifiedConvention<6> {
    template <Want want>
    static void links(Chain<want>& t, const Turns& theta, const DhParams& dh) {
        t.rz(theta(0)).tz(dh.d[0]);
        t.rx_minus_90().tx(dh.a[1]).rz(theta(1)).tz(dh.d[1]);
        t.tx(dh.a[2]).rz(theta(2));
        t.rx_plus_90().tx(dh.a[3]).rz(theta(3)).tz(dh.d[3]);
        t.rx_minus_90().rz(theta(4));
        t.rx_plus_90().last_rz(theta(5)).tz(dh.d[5]);
    }
};

struct Orb6 : ModifiedConvention<6> {
    template <Want want>
    static void links(Chain<want>& t, const Turns& theta, const DhParams& dh) {
        t.rz(theta(0)).tz(dh.d[0]);
        t.rx_minus_90().tx(dh.a[1]).rz(theta(1));
        t.tx(dh.a[2]).rz(theta(2));
        t.tx(dh.a[3]).rz(theta(3)).tz(dh.d[3]);
        t.rx_plus_90().rz(theta(4)).tz(dh.d[4]);
        t.rx_minus_90().last_rz(theta(5)).tz(dh.d[5]);
    }
};

struct Tau7 : ModifiedConvention<7> {
    template <Want want>
    static void links(Chain<want>& t, const Turns& theta, const DhParams& dh) {
        t.rz(theta(0)).tz(dh.d[0]);
        t.rx_minus_90().rz(theta(1));
        t.rx_plus_90().rz(theta(2)).tz(dh.d[2]);
        t.rx_plus_90().tx(dh.a[3]).rz(theta(3));
        t.rx_minus_90().tx(dh.a[4]).rz(theta(4)).tz(dh.d[4]);
        t.rx_plus_90().rz(theta(5));
        t.rx_plus_90().tx(dh.a[6]).last_rz(theta(6)).tz(dh.d[6]);
    }
};

// Standard convention: link i is Rz(theta) Tz(d) Tx(a) Rx(alpha), one line each. This family has no offsets.
struct Zk75 {
    static constexpr int kJoints = 7;
    static const float* angles(const DhParams&, const float* joint) { return joint; }
    template <Want want>
    static void links(Chain<want>& t, const Turns& theta, const DhParams& dh) {
        t.rz(theta(0)).tz(dh.d[0]).rx_minus_90();
        t.rz(theta(1)).rx_plus_90();
        t.rz(theta(2)).tz(dh.d[2]).rx_minus_90();
        t.rz(theta(3)).rx_plus_90();
        t.rz(theta(4)).tz(dh.d[4]).rx_minus_90();
        t.rz(theta(5)).rx_plus_90();
        t.last_rz(theta(6)).tz(dh.d[6]);
    }
};

template <class Family, Want want>
Chain<want> chain(const DhParams& dh, const float* joint) {
    const auto angle = Family::angles(dh, joint);
    Turns theta;
    const int turns = want == Want::kPosition ? Family::kJoints - 1 : Family::kJoints;
    for (int i = 0; i < turns; ++i) ::sincosf(angle[i], &theta.s[i], &theta.c[i]);
    Chain<want> t;
    Family::links(t, theta, dh);
    return t;
}

template <class Family, Want want>
Matrix transform(const DhParams& dh, const float* joint) {
    return chain<Family, want>(dh, joint).matrix();
}

template <Want want>
Matrix transform(const RobotModel& model, const float* joint) {
    switch (static_cast<std::uint8_t>(model.robot_type)) {
        case 1:
            return transform<Zk75, want>(model.dh, joint);
        case 3:
            return transform<Zkl63_2, want>(model.dh, joint);
        case 4:
            return transform<Zkl63_3, want>(model.dh, joint);
        case 5:
        case 6:
        case 8:
            return transform<Orb6, want>(model.dh, joint);
        case 7:
            return transform<Tau7, want>(model.dh, joint);
        default:
            return transform<Zk65, want>(model.dh, joint);
    }
}

template <class Family>
void keep_angles(const float* joint) {
    if constexpr (std::is_same_v<Family, Zk75>) std::copy_n(joint, Family::kJoints, zk_c_angle);
}

// Both return what they also keep.
template <class Family, Want want>
Matrix kept(Matrix& keep, const float* joint) {
    keep_angles<Family>(joint);
    const Matrix t = transform<Family, want>(zk_robot_dh, joint);
    keep = t;
    return t;
}

template <class Family>
Position kept(Position& keep, const float* joint) {
    keep_angles<Family>(joint);
    return keep = chain<Family, Want::kPosition>(zk_robot_dh, joint).position();
}

}  // namespace

Matrix base_T_flange(const RobotModel& model, const float* joint) { return transform<Want::kTransform>(model, joint); }
Matrix base_R_flange(const RobotModel& model, const float* joint) { return transform<Want::kRotation>(model, joint); }

}  // namespace zk

using namespace zk;

#define FAMILY(name, Links, kept_rotation)                               \
    ZK_API Matrix forward_kinematics_e_##name(const float* joint) {      \
        return kept<Links, Want::kTransform>(zk_T_1N, joint);            \
    }                                                                    \
    ZK_API Matrix forward_kinematics_rotate_##name(const float* joint) { \
        return kept<Links, Want::kRotation>(kept_rotation, joint);       \
    }                                                                    \
    ZK_API Position forward_kinematics_pos_##name(const float* joint) { return kept<Links>(zk_position_0, joint); }

FAMILY(zk65, Zk65, zk_T_1N_rotate)
FAMILY(zk75, Zk75, zk_T_1N_rotate)
FAMILY(zkl63_2, Zkl63_2, zk_T_1N_rotate)
FAMILY(zkl63_3, Zkl63_3, zk_T_1N)
FAMILY(orb6, Orb6, zk_T_1N_rotate)
FAMILY(tau7, Tau7, zk_T_1N_rotate)
