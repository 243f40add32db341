#include "options.h"

#include <arpa/inet.h>
#include <getopt.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "wire/json.h"
#include "world/time.h"

namespace sim {
namespace {

using std::string;

constexpr const char* kSchemaKey = "$schema";  // of editors
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

std::string parse_directory(std::string_view option, const std::string& text) {
    std::error_code ignored;
    if (!std::filesystem::is_directory(text, ignored) || ::access(text.c_str(), W_OK | X_OK) != 0)
        throw std::invalid_argument("--" + std::string(option) + ": '" + text + "' is no directory to write to");
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
    const std::vector<double> values = parse_list(option, text, 7);
    Wall wall{KDL::Vector(values[0], values[1], values[2]), KDL::Vector(values[3], values[4], values[5]), values[6]};
    if (wall.normal.Normalize() == 0 || wall.stiffness < 0 || wall.stiffness > Wall::kStiffest)
        throw std::invalid_argument("--wall: needs a normal, and a stiffness from 0 to 50000 N/m");
    return wall;
}

double parse_speed(std::string_view option, std::string_view text) {
    if (text == kAtOnceName) return kAtOnce;
    const double speed = parse_number<double>(option, text);
    if (!(speed >= kSlowest && speed <= kFastest))
        throw std::invalid_argument("--speed: must be from 0.1 to 100, or max");
    return speed;
}

// WIDTH, or WIDTH,KG.
Object parse_object(std::string_view option, const std::string& text) {
    const size_t comma = std::min(text.find(','), text.size());
    Object object{parse_integer(option, text.substr(0, comma), 0, Gripper::kOpen - 1), 0};
    if (comma < text.size()) object.mass = parse_list(option, text.substr(comma + 1), 1)[0];
    if (!(object.mass >= 0 && object.mass <= Object::kHeaviest))
        throw std::invalid_argument("--object: must be from 0 to 20 kg");
    return object;
}

void take_fault(FaultNumbers& faults, const std::string& text) {
    const size_t equals = std::min(text.find('='), text.size());
    const std::string name = text.substr(0, equals);
    for (const FaultRow& row : fault_rows()) {
        if (name != row.name) continue;
        const std::string value = text.substr(std::min(equals + 1, text.size()));
        row.number(faults) = parse_integer("fault " + name, value, 0, row.highest);
        return;
    }
    throw std::invalid_argument("--fault: there is no fault '" + name + "'");
}

void take_faults(FaultNumbers& faults, const std::string& list) {
    std::istringstream texts(list);
    for (std::string text; std::getline(texts, text, ',');) take_fault(faults, text);
}

void take_scenario(Options& options, const std::string& path);

// The JSON values of an option in a file; each can also be a text as on the command line.
enum class Form { kSwitch, kAct, kText, kNumber, kNumbers, kTexts, kFaults };

struct OptionRow {
    const char* name;
    Form form;
    const char* value;  // its argument's name in the help; empty if it takes none
    const char* help;
    void (*take)(Options& options, const std::string& value);
};

constexpr OptionRow kOptions[] = {
    {"model", Form::kText, "NAME", "the arm and its end sensor (ZK65-B); one of those below",
     [](Options& o, const string& value) { o.model = parse_model(value); }},
    {"listen", Form::kText, "IP", "address to listen on (127.0.0.1)",
     [](Options& o, const string& value) { o.listen = parse_address("listen", value); }},
    {"port", Form::kNumber, "N", "TCP port, 0 for any free one (8080)",
     [](Options& o, const string& value) { o.port = parse_integer("port", value, 0, kMaxPort); }},
    {"arms", Form::kNumber, "N|FILE",
     "several arms: a number of them, or a JSON list of objects with these options as keys",
     [](Options& o, const string& value) { o.arms = value; }},
    {"push-ip", Form::kText, "IP", "destination of the real-time push (127.0.0.1)",
     [](Options& o, const string& value) { o.push.ip = parse_address("push-ip", value); }},
    {"push-port", Form::kNumber, "N", "its UDP port, 0 for any free one (8089)",
     [](Options& o, const string& value) { o.push.port = parse_integer("push-port", value, 0, kMaxPort); }},
    {"push-cycle", Form::kNumber, "N", "its cycle in units of 5 ms (1)",
     [](Options& o, const string& value) { o.push.cycle = parse_integer("push-cycle", value, 1, kMaxCycle); }},
    {"no-push", Form::kSwitch, "", "push nothing until a client enables it",
     [](Options& o, const string&) { o.push.enable = false; }},
    {"joints", Form::kNumbers, "A,B,...", "joint angles at start, degrees",
     [](Options& o, const string& value) { o.joints = parse_list("joints", value); }},
    {"tool", Form::kNumbers, "X,Y,Z,RX,RY,RZ", "tool frame in use at start, metres and radians",
     [](Options& o, const string& value) { o.tool = parse_pose("tool", value); }},
    {"work", Form::kNumbers, "X,Y,Z,RX,RY,RZ", "work frame in use at start, metres and radians",
     [](Options& o, const string& value) { o.work = parse_pose("work", value); }},
    {"install", Form::kNumbers, "RX,RY,RZ", "mounting angles, degrees",
     [](Options& o, const string& value) { o.install = parse_angles("install", value); }},
    {"object", Form::kNumbers, "WIDTH,KG",
     "an object for the gripper: 1 to 999 of an opening of 1000 wide (0: none), its mass (0)",
     [](Options& o, const string& value) { o.object = parse_object("object", value); }},
    {"hand", Form::kText, "FILE", "the hand's path in drag teaching: lines of seconds and joint angles",
     [](Options& o, const string& value) { o.hand = read_hand(value); }},
    {"load", Form::kNumbers, "KG,X,Y,Z",
     "mass of the load on the force sensor and its centre of gravity in the flange frame (0)",
     [](Options& o, const string& value) { o.load = parse_load("load", value); }},
    {"wall", Form::kNumbers, "X,Y,Z,NX,NY,NZ,K", "an elastic wall in the room: a place, its normal, newtons per metre",
     [](Options& o, const string& value) { o.wall = parse_wall("wall", value); }},
    {"force-noise", Form::kNumber, "N", "standard deviation of the force sensor's noise, newtons (0.02)",
     [](Options& o, const string& value) { o.force_noise = parse_noise("force-noise", value); }},
    {"seed", Form::kNumber, "N", "seed of that noise (1)",
     [](Options& o, const string& value) { o.seed = static_cast<unsigned>(parse_integer("seed", value, 0, INT_MAX)); }},
    {"speed", Form::kNumber, "N", "speed of simulated time, 0.1 to 100 (1); max: each request runs to rest at once",
     [](Options& o, const string& value) { o.speed = parse_speed("speed", value); }},
    {"scenario", Form::kText, "FILE", "options and events from a file; options after it replace its own",
     [](Options& o, const string& value) { take_scenario(o, value); }},
    {"silent-on", Form::kTexts, "COMMAND", "ignore this command; may be given several times",
     [](Options& o, const string& value) { o.silent_on.push_back(value); }},
    {"refuse-on", Form::kTexts, "COMMAND", "answer this command with false; may be given several times",
     [](Options& o, const string& value) { o.refuse_on.push_back(value); }},
    {"delay-ms", Form::kNumber, "N", "delay every reply and report by this time",
     [](Options& o, const string& value) {
         o.faults.wire.replies.delay_ms = parse_integer("delay-ms", value, 0, kMaxDelayMs);
     }},
    {"fault", Form::kFaults, "NAME=N,...", "faults of those below",
     [](Options& o, const string& value) { take_faults(o.faults, value); }},
    {"transfer-fault", Form::kText, "KIND:N",
     "disturb file transfers: refuse, error_line:LINE, silent, close:BYTES, stall:BYTES",
     [](Options& o, const string& value) { o.transfer_fault = parse_transfer_fault("transfer-fault", value); }},
    {"files", Form::kText, "DIRECTORY", "store the files that clients send in this directory, which must exist",
     [](Options& o, const string& value) { o.files = parse_directory("files", value); }},
    {"state", Form::kText, "FILE", "keep settings, programs and waypoints in this file, and start with what it holds",
     [](Options& o, const string& value) {
         if (value.empty()) throw std::invalid_argument("--state: needs the name of a file");
         o.state = value;
     }},
    {"until-eof", Form::kSwitch, "", "end when standard input ends",
     [](Options& o, const string&) { o.until_eof = true; }},
    {"quiet", Form::kSwitch, "", "no notes on standard error", [](Options& o, const string&) { o.quiet = true; }},
    {"commands", Form::kAct, "", "list all commands and exit", [](Options& o, const string&) { o.commands = true; }},
    {"version", Form::kAct, "", "the version", [](Options& o, const string&) { o.version = true; }},
    {"help", Form::kAct, "", "this text", [](Options& o, const string&) { o.help = true; }},
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

Options parse_command_line(int argc, char** argv) {
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
    return options;
}

// What the command line holds in place of a value in a file: a text for each time that it has the option.
std::vector<string> spelled(const OptionRow& row, const Json& value) {
    const auto demand = [&row](bool good, const char* reason) {
        if (!good) throw std::invalid_argument("--" + string(row.name) + ": in a file, it " + reason);
    };
    demand(row.form != Form::kAct, "means nothing");
    if (row.form == Form::kSwitch) {
        demand(value.is_boolean(), "is true or false");
        return value.boolean() ? std::vector<string>{""} : std::vector<string>{};
    }
    if (value.is_string()) return {value.text()};
    demand(row.form != Form::kText, "is a text");
    std::vector<string> texts;
    if (row.form == Form::kTexts) {
        demand(value.is_array(), "is a text or a list of texts");
        for (const Json& item : value.items()) {
            demand(item.is_string(), "is a text or a list of texts");
            texts.push_back(item.text());
        }
    } else if (row.form == Form::kFaults) {
        demand(value.is_object(), "is a text or an object");
        for (const auto& [name, number] : value.members()) texts.push_back(name + '=' + number.dump());
    } else if (row.form == Form::kNumbers && value.is_array()) {
        texts.emplace_back();
        for (const Json& item : value.items()) texts.back() += (texts.back().empty() ? "" : ",") + item.dump();
    } else {
        demand(value.is_number(), row.form == Form::kNumber ? "is a number" : "is a list of numbers");
        texts.push_back(value.dump());
    }
    return texts;
}

// The options of one arm of the list, {"model": "ZK75-6F", "port": 8081, ...}, over those of the command line.
Options options_of(const Json& arm, Options options) {
    if (!arm.is_object()) throw std::invalid_argument("the options of an arm are no object");
    for (const auto& [name, value] : arm.members()) {
        if (name == kSchemaKey) continue;
        const auto row = std::find_if(std::begin(kOptions), std::end(kOptions),
                                      [&name = name](const OptionRow& known) { return name == known.name; });
        if (row == std::end(kOptions)) throw std::invalid_argument("unknown option '" + name + "'");
        for (const string& text : spelled(*row, value)) row->take(options, text);
    }
    return options;
}

std::optional<Json> json_in(const std::string& path, const char* option) {
    std::ifstream file(path);
    if (!file) throw std::invalid_argument(std::string("--") + option + ": '" + path + "' cannot be read");
    std::ostringstream text;
    text << file.rdbuf();
    return Json::parse(text.str(), true);
}

void take_scenario(Options& options, const std::string& path) {
    const std::optional<Json> scenario = json_in(path, "scenario");
    if (!scenario || !scenario->is_object())
        throw std::invalid_argument("--scenario: '" + path + "' holds no JSON object");
    for (const auto& [name, value] : scenario->members()) {
        if (name == "options") {
            if (value.is_object() && value.contains("scenario"))
                throw std::invalid_argument("--scenario: a scenario cannot read another");
            options = options_of(value, options);
        } else if (name == "events") {
            if (!value.is_array()) throw std::invalid_argument("--scenario: 'events' is no list");
            options.events = value;
        } else if (name != "description" && name != kSchemaKey) {
            throw std::invalid_argument("--scenario: unknown key \"" + name +
                                        "\"; there are $schema, description, options, events");
        }
    }
}

std::vector<Options> listed_arms(const Options& common) {
    const std::optional<Json> list = json_in(common.arms, "arms");
    if (!list || !list->is_array() || list->items().empty())
        throw std::invalid_argument("--arms: '" + common.arms + "' holds no list");
    std::vector<Options> arms;
    for (const Json& arm : list->items()) {
        arms.push_back(options_of(arm, common));
        if (arms.back().arms != common.arms) throw std::invalid_argument("--arms: an arm of a list has no arms");
    }
    return arms;
}

// On successive addresses, like real arms; on one address, each with a port of its own, when any port will do.
std::vector<Options> counted_arms(const Options& common, int count) {
    std::vector<Options> arms(static_cast<size_t>(count), common);
    in_addr address;
    inet_pton(AF_INET, common.listen.c_str(), &address);
    for (int i = 0; !common.state.empty() && i < count; ++i)
        arms[static_cast<size_t>(i)].state += '.' + std::to_string(i + 1);
    for (int i = 0; common.port != 0 && i < count; ++i) {
        const in_addr own{htonl(ntohl(address.s_addr) + static_cast<uint32_t>(i))};
        char text[INET_ADDRSTRLEN];
        arms[static_cast<size_t>(i)].listen = inet_ntop(AF_INET, &own, text, sizeof text);
    }
    return arms;
}

std::vector<Options> all_arms(const Options& common) {
    constexpr int kMostArms = 64;
    if (common.arms.empty()) return {common};
    const bool is_number = common.arms.find_first_not_of("0123456789") == std::string::npos;
    return is_number ? counted_arms(common, parse_integer("arms", common.arms, 1, kMostArms)) : listed_arms(common);
}

}  // namespace

std::vector<Options> parse_options(int argc, char** argv) {
    const std::vector<Options> arms = all_arms(parse_command_line(argc, argv));
    for (const Options& arm : arms) {
        if (arm.faults.wire.max_clients == 0)
            throw std::invalid_argument("--fault: with max_clients=0 no client could ever change it");
        if (!arm.joints.empty()) check_joints(arm.model, "--joints", arm.joints);
        for (const HandLeg& leg : arm.hand) check_joints(arm.model, "--hand", leg.joints);
    }
    return arms;
}

bool wanted_by_any(const std::vector<Options>& arms, bool Options::*option) {
    return std::any_of(arms.begin(), arms.end(), [option](const Options& arm) { return arm.*option; });
}

std::string usage() {
    std::string text =
        "Usage: zk_simulator [options]\n"
        "A controller without an arm: commands over TCP, real-time state over UDP.\n\n";
    static constexpr size_t kColumn = 26;
    const auto add = [&](std::string left, const char* help) {
        left.resize(std::max(left.size() + 1, kColumn), ' ');
        text += left + help + '\n';
    };
    for (const OptionRow& row : kOptions) add(std::string("  --") + row.name + ' ' + row.value, row.help);
    text += "\nFaults:\n";
    for (const FaultRow& row : fault_rows())
        add(std::string("  ") + row.name, (std::string(row.takes) + ": " + row.effect).c_str());
    return text + "\nModels: " + all_model_names() +
           "\n\nThe first line on standard output names the model and the ports:\n"
           "  zk_simulator model=ZK65-B port=40123 push_port=40124\n"
           "SIGINT and SIGTERM end the program.\n";
}

}  // namespace sim
