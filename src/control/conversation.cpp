#include "control/conversation.h"

#include <poll.h>
#include <sys/socket.h>

#include <cctype>
#include <cerrno>
#include <new>
#include <system_error>

#include "connection/journal.h"
#include "connection/product.h"
#include "connection/reply.h"
#include "connection/request.h"
#include "zk/replies/arm_state.h"
#include "zk/replies/frames.h"
#include "zk/replies/realtime.h"
#include "zk/status.h"

namespace zk {
namespace {

constexpr int32_t kSliceMs = 10;
constexpr int32_t kPushMs = 1000;  // for a query that a controller without a stream may not know
constexpr size_t kLongestMessage = 10240;
constexpr int kQuoted = 60;  // bytes of a strange message that a failure quotes

// One question at a time on a connected socket.
class Talk {
 public:
    Talk(int descriptor, Attempt& attempt) : descriptor_(descriptor), attempt_(attempt) {}

    // Sends a request without keys and waits for the message that contains the literal. Other messages are skipped:
    // reports, which a controller sends to all its clients.
    int ask(const char* command, const char* literal, int32_t limit = INT32_MAX) {
        const int32_t start = Get_Program_Runtime();
        if (const int status = send_request(command)) return status;
        for (;;) {
            while (cut()) {
                if (Reply(message_.c_str()).status() != ZK_OK) return strange(message_);
                if (message_.find(literal) != message_.npos) return answered_ = true, ZK_OK;
                talks_ = true;
            }
            if (!begins_as_message()) return strange(text_);
            if (elapsed_since(start) >= limit || attempt_.left() == 0) return silent(command);
            if (const int status = receive()) return status;
        }
    }
    const char* message() const { return message_.c_str(); }
    std::string rest() { return std::move(text_); }

    int broken(const char* command, int status) {
        return attempt_.fail(ZK_NO_CONTROLLER, "the reply to \"%s\" cannot be read: %s", command,
                             ZK_Status_Text(status));
    }

 private:
    int send_request(const char* command) {
        const Frame frame = Request(0, command).frame();
        for (int sent = 0; sent < frame.length;) {
            const ssize_t taken = send(descriptor_, frame.text + sent, static_cast<size_t>(frame.length - sent),
                                       MSG_DONTWAIT | MSG_NOSIGNAL);
            if (taken > 0) {
                sent += static_cast<int>(taken);
            } else if (errno != EAGAIN && errno != EINTR) {
                return lost(errno);
            } else if (attempt_.left() == 0) {
                return silent(command);
            } else {
                wait_for(POLLOUT);
            }
        }
        log_frame(0, Way::kSent, frame.text, static_cast<size_t>(frame.length));
        return ZK_OK;
    }

    int receive() {
        wait_for(POLLIN);
        char bytes[2048];
        const ssize_t got = recv(descriptor_, bytes, sizeof bytes, MSG_DONTWAIT);
        if (got == 0) return attempt_.fail(ZK_LOST, "the peer closed the connection during the start-up");
        if (got < 0) return errno == EAGAIN || errno == EINTR ? int(ZK_OK) : lost(errno);
        text_.append(bytes, static_cast<size_t>(got));
        return ZK_OK;
    }

    void wait_for(short events) const {
        pollfd wanted{descriptor_, events, 0};
        (void)poll(&wanted, 1, kSliceMs);
    }

    // Takes the first whole message, without its CRLF.
    bool cut() {
        const size_t begin = text_.find_first_not_of("\r\n");
        const size_t end = begin == text_.npos ? begin : text_.find("\r\n", begin);
        if (end == text_.npos) return false;
        message_ = text_.substr(begin, end - begin);
        text_.erase(0, end + 2);
        log_frame(0, Way::kReceived, message_.c_str(), message_.size());
        return true;
    }

    bool begins_as_message() const {
        const size_t begin = text_.find_first_not_of(" \t\r\n");
        return text_.size() < kLongestMessage && (begin == text_.npos || text_[begin] == '{');
    }

    int strange(const std::string& text) {
        std::string quoted = text.substr(0, text.find_first_of("\r\n"));
        quoted.resize(std::min(quoted.size(), size_t{kQuoted}));
        for (char& byte : quoted) byte = std::isprint(static_cast<unsigned char>(byte)) ? byte : '?';
        return attempt_.fail(ZK_NO_CONTROLLER, "the peer sent \"%s\"", quoted.c_str());
    }

    int silent(const char* command) {
        if (talks_ && !answered_)
            return attempt_.fail(ZK_NO_CONTROLLER, "the peer sends messages, but no reply to \"%s\"", command);
        return attempt_.fail(ZK_NO_ANSWER, "no reply to \"%s\" within %d ms", command, attempt_.limit());
    }

    int lost(int error) {
        return attempt_.fail(ZK_LOST, "during the start-up: %s", std::generic_category().message(error).c_str());
    }

    int descriptor_;
    Attempt& attempt_;
    std::string text_;     // received and not cut yet
    std::string message_;  // cut last
    bool answered_ = false, talks_ = false;
};

struct LimitQuery {
    const char* command;
    const char* literal;
    JointArray form;
    float (Introduction::*values)[8];
};

constexpr LimitQuery kLimits[] = {
    {"get_joint_max_speed", "joint_max_speed", {.key = "joint_speed", .factor = 6.0f}, &Introduction::max_speed},
    {"get_joint_max_acc", "joint_max_acc", {.key = "joint_acc", .factor = 6.0f}, &Introduction::max_acceleration},
    {"get_joint_min_pos", "joint_min_pos", {.key = "min_pos"}, &Introduction::min_position},
    {"get_joint_max_pos", "joint_max_pos", {.key = "max_pos"}, &Introduction::max_position},
};

bool has_seven_joints(int32_t arm_mode) { return arm_mode == 75 || arm_mode == 72; }

// Joints and arm mode of a model number; the revisions of the 63 arms share a mode.
struct ModelMode {
    int32_t model, joints, arm_mode;
};
constexpr ModelMode kModes[] = {{0, 6, 65}, {1, 7, 75}, {3, 6, 631}, {5, 6, 651}, {6, 6, 62}, {7, 7, 72}, {8, 6, 634}};

// Asks the questions in their order. Each returns 0 or a status.
class Learner {
 public:
    Learner(int32_t arm_mode, Attempt& attempt, Introduction& arm)
        : arm_mode_(arm_mode), attempt_(attempt), arm_(arm), talk_(arm.peer.descriptor.get(), attempt) {}

    int run() {
        for (const auto step : {&Learner::product, &Learner::tool, &Learner::work, &Learner::mounting, &Learner::limits,
                                &Learner::settle_mode, &Learner::push}) {
            if (const int status = (this->*step)()) return status;
        }
        arm_.rest = talk_.rest();
        return ZK_OK;
    }

 private:
    // Asks, and reads the reply by `parse`, which returns a status.
    template <class Parse>
    int learn(const char* command, const char* literal, Parse parse) {
        if (const int status = talk_.ask(command, literal)) return status;
        const int status = parse(talk_.message());
        return status ? talk_.broken(command, status) : int(ZK_OK);
    }

    int product() {
        return learn("get_arm_software_info", "arm_software_info", [&](const char* text) {
            Reply reply(text);
            const Item name = reply.text(reply.root(), "Product_version");
            const Product product = product_of(name.text());
            arm_.model = product.model;
            arm_.sensor = std::max(0, product.sensor);
            return reply.status();
        });
    }

    int tool() {
        return learn("get_current_tool_frame", "current_tool_frame",
                     [&](const char* text) { return Parser_Get_Current_Tool_Frame(text, &arm_.tool); });
    }

    int work() {
        return learn("get_current_work_frame", "current_work_frame",
                     [&](const char* text) { return Parser_Get_Current_Work_Frame(text, &arm_.work); });
    }

    int mounting() {
        float* angles = arm_.mounting;
        return learn("get_install_pose", "install_pose", [&](const char* text) {
            return Parser_Get_Install_Pose(text, &angles[0], &angles[1], &angles[2]);
        });
    }

    // The first array has the joints of the arm; the others must have as many.
    int limits() {
        for (const LimitQuery& query : kLimits) {
            const int status = learn(query.command, query.literal, [&](const char* text) {
                Reply reply(text);
                const int size = reply.array(reply.root(), query.form.key).size();
                if (arm_.joint_count == 0 && (size == 6 || size == 7)) arm_.joint_count = size;
                return joint_array_of(arm_.joint_count, text, query.form, arm_.*query.values);
            });
            if (status) return status;
        }
        return ZK_OK;
    }

    // A model of another number of joints is none.
    int settle_mode() {
        const int wanted = has_seven_joints(arm_mode_) ? 7 : 6;
        if (arm_mode_ != 0 && wanted != arm_.joint_count) {
            return attempt_.fail(ZK_WRONG_JOINT_COUNT, "arm mode %d has %d joints, the controller's arm has %d",
                                 arm_mode_, wanted, arm_.joint_count);
        }
        int32_t mode = arm_.joint_count == 7 ? 75 : 65;
        const ModelMode* known = std::find_if(std::begin(kModes), std::end(kModes), [&](const ModelMode& row) {
            return row.model == arm_.model && row.joints == arm_.joint_count;
        });
        if (known != std::end(kModes)) {
            mode = known->arm_mode;
        } else {
            arm_.model = -1;
        }
        arm_.arm_mode = arm_mode_ != 0 ? arm_mode_ : mode;
        return ZK_OK;
    }

    // Without a reply, or with one that cannot be read, there is no stream.
    int push() {
        const int status = talk_.ask("get_realtime_push", "get_realtime_push", kPushMs);
        if (status) return status == ZK_NO_ANSWER ? int(ZK_OK) : status;
        RealtimePushConfig config{};
        cuts_texts = true;
        if (Parser_Get_Realtime_Push(talk_.message(), &config) == ZK_OK) arm_.push = config;
        cuts_texts = false;
        return ZK_OK;
    }

    int32_t arm_mode_;
    Attempt& attempt_;
    Introduction& arm_;
    Talk talk_;
};

}  // namespace

int converse(const char* host, int32_t port, int32_t arm_mode, Attempt& attempt, Introduction& out) {
    try {
        Introduction arm;
        if (const int status = dial(host, port, attempt, arm.peer)) return status;
        if (const int status = Learner(arm_mode, attempt, arm).run()) return status;
        out = std::move(arm);
        return ZK_OK;
    } catch (const std::bad_alloc&) {
        return attempt.fail(ZK_NO_MEMORY, "no memory for the start-up");
    } catch (const std::system_error& error) {  // no thread
        return attempt.fail(ZK_NO_MEMORY, "the start-up: %s", error.what());
    }
}

}  // namespace zk
