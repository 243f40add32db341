// How the examples connect, read their arguments and check statuses.
#pragma once

#include <cstdio>
#include <cstdlib>

#include "zk_base.h"

inline bool succeeded(const char* what, int status) {
    if (status != ZK_OK) std::fprintf(stderr, "%s failed with status %d: %s\n", what, status, ZK_Status_Text(status));
    return status == ZK_OK;
}

// An open arm that is closed at the end of its scope. Check is_open() before use.
class Arm {
 public:
    Arm(const char* address, int port, int arm_mode, MotionReportCallback callback = nullptr) {
        ZK_API_Init(arm_mode, callback);
        socket_ = Arm_Socket_Start(address, port, 5000);
        if (is_open()) return;
        succeeded("Connecting", socket_);
        if (socket_ == ZK_WRONG_SIZE)
            std::fprintf(stderr, "The arm mode does not fit the arm: 65 for six joints, 75 for seven.\n");
    }
    ~Arm() {
        if (is_open()) Arm_Socket_Close(socket_);
    }
    Arm(const Arm&) = delete;
    Arm& operator=(const Arm&) = delete;

    bool is_open() const { return socket_ > ZK_LARGEST_STATUS; }
    operator ArmSocket() const { return socket_; }

 private:
    ArmSocket socket_;
};

// ADDRESS PORT [ARM_MODE] [SECONDS]. The arm mode is 65 for six joints and 75 for seven. Only programs with a duration
// take SECONDS.
struct Arguments {
    const char* address;
    int port;
    int arm_mode;
};

inline Arguments arguments(int argc, char** argv, int* seconds = nullptr) {
    if (argc < 3 || argc > (seconds ? 5 : 4)) {
        std::fprintf(stderr, "usage: %s ADDRESS PORT [ARM_MODE%s]\n", argv[0], seconds ? " [SECONDS]" : "");
        std::exit(2);
    }
    const auto number = [&](int i) {
        char* end;
        const long value = std::strtol(argv[i], &end, 10);
        if (*end == '\0' && value > 0 && value < 65536) return static_cast<int>(value);
        std::fprintf(stderr, "%s: \"%s\" is not a number from 1 to 65535\n", argv[0], argv[i]);
        std::exit(2);
    };
    if (argc == 5) *seconds = number(4);
    return {argv[1], number(2), argc >= 4 ? number(3) : 65};
}
