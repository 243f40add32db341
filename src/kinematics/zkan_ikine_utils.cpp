// Small helpers of the inverse kinematics that are part of the interface.
#include <cmath>
#include <cstring>

#include "kinematics/rotation_difference.h"
#include "kinematics/small_matrix.h"
#include "numeric/fixed_matrix.h"
#include "zk/seven_axis.h"

namespace zk {
namespace {

constexpr double kNullVector = 1e-10;

float single_precision_angle_over(float n, float t) { return std::atan2(n, t) / n; }

}  // namespace
}  // namespace zk

ZK_API void marr_m(const float* a, const float* b, float* out) {
    zk::Transform<float> left, right;
    std::memcpy(left.m, a, sizeof left.m);
    std::memcpy(right.m, b, sizeof right.m);
    const zk::Transform<float> result = left * right;
    std::memcpy(out, result.m, sizeof result.m);
}

ZK_API int utils_is_zero_vec(Mat v) {
    float squares = 0;
    for (int i = 0; i < zk::used<Mat>(v.rows); ++i) squares += v.m[i][0] * v.m[i][0];
    return static_cast<double>(std::sqrt(squares)) < zk::kNullVector;
}

ZK_API Mat utils_angle_axis_diff(Mat T1, Mat T2) {
    using namespace zk;
    const Vec3 p = minus(translation_of<float>(T2), translation_of<float>(T1));
    const Mat3 R = product(rotation_of<float>(T2), transposed(rotation_of<float>(T1)));
    const auto is_zero = [](float n) { return static_cast<double>(n) < kNullVector; };
    const Vec3 a = axis_times_angle(R, is_zero, single_precision_angle_over);
    Mat difference = sized<Mat>(6, 1);
    for (int i = 0; i < 3; ++i) {
        difference.m[i][0] = p[i];
        difference.m[i + 3][0] = a[i];
    }
    return difference;
}
