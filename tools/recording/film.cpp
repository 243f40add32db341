#include "recording/film.h"

#include <filesystem>

#include "report.h"
#include "view/geometry.h"

namespace tool {
namespace {

// The values of a state, one after the other, in the order of their names.
struct Column {
    const char* name;
    std::function<void(const ArmRecord&, std::vector<float>&)> append;
};

template <class Member>
Column column(const char* name, Member ArmRecord::*member) {
    return {name, [member](const ArmRecord& state, std::vector<float>& row) {
                if constexpr (std::is_arithmetic_v<Member>)
                    row.push_back(static_cast<float>(state.*member));
                else
                    row.insert(row.end(), (state.*member).begin(), (state.*member).end());
            }};
}

std::vector<Column> columns_of(const Recording& recording) {
    return {
        {"t", [&recording](const ArmRecord& state,
                           std::vector<float>& row) { row.push_back(static_cast<float>(recording.seconds(state))); }},
        column("q", &ArmRecord::position_deg),
        column("dq", &ArmRecord::speed_deg_s),
        column("current", &ArmRecord::current_a),
        column("celsius", &ArmRecord::temperature_c),
        column("volt", &ArmRecord::voltage_v),
        column("error", &ArmRecord::joint_error),
        column("p", &ArmRecord::tool_position_m),
        column("quat", &ArmRecord::tool_quaternion_wxyz),
        column("force", &ArmRecord::force),
        column("armError", &ArmRecord::arm_error),
        column("systemError", &ArmRecord::system_error)};
}

// The error words in force from a time on, whenever they change.
Json errors_of(const Recording& recording) {
    Json all = Json::array();
    std::pair<int, int> known{0, 0};
    for (const ArmRecord& state : recording.states) {
        const std::pair<int, int> now{state.arm_error, state.system_error};
        if (std::exchange(known, now) == now) continue;
        all.push_back({{"t", recording.seconds(state)}, {"list", json_of_errors(state.arm_error, state.system_error)}});
    }
    return all;
}

bool has_speeds(const Recording& recording) {
    return std::any_of(recording.states.begin(), recording.states.end(), [](const ArmRecord& state) {
        return std::any_of(state.speed_deg_s.begin(), state.speed_deg_s.end(), [](float v) { return v != 0; });
    });
}

std::string dumped(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

}  // namespace

zk::view::Film load_film(const std::string& path, const std::string& name) {
    const Recording recording = load_recording(path);
    const std::optional<zk::Model> model = name.empty() ? model_of(recording.arm) : model_called(name);
    const std::size_t joints = recording.states.front().position_deg.size();
    if (model && model->joint_count() != joints) {
        throw Failure(kUsage, path + " is of an arm with " + std::to_string(joints) + " joints, not of a " +
                                  std::string(model->name()));
    }
    Json arm = zk::view::description(model ? &*model : nullptr, joints);
    arm["arm"] = 0;
    arm["recorded"] = true;
    arm["pushesSpeed"] = has_speeds(recording);
    arm["pushesStatus"] = false;

    Json columns = Json::array(), marks = Json::array();
    std::vector<float> values;
    const std::vector<Column> all = columns_of(recording);
    for (const Column& one : all) {
        const std::size_t before = values.size();
        one.append(recording.states.front(), values);
        columns.push_back({one.name, values.size() - before});
    }
    const std::size_t width = values.size();
    values.clear();
    values.reserve(width * recording.states.size());
    for (const ArmRecord& state : recording.states) {
        for (const Column& one : all) one.append(state, values);
    }
    for (const Mark& mark : marks_of(recording))
        marks.push_back({{"t", mark.seconds}, {"isError", mark.is_error}, {"text", mark.text}});
    return {.name = std::filesystem::path(path).filename(),
            .arm = dumped(arm),
            .about = dumped({{"seconds", recording.seconds(recording.states.back())},
                             {"isWhole", recording.is_whole},
                             {"columns", columns},
                             {"marks", marks},
                             {"errors", errors_of(recording)}}),
            .states = std::string(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float))};
}

}  // namespace tool
