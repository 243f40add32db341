#include "remedy.h"

#include <algorithm>
#include <array>

#include "zk/streaming.h"

namespace tool {
namespace {

struct Remedy {
    int status;
    const char* text;
};

constexpr std::array kWhileConnecting{
    Remedy{ZK_NO_ANSWER, "Check that the controller is on and that the address is its own."},
    Remedy{ZK_NO_CONTROLLER, "Correct the address and the port: another service answers there."},
    Remedy{ZK_LOST, "Wait until the controller has started; close a program that is connected, for it accepts few."},
};

// The library's advice holds for the others.
constexpr std::array kRemedies{
    Remedy{ZK_NOT_CONNECTED, "See zk doctor, then start the command again."},
    Remedy{ZK_LOST, "Look at the arm, which may still move; see zk doctor, then start the command again."},
    Remedy{ZK_TIMEOUT, "See by zk state what the arm does before you repeat the command."},
    Remedy{ZK_CANCELLED, "zk stop stops the arm."},
    Remedy{ZK_DEADLINE, "See by zk state what the arm does; zk stop stops it."},
    Remedy{ZK_REFUSED,
           "Check the units: bare numbers are degrees and metres. zk ik says whether a pose can be reached, zk doctor "
           "whether the arm is off or in error."},
    Remedy{ZK_NO_TRAJECTORY, "Compare zk state with the target: the move may have ended there."},
    Remedy{ZK_NO_SOLUTION, "zk ik lists the postures that reach a pose, zk info the limits of the joints."},
    Remedy{ZK_BAD_PATH, "Check the program by zk check."},
    Remedy{ZK_NOT_BOOLEAN, "The controller's software may not know the command: zk info shows its version."},
    Remedy{ZK_BAD_REPLY, "zk record --wire keeps the reply."},
    Remedy{ZK_WRONG_TYPE, "zk record --wire keeps the reply."},
    Remedy{ZK_WRONG_SIZE, "See by zk info whether the arm is the one that you expect."},
    Remedy{ZK_NO_STATE, "See zk doctor."},
    Remedy{ZK_STATE_TOO_OLD, "See zk doctor."},
    Remedy{ZK_NO_STREAM, "See zk doctor."},
    Remedy{ZK_SET_POINT_MALFORMED, "See by zk info whether the arm is the one that you expect."},
    Remedy{ZK_SET_POINT_BEYOND_LIMIT, "zk info lists the limits of the joints."},
    Remedy{ZK_SET_POINT_TOO_FAR, "Start again from where the arm is."},
    Remedy{ZK_SET_POINT_UNREACHABLE, "Keep within reach: zk map draws it."},
    Remedy{ZK_SET_POINT_NOT_NOW, "Wait until the arm is idle; zk doctor says whether it is off or in error."},
};

template <class Remedies>
const char* find(const Remedies& remedies, int status) {
    const auto found = std::find_if(remedies.begin(), remedies.end(),
                                    [status](const Remedy& remedy) { return remedy.status == status; });
    return found == remedies.end() ? nullptr : found->text;
}

}  // namespace

std::string remedy_of(int status) {
    if (const char* own = find(kRemedies, status)) return own;
    ZK_Advice advice{};
    return ZK_Explain(status, 0, 0, &advice) == ZK_OK ? advice.remedy : "";
}

std::string remedy_of(const zk::Error& error) {
    const char* own = error.command == std::string_view("ZK_Connect") ? find(kWhileConnecting, error.status) : nullptr;
    return own ? own : remedy_of(error.status);
}

std::string remedy_of_error_word() {
    return "Look at the arm and at the teach pendant, remove the cause, then run zk clear.";
}

std::string sentence_of_no_arm(const std::string& arm, const std::string& host, const zk::Error& error) {
    const bool is_named_twice = arm.find(host) != std::string::npos && error.text.find(host) != std::string::npos;
    const std::string sentence = is_named_twice ? error.text : arm + ": " + error.text, remedy = remedy_of(error);
    return remedy.empty() ? sentence : sentence + ". " + remedy;
}

}  // namespace tool
