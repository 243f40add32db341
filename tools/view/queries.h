// What the push does not carry: asked of the controller in turn, one question at a time.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "view/feed.h"
#include "view/geometry.h"
#include "zk/arm.hpp"

namespace zk::view {

class Queries {
 public:
    // Asks for what stays as it is, and tells the feed.
    Queries(std::size_t number, const Arm& arm, Feed& feed);

    // Asks the next question. One that is not answered three times in a row is not asked again.
    void ask_next();

 private:
    using Question = Result<Json> (Queries::*)();
    struct Item {
        const char* name;
        Question ask;
        int failures;
    };

    Result<Json> target();
    Result<Json> signals();
    Result<Json> frames();
    Result<Json> gripper();
    Result<Json> fences();

    void tell(const char* name, Json fact);

    std::size_t number_;
    const Arm& arm_;
    Feed& feed_;
    Result<Model> model_;
    std::size_t turn_ = 0;
    std::array<Item, 5> items_;
};

}  // namespace zk::view
