#include "recording/recording.h"

#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <utility>

#include "recording/black_box.h"
#include "recording/recorder.h"
#include "report.h"

namespace tool {
namespace {

std::atomic<bool> is_interrupted{false};

// What was recorded until Ctrl-C is kept.
void end_by_signals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, [](int) { is_interrupted = true; });
}

struct RecordRequest {
    ArmOption arm;
    RecordOptions options;
    double seconds = 0;
};

void record_arm(RecordRequest request) {
    const std::string& path = request.options.path;
    const bool csv = path.ends_with(".csv");
    if (!csv && !path.ends_with(".mcap")) throw Failure(kUsage, "'" + path + "' ends neither in .mcap nor in .csv");
    if (csv && request.options.wire) throw Failure(kUsage, "a table has no room for --wire: record to an .mcap file");
    request.options.time = std::chrono::milliseconds(static_cast<std::int64_t>(request.seconds * 1000));
    end_by_signals();
    const bool terminal = isatty(STDERR_FILENO) != 0;
    const auto show = [](const RecordSummary& now) {
        std::cerr << "\r" << now.states << " states in " << static_cast<int>(now.seconds) << " s, " << now.lost
                  << " missed" << std::flush;
    };
    const RecordSummary all = record(request.arm, request.options, is_interrupted,
                                     terminal ? show : std::function<void(const RecordSummary&)>());
    if (terminal) std::cerr << '\n';
    std::cout << path << ": " << all.states << " states, " << all.lost << " missed, " << all.bytes << " bytes\n";
}

struct ExportRequest {
    std::string from, to;
};

void export_csv(const ExportRequest& request) {
    if (!request.to.empty() && !request.to.ends_with(".csv"))
        throw Failure(kUsage, "'" + request.to + "' does not end in .csv");
    const Recording recording = load_recording(request.from);
    const std::string name = request.to.empty() ? "standard output" : request.to;
    std::ofstream file;
    if (!request.to.empty()) {
        file.open(request.to);
        if (!file) throw Failure(kUsage, request.to + " cannot be written");
    }
    std::ostream& out = request.to.empty() ? std::cout : file;
    write_csv_heading(out, recording.states.front().position_deg.size());
    for (const ArmRecord& state : recording.states) write_csv(out, state, recording.states.front().unix_ns);
    if (!out.flush()) throw Failure(kFailed, name + " cannot be written: " + std::strerror(errno));
    if (!recording.is_whole) std::cerr << "zk: " << request.from << " is cut short; what it holds was exported\n";
}

Recording load_mcap(const std::string& path) {
    Recording recording;
    try {
        const auto on_message = [&](const McapMessage& message) {
            if (message.type == kArmTopic.type) recording.states.push_back(read_arm_message(message));
            if (message.type == kLogTopic.type) recording.log.push_back(read_log_message(message));
            if (message.topic == kPushTopic.name) recording.push.push_back(read_push_message(message));
        };
        recording.is_whole = read_mcap(path, on_message, [&](const std::string& name, const McapMetadata& values) {
            if (name == "arm") recording.arm = values;
        });
    } catch (const std::out_of_range& error) {
        throw Failure(kUsage, path + " holds a message that is none of zk record: " + error.what());
    }
    return recording;
}

// Frames name the arm where a program asked for it.
void find_model(Recording& recording) {
    for (const LogRecord& line : recording.log) {
        if (!recording.arm.empty()) return;
        if (!line.is_frame || line.text.find("\"Product_version\"") == line.text.npos) continue;
        const Json reply = Json::parse(line.text.substr(2), nullptr, false);
        if (reply.is_object() && reply["Product_version"].is_string())
            recording.arm["model"] = reply["Product_version"].get<std::string>();
    }
}

}  // namespace

Recording load_recording(const std::string& path, Contents must) {
    Recording recording = is_black_box(path) ? load_black_box(path) : load_mcap(path);
    find_model(recording);
    if (recording.states.empty() && must == Contents::kStatesOrFrames && !recording.log.empty()) return recording;
    if (recording.states.empty()) {
        throw Failure(kUsage, recording.is_whole ? path + " holds no state of an arm"
                                                 : path + " is cut short before its first state");
    }
    const std::size_t joints = recording.states.front().position_deg.size();
    std::int64_t last_ms = -1;
    for (const ArmRecord& state : recording.states) {
        if (std::exchange(last_ms, state.controller_ms) >= state.controller_ms) recording.has_controller_time = false;
        for (const auto& values :
             {state.position_deg, state.speed_deg_s, state.current_a, state.voltage_v, state.temperature_c}) {
            if (values.size() != joints || state.joint_error.size() != joints || joints > zk::Joints::kMost)
                throw Failure(kUsage, path + " holds a state with another number of joints");
        }
    }
    return recording;
}

double Recording::seconds(const ArmRecord& state) const {
    const ArmRecord& first = states.front();
    return has_controller_time ? static_cast<double>(state.controller_ms - first.controller_ms) / 1e3
                               : static_cast<double>(state.unix_ns - first.unix_ns) / 1e9;
}

std::vector<Mark> marks_of(const Recording& recording) {
    const auto& states = recording.states;
    std::vector<Mark> marks;
    for (const LogRecord& line : recording.log) {
        if (line.is_frame || line.unix_ns <= states.front().unix_ns) continue;
        const auto next =
            std::lower_bound(states.begin(), states.end(), line.unix_ns,
                             [](const ArmRecord& state, std::int64_t unix_ns) { return state.unix_ns < unix_ns; });
        marks.push_back({recording.seconds(next == states.end() ? states.back() : *next), false, line.text});
    }
    ArmRecord nothing;
    nothing.joint_error.resize(states.front().joint_error.size());
    const ArmRecord* before = &nothing;
    for (const ArmRecord& now : states) {
        std::string text;
        const auto note = [&text](const std::string& of, std::uint16_t was, std::uint16_t is) {
            if (was == is) return;
            text += (text.empty() ? "" : ", ") + of + (is == 0 ? ": no error" : ": error " + hexadecimal(is));
        };
        note("arm", before->arm_error, now.arm_error);
        note("system", before->system_error, now.system_error);
        for (std::size_t joint = 0; joint < now.joint_error.size(); ++joint)
            note("joint " + std::to_string(joint + 1), before->joint_error[joint], now.joint_error[joint]);
        if (!text.empty()) marks.push_back({recording.seconds(now), true, text});
        before = &now;
    }
    return marks;
}

void add_record(CLI::App& zk) {
    const auto request = std::make_shared<RecordRequest>();
    CLI::App* command = zk.add_subcommand("record", "record an arm's states, until Ctrl-C");
    request->arm.add_to(*command);
    command->add_option("-o,--output", request->options.path, "a file .mcap or .csv")->required();
    command->add_option("--seconds", request->seconds, "end after this time")->check(CLI::Range(0.0, 1e6));
    command->add_flag("--wire", request->options.wire, "every frame of this connection too");
    command->callback([request] { record_arm(*request); });
}

void add_export(CLI::App& zk) {
    const auto request = std::make_shared<ExportRequest>();
    CLI::App* command = zk.add_subcommand("export", "write the states of a recording as a table");
    command->add_option("FILE", request->from, "a recording")->required();
    command->add_option("-o,--output", request->to, "a file .csv; without it, standard output");
    command->callback([request] { export_csv(*request); });
}

}  // namespace tool
