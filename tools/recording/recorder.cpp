#include "recording/recorder.h"

#include <cstring>
#include <filesystem>
#include <iomanip>
#include <mutex>
#include <thread>
#include <utility>

#include "look/push.h"
#include "recording/arm_description.h"
#include "recording/messages.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kLongestSilence = std::chrono::seconds(3);  // before the first state

std::int64_t unix_now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// Lines of the library's log, which come on its threads, until the recorder takes them.
class Log {
 public:
    explicit Log(ZK_LogLevel level) { ZK_Set_Log(&Log::add, this, level); }
    ~Log() { ZK_Set_Log(nullptr, nullptr, ZK_LOG_EVENTS); }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    std::vector<LogRecord> take() {
        const std::lock_guard guard(lock_);
        return std::exchange(lines_, {});
    }

 private:
    static void add(void* context, ZK_LogLevel level, ArmSocket, const char* text) {
        auto* log = static_cast<Log*>(context);
        const std::lock_guard guard(log->lock_);
        log->lines_.push_back({unix_now(), level == ZK_LOG_FRAMES, text});
    }
    std::mutex lock_;
    std::vector<LogRecord> lines_;
};

// Where the records go.
class Sink {
 public:
    virtual ~Sink() = default;
    virtual void add(const ArmRecord& record) = 0;
    virtual void add(const LogRecord&) {}
    virtual void finish() = 0;
};

class McapSink : public Sink {
 public:
    McapSink(const std::string& path, const zk::Arm& arm) : file_(path), topics_(file_) {
        file_.add_metadata("arm", describe(arm));
    }
    void add(const ArmRecord& record) override { topics_.add(record); }
    void add(const LogRecord& record) override { topics_.add(record); }
    void finish() override { file_.finish(); }

 private:
    McapWriter file_;
    Topics topics_;
};

class CsvSink : public Sink {
 public:
    CsvSink(const std::string& path, std::size_t joints) : path_(path), file_(path) {
        write_csv_heading(file_, joints);
        check();
    }
    void add(const ArmRecord& record) override {
        if (begin_ns_ == 0) begin_ns_ = record.unix_ns;
        write_csv(file_, record, begin_ns_);
        check();
    }
    void finish() override {
        file_.close();
        check();
    }

 private:
    void check() const {
        if (!file_) throw Failure(kFailed, path_ + " cannot be written: " + std::strerror(errno));
    }
    std::string path_;
    std::ofstream file_;
    std::int64_t begin_ns_ = 0;
};

std::unique_ptr<Sink> sink_for(const RecordOptions& options, const zk::Arm& arm) {
    if (options.path.ends_with(".mcap")) return std::make_unique<McapSink>(options.path, arm);
    return std::make_unique<CsvSink>(options.path, arm.joint_count());
}

}  // namespace

RecordSummary record(const ArmOption& where, const RecordOptions& options, const std::atomic<bool>& ended,
                     const std::function<void(const RecordSummary&)>& progress) {
    Log log(options.wire ? ZK_LOG_FRAMES : ZK_LOG_EVENTS);
    const zk::Arm arm = where.connect();
    zk::StateStream states = arm.states();
    const auto sink = sink_for(options, arm);
    const Clock::time_point begin = Clock::now();
    const std::int64_t unix_offset = unix_now() - std::chrono::nanoseconds(begin.time_since_epoch()).count();
    RecordSummary summary;
    std::uint32_t last = 0;
    auto next_progress = begin;
    while (!ended && (options.time.count() == 0 || Clock::now() - begin < options.time)) {
        zk::Result<zk::State> state = states.next_in_order();
        for (const LogRecord& line : log.take()) sink->add(line);
        for (; state; state = states.next_in_order()) {
            if (last != 0) summary.lost += state->record.sequence - last - 1;
            last = state->record.sequence;
            sink->add(ArmRecord::from(state->record, state->record.host_ns + unix_offset));
            ++summary.states;
        }
        const ZK_ConnectionRecord connection = arm.connection().value();
        if (connection.state != ZK_CONNECTION_UP) {
            sink->finish();
            throw Failure(kNoArm, "the arm is lost after " + std::to_string(summary.states) + " states, which " +
                                      options.path + " holds: " + connection.cause);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        const Clock::time_point now = Clock::now();
        summary.seconds = std::chrono::duration<double>(now - begin).count();
        if (summary.states == 0 && now - begin > kLongestSilence) break;
        if (progress && now >= next_progress) {
            progress(summary);
            next_progress = now + std::chrono::milliseconds(100);
        }
    }
    sink->finish();
    if (summary.states == 0) throw Failure(kFailed, "no state comes. " + why_no_state(arm).text());
    std::error_code none;
    summary.bytes = std::filesystem::file_size(options.path, none);
    return summary;
}

void write_csv_heading(std::ostream& out, std::size_t joints) {
    out << "time_s,sequence";
    for (const char* what : {"position_deg", "speed_deg_s", "current_a", "voltage_v", "temperature_c", "error"}) {
        for (std::size_t i = 1; i <= joints; ++i) out << ",joint" << i << '_' << what;
    }
    out << ",x_m,y_m,z_m,qw,qx,qy,qz,fx_n,fy_n,fz_n,mx_nm,my_nm,mz_nm,arm_error,system_error\n";
}

void write_csv(std::ostream& out, const ArmRecord& record, std::int64_t begin_ns) {
    const auto add = [&out](const auto& values) {
        for (const auto& value : values) out << ',' << value;
    };
    out << std::setprecision(9) << static_cast<double>(record.unix_ns - begin_ns) / 1e9 << std::setprecision(7) << ','
        << record.sequence;
    add(record.position_deg);
    add(record.speed_deg_s);
    add(record.current_a);
    add(record.voltage_v);
    add(record.temperature_c);
    add(record.joint_error);
    add(record.tool_position_m);
    add(record.tool_quaternion_wxyz);
    add(record.force);
    out << ',' << record.arm_error << ',' << record.system_error << '\n';
}

}  // namespace tool
