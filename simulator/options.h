#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "devices/devices.h"
#include "motion/frames.h"
#include "motion/robot_model.h"
#include "programs/files.h"
#include "push/push.h"
#include "wire/json.h"
#include "world/faults.h"
#include "world/hand.h"
#include "world/load.h"
#include "world/wall.h"

namespace sim {

// The options of the command line.
struct Options {
    bool help = false, version = false;
    bool commands = false;  // list the commands and exit
    bool quiet = false;
    bool until_eof = false;  // end with standard input
    std::string arms;        // their number, or a file with a list of them; empty: one
    std::string listen = "127.0.0.1";
    int port = 8080;  // 0: any free port
    RobotModel model;
    JointVector joints;                            // degrees; empty: the model's home
    std::optional<WirePose> tool;                  // in use from the start, under the name "tool"
    std::optional<WirePose> work;                  // the same, under the name "work"
    std::optional<std::array<double, 3>> install;  // degrees
    std::string state;                             // the file of what is kept over a loss of power; empty: none
    Object object;                                 // between the fingers of the gripper
    std::vector<HandLeg> hand;                     // the path of the hand in drag teaching
    Load load;                                     // on the sensor
    double force_noise = 0.02;                     // newtons
    unsigned seed = 1;
    double speed = 1;  // of simulated time
    Wall wall;
    PushSettings push{.port = 8089};
    std::vector<std::string> silent_on;
    std::vector<std::string> refuse_on;
    FaultNumbers faults;
    std::optional<Json> events;  // of a scenario
    TransferFault transfer_fault;
    std::string files;  // directory where files from clients are stored; empty: nowhere
};

// The options of each arm, at least one. Throws std::invalid_argument with a message for the user.
std::vector<Options> parse_options(int argc, char** argv);
// What concerns the whole program may stand in the options of any arm.
bool wanted_by_any(const std::vector<Options>& arms, bool Options::*option);
std::string usage();

}  // namespace sim
