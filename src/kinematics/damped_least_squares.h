// Damped least squares that keep every joint within its limits, for an arm of up to seven joints. Numbers are the
// equations of docs/kinematics.md.
#pragma once

#include <algorithm>
#include <array>
#include <limits>

#include "kinematics/end_frame_jacobian.h"

namespace zk::damped {

using Joints = std::array<double, 7>;
template <class Real>
using ErrorOf = std::array<Real, 6>;  // translation in metres, rotation in radians
using Error = ErrorOf<double>;
using Jacobian = zk::Jacobian<double>;

template <class Real>
Real squared(const ErrorOf<Real>& e) {
    Real sum = 0;
    for (const Real x : e) sum += x * x;
    return sum;
}

template <class Real>
auto all_below(const ErrorOf<Real>& e, double metres, double radians) {
    return e[0] * e[0] + e[1] * e[1] + e[2] * e[2] < metres * metres &&
           e[3] * e[3] + e[4] * e[4] + e[5] * e[5] < radians * radians;
}

// (8.3): half the squared error, so that steps are careful far away and those of Newton's method close by; and a floor
// that keeps the system regular at a singular posture.
template <class Real>
Real damping(const ErrorOf<Real>& e) {
    return 0.5 * squared(e) + 1e-12;
}

struct Limits {
    Joints lo, hi;
};

struct Room {
    Joints below, above;  // how far each joint may go
};

inline Room room_of(const Joints& q, const Limits& limits) {
    Room room;
    for (int i = 0; i < 7; ++i) {
        room.below[i] = limits.lo[i] - q[i];
        room.above[i] = limits.hi[i] - q[i];
    }
    return room;
}

// Solves A y = b in place of b by Cholesky's method; the lower triangle of A is used up. A is positive definite.
template <class Real>
void solve(std::array<ErrorOf<Real>, 6>& A, ErrorOf<Real>& b) {
    using std::sqrt;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j <= i; ++j) {
            Real sum = A[i][j];
            for (int k = 0; k < j; ++k) sum -= A[i][k] * A[j][k];
            A[i][j] = i == j ? sqrt(sum) : sum / A[j][j];
        }
        for (int k = 0; k < i; ++k) b[i] -= A[i][k] * b[k];
        b[i] /= A[i][i];
    }
    for (int i = 5; i >= 0; --i) {
        for (int k = i + 1; k < 6; ++k) b[i] -= A[k][i] * b[k];
        b[i] /= A[i][i];
    }
}

// (8.2) for the free joints; the contribution of the held ones is subtracted from the error first. J J' is summed
// column by column of J, so that the compiler can work on several rows at once.
template <class Real>
std::array<Real, 7> free_step(const zk::Jacobian<Real>& J, ErrorOf<Real> e, Real damping, const Joints& pull,
                              const std::array<bool, 7>& held, const std::array<Real, 7>& of_held) {
    std::array<Real, 7> step;
    std::array<ErrorOf<Real>, 6> A{};
    for (int i = 0; i < 6; ++i) A[i][i] = damping;
    for (int k = 0; k < 7; ++k) {
        step[k] = held[k] ? of_held[k] : Real(pull[k]);
        ErrorOf<Real> column;
        for (int i = 0; i < 6; ++i) {
            column[i] = J[i][k];
            e[i] -= column[i] * step[k];
        }
        if (held[k]) continue;
        for (int i = 0; i < 6; ++i) {
            for (int j = 0; j < 6; ++j) A[i][j] += column[i] * column[j];
        }
    }
    solve(A, e);
    for (int k = 0; k < 7; ++k) {
        if (held[k]) continue;
        for (int i = 0; i < 6; ++i) step[k] += J[i][k] * e[i];
    }
    return step;
}

// The step that removes the error, with the pull in its null space. A joint that would leave its room goes to the end
// of it, the worst one first, and the others compensate (8.4).
inline Joints step_within(const Jacobian& J, const Error& e, const Joints& pull, const Room& room) {
    std::array<bool, 7> held{};
    Joints step{};
    for (int round = 0; round < 7; ++round) {
        step = free_step(J, e, damping(e), pull, held, step);
        int worst = -1;
        double beyond = 0;
        for (int i = 0; i < 7; ++i) {
            const double excess = std::max(step[i] - room.above[i], room.below[i] - step[i]);
            if (!held[i] && excess > beyond) {
                worst = i;
                beyond = excess;
            }
        }
        if (worst < 0) break;
        held[worst] = true;
        step[worst] = step[worst] > room.above[worst] ? room.above[worst] : room.below[worst];
    }
    for (int i = 0; i < 7; ++i) step[i] = std::clamp(step[i], room.below[i], room.above[i]);
    return step;
}

// Whether an iteration converges: in ten rounds the squared error has to fall by a fifth.
class Progress {
 public:
    bool made(double error) {
        if (round_ % 10 == 0) {
            if (!(error < 0.8 * last_)) return false;
            last_ = error;
        }
        ++round_;
        return true;
    }

 private:
    int round_ = 0;
    double last_ = std::numeric_limits<double>::infinity();
};

// Moves q until at(q, J), which returns the remaining error and fills in its Jacobian, is below both bounds. The pull
// is applied once a call, not once a round. False when the iteration stops converging.
template <class At>
bool converge(At at, const Limits& limits, Joints pull, double metres, double radians, Joints& q) {
    constexpr int kRounds = 100;
    Progress progress;
    for (int round = 0; round < kRounds; ++round) {
        Jacobian J;
        const Error e = at(q, J);
        if (round > 0 && all_below(e, metres, radians)) return true;
        if (!progress.made(squared(e))) return false;
        const Joints step = step_within(J, e, pull, room_of(q, limits));
        for (int i = 0; i < 7; ++i) q[i] += step[i];
        pull = {};
    }
    return false;
}

}  // namespace zk::damped
