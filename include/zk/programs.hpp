/* The programs that a controller keeps and runs. C++17, header only. */
#ifndef ZK_PROGRAMS_HPP
#define ZK_PROGRAMS_HPP

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zk/call.hpp"
#include "zk/file_transfer.h"
#include "zk/programs.h"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* A program in the controller. */
struct Program {
    int id = 0;
    std::string name;
    Percent speed;
    int bytes = 0;
};

/* How a project is sent. */
struct SendOptions {
    Percent speed = percent(20);
    int save_as = 0;  /* the id to keep it under; 0: it is not kept */
    bool run = false; /* run it at once */
};

/* arm.programs(). */
class Programs {
 public:
    explicit Programs(ArmSocket arm) : arm_(arm) {}

    /* Those whose name contains a text; all for an empty one. */
    [[nodiscard]] Result<std::vector<Program>> list(const std::string& part_of_name = {}) const {
        std::vector<Program> found;
        const auto page = std::make_unique<ProgramList>();
        for (page->page_num = 1;; ++page->page_num) {
            page->page_size = 50;
            page->vague_search[part_of_name.copy(page->vague_search, sizeof page->vague_search - 1)] = '\0';
            if (Result<void> done = call<Get_Program_Trajectory_List>(arm_, page.get()); !done)
                return Unexpected(std::move(done).error());
            const std::size_t here = static_cast<std::size_t>(std::clamp(page->total_size, 0, 100'000)) - found.size();
            if (here == 0 || here > 100'000) return found;
            for (std::size_t i = 0; i < std::min<std::size_t>(here, 50); ++i) {
                const ProgramEntry& entry = page->list[i];
                found.push_back({entry.id, entry.trajectory_name, percent(entry.speed), entry.size});
            }
        }
    }

    /* Starts a program; wait() waits for its end. */
    [[nodiscard]] Result<void> start(int id, Percent speed = percent(20)) const {
        return call<Set_Program_ID_Start>(arm_, id, speed, false);
    }

    /* Waits until no program runs, however long that takes; or for a time, with ZK_TIMEOUT when one still runs. */
    [[nodiscard]] Result<ZK_ProgramOutcome> wait() const {
        for (;;) {
            Result<ZK_ProgramOutcome> ended = wait_for(std::chrono::hours(1));
            if (ended || ended.error().status != ZK_TIMEOUT) return ended;
        }
    }
    [[nodiscard]] Result<ZK_ProgramOutcome> wait_for(std::chrono::milliseconds time) const {
        return detail::fetch<ZK_Wait_Program, ZK_ProgramOutcome>(arm_, std::max(1, milliseconds_of(time)));
    }

    /* The program in progress. */
    [[nodiscard]] Result<ProgramRunState> state() const {
        ProgramRunState state{};
        state.run_state = -1;
        const int status = Get_Program_Run_State(arm_, &state); /* the run state itself is no failure */
        if (status != ZK_OK && status != state.run_state) return detail::failure_of<Get_Program_Run_State>(status);
        return state;
    }

    /* Sends a project, a text file with one instruction a line. The error names the line that the controller rejects.
     */
    [[nodiscard]] Result<void> send(const std::string& path, const SendOptions& options = {}) const {
        ProjectSendParams parameters{};
        if (path.size() > sizeof parameters.project_path)
            return detail::failure_of<Send_TrajectoryFile>(ZK_PATH_TOO_LONG);
        path.copy(parameters.project_path, sizeof parameters.project_path);
        parameters.project_path_len = static_cast<int>(path.size());
        parameters.plan_speed = static_cast<int>(options.speed.value());
        parameters.only_save = options.run ? 0 : 1;
        parameters.save_id = options.save_as;
        std::int32_t line = 0;
        const int status = Send_TrajectoryFile(arm_, &line, parameters);
        if (status == ZK_OK) return {};
        return Unexpected(make_error(status, "Send_TrajectoryFile",
                                     line > 0 ? "the controller rejects line " + std::to_string(line) : std::string()));
    }
    [[nodiscard]] Result<void> remove(int id) const { return call<Delete_Program_Trajectory>(arm_, id); }

 private:
    ArmSocket arm_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
