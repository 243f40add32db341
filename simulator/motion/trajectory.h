#pragma once

#include <optional>
#include <vector>

#include "motion/move.h"

namespace sim {

// What the arm runs through from rest to rest: one move, or several that are joined.
class Trajectory {
 public:
    // Plans the move from `start`, or from where the moves before it end. Throws NoPath, and has not changed then.
    void add(Move move, const JointVector& start);

    // Plans all moves anew. Throws NoPath.
    void replan(const JointVector& start);

    // Its plan may no longer hold.
    void outdate() { outdated_ = true; }
    bool outdated() const { return outdated_ && !empty(); }

    bool empty() const { return legs_.empty(); }
    size_t size() const { return legs_.size(); }
    const JointVector& start() const { return legs_.front().start; }
    JointVector end() const { return legs_.back().path->at(1); }

    // Through all of it.
    Path path() const;

    // The move that is under way at this place of the path.
    const Move& move_at(double parameter) const;

    const Move* last() const { return legs_.empty() ? nullptr : &legs_.back().move; }
    std::vector<Move> moves() const;

 private:
    struct Leg {
        Move move;
        bool to_joints;  // the reported target is in joints

        JointVector start;
        std::optional<Path> path;  // none where the path of the next leg runs through this one
        Profile profile;
        double begin = 0;  // seconds after the first
    };

    static void plan(Leg& leg);
    static std::vector<Leg> planned(const std::vector<Leg>& legs);
    static JointVector joints_at(const std::vector<Leg>& legs, double time);
    void schedule();

    std::vector<Leg> legs_;
    bool outdated_ = false;
};

}  // namespace sim
