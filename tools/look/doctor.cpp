#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <iostream>
#include <memory>
#include <vector>

#include "arms.h"
#include "look/look.h"
#include "look/push.h"
#include "remedy.h"
#include "report.h"

namespace tool {
namespace {

std::string capitalised(std::string sentence) {
    sentence[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence[0])));
    return sentence;
}

std::string decimal(double value, int decimals = 1) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

Finding check_round_trips(const zk::Arm& arm, Json& measured) {
    constexpr int kQueries = 30;
    int unanswered = 0;
    for (int i = 0; i < kQueries; ++i) {
        const zk::Result<bool> answer = arm.is_powered();
        if (!answer && answer.error().status != ZK_TIMEOUT) throw zk::BadResult(answer.error());
        unanswered += answer ? 0 : 1;
        if (unanswered == 2) break;  // each takes seconds
    }
    const ZK_ConnectionRecord record = arm.connection().value();
    measured["round_trip_median_ms"] = rounded(record.round_trip_median_ms, 3);
    measured["round_trip_worst_ms"] = rounded(record.round_trip_worst_ms, 3);
    const std::string sentence = "A query takes " + decimal(record.round_trip_median_ms) + " ms, " +
                                 decimal(record.round_trip_worst_ms) + " ms at worst.";
    if (unanswered > 0) {
        return {"fault", "The controller leaves queries unanswered. " + sentence,
                "Look for a loose cable, a radio link, or a controller that restarts."};
    }
    if (record.round_trip_median_ms > 50 || record.round_trip_worst_ms > 500) {
        return {"warn", sentence + " That is slow.",
                "Connect by cable, without a radio link or VPN between; close programs that ask much."};
    }
    return {"ok", sentence, ""};
}

Finding check_firmware(const zk::Arm& arm, Json&) {
    const ArmSoftwareInfo software = arm.software().value();
    const std::string sentence = "A " + std::string(software.product_version) + ": controller " +
                                 software.ctrl_version + ", planner " + software.plan_version + ", algorithms " +
                                 software.algorithm_version + ".";
    if (zk::Model::named(software.product_version)) return {"ok", sentence, ""};
    return {"warn", sentence + " Nothing is known of a model of this name.",
            "Compute with the limits and frames that the arm reports, or use a version of this program that knows it."};
}

// A connection beside the first one; it is closed at the end of its life.
class Visitor {
 public:
    explicit Visitor(const addrinfo& peer) : descriptor_(socket(peer.ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const timeval patience{2, 0};
        setsockopt(descriptor_, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
        setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        is_connected_ = connect(descriptor_, peer.ai_addr, peer.ai_addrlen) == 0;
    }
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;
    ~Visitor() { close(descriptor_); }

    // The system accepts connections for a program that does not look at them, so only an answer counts.
    bool is_answered() const {
        static constexpr std::string_view kQuery = "{\"command\":\"get_arm_power_state\"}\r\n";
        char byte = 0;
        return is_connected_ && send(descriptor_, kQuery.data(), kQuery.size(), MSG_NOSIGNAL) > 0 &&
               recv(descriptor_, &byte, 1, 0) == 1;
    }

 private:
    int descriptor_;
    bool is_connected_ = false;
};

Finding check_free_connections(const zk::Arm& arm, Json& measured) {
    constexpr std::size_t kMost = 3;
    const ZK_ConnectionRecord record = arm.connection().value();
    addrinfo hints{}, *found = nullptr;
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_STREAM;
    if (getaddrinfo(record.address, std::to_string(record.port).c_str(), &hints, &found) != 0)
        return {"unknown", "The address " + std::string(record.address) + " cannot be dialled twice.", ""};
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> peer(found, &freeaddrinfo);
    std::vector<std::unique_ptr<Visitor>> visitors;
    while (visitors.size() < kMost) {
        visitors.push_back(std::make_unique<Visitor>(*peer));
        if (!visitors.back()->is_answered()) {
            visitors.pop_back();
            break;
        }
    }
    measured["free_connections"] = visitors.size();
    if (visitors.empty()) {
        return {"warn", "The controller accepts no further program.",
                "Close a program that is connected, before you start another."};
    }
    return {"ok",
            (visitors.size() == kMost ? "At least " : "") + std::to_string(visitors.size()) + " further program" +
                (visitors.size() == 1 ? "" : "s") + " can connect.",
            ""};
}

Finding check_limits_of_arm(const zk::Arm& arm, Json&) {
    const zk::JointLimits limits = arm.model().value().joint_limits().value();
    const zk::Joints now = arm.joints().value();
    zk::Angle least = zk::degrees(720);
    std::size_t nearest = 0;
    for (std::size_t i = 0; i < now.size(); ++i) {
        const zk::Angle room = std::min(now[i] - limits.min[i], limits.max[i] - now[i]);
        if (room < least) least = room, nearest = i;
    }
    const std::string joint = "Joint " + std::to_string(nearest + 1) + ", at " + decimal(now[nearest].degrees()) +
                              " degrees, is " + decimal(std::abs(least.degrees())) + " degrees ";
    const std::string back = "Move the joint back by hand or by zk jog.";
    if (least < zk::degrees(0)) return {"fault", joint + "beyond its limits: moves are refused.", back};
    if (least < zk::degrees(2)) return {"warn", joint + "from its limit.", back};
    return {"ok",
            "All joints are within their limits; the nearest is joint " + std::to_string(nearest + 1) + ", " +
                decimal(least.degrees()) + " degrees away.",
            ""};
}

Finding check_errors(const zk::Arm& arm, Json&) {
    const zk::ArmState now = arm.state().value();
    const ArmAllState all = arm.measurements().value();
    Finding finding{"ok", "", ""};
    const auto add = [&finding](const std::string& sentence, const std::string& remedy) {
        finding.verdict = "fault";
        finding.sentence += (finding.sentence.empty() ? "" : " ") + capitalised(sentence);
        if (finding.remedy.find(remedy) == std::string::npos)
            finding.remedy += (finding.remedy.empty() ? "" : " ") + remedy;
    };
    for (const Json& error : json_of_errors(now.arm_error, now.system_error)) {
        add(error["of"].get<std::string>() + " error " + error["word"].get<std::string>() + ": " +
                error["cause"].get<std::string>(),
            error["remedy"]);
    }
    for (std::size_t i = 0; i < arm.joint_count(); ++i) {
        if (all.err_flag[i] != 0) {
            add("Joint " + std::to_string(i + 1) + " reports error " + hexadecimal(all.err_flag[i]) + ", at " +
                    decimal(all.temperature[i]) + " degrees Celsius.",
                "Remove the cause, then run zk clear.");
        }
    }
    return finding.sentence.empty() ? Finding{"ok", "Neither arm, system nor joints report an error.", ""} : finding;
}

Finding check_power(const zk::Arm& arm, Json&) {
    if (!arm.is_powered().value())
        return {"warn", "The arm is off: it refuses to move.", "Switch it on (Set_Arm_Power)."};
    const ArmAllState all = arm.measurements().value();
    for (std::size_t i = 0; i < arm.joint_count(); ++i) {
        if (all.en_state[i] == 0) {
            return {"warn", "Joint " + std::to_string(i + 1) + " is disabled: the arm refuses to move.",
                    "Enable it (Set_Joint_EN_State)."};
        }
    }
    return {"ok", "The arm is on, and all joints are enabled.", ""};
}

Finding check_push(const PushSample& push, const zk::Arm& arm, Json& measured) {
    if (push.states < 2) return why_no_state(arm);
    measured["push_rate_Hz"] = rounded(push.rate_Hz, 1);
    measured["push_jitter_ms"] = rounded(push.jitter_ms, 3);
    measured["push_longest_gap_ms"] = rounded(push.longest_gap_ms, 3);
    if (push.lost_percent) measured["push_lost_percent"] = rounded(*push.lost_percent, 2);
    const std::string sentence = decimal(push.rate_Hz) + " states a second come; " +
                                 (push.lost_percent ? decimal(*push.lost_percent) + " % are lost"
                                                    : "whether any is lost, the controller does not say") +
                                 ", and 95 of 100 come within " + decimal(push.jitter_ms) +
                                 " ms of their time; the longest gap is " + decimal(push.longest_gap_ms) + " ms.";
    const char* remedy = "Connect by cable, without a radio link between; see whether this host is busy.";
    if (push.lost_percent.value_or(0) > 5) return {"fault", sentence, remedy};
    if (push.lost_percent.value_or(0) > 0.5 || push.jitter_ms > 20) return {"warn", sentence, remedy};
    return {"ok", sentence, ""};
}

Finding check_clock(const PushSample& push, Json& measured) {
    if (!push.clock_pace) return {"unknown", "The controller sends no time of its own.", ""};
    measured["clock_offset_ms"] = rounded(push.clock_offset_ms, 3);
    const std::string sentence =
        "This host's monotonic clock is " + decimal(push.clock_offset_ms / 1000, 3) + " s ahead of the controller's.";
    if (std::abs(*push.clock_pace - 1) > 0.05) {
        return {"warn", sentence + " The controller's runs " + decimal(*push.clock_pace, 2) + " times as fast.",
                "This is a simulator with a speed of its own, or the controller is overloaded: do not compare times."};
    }
    return {"ok", sentence, ""};
}

// A report as it grows.
class Examination {
 public:
    explicit Examination(const std::string& arm)
        : report_{{"arm", arm}, {"ok", true}, {"reachable", true}, {"checks", Json::array()}} {
        for (const char* name : {"round_trip_median_ms", "round_trip_worst_ms", "push_rate_Hz", "push_lost_percent",
                                 "push_jitter_ms", "push_longest_gap_ms", "clock_offset_ms", "free_connections"})
            report_["measured"][name] = nullptr;
    }
    void add(const char* check, const Finding& finding) {
        if (finding.verdict == std::string_view("fault")) report_["ok"] = false;
        report_["checks"].push_back({{"check", check},
                                     {"verdict", finding.verdict},
                                     {"finding", finding.sentence},
                                     {"remedy", finding.remedy}});
    }
    template <class Examine>
    void run(const char* check, Examine examine) {
        try {
            add(check, examine(report_["measured"]));
        } catch (const zk::BadResult& failure) {
            const bool untold = failure.status == ZK_TIMEOUT || failure.status == ZK_BAD_REPLY;
            add(check, {untold ? "unknown" : "fault",
                        (untold ? "The controller does not say: " : "The question failed: ") + failure.text + ".",
                        untold ? "" : remedy_of(failure)});
        }
    }
    Json unreachable(const zk::Error& error) {
        add("reachable", {"fault", capitalised(error.text + "."), remedy_of(error)});
        report_["reachable"] = false;
        return report_;
    }
    const Json& report() const { return report_; }

 private:
    Json report_;
};

Json examine(const ArmOption& where) {
    Examination examination(where.text());
    zk::ConnectOptions options;
    options.keep_model = true;
    const Address address = where.address();
    const auto begin = std::chrono::steady_clock::now();
    const zk::Result<zk::Arm> arm = zk::Arm::connect(address.host, address.port, options);
    if (!arm) return examination.unreachable(arm.error());
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    examination.add("reachable",
                    {"ok",
                     arm->connection().value().address + std::string(" port ") + std::to_string(address.port) +
                         " answers; connecting took " + decimal(time.count(), 0) + " ms.",
                     ""});
    const auto with_arm = [&arm](Finding (*check)(const zk::Arm&, Json&)) {
        return [&arm, check](Json& measured) { return check(*arm, measured); };
    };
    examination.run("firmware", with_arm(check_firmware));
    examination.run("round trips", with_arm(check_round_trips));
    const PushSample push = PushSample::take(*arm);
    examination.run("push stream", [&](Json& measured) { return check_push(push, *arm, measured); });
    if (push.states >= 2) examination.run("clock", [&](Json& measured) { return check_clock(push, measured); });
    examination.run("free connections", with_arm(check_free_connections));
    examination.run("power", with_arm(check_power));
    examination.run("limits", with_arm(check_limits_of_arm));
    examination.run("errors", with_arm(check_errors));
    return examination.report();
}

void show_examination(const Json& report, std::ostream& out) {
    for (const Json& check : report["checks"]) {
        const auto text = [&check](const char* key) { return check[key].get<std::string>(); };
        const auto padded = [](std::string word, std::size_t width) { return word.append(width - word.size(), ' '); };
        out << padded(text("verdict"), 9) << padded(text("check"), 18) << text("finding") << '\n';
        if (!text("remedy").empty()) out << std::string(27, ' ') << "-> " << text("remedy") << '\n';
    }
}

}  // namespace

void add_doctor(CLI::App& zk) {
    const auto where = std::make_shared<ArmOption>();
    add_looking(
        zk, "doctor", "what is wrong with an arm and its connection, and what to do",
        [where] { return examine(*where); }, [where](CLI::App& command) { where->add_to(command); }, show_examination);
}

}  // namespace tool
