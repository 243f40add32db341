// The library and the simulated controller at once. An input is a digit for the model, or a small letter where the
// start-up opens the connection, then actions: 4, a name, a comma and the bytes of its arguments is a call; 5 and a
// byte cuts replies into slices of so many bytes; 6 loses a byte of the replies, 7 and a byte changes one, each behind
// so many bytes as the byte after says; 8 sends what follows as if the controller did; 11 and a byte holds the replies
// for so many hundredths of a second; 12 leaves.
#include "library.h"
#include "simulated.h"

namespace {

constexpr std::string_view kActions("\4\5\6\7\10\13\14", 7);
constexpr std::int32_t kStepMs = sim::Controller::kStepMs;

class BothSides {
 public:
    BothSides(std::uint8_t model, bool starts_up) : controller_(model) {
        static const zk::fuzz::Listener listener;
        const int arm_mode = controller_.has_seven_joints() ? 75 : 65;
        if (starts_up) {
            arm_ = std::make_unique<zk::fuzz::Arm>(arm_mode, listener);
        } else {
            arm_ = std::make_unique<zk::fuzz::Arm>(arm_mode);
        }
    }

    void act(zk::fuzz::Input& input) {
        switch (input.byte()) {
            case 4:
                return call(input.up_to_any(kActions));
            case 5:
                slice_ = input.byte() + std::size_t{1};
                return;
            case 6:
                lose_at_ = input.byte();
                return;
            case 7:
                change_to_ = static_cast<char>(input.byte()), change_at_ = input.byte();
                return;
            case 8:
                arm_->send(input.up_to_any(kActions));
                return;
            case 11:
                held_ms_ = input.byte() * 10;
                return;
            case 12:
                steps_ = kMostSteps;
                return;
        }
    }

 private:
    static constexpr int kMostSteps = 1000;  // of simulated time for each input
    static constexpr std::ptrdiff_t kNever = -1;

    // Until the call returns, or the time is up and the controller falls silent.
    void call(const std::string& text) {
        const std::size_t comma = std::min(text.find(','), text.size());
        wait();
        arm_->call(text.substr(0, comma), zk::fuzz::Input(text.substr(std::min(comma + 1, text.size()))));
        wait();
        exchange();
    }
    void wait() {
        while (!arm_->has_ended() && steps_ < kMostSteps) exchange();
        arm_->finish_call();
    }

    // Time passes when nothing else happens.
    void exchange() {
        const std::string requests = arm_->requests();
        controller_.write(requests);
        replies_ += controller_.replies();
        const bool held = zk::fuzz::now < held_until_;
        if (!held && !replies_.empty()) return deliver();
        if (requests.empty()) {
            ++steps_;
            controller_.step();
            zk::fuzz::pass(kStepMs);
        }
        zk::fuzz::let_others_run();
    }

    void deliver() {
        fault(lose_at_, [&](std::size_t at) { replies_.erase(at, 1); });
        fault(change_at_, [&](std::size_t at) { replies_[at] = change_to_; });
        while (!replies_.empty()) {
            arm_->send(std::string_view(replies_).substr(0, slice_));
            replies_.erase(0, slice_);
        }
        held_until_ = zk::fuzz::now + std::exchange(held_ms_, 0);
    }

    template <class Fault>
    void fault(std::ptrdiff_t& at, Fault apply) {
        if (at == kNever) return;
        if (at < std::ssize(replies_)) {
            apply(static_cast<std::size_t>(std::exchange(at, kNever)));
        } else {
            at -= std::ssize(replies_);
        }
    }

    zk::fuzz::Simulated controller_;
    std::unique_ptr<zk::fuzz::Arm> arm_;
    std::string replies_;
    std::size_t slice_ = 4096;
    std::ptrdiff_t lose_at_ = kNever, change_at_ = kNever;
    char change_to_ = 0;
    std::int32_t held_ms_ = 0, held_until_ = zk::fuzz::now;
    int steps_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zk::fuzz::Input input(data, size);
    const std::uint8_t first = input.byte();
    BothSides sides(static_cast<std::uint8_t>(first - '0'), first >= 'a');
    while (!input.at_end()) sides.act(input);
    return 0;
}
