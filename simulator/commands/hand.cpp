// The hand with six fingers and the PWM output. The end of a posture or sequence with "block": true is reported;
// nothing else is.

#include <algorithm>

#include "commands/commands.h"
#include "devices/devices.h"
#include "wire/command_table.h"

namespace sim {
namespace {

constexpr int kBent = Hand::kBent;

// Postures 1 to 4: stretched, fist, forefinger out, thumb on forefinger.
const std::vector<Hand::Posture> kPostures = {{0, 0, 0, 0, 0, 0},
                                              {kBent, kBent, kBent, kBent, kBent, kBent},
                                              {kBent, kBent, kBent, 0, kBent, kBent},
                                              {0, 0, 0, 600, 600, kBent}};

// Sequences of posture numbers: closing and opening, counting.
const std::vector<std::vector<size_t>> kSequences = {{2, 1}, {3, 4, 1}};

void begin(Hand& hand, const Call& call, const std::deque<Hand::Posture>& postures) {
    hand.audience.expect(call.client, wants_report(call.request));
    hand.go(postures);
}

bool posture(Hand& hand, const Call& call) {
    const int number = call.request.integer("posture_num", 1, static_cast<int>(kPostures.size()));
    begin(hand, call, {kPostures[static_cast<size_t>(number - 1)]});
    return true;
}

bool sequence(Hand& hand, const Call& call) {
    const int number = call.request.integer("seq_num", 1, static_cast<int>(kSequences.size()));
    std::deque<Hand::Posture> postures;
    for (const size_t step : kSequences[static_cast<size_t>(number - 1)]) postures.push_back(kPostures[step - 1]);
    begin(hand, call, postures);
    return true;
}

// -1: the finger does not move.
Action fingers(Hand& hand, const char* key) {
    return [&hand, key](const Call& call) {
        const std::vector<int> values = call.request.integers(key, Hand::kFingers);
        if (std::any_of(values.begin(), values.end(), [](int value) { return value < -1 || value > kBent; }))
            return false;
        Hand::Posture posture;
        std::copy(values.begin(), values.end(), posture.begin());
        begin(hand, call, {posture});
        return true;
    };
}

Action setting(int& value, const char* key) {
    return [&value, key](const Call& call) {
        value = call.request.integer(key, 1, kBent);
        return true;
    };
}

bool pwm(const Call& call) {
    constexpr int kMaxHertz = 100'000, kMaxPercent = 100;
    call.request.integer("PWM_Frq", 1, kMaxHertz);
    call.request.integer("PWM_Dpulse", 0, kMaxPercent);
    return true;
}

}  // namespace

void add_hand_commands(CommandTable& table, Hand& hand) {
    table.set("set_hand_posture", "set_state", with(posture, hand));
    table.set("set_hand_seq", "set_state", with(sequence, hand));
    table.set("set_hand_angle", "set_state", fingers(hand, "hand_angle"));
    table.set("hand_follow_angle", "set_state", fingers(hand, "hand_angle"));
    table.set("hand_follow_pos", "set_state", fingers(hand, "hand_pos"));
    table.set("set_hand_speed", "set_state", setting(hand.speed, "hand_speed"));
    table.set("set_hand_force", "set_state", setting(hand.force, "hand_force"));
    table.set("set_PWM", "set_state", pwm);
}

}  // namespace sim
