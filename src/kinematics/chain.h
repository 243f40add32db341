// A chain of links, multiplied out joint by joint. Every step is a few operations on the columns of the transform, so a
// chain compiles to straight code: no matrix product and no loop.
#pragma once

#include <cstring>

#include "numeric/sine_cosine.h"
#include "zk/transform_types.h"

namespace zk {

// The part of the transform to compute. The rest costs nothing, and the part is the same to the bit.
enum class Want { kTransform, kRotation, kPosition };

// The transform from the base to the current link. A step multiplies it on the right.
template <Want want>
class Chain {
 public:
    Chain& rz(SineCosine theta) {
        const Column turned = theta.c * x_ + theta.s * y_;
        y_ = theta.c * y_ - theta.s * x_;
        x_ = turned;
        return *this;
    }
    // The last joint turns the flange about its own axis, which does not change the position.
    Chain& last_rz(SineCosine theta) { return want == Want::kPosition ? *this : rz(theta); }
    Chain& rx_plus_90() {
        const Column y = y_;
        y_ = z_;
        z_ = -y;
        return *this;
    }
    Chain& rx_minus_90() {
        const Column y = y_;
        y_ = -z_;
        z_ = y;
        return *this;
    }
    Chain& tx(float a) {
        if (want != Want::kRotation) p_ += a * x_;
        return *this;
    }
    Chain& tz(float d) {
        if (want != Want::kRotation) p_ += d * z_;
        return *this;
    }

    // The columns transposed into rows; written lane by lane this would cost as much as the chain.
    Matrix matrix() const {
        const Column xy_upper = __builtin_shufflevector(x_, y_, 0, 4, 1, 5);
        const Column xy_lower = __builtin_shufflevector(x_, y_, 2, 6, 3, 7);
        const Column zp_upper = __builtin_shufflevector(z_, p_, 0, 4, 1, 5);
        const Column zp_lower = __builtin_shufflevector(z_, p_, 2, 6, 3, 7);
        const Column rows[4] = {__builtin_shufflevector(xy_upper, zp_upper, 0, 1, 4, 5),
                                __builtin_shufflevector(xy_upper, zp_upper, 2, 3, 6, 7),
                                __builtin_shufflevector(xy_lower, zp_lower, 0, 1, 4, 5),
                                {0, 0, 0, 1}};
        Matrix t;
        t.rows = t.cols = 4;
        std::memcpy(t.m, rows, sizeof t.m);
        return t;
    }
    Position position() const { return {p_[0], p_[1], p_[2]}; }

 private:
    typedef float Column __attribute__((vector_size(16)));  // the fourth lane is idle
    Column x_ = {1, 0, 0}, y_ = {0, 1, 0}, z_ = {0, 0, 1}, p_ = {};
};

}  // namespace zk
