// Every command of the interface, with extreme and odd arguments, on a controller that does not answer.
#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>

#include "interface.h"
#include "support/scaled_time.h"
#include "support/start_up.h"
#include "support/temporary_file.h"

namespace {

using namespace zk::test;

constexpr int kVariants = 6;

// Room of an argument: enough for every record of the interface, filled with the bytes of the variant.
using Memory = std::deque<std::vector<char>>;

template <class T>
T extreme_number(int variant) {
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_floating_point_v<T>) {
        constexpr T kValues[kVariants] = {Limits::quiet_NaN(), Limits::infinity(),   -Limits::infinity(),
                                          Limits::max(),       Limits::denorm_min(), T(-1)};
        return kValues[variant];
    } else {
        constexpr T kValues[kVariants] = {Limits::max(), Limits::min(), T(-1), T(0), T(1), T(7)};
        return kValues[variant];
    }
}

template <class T>
T extreme(int variant, Memory& memory) {
    if constexpr (std::is_pointer_v<T>) {
        using Element = std::remove_const_t<std::remove_pointer_t<T>>;
        constexpr size_t kRoom = 4096, kLongText = 700;
        std::vector<char>& room = memory.emplace_back(kRoom + 16 * sizeof(Element));
        auto* const elements = reinterpret_cast<Element*>(room.data());
        if constexpr (std::is_same_v<Element, char>) {
            const std::string texts[kVariants] = {"",     "\"}\r\n{\"",           "\x80\xff\x01",
                                                  "name", std::string(250, '\\'), std::string(kLongText, 'x')};
            std::strcpy(room.data(), texts[variant].c_str());
        } else if constexpr (std::is_arithmetic_v<Element>) {
            for (int i = 0; i < 16; ++i) elements[i] = extreme_number<Element>(variant);
        } else {
            std::memset(room.data(), variant % 2 ? 0x7f : 0xff, room.size());
        }
        return elements;
    } else if constexpr (std::is_same_v<T, bool>) {
        return variant % 2 == 0;
    } else if constexpr (std::is_arithmetic_v<T>) {
        return extreme_number<T>(variant);
    } else {
        T record{};
        // A pose of not-a-numbers; other records hold booleans.
        const int byte = std::is_same_v<T, Pose> && variant == 0 ? 0xff : variant % 2;
        if constexpr (std::is_trivially_copyable_v<T>) std::memset(&record, byte, sizeof record);
        return record;
    }
}

template <class... Arguments>
int call(int (*command)(ArmSocket, Arguments...), ArmSocket arm, [[maybe_unused]] int variant) {
    Memory memory;
    return command(arm, extreme<Arguments>(variant, memory)...);
}

// Whether the command sends a float that is not finite in this variant. Two commands ask the controller first.
template <class... Arguments>
bool sends_not_finite(int (*)(ArmSocket, Arguments...), const std::string& name, int variant) {
    const bool asks_first = name == "MoveCartesianTool_Cmd" || name == "MoveRotate_Cmd";
    constexpr bool kHasFloat = ((std::is_same_v<Arguments, float> || std::is_same_v<Arguments, const float*>) || ...);
    constexpr bool kHasPose = (std::is_same_v<Arguments, Pose> || ...);
    return !asks_first && ((kHasFloat && variant <= 2) || (kHasPose && variant == 0));
}

// A connection in a time that runs a hundred times as fast.
class EveryCommand : public testing::Test {
 protected:
    void SetUp() override {
        answer_start_up(controller_);
        ASSERT_EQ(ZK_Connect("127.0.0.1", controller_.port(), nullptr, &arm_), 0) << ZK_Failure();
        set_time_factor(100);
    }
    void TearDown() override { EXPECT_EQ(ZK_Close(arm_), 0); }

    static void expect_refused(const char* name, int variant, int status) {
        EXPECT_EQ(status, ZK_BAD_ARGUMENT) << name << " " << variant;
    }
    static void expect_ended(const char* name, int variant, int status) {
        EXPECT_TRUE(status > ZK_CANCELLED || status == ZK_DEADLINE) << name << " " << variant << ": " << status;
        EXPECT_STRNE(ZK_Status_Text(status), "unknown status") << name << " " << variant << ": " << status;
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST_F(EveryCommand, RefusesNumbersThatAreNotFinite) {
    for (int variant = 0; variant < kVariants; ++variant) {
#define ZK_REFUSES(name) \
    if (sends_not_finite(name, #name, variant)) expect_refused(#name, variant, call(name, arm_, variant));
        ZK_EVERY_COMMAND(ZK_REFUSES)
#undef ZK_REFUSES
    }
}

// A wait without an end hangs the test; a write outside of a buffer is AddressSanitizer's to see.
TEST_F(EveryCommand, EndsInItsDeadlineAndSendsOneObjectAFrame) {
    const TemporaryDirectory directory;  // of the files that are saved
    std::filesystem::current_path(directory.path());
    // The route of such a reply writes the process-wide model, which a command of this thread writes as well.
    for (const char* question : {"get_install_pose", "get_current_tool_frame", "get_current_work_frame"}) {
        controller_.ignore(question);
    }
    ASSERT_EQ(ZK_Set_Deadline(arm_, 50, ZK_ALL_THREADS), 0);
    for (int variant = 0; variant < kVariants; ++variant) {
#define ZK_CALL(name) expect_ended(#name, variant, call(name, arm_, variant));
        ZK_EVERY_COMMAND(ZK_CALL)
        ZK_CALL(Save_Trajectory)
        ZK_CALL(Save_Drag_Teach_File_Block_NC_E)
        ZK_CALL(Save_Drag_Teach_File_NonBlock)
        ZK_CALL(ZK_Stop)
        ZK_CALL(ZK_Wait_Idle)
        ZK_CALL(ZK_Wait_Move)
        ZK_CALL(ZK_Wait_Program)
#undef ZK_CALL
    }

    int count = 0;
    const std::string all = controller_.received();
    for (size_t start = 0, end; (end = all.find("\r\n", start)) != std::string::npos; start = end + 2) {
        const auto frame = nlohmann::json::parse(all.substr(start, end - start), nullptr, false);
        EXPECT_TRUE(frame.is_object()) << all.substr(start, end - start);
        for (const char* not_finite : {"null", "-2147483648"}) {
            EXPECT_EQ(frame.dump().find(not_finite), std::string::npos) << frame;
        }
        ++count;
    }
    EXPECT_GT(count, 1000);
}

}  // namespace
