/* Two arms on two controllers, of any models: both move at once, each is watched by a stream of its own, the first is
 * stopped on its way, and the second arrives undisturbed.
 *
 *     12_two_arms_connected HOST PORT HOST PORT */
#define _POSIX_C_SOURCE 200809L
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "zk_base.h"

enum { ARMS = 2, MAX_AGE_MS = 5000, SPEED = 10, LOOK_MS = 20, PATIENCE_MS = 60000 };

typedef struct {
    const char* name;
    ArmSocket handle;
    ZK_Model* model;
    float target[7];
} Arm;

static int fail(const char* what, int status) {
    ZK_Advice advice;
    ZK_Explain(status, 0, 0, &advice);
    fprintf(stderr, "%s: %s (%s)\n%s %s\n", what, ZK_Status_Text(status), ZK_Failure(), advice.cause, advice.remedy);
    return EXIT_FAILURE;
}

static void sleep_ms(long ms) {
    const struct timespec time = {0, ms * 1000000};
    nanosleep(&time, NULL);
}

/* The first record of a stream takes a cycle to come. */
static int first_state(const Arm* arm, ZK_State* state) {
    int status = ZK_NO_STATE, tries;
    for (tries = 0; tries < 100 && status == ZK_NO_STATE; ++tries) {
        status = ZK_Get_State(arm->handle, state, MAX_AGE_MS);
        if (status == ZK_NO_STATE) sleep_ms(10);
    }
    return status;
}

static int connect_arm(Arm* arm, const char* host, const char* port) {
    ZK_ConnectOptions options = {0};
    ZK_State state;
    int status;
    options.flags = ZK_STOP_AT_EXIT;
    status = ZK_Connect(host, atoi(port), &options, &arm->handle);
    if (status != ZK_OK) return fail("Connecting", status);
    arm->model = ZK_Arm_Model(arm->handle);
    if (!arm->model) return fail("The model", ZK_NO_MEMORY);
    status = first_state(arm, &state);
    if (status != ZK_OK) return fail("The stream", status);
    printf("%-6s is a %s with %d joints\n", arm->name, ZK_Model_Name(arm->model), state.joint_count);
    return EXIT_SUCCESS;
}

static int start_move(Arm* arm) {
    ZK_State state;
    int i, status = ZK_Get_State(arm->handle, &state, MAX_AGE_MS);
    if (status != ZK_OK) return fail("The stream", status);
    for (i = 0; i < 7; ++i) arm->target[i] = state.status.joint_position[i];
    arm->target[0] += arm->target[0] > 0 ? -60.0f : 60.0f;
    status = Movej_Cmd(arm->handle, arm->target, SPEED, 0, 0, false);
    return status == ZK_OK ? EXIT_SUCCESS : fail("Moving", status);
}

/* Watches both streams until the first arm is well under way. */
static int watch(const Arm* arms) {
    int looks;
    for (looks = 0; looks < PATIENCE_MS / LOOK_MS; ++looks) {
        float to_go[ARMS];
        int i;
        for (i = 0; i < ARMS; ++i) {
            ZK_State state;
            const int status = ZK_Get_State(arms[i].handle, &state, MAX_AGE_MS);
            if (status != ZK_OK) return fail("The stream", status);
            to_go[i] = fabsf(arms[i].target[0] - state.status.joint_position[0]);
        }
        printf("\r%s has %5.1f deg to go, %s %5.1f deg ", arms[0].name, to_go[0], arms[1].name, to_go[1]);
        fflush(stdout);
        if (to_go[0] < 50) {
            printf("\n");
            return EXIT_SUCCESS;
        }
        sleep_ms(LOOK_MS);
    }
    return fail("Watching the move", ZK_TIMEOUT);
}

/* Where the arm rests: its distance from the target in degrees, below 0 when the stream ended. Its own model computes
 * the pose that its own controller reports. */
static float rest(const Arm* arm) {
    ZK_State state;
    Pose pose;
    int status = ZK_Wait_Idle(arm->handle, PATIENCE_MS);
    const float* p = state.status.position;
    if (status == ZK_OK) status = ZK_Get_State(arm->handle, &state, MAX_AGE_MS);
    if (status == ZK_OK) status = ZK_Model_Forward(arm->model, state.status.joint_position, &pose);
    if (status != ZK_OK) {
        fail("Waiting", status);
        return -1;
    }
    if (fabsf(pose.position.x - p[0]) + fabsf(pose.position.y - p[1]) + fabsf(pose.position.z - p[2]) > 1e-3f)
        return -1;
    printf("%-6s rests at x %.3f y %.3f z %.3f m, %.1f deg from its target\n", arm->name, p[0], p[1], p[2],
           fabsf(arm->target[0] - state.status.joint_position[0]));
    return fabsf(arm->target[0] - state.status.joint_position[0]);
}

int main(int argc, char** argv) {
    Arm arms[ARMS] = {{"first", 0, NULL, {0}}, {"second", 0, NULL, {0}}};
    float left, right;
    int status, i;
    if (argc != 1 + 2 * ARMS) {
        fprintf(stderr, "usage: %s HOST PORT HOST PORT\n", argv[0]);
        return 2;
    }
    for (i = 0; i < ARMS; ++i) {
        if (connect_arm(&arms[i], argv[1 + 2 * i], argv[2 + 2 * i])) return EXIT_FAILURE;
    }
    if (start_move(&arms[0]) || start_move(&arms[1]) || watch(arms)) return EXIT_FAILURE;

    status = ZK_Stop(arms[0].handle, ZK_STOP); /* the first alone */
    if (status != ZK_OK) return fail("Stopping", status);
    left = rest(&arms[0]);
    right = rest(&arms[1]);
    for (i = 0; i < ARMS; ++i) ZK_Model_Free(arms[i].model);
    ZK_Close_All();
    return left > 1 && right >= 0 && right < 0.1f ? EXIT_SUCCESS : EXIT_FAILURE;
}
