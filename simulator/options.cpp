#include "options.h"

#include <arpa/inet.h>
#include <getopt.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <string_view>

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

std::vector<double> parse_list(std::string_view option, std::string_view text, size_t size) {
    std::vector<double> values;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find(',', begin), text.size());
        values.push_back(parse_number<double>(option, text.substr(begin, end - begin)));
        if (!std::isfinite(values.back())) throw std::invalid_argument("--" + std::string(option) + ": not finite");
        begin = end + 1;
    }
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

JointVector parse_joints(std::string_view text, const RobotModel& model) {
    const JointVector joints = parse_list("joints", text, model.joint_count());
    for (size_t i = 0; i < joints.size(); ++i) {
        if (joints[i] < model.joints[i].min || joints[i] > model.joints[i].max)
            throw std::invalid_argument("--joints: joint " + std::to_string(i + 1) + " beyond its limit");
    }
    return joints;
}

constexpr option kOptions[] = {{"model", required_argument, nullptr, 'm'},
                               {"listen", required_argument, nullptr, 'l'},
                               {"port", required_argument, nullptr, 'p'},
                               {"push-ip", required_argument, nullptr, 'i'},
                               {"push-port", required_argument, nullptr, 'u'},
                               {"push-cycle", required_argument, nullptr, 'c'},
                               {"no-push", no_argument, nullptr, 'n'},
                               {"joints", required_argument, nullptr, 'j'},
                               {"tool", required_argument, nullptr, 't'},
                               {"work", required_argument, nullptr, 'w'},
                               {"install", required_argument, nullptr, 'a'},
                               {"silent-on", required_argument, nullptr, 's'},
                               {"refuse-on", required_argument, nullptr, 'r'},
                               {"delay-ms", required_argument, nullptr, 'd'},
                               {"quiet", no_argument, nullptr, 'q'},
                               {"help", no_argument, nullptr, 'h'},
                               {nullptr, 0, nullptr, 0}};

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

// A wrong letter within a group of short ones is told by `optopt` alone.
std::string wrong_option(char** argv) {
    const std::string last = argv[optind - 1];
    return optopt != 0 && last.substr(0, 2) != "--" ? std::string("-") + static_cast<char>(optopt) : last;
}

}  // namespace

Options parse_options(int argc, char** argv) {
    Options options;
    options.model = make_model("ZK65-B");
    std::string joints;
    opterr = 0;
    for (int letter; (letter = getopt_long(argc, argv, ":", kOptions, nullptr)) != -1;) {
        const std::string value = optarg ? optarg : "";
        switch (letter) {
            case 'm':
                options.model = parse_model(value);
                break;
            case 'l':
                options.listen = parse_address("listen", value);
                break;
            case 'p':
                options.port = parse_integer("port", value, 0, kMaxPort);
                break;
            case 'i':
                options.push.ip = parse_address("push-ip", value);
                break;
            case 'u':
                options.push.port = parse_integer("push-port", value, 0, kMaxPort);
                break;
            case 'c':
                options.push.cycle = parse_integer("push-cycle", value, 1, kMaxCycle);
                break;
            case 'n':
                options.push.enable = false;
                break;
            case 'j':
                joints = value;
                break;
            case 't':
                options.tool = parse_pose("tool", value);
                break;
            case 'w':
                options.work = parse_pose("work", value);
                break;
            case 'a': {
                const std::vector<double> angles = parse_list("install", value, 3);
                options.install = {angles[0], angles[1], angles[2]};
                break;
            }
            case 's':
                options.silent_on.push_back(value);
                break;
            case 'r':
                options.refuse_on.push_back(value);
                break;
            case 'd':
                options.delay_ms = parse_integer("delay-ms", value, 0, kMaxDelayMs);
                break;
            case 'q':
                options.quiet = true;
                break;
            case 'h':
                options.help = true;
                break;
            case ':':
                throw std::invalid_argument(std::string(argv[optind - 1]) + " needs a value");
            default:
                throw std::invalid_argument("unknown option " + wrong_option(argv));
        }
    }
    if (optind < argc) throw std::invalid_argument(std::string("unexpected argument ") + argv[optind]);
    if (!joints.empty()) options.joints = parse_joints(joints, options.model);
    return options;
}

std::string usage() {
    return "Usage: zk_simulator [options]\n"
           "A controller without an arm: commands over TCP, real-time state over UDP.\n"
           "\n"
           "  --model NAME        the arm, ZK65-B if not given; one of\n"
           "                      " +
           all_model_names() +
           "\n"
           "  --listen IP         address to listen on (127.0.0.1)\n"
           "  --port N            TCP port, 0 for any free one (8080)\n"
           "  --push-ip IP        where the real-time push goes (127.0.0.1)\n"
           "  --push-port N       its UDP port, 0 for any free one (8089)\n"
           "  --push-cycle N      its cycle in units of 5 ms (1)\n"
           "  --no-push           push nothing until a client enables it\n"
           "  --joints A,B,...    joint angles at start, degrees\n"
           "  --tool X,Y,Z,RX,RY,RZ   tool frame in use at start, metres and radians\n"
           "  --work X,Y,Z,RX,RY,RZ   work frame in use at start, metres and radians\n"
           "  --install RX,RY,RZ  mounting angles, degrees\n"
           "  --silent-on COMMAND ignore this command; may be given several times\n"
           "  --refuse-on COMMAND answer this command with false; may be given several times\n"
           "  --delay-ms N        hold every reply and report back for so long\n"
           "  --quiet             no notes on standard error\n"
           "  --help              this text\n"
           "\n"
           "The first line on standard output tells the model and the ports:\n"
           "  zk_simulator model=ZK65-B port=40123 push_port=40124\n"
           "SIGINT and SIGTERM end the program.\n";
}

}  // namespace sim
