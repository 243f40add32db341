#include "programs/checker.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <sstream>

#include "geometry/skeleton.h"
#include "report.h"

namespace tool {
namespace {

using namespace zk::literals;
using Kind = Instruction::Kind;

constexpr double kSingular =
    1;  // percent of the best manipulability; a step of a degree over a singular place is below
constexpr double kLineSpeed = 0.25, kLineAcceleration = 1.6, kTurnSpeed = 0.6, kTurnAcceleration = 4;

// The fastest speed on a way between rests, and the time for it. The mean acceleration of a ramp is half its peak.
struct Pace {
    double speed = 0, seconds = 0;

    Pace(double length, double most_speed, double acceleration) {
        if (!(length > 0)) return;
        speed = std::min(most_speed, std::sqrt(length * acceleration / 2));
        seconds = length / speed + 2 * speed / acceleration;
    }
};

Vector vector_of(const zk::Position& p) { return {p.x.metres(), p.y.metres(), p.z.metres()}; }
zk::Position position_of(Vector v) { return {zk::metres(v.x), zk::metres(v.y), zk::metres(v.z)}; }

zk::Rotation between(const zk::Rotation& from, const zk::Rotation& to, double share) {
    const zk::Rotation turn = from.inverse() * to;
    return from * zk::Rotation::about(turn.axis(), turn.angle() * share);
}

// A path of the tool: a pose for each share of the way, evenly.
struct Course {
    double metres = 0, radians = 0;
    std::function<zk::Pose(double)> at;
};

Course line(const zk::Pose& from, const zk::Pose& to) {
    return {(to.position - from.position).norm().metres(), (from.rotation.inverse() * to.rotation).angle().radians(),
            [from, to](double share) {
                return zk::Pose(from.position + (to.position - from.position) * share,
                                between(from.rotation, to.rotation, share));
            }};
}

// Through three poses; nothing when their places are on a line.
std::optional<Course> circle(const zk::Pose& from, const zk::Pose& via, const zk::Pose& to, int turns) {
    const Vector start = vector_of(from.position);
    const Vector a = vector_of(via.position) - start, b = vector_of(to.position) - start, normal = cross(a, b);
    constexpr double kStraight = 1e-4;  // the sine of an angle too small to define a circle
    if (!(norm(normal) > kStraight * norm(a) * norm(b))) return {};
    const Vector to_centre = cross(b * dot(a, a) - a * dot(b, b), normal) * (0.5 / dot(normal, normal));
    const Vector centre = start + to_centre, x = to_centre * -1, y = cross(normal, x) * (1 / norm(normal));
    const auto angle_of = [&](Vector place) {
        const double angle = std::atan2(dot(place - to_centre, y), dot(place - to_centre, x));
        return angle < 0 ? angle + zk::degrees(360).radians() : angle;
    };
    const double angle = angle_of(b) + turns * zk::degrees(360).radians(), half = angle_of(a) / angle;
    const double radians = (from.rotation.inverse() * via.rotation).angle().radians() +
                           (via.rotation.inverse() * to.rotation).angle().radians();
    return Course{norm(x) * angle, radians, [=](double share) {
                      const Vector place = centre + x * std::cos(share * angle) + y * std::sin(share * angle);
                      return zk::Pose(position_of(place),
                                      share < half ? between(from.rotation, via.rotation, share / half)
                                                   : between(via.rotation, to.rotation, (share - half) / (1 - half)));
                  }};
}

std::string cause_of(const ZK_InverseResult& refusal) {
    switch (refusal.cause) {
        case ZK_CAUSE_BEYOND_LIMITS:
            return "joint " + std::to_string(refusal.joint) + " would be beyond its limits";
        case ZK_CAUSE_LARGER_STEP:
            return "the posture would jump";
        default:
            return "out of reach";
    }
}

class Checker {
 public:
    Checker(const Program& program, const zk::Model& model, const zk::Joints& from, double speed_percent)
        : program_(program),
          model_(model),
          limits_(model.joint_limits().value()),
          joints_(from),
          share_(speed_percent / 100) {
        zk::call<ZK_Model_Get_Speed_Limits>(model.get(), speed_, acceleration_).value();
        find_best();
        rows_.resize(program.instructions.size());
    }

    Verdict run() {
        Verdict verdict;
        verdict.seconds = run(0, program_.instructions.size());
        verdict.end = joints_;
        for (const Checked& row : rows_) {
            if (row.line > 0) verdict.lines.push_back(row);
        }
        return verdict;
    }

 private:
    void find_best() {
        std::mt19937 random(1);
        for (int i = 0; i < 500; ++i) {
            zk::Joints joints = limits_.min;
            for (std::size_t j = 0; j < joints.size(); ++j)
                joints[j] = limits_.min[j] + (limits_.max[j] - limits_.min[j]) * (random() * 0x1p-32);
            best_ = std::max(best_, model_.manipulability(joints).value());
        }
    }

    // The seconds of the instructions of a range.
    double run(std::size_t begin, std::size_t end) {
        double seconds = 0;
        for (std::size_t i = begin; i < end; ++i) {
            if (program_.instructions[i].kind != Kind::kLoop) {
                seconds += step(i);
                continue;
            }
            const std::size_t last = end_of_loop(i);
            const int rounds = program_.instructions[i].count;
            seconds += run(i + 1, last);
            if (rounds > 1) seconds += (rounds - 1) * run(i + 1, last);
            i = last;
        }
        return seconds;
    }

    std::size_t end_of_loop(std::size_t i) const {
        for (int open = 1; open > 0;) {
            const Kind kind = program_.instructions[++i].kind;
            open += kind == Kind::kLoop ? 1 : kind == Kind::kEndLoop ? -1 : 0;
        }
        return i;
    }

    // A fault of an earlier round stays.
    double step(std::size_t i) {
        const Instruction& one = program_.instructions[i];
        std::string before = std::move(rows_[i].fault);
        row_ = {one.line, one.command, 0, least(joints_), manipulability(joints_), {}};
        if (one.kind == Kind::kTimer) {
            row_.seconds = one.count / 1000.0;
        } else {
            // A controller takes whole percents, and at least one.
            percent_ = std::max(1.0, std::floor(one.speed_percent * share_));
            move(one);
        }
        if (!before.empty()) row_.fault = std::move(before);
        rows_[i] = row_;
        return row_.seconds;
    }

    void move(const Instruction& one) {
        if (one.kind == Kind::kJoints) return move_joints(one.joints);
        if (one.kind == Kind::kPose) return move_pose(one.target);
        const zk::Pose here = model_.forward(joints_).value();
        if (one.kind != Kind::kCircle) return move_tool(line(here, one.target));
        const std::optional<Course> course = circle(here, one.via, one.target, one.count);
        if (!course) return fail("the three places are on a line: they make no circle");
        move_tool(*course);
    }

    void move_joints(const zk::Joints& to) {
        if (to.size() != joints_.size()) {
            return fail(std::to_string(to.size()) + " joints for an arm of " + std::to_string(joints_.size()));
        }
        for (std::size_t i = 0; i < to.size(); ++i) {
            if (to[i] < limits_.min[i] || to[i] > limits_.max[i]) {
                std::ostringstream text;
                text << "joint " << i + 1 << " beyond its limits: " << rounded(to[i].degrees(), 1) << " deg";
                fail(text.str());
            }
        }
        follow(to);
    }

    void move_pose(const zk::Pose& target) {
        const ::Pose pose = target.to_c();
        std::array<float, zk::Joints::kMost> seed{}, found{};
        for (std::size_t i = 0; i < joints_.size(); ++i) seed[i] = static_cast<float>(joints_[i].degrees());
        ZK_InverseOptions options{};
        options.orientation = ZK_BY_QUATERNION;
        ZK_InverseResult result{};
        if (ZK_Model_Inverse(model_.get(), &pose, seed.data(), &options, found.data(), &result) != ZK_OK)
            return fail(cause_of(result));
        const zk::Joints to = zk::Joints::from_c(found.data(), joints_.size());
        const double ends = std::min(manipulability(joints_), manipulability(to));
        follow(to);
        if (row_.manipulability < kSingular && ends > kSingular)
            fail("the nearest posture is on another branch: the arm turns over");
    }

    // All joints straight to a target.
    void follow(const zk::Joints& to) {
        double furthest = 0;
        for (std::size_t i = 0; i < to.size(); ++i) {
            const double way = abs(to[i] - joints_[i]).degrees(), share = percent_ / 100;
            furthest = std::max(furthest, way);
            row_.seconds = std::max(row_.seconds, Pace(way, speed_[i] * share, acceleration_[i]).seconds);
        }
        const zk::Joints from = joints_;
        for (double steps = std::max(1.0, std::ceil(furthest)), step = 1; step <= steps; ++step) {
            for (std::size_t i = 0; i < to.size(); ++i) joints_[i] = from[i] + (to[i] - from[i]) * (step / steps);
            note(joints_);
        }
        joints_ = to;
    }

    void move_tool(const Course& course) {
        const int count =
            std::max(1, static_cast<int>(std::ceil(std::max(course.metres / 0.005, course.radians / 0.0175))));
        std::vector<::Pose> path;
        for (int i = 1; i <= count; ++i) path.push_back(course.at(static_cast<double>(i) / count).to_c());
        const std::size_t width = joints_.size();
        std::vector<float> seed, found(path.size() * width);
        for (const zk::Angle joint : joints_) seed.push_back(static_cast<float>(joint.degrees()));
        ZK_InverseOptions options{};
        options.orientation = ZK_BY_QUATERNION;
        ZK_FollowResult result{};
        if (ZK_Model_Follow(model_.get(), path.data(), count, seed.data(), &options, found.data(), &result) != ZK_OK) {
            return fail(cause_of(result.refusal) + ", " +
                        std::to_string(100 * static_cast<long>(result.followed) / count) + " % along the path");
        }
        const double share = percent_ / 100;
        const Pace way(course.metres, kLineSpeed * share, kLineAcceleration);
        const Pace turn(course.radians, kTurnSpeed * share, kTurnAcceleration);
        row_.seconds = std::max(way.seconds, turn.seconds);
        // How long the tool is between two poses in the middle of its way, where it is fastest.
        const double seconds = std::max(course.metres / count / std::max(way.speed, 1e-9),
                                        course.radians / count / std::max(turn.speed, 1e-9));
        for (std::size_t i = 0; i < path.size(); ++i) {
            const zk::Joints next = zk::Joints::from_c(&found[i * width], width);
            check_speeds(next, seconds);
            note(next);
            joints_ = next;
        }
        if (row_.manipulability < kSingular) fail("a singular place on the path");
    }

    void check_speeds(const zk::Joints& next, double seconds) {
        for (std::size_t i = 0; i < next.size(); ++i) {
            const double speed = abs(next[i] - joints_[i]).degrees() / seconds;
            if (speed <= static_cast<double>(speed_[i])) continue;
            std::ostringstream text;
            text << "joint " << i + 1 << " would turn at " << rounded(speed, 0) << " deg/s, faster than it can";
            fail(text.str());
        }
    }

    void note(const zk::Joints& joints) {
        row_.to_limit_deg = std::min(row_.to_limit_deg, least(joints));
        row_.manipulability = std::min(row_.manipulability, manipulability(joints));
    }

    double least(const zk::Joints& joints) const { return model_.limit_distance(joints).value().degrees(); }
    double manipulability(const zk::Joints& joints) const {
        return 100 * model_.manipulability(joints).value() / best_;
    }
    void fail(const std::string& fault) {
        if (row_.fault.empty()) row_.fault = fault;
    }

    const Program& program_;
    const zk::Model& model_;
    zk::JointLimits limits_;
    zk::Joints joints_;  // where the arm is
    double share_, percent_ = 0, best_ = 1e-9;
    std::array<float, zk::Joints::kMost> speed_{}, acceleration_{};
    std::vector<Checked> rows_;
    Checked row_{};
};

}  // namespace

const Checked* Verdict::first_fault() const {
    const auto found = std::find_if(lines.begin(), lines.end(), [](const Checked& one) { return !one.fault.empty(); });
    return found == lines.end() ? nullptr : &*found;
}

Verdict check(const Program& program, const zk::Model& model, const zk::Joints& from, double speed_percent) {
    return Checker(program, model, from, speed_percent).run();
}

}  // namespace tool
