// Connections of ZK_Connect, and a peer whose bytes, slices, delays and ends the input picks. Left alone, the peer
// answers the questions of the start-up as a controller does. Control characters act: 1 and a byte let so many
// hundredths of a second pass; 2 and a byte let the peer answer so many more requests; 4, a name, a comma and the bytes
// of its arguments is a command; 5 and a byte cuts answers into slices of so many bytes; 6 and what follows is the
// answer to every question that contains its text up to a comma; 7 and two bytes are a call of zk/control.h; 8 sends
// what follows, 11 as a datagram; 12 and a byte closes, resets or half-closes; 14 and a byte choose another connection.
#include <algorithm>
#include <iterator>
#include <mutex>
#include <set>

#include "library.h"

namespace {

using zk::fuzz::expect;
using zk::fuzz::Input;

constexpr std::string_view kActions("\1\2\4\5\6\7\10\13\14\16", 10);
constexpr ArmSocket kNoHandle = 1 << 30;

// The port that the peer pushes to.
const int kPushPort = [] {
    const int probe = socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    socklen_t size = sizeof address;
    bind(probe, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    close(probe);
    return ntohs(address.sin6_port);
}();

const std::map<std::string, std::string> kAnswers{
    {"get_arm_software_info", R"({"state":"arm_software_info","Product_version":"ZK65-B"})"},
    {"get_current_tool_frame",
     R"({"state":"current_tool_frame","tool_name":"t","pose":[0,0,0,0,0,0],"payload":0,"position":[0,0,0]})"},
    {"get_current_work_frame", R"({"state":"current_work_frame","frame_name":"w","pose":[0,0,0,0,0,0]})"},
    {"get_install_pose", R"({"state":"install_pose","pose":[0,0,0]})"},
    {"get_joint_max_speed", R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6]})"},
    {"get_joint_max_acc", R"({"state":"joint_max_acc","joint_acc":[1,2,3,4,5,6]})"},
    {"get_joint_min_pos", R"({"state":"joint_min_pos","min_pos":[-1,-2,-3,-4,-5,-6]})"},
    {"get_joint_max_pos", R"({"state":"joint_max_pos","max_pos":[1,2,3,4,5,6]})"},
    {"get_realtime_push",
     R"({"state":"get_realtime_push","cycle":1,"enable":true,"force_coordinate":0,"ip":"127.0.0.1",)"
     R"("custom":{"joint_speed":false,"lift_state":false,"expand_state":false,"hand":false,"arm_current_status":false,"aloha_state":false},"port":)" +
         std::to_string(kPushPort) + "}"},
};

bool has_name(int status) { return std::string_view(ZK_Status_Text(status)) != "unknown status"; }

// No callback runs for a connection that is closed.
class Callbacks {
 public:
    static Callbacks& all() {
        static Callbacks only;
        return only;
    }
    void closed(ArmSocket arm) {
        const std::lock_guard guard(lock_);
        closed_.insert(arm);
    }
    void set(bool on) {
        ZK_Set_Log(on ? log : nullptr, this, ZK_LOG_FRAMES);
        ZK_Set_Connection_Callback(on ? change : nullptr, this);
    }

 private:
    static void log(void* all, ZK_LogLevel, ArmSocket arm, const char*) { static_cast<Callbacks*>(all)->look(arm); }
    static void change(void* all, ArmSocket arm, ZK_ConnectionState state, const char*) {
        static_cast<Callbacks*>(all)->look(arm);
        if (state == ZK_CONNECTION_LOST && arm % 64 >= 32) ZK_Close(arm);  // every other connection of a slot
    }
    void look(ArmSocket arm) {
        for (int i = 0; i < 2; ++i, zk::fuzz::let_others_run()) {
            const std::lock_guard guard(lock_);
            expect(closed_.count(arm) == 0, "no callback runs for a closed connection");
        }
    }

    std::mutex lock_;
    std::set<ArmSocket> closed_;
};

// The controllers' side: every connection to the listener.
class Peer {
 public:
    explicit Peer(const zk::fuzz::Listener& listener) : listener_(listener) {}

    // Takes and answers what has come; false when nothing has.
    bool serve() {
        bool busy = false;
        for (; listener_.is_called(); busy = true)
            lines_.push_back({std::make_unique<zk::fuzz::Wire>(listener_.accept()), {}});
        for (Line& line : lines_) {
            line.requests += line.wire->requests();
            for (std::size_t end; (end = line.requests.find("\r\n")) != std::string::npos; busy = true) {
                answer(*line.wire, line.requests.substr(0, end));
                line.requests.erase(0, end + 2);
            }
        }
        return busy;
    }
    std::size_t connections() const { return lines_.size(); }
    void choose(std::size_t number) { chosen_ = number; }
    void send(const std::string& bytes) {
        if (zk::fuzz::Wire* wire = chosen()) wire->send(bytes);
    }
    void end(int kind) {
        zk::fuzz::Wire* wire = chosen();
        if (!wire) return;
        kind == 0 ? wire->hang_up() : kind == 1 ? wire->reset() : wire->send_no_more();
    }

    int answers_left = 255;
    std::size_t slice = 4096;
    std::string question, answer_to_it;

 private:
    struct Line {
        std::unique_ptr<zk::fuzz::Wire> wire;
        std::string requests;
    };

    zk::fuzz::Wire* chosen() {
        return lines_.empty() ? nullptr : lines_[lines_.size() - 1 - chosen_ % lines_.size()].wire.get();
    }
    void answer(zk::fuzz::Wire& wire, const std::string& request) {
        if (answers_left == 0) return;
        if (answers_left < 255) --answers_left;
        if (!question.empty() && request.find(question) != request.npos) return send_in_slices(wire, answer_to_it);
        for (const auto& [command, answer] : kAnswers) {
            if (request.find(command) != request.npos) send_in_slices(wire, answer + "\r\n");
        }
    }
    void send_in_slices(zk::fuzz::Wire& wire, std::string_view bytes) {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(slice, bytes.size()))) {
            wire.send(bytes.substr(0, slice));
            if (bytes.size() > slice) zk::fuzz::let_others_run();
        }
    }

    const zk::fuzz::Listener& listener_;
    std::vector<Line> lines_;
    std::size_t chosen_ = 0;
};

class Application {
 public:
    Application() : listener_(shared_listener()), peer_(listener_) {}
    ~Application() {
        finish();
        for (const ArmSocket arm : arms_) close(arm);
        expect(ZK_Close_All() == 0, "a connection that failed takes no slot");
        zk::fuzz::wait_until([] { return m_nSockInfoLen == 1; });  // a callback may be closing one
        Callbacks::all().set(false);
        zk::fuzz::forget();
    }

    void act(Input& input) {
        const int action = input.byte();
        if (action == 4) finish();
        switch (action) {
            case 1:
                zk::fuzz::pass(input.byte() * 10);
                break;
            case 2:
                peer_.answers_left = input.byte();
                break;
            case 4:
                command(input.up_to_any(kActions));
                break;
            case 5:
                peer_.slice = input.byte() + std::size_t{1};
                break;
            case 6:
                peer_.question = input.up_to_any(",");
                peer_.answer_to_it = (input.byte(), input.up_to_any(kActions));
                break;
            case 7: {
                const int call = input.byte() % kControls;
                if (call < kWaiting) finish();
                control(call, input.byte());
                break;
            }
            case 8:
                peer_.send(input.up_to_any(kActions));
                break;
            case 11:
                push(input.up_to_any(kActions));
                break;
            case 12:
                peer_.end(input.byte() % 3);
                break;
            case 14:
                chosen_ = input.byte();
                peer_.choose(chosen_);
                break;
        }
        settle();
    }

 private:
    static constexpr int kQuietTurns = 40, kLooks = 100, kNone = -1, kControls = 15, kWaiting = 5;
    static constexpr std::size_t kMostArms = zk::fuzz::kMostConnections - 1;

    static const zk::fuzz::Listener& shared_listener() {
        static const zk::fuzz::Listener listener;
        return listener;
    }
    ArmSocket arm() const { return arms_.empty() ? kNoHandle : arms_[arms_.size() - 1 - chosen_ % arms_.size()]; }

    // Serves until the call has ended, or waits for what the peer does not send.
    void settle() {
        for (int quiet = 0; quiet < kQuietTurns; ++quiet) {
            if (peer_.serve()) quiet = 0;
            if (caller_.has_ended() && quiet > 0) return collect();
            zk::fuzz::let_others_run();
        }
    }

    // The call ends after `limit` milliseconds at the latest; without one it has to be cancelled.
    template <class Call>
    void start(int limit, Call call) {
        limit_ = limit;
        target_ = arm();
        caller_.start(std::move(call));
    }
    template <class Call>
    void start_named(int limit, Call call) {
        start(limit, [call, arm = arm()] { expect(has_name(call(arm)), "a status has a name"); });
    }

    // Once its limit has passed, a call ends while the time stands still. A thread that was late to begin gets the same
    // time again.
    void finish() {
        for (int passes = 0, sleeps = -kLooks; !caller_.has_ended();) {
            if (limit_ == kNone) {
                ZK_Cancel(target_);
            } else if (caller_.sleeps() - sleeps >= kLooks) {
                expect(++passes <= 2, "a call ends at its limit");
                sleeps = caller_.sleeps();
                zk::fuzz::pass(limit_);
            }
            if (!peer_.serve()) zk::fuzz::let_others_run();
        }
        collect();
    }
    void collect() {
        caller_.join();
        if (const ArmSocket arm = std::exchange(connected_, 0)) arms_.push_back(arm);
    }

    int limit_of_arm() const {
        const auto deadline = deadlines_.find(arm());
        return deadline == deadlines_.end() || deadline->second == 0 ? kNone : deadline->second;
    }
    int limit_within(int own) const { return limit_of_arm() == kNone ? own : std::min(own, limit_of_arm()); }

    void command(const std::string& text) {
        const std::size_t comma = std::min(text.find(','), text.size());
        start(limit_of_arm(),
              [&command = zk::fuzz::command_of(text.substr(0, comma)), arm = arm(),
               arguments = Input(text.substr(std::min(comma + 1, text.size())))] { command(arm, arguments); });
    }

    void connect(std::uint8_t way) {
        if (arms_.size() == kMostArms) return;
        constexpr int kModes[] = {0, 65, 75, 64}, kHeartbeats[] = {0, 20, 0, 19};
        ZK_ConnectOptions options{};
        options.timeout_ms = 10 * way;
        options.arm_mode = kModes[way % 4];
        options.heartbeat_ms = kHeartbeats[way / 4 % 4];
        options.flags = way % 32 < 16 ? ZK_KEEP_MODEL : 0;
        const std::size_t before = peer_.connections();
        start(options.timeout_ms ? options.timeout_ms : 5000, [this, options, port = listener_.port()] {
            const int status = ZK_Connect(options.flags ? "127.0.0.1" : "localhost", port, &options, &connected_);
            expect(has_name(status), "a status has a name");
            expect((status == ZK_OK) == (connected_ != 0), "a handle comes with 0 alone");
        });
        zk::fuzz::wait_until([&] {
            peer_.serve();
            return caller_.has_ended() || peer_.connections() > before;
        });
    }

    void close(ArmSocket arm) {
        const int status = ZK_Close(arm);
        expect(status == ZK_OK || status == ZK_STALE_HANDLE, "a close succeeds once");
        if (status == ZK_OK) Callbacks::all().closed(arm);
        ZK_ConnectionRecord record;
        ZK_State state;
        for (const int stale : {ZK_Close(arm), ZK_Cancel(arm), ZK_Stop(arm, ZK_STOP), ZK_Set_Deadline(arm, 1, 0),
                                ZK_Connection(arm, &record), ZK_Get_State(arm, &state, 0), ZK_Wait_Idle(arm, 10)}) {
            expect(stale == ZK_STALE_HANDLE, "the handle of a closed connection is stale");
        }
    }

    void control(int call, std::uint8_t way) {
        constexpr int kKinds[] = {ZK_STOP, ZK_SLOW_STOP, ZK_PAUSE, ZK_EMERGENCY_STOP, 4};
        const int time = 1 + way * 10;
        ZK_State state;
        ZK_ConnectionRecord record;
        ZK_Advice advice;
        switch (call) {
            case 0:
                return connect(way);
            case 1:
                return start_named(limit_within(time), [time](ArmSocket arm) {
                    return time % 20 == 1 ? ZK_Wait_Idle(arm, time) : ZK_Wait_Move(arm, time);
                });
            case 2:
                return start_named(limit_within(time), [time](ArmSocket arm) {
                    ZK_ProgramOutcome outcome;
                    return ZK_Wait_Program(arm, time, &outcome);
                });
            case 3:
                return start_named(limit_of_arm(), [](ArmSocket arm) {
                    float share = 0;
                    const int status = ZK_Move_Progress(arm, &share);
                    expect(share >= 0 && share <= 1, "a share is within 0 and 1");
                    return status;
                });
            case 4:
                return start_named(limit_of_arm(), [text = std::string(way * 100u, 'x')](ArmSocket arm) {
                    return Send_Project_Block(arm, text.c_str(), static_cast<std::int32_t>(text.size()), nullptr);
                });
            case 5:
                return expect(has_name(ZK_Cancel(arm())), "a status has a name");
            case 6:
                return expect(has_name(ZK_Stop(arm(), kKinds[way % 5] | (way % 2 ? ZK_DROP_QUEUED : 0))),
                              "a status has a name");
            case 7:
                if (ZK_Set_Deadline(arm(), way * 10, ZK_ALL_THREADS | (way % 2 ? ZK_STOP_AT_DEADLINE : 0)) == ZK_OK)
                    deadlines_[arm()] = way * 10;
                return;
            case 8:
                return expect(has_name(ZK_Get_State(arm(), &state, way)), "a status has a name");
            case 9:
                return expect(has_name(ZK_Connection(arm(), &record)), "a status has a name");
            case 10:
                if (arm() != kNoHandle) close(arm());
                return;
            case 11:
                return expect(has_name(ZK_Explain(static_cast<std::int8_t>(way), way, way, &advice)),
                              "a status has a name");
            case 12:
                return ZK_Model_Free(ZK_Arm_Model(arm()));
            case 13:
                return Callbacks::all().set(way % 2);
            case 14:
                for (int i = 0; i < way; ++i) Move_Continue_Cmd_NonBlock(arm());
                return;
        }
    }

    void push(const std::string& datagram) {
        static const int sender = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        to.sin_port = htons(static_cast<std::uint16_t>(kPushPort));
        (void)sendto(sender, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
        ZK_ConnectionRecord before{}, after{};
        ZK_Connection(arm(), &before);
        for (int turn = 0; turn < kQuietTurns && after.datagrams == before.datagrams; ++turn) {
            zk::fuzz::let_others_run();
            ZK_Connection(arm(), &after);
        }
    }

    zk::fuzz::Receiver& receiver_ = zk::fuzz::Receiver::started();
    const zk::fuzz::Listener& listener_;
    Peer peer_;
    std::vector<ArmSocket> arms_;
    std::size_t chosen_ = 0;
    std::map<ArmSocket, int> deadlines_;
    int limit_ = kNone;
    ArmSocket target_ = 0, connected_ = 0;
    zk::fuzz::Caller caller_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kMostActions = 60;
    Input input(data, size);
    Application application;
    for (int i = 0; i < kMostActions && !input.at_end(); ++i) application.act(input);
    return 0;
}
