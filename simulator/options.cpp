#include "options.h"

#include <arpa/inet.h>
#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include "devices/devices.h"

namespace sim {
namespace {

constexpr int kMaxPort = 65535;
constexpr int kMaxCycle = 2000;      // 10 s
constexpr int kMaxDelayMs = 60'000;  // a minute

template <typename Number>
Number parse_number(std::string_view option, std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::invalid_argument("--" + std::string(option) + ": '" + std::string(text) + "' is no number");
    return value;
}

int parse_integer(std::string_view option, std::string_view text, int low, int high) {
    const int value = parse_number<int>(option, text);
    if (value < low || value > high)
        throw std::invalid_argument("--" + std::string(option) + ": must be from " + std::to_string(low) + " to " +
                                    std::to_string(high));
    return value;
}

std::vector<double> parse_list(std::string_view option, std::string_view text) {
    std::vector<double> values;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find(',', begin), text.size());
        values.push_back(parse_number<double>(option, text.substr(begin, end - begin)));
        if (!std::isfinite(values.back())) throw std::invalid_argument("--" + std::string(option) + ": not finite");
        begin = end + 1;
    }
    return values;
}

std::vector<double> parse_list(std::string_view option, std::string_view text, size_t size) {
    const std::vector<double> values = parse_list(option, text);
    if (values.size() != size)
        throw std::invalid_argument("--" + std::string(option) + ": needs " + std::to_string(size) +
                                    " numbers with commas between them");
    return values;
}

// Metres and radians to the integers of the wire.
WirePose parse_pose(std::string_view option, std::string_view text) {
    const std::vector<double> values = parse_list(option, text, 6);
    WirePose pose;
    for (size_t i = 0; i < 6; ++i) {
        const double wire = std::round(values[i] * (i < 3 ? 1e6 : 1e3));
        if (std::abs(wire) > INT_MAX) throw std::invalid_argument("--" + std::string(option) + ": out of range");
        pose[i] = static_cast<int>(wire);
    }
    return pose;
}

std::string parse_address(std::string_view option, const std::string& text) {
    in_addr address;
    if (inet_pton(AF_INET, text.c_str(), &address) != 1)
        throw std::invalid_argument("--" + std::string(option) + ": '" + text + "' is no IPv4 address");
    return text;
}

std::string all_model_names() {
    std::string names;
    for (const std::string& name : model_names()) names += (names.empty() ? "" : " ") + name;
    return names;
}

RobotModel parse_model(const std::string& name) {
    try {
        return make_model(name);
    } catch (const std::invalid_argument&) {
        throw std::invalid_argument("--model: unknown model '" + name + "'; there are " + all_model_names());
    }
}

std::array<double, 3> parse_angles(std::string_view option, std::string_view text) {
    const std::vector<double> angles = parse_list(option, text, 3);
    return {angles[0], angles[1], angles[2]};
}

// KIND, or KIND:N.
TransferFault parse_transfer_fault(std::string_view option, const std::string& text) {
    const size_t colon = text.find(':');
    TransferFault fault{text.substr(0, colon), 0};
    if (colon != std::string::npos) fault.at = parse_integer(option, text.substr(colon + 1), 0, INT_MAX);
    if (fault.kind.empty() || !is_transfer_fault(fault.kind))
        throw std::invalid_argument("--" + std::string(option) +
                                    ": is one of refuse, error_line:LINE, silent, close:BYTES, stall:BYTES");
    return fault;
}

Load parse_load(std::string_view option, std::string_view text) {
    const std::vector<double> values = parse_list(option, text, 4);
    if (values[0] < 0 || values[0] > 100) throw std::invalid_argument("--load: must be from 0 to 100 kg");
    return {values[0], KDL::Vector(values[1], values[2], values[3])};
}

double parse_noise(std::string_view option, std::string_view text) {
    const double noise = parse_list(option, text, 1)[0];
    if (noise < 0 || noise > 100) throw std::invalid_argument("--force-noise: must be from 0 to 100 N");
    return noise;
}

Wall parse_wall(std::string_view option, std::string_view text) {
    constexpr double kStiffest = 50'000;  // newtons per metre; a hold on a stiffer wall does not settle
    const std::vector<double> values = parse_list(option, text, 7);
    Wall wall{KDL::Vector(values[0], values[1], values[2]), KDL::Vector(values[3], values[4], values[5]), values[6]};
    if (wall.normal.Normalize() == 0 || wall.stiffness < 0 || wall.stiffness > kStiffest)
        throw std::invalid_argument("--wall: needs a normal, and a stiffness from 0 to 50000 N/m");
    return wall;
}

struct OptionRow {
    const char* name;
    const char* value;  // its argument's name in the help; empty if it takes none
    const char* help;
    void (*take)(Options& options, const std::string& value);
};

using std::string;
constexpr OptionRow kOptions[] = {
    {"model", "NAME", "the arm and its end sensor (ZK65-B); one of those below",
     [](Options& o, const string& value) { o.model = parse_model(value); }},
    {"listen", "IP", "address to listen on (127.0.0.1)",
     [](Options& o, const string& value) { o.listen = parse_address("listen", value); }},
    {"port", "N", "TCP port, 0 for any free one (8080)",
     [](Options& o, const string& value) { o.port = parse_integer("port", value, 0, kMaxPort); }},
    {"push-ip", "IP", "destination of the real-time push (127.0.0.1)",
     [](Options& o, const string& value) { o.push.ip = parse_address("push-ip", value); }},
    {"push-port", "N", "its UDP port, 0 for any free one (8089)",
     [](Options& o, const string& value) { o.push.port = parse_integer("push-port", value, 0, kMaxPort); }},
    {"push-cycle", "N", "its cycle in units of 5 ms (1)",
     [](Options& o, const string& value) { o.push.cycle = parse_integer("push-cycle", value, 1, kMaxCycle); }},
    {"no-push", "", "push nothing until a client enables it", [](Options& o, const string&) { o.push.enable = false; }},
    {"joints", "A,B,...", "joint angles at start, degrees",
     [](Options& o, const string& value) { o.joints = parse_list("joints", value); }},
    {"tool", "X,Y,Z,RX,RY,RZ", "tool frame in use at start, metres and radians",
     [](Options& o, const string& value) { o.tool = parse_pose("tool", value); }},
    {"work", "X,Y,Z,RX,RY,RZ", "work frame in use at start, metres and radians",
     [](Options& o, const string& value) { o.work = parse_pose("work", value); }},
    {"install", "RX,RY,RZ", "mounting angles, degrees",
     [](Options& o, const string& value) { o.install = parse_angles("install", value); }},
    {"object", "WIDTH", "width of an object for the gripper, 1 to 999 of an opening of 1000 (0: none)",
     [](Options& o, const string& value) { o.object_width = parse_integer("object", value, 0, Gripper::kOpen - 1); }},
    {"hand", "FILE", "the hand's path in drag teaching: lines of seconds and joint angles",
     [](Options& o, const string& value) { o.hand = read_hand(value); }},
    {"load", "KG,X,Y,Z", "mass of the load on the force sensor and its centre of gravity in the flange frame (0)",
     [](Options& o, const string& value) { o.load = parse_load("load", value); }},
    {"wall", "X,Y,Z,NX,NY,NZ,K", "an elastic wall in the room: a place, its normal, newtons per metre",
     [](Options& o, const string& value) { o.wall = parse_wall("wall", value); }},
    {"force-noise", "N", "standard deviation of the force sensor's noise, newtons (0.02)",
     [](Options& o, const string& value) { o.force_noise = parse_noise("force-noise", value); }},
    {"seed", "N", "seed of that noise (1)",
     [](Options& o, const string& value) { o.seed = static_cast<unsigned>(parse_integer("seed", value, 0, INT_MAX)); }},
    {"silent-on", "COMMAND", "ignore this command; may be given several times",
     [](Options& o, const string& value) { o.silent_on.push_back(value); }},
    {"refuse-on", "COMMAND", "answer this command with false; may be given several times",
     [](Options& o, const string& value) { o.refuse_on.push_back(value); }},
    {"delay-ms", "N", "delay every reply and report by this time",
     [](Options& o, const string& value) { o.delay_ms = parse_integer("delay-ms", value, 0, kMaxDelayMs); }},
    {"transfer-fault", "KIND:N", "disturb file transfers: refuse, error_line:LINE, silent, close:BYTES, stall:BYTES",
     [](Options& o, const string& value) { o.transfer_fault = parse_transfer_fault("transfer-fault", value); }},
    {"files", "DIRECTORY", "store the files that clients send in this directory, which must exist",
     [](Options& o, const string& value) { o.files = value; }},
    {"quiet", "", "no notes on standard error", [](Options& o, const string&) { o.quiet = true; }},
    {"commands", "", "list all commands and exit", [](Options& o, const string&) { o.commands = true; }},
    {"help", "", "this text", [](Options& o, const string&) { o.help = true; }},
};

std::vector<option> getopt_rows() {
    std::vector<option> rows;
    for (const OptionRow& row : kOptions)
        rows.push_back({row.name, *row.value ? required_argument : no_argument, nullptr, 0});
    rows.push_back({});
    return rows;
}

// Only `optopt` holds a wrong letter within a group of short options.
std::string wrong_option(char** argv) {
    const std::string last = argv[optind - 1];
    return optopt != 0 && last.substr(0, 2) != "--" ? std::string("-") + static_cast<char>(optopt) : last;
}

// Checks the values against the model, which may be anywhere on the command line.
void check_joints(const RobotModel& model, const std::string& option, const JointVector& joints) {
    if (joints.size() != model.joint_count())
        throw std::invalid_argument(option + ": needs " + std::to_string(model.joint_count()) + " joint angles");
    for (size_t i = 0; i < joints.size(); ++i) {
        if (!(joints[i] >= model.joints[i].min && joints[i] <= model.joints[i].max))
            throw std::invalid_argument(option + ": joint " + std::to_string(i + 1) + " beyond its limit");
    }
}

}  // namespace

Options parse_options(int argc, char** argv) {
    Options options;
    options.model = make_model("ZK65-B");
    opterr = 0;
    const std::vector<option> rows = getopt_rows();
    int row = 0;
    for (int found; (found = getopt_long(argc, argv, ":", rows.data(), &row)) != -1;) {
        if (found == ':') throw std::invalid_argument(std::string(argv[optind - 1]) + " needs a value");
        if (found != 0) throw std::invalid_argument("unknown option " + wrong_option(argv));
        kOptions[row].take(options, optarg ? optarg : "");
    }
    if (optind < argc) throw std::invalid_argument(std::string("unexpected argument ") + argv[optind]);
    if (!options.joints.empty()) check_joints(options.model, "--joints", options.joints);
    for (const HandLeg& leg : options.hand) check_joints(options.model, "--hand", leg.joints);
    return options;
}

std::string usage() {
    std::string text =
        "Usage: zk_simulator [options]\n"
        "A controller without an arm: commands over TCP, real-time state over UDP.\n\n";
    constexpr size_t kColumn = 26;
    for (const OptionRow& row : kOptions) {
        std::string left = std::string("  --") + row.name + ' ' + row.value;
        left.resize(std::max(left.size() + 1, kColumn), ' ');
        text += left + row.help + '\n';
    }
    return text + "\nModels: " + all_model_names() +
           "\n\nThe first line on standard output names the model and the ports:\n"
           "  zk_simulator model=ZK65-B port=40123 push_port=40124\n"
           "SIGINT and SIGTERM end the program.\n";
}

}  // namespace sim
