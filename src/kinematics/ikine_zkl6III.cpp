// Inverse kinematics of the later 63, whose joint 2 is set aside by d2. Numbers in brackets are the equations of
// docs/kinematics.md.
#include <math.h>

#include "kinematics/six_joint.h"
#include "numeric/arc_tangent.h"
#include "numeric/sine_cosine.h"
#include "zk/inverse_kinematics.h"

namespace zk {
namespace {

struct Candidate {
    float theta[6];
    bool valid;
};

// What joint 1 decides: the wrist seen from the plane of joints 2 and 3.
struct Plane {
    float t1;
    float x[3], y[3], z[3];  // rows of the flange's rotation: along the plane, across it, upward
    float r, height;         // the wrist point in the plane, from the axis of joint 2
};

class Zkl63_3 {
 public:
    Zkl63_3(const float* seed, const Matrix& world_T_tool)
        : seed_(seed), seed7_(seed[6]), wrist_(shoulder_T_wrist<float>(world_T_tool)) {}

    int solve(float* joint) {
        if (!fill()) return kUnreachable;
        const Candidate& best = nearest_candidate();
        return best.valid ? write(best.theta, joint) : kUnreachable;
    }

 private:
    // Two shoulders, two elbows, two wrists, the last changing fastest. What cannot be reached, NaN included, stays
    // invalid.
    bool fill() {
        const float q = wrist_.x * wrist_.x + wrist_.y * wrist_.y - d2_ * d2_;  // (L5)
        if (!(q >= 0)) return false;
        const float toward = arc_tangent(-wrist_.x, wrist_.y), aside = arc_tangent(::sqrtf(q), d2_);
        fill_shoulder(table_, toward - aside);  // (L6)
        fill_shoulder(table_ + 4, toward + aside);
        return true;
    }

    void fill_shoulder(Candidate* entry, float t1) const {
        const Plane plane = plane_of(t1);
        const float squares = plane.r * plane.r + plane.height * plane.height;
        const float k = (a3_ * a3_ + squares - (a4_ * a4_ + d4_ * d4_)) / (2 * a3_);  // (L9)
        const float q2 = squares - k * k;
        if (!(q2 >= 0)) return;
        const float toward = arc_tangent(-plane.height, plane.r), aside = arc_tangent(::sqrtf(q2), k);
        fill_elbow(entry, plane, toward - aside);  // (L10)
        fill_elbow(entry + 2, plane, toward + aside);
    }

    Plane plane_of(float t1) const {
        const auto [s1, c1] = sine_cosine(t1);
        const auto& m = wrist_.m;
        Plane plane;
        plane.t1 = t1;
        for (int j = 0; j < 3; ++j) {  // (L2)
            plane.x[j] = c1 * m[0][j] + s1 * m[1][j];
            plane.y[j] = c1 * m[1][j] - s1 * m[0][j];
            plane.z[j] = m[2][j];
        }
        plane.r = c1 * wrist_.x + s1 * wrist_.y - a2_;  // (L7)
        plane.height = wrist_.z;
        return plane;
    }

    void fill_elbow(Candidate* entry, const Plane& plane, float t2) const {
        const auto [s2, c2] = sine_cosine(t2);
        const float gx = plane.r - a3_ * c2, gy = -plane.height - a3_ * s2;       // (L11)
        const float t23 = arc_tangent(a4_ * gy + d4_ * gx, a4_ * gx - d4_ * gy);  // (L12)
        const auto [s, c] = sine_cosine(t23);
        float n[3][3];  // (L3)
        for (int j = 0; j < 3; ++j) {
            n[0][j] = c * plane.x[j] - s * plane.z[j];
            n[1][j] = plane.y[j];
            n[2][j] = s * plane.x[j] + c * plane.z[j];
        }
        const float c5 = ::fabsf(::fabsf(n[2][2]) - 1) <= 1e-6f ? ::copysignf(1, n[2][2]) : n[2][2];
        if (!(::fabsf(c5) <= 1)) return;
        const float t5 = ::acosf(c5);  // (L13)
        const auto [t4, t6] = ::fabsf(c5) < 1 ? regular_wrist(n) : singular_wrist(n, c5);
        const bool flips = ::fabsf(c5) < 1;
        entry[0] = {{plane.t1, t2, t23 - t2, t4, t5, t6}, true};
        entry[1] = {{plane.t1, t2, t23 - t2, flips ? opposite(t4) : t4, -t5, flips ? opposite(t6) : t6}, true};
    }

    struct Ends {
        float t4, t6;
    };

    // Of the wrist with sin t5 above 0; in the other one both pairs change sign.  (L14)
    static Ends regular_wrist(const float (&n)[3][3]) {
        return {arc_tangent(n[1][2], n[0][2]), arc_tangent(n[2][1], -n[2][0])};
    }

    // Only t4 + t6, or t6 - t4, is defined. It is split evenly between the joints, counted from the seed's joint 4 and
    // its seventh value.
    Ends singular_wrist(const float (&n)[3][3], float c5) const {
        const float s4 = seed_.theta[3], e = seed7_;
        if (c5 > 0) {
            const float h = (arc_tangent(n[1][0], n[0][0]) - s4 - e) / 2;  // (L15)
            return {s4 + h, h + e};
        }
        const float h = (arc_tangent(n[1][0], -n[0][0]) + s4 - e) / 2;  // (L16)
        return {s4 - h, h + e};
    }

    // Moves the joints of every candidate by turns: into their limits, then beside the seed, limits or not. Returns the
    // candidate nearest to the seed, the first of equals; the first of all when none can be compared.
    const Candidate& nearest_candidate() {
        float best_score = 1000;
        const Candidate* best = table_;
        for (Candidate& candidate : table_) {
            if (!candidate.valid) continue;
            float score = 0;
            for (int j = 0; j < 6; ++j) {
                float& theta = candidate.theta[j];
                theta = beside(seed_.theta[j], range_.wrapped(j, theta));
                const float e = theta - seed_.theta[j];
                score += j < 3 ? 2.4f * e * e : e * e;
            }
            if (score < best_score) {
                best_score = score;
                best = &candidate;
            }
        }
        return *best;
    }

    // Writes joint angles up to and including the first that is beyond its limit.
    int write(const float* theta, float* joint) const {
        for (int j = 0; j < 6; ++j) {
            const float offset = robot.dh.offset[j];
            joint[j] = range_.wrapped(j, j == 5 ? theta[j] + seed_.turns : theta[j]) - offset;
            if (!(joint[j] <= range_.max[j] - offset && joint[j] >= range_.min[j] - offset)) return kBeyondLimits;
        }
        return kSolved;
    }

    const Seed<float> seed_;
    const float seed7_;
    const Wrist<float> wrist_;
    const Range range_ = Range::widened();
    const float d2_ = robot.dh.d[1], d4_ = robot.dh.d[3];
    const float a2_ = robot.dh.a[1], a3_ = robot.dh.a[2], a4_ = robot.dh.a[3];
    Candidate table_[8] = {};
};

}  // namespace
}  // namespace zk

ZK_API int inverse_kinematics_zkl63_3(const float* seed, float* joint, Matrix world_T_tool) {
    return zk::Zkl63_3(seed, world_T_tool).solve(joint);
}
