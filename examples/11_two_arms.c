/* Two different arms in one program, without a controller: a 65 on the table hands a part to a 75 that hangs from the
 * ceiling. Both are planned in one world frame. The program exits with 1 when a step has no solution. */
#include <stdio.h>
#include <stdlib.h>

#include "zk_base.h"

enum { STEPS = 50 };

static const char* why(const ZK_InverseResult* result) {
    switch (result->cause) {
        case ZK_CAUSE_OUT_OF_REACH:
            return "out of reach";
        case ZK_CAUSE_BEYOND_LIMITS:
            return "beyond the joint limits";
        case ZK_CAUSE_LARGER_STEP:
            return "only by a larger step";
        case ZK_CAUSE_SINGULAR:
            return "singular";
        default:
            return "not finite";
    }
}

/* A work frame that is the world, seen from a base that stands at this position. */
static Pose world_seen_from(float x, float y, float z) {
    Pose frame = {{-x, -y, -z}, {1, 0, 0, 0}, {0, 0, 0}};
    return frame;
}

/* The tool points along +x or -x of the world, to hold the part from either side. */
static Pose grasp(float x, float y, float z, int from_the_left) {
    Pose pose = {{x, y, z}, {0, 0, 0, 0}, {0, from_the_left ? 1.5707963f : -1.5707963f, 0}};
    ZK_Complete_Pose(&pose);
    return pose;
}

/* Moves the arm along a straight line of poses. Returns the largest step of a joint in degrees, or below 0. */
static float approach(const ZK_Model* arm, const Pose* target, float from_x, const float* start, float* end) {
    const int joints = ZK_Model_Joint_Count(arm);
    Pose line[STEPS];
    float path[STEPS * 7], largest = 0;
    ZK_InverseResult first;
    ZK_FollowResult followed;
    for (int i = 0; i < STEPS; ++i) {
        line[i] = *target;
        line[i].position.x += from_x * (STEPS - 1 - i) / (STEPS - 1);
    }
    if (ZK_Model_Inverse(arm, &line[0], start, NULL, end, &first) != 0) {
        printf("the %s cannot start: %s\n", ZK_Model_Name(arm), why(&first));
        return -1;
    }
    if (ZK_Model_Follow(arm, line, STEPS, end, NULL, path, &followed) != 0) {
        printf("the %s stops at pose %d: %s\n", ZK_Model_Name(arm), followed.followed, why(&followed.refusal));
        return -1;
    }
    for (int i = joints; i < STEPS * joints; ++i) {
        const float step = path[i] > path[i - joints] ? path[i] - path[i - joints] : path[i - joints] - path[i];
        if (step > largest) largest = step;
    }
    for (int i = 0; i < joints; ++i) end[i] = path[(STEPS - 1) * joints + i];
    return largest;
}

static int show(const ZK_Model* arm, const float* joint, float largest_step) {
    Pose pose;
    float room;
    int which;
    if (largest_step < 0 || ZK_Model_Forward(arm, joint, &pose) != 0) return 1;
    ZK_Model_Limit_Distance(arm, joint, &room, &which);
    printf("%-3s holds at x %.3f y %.3f z %.3f m; largest step %.2f deg; joint %d is nearest to a limit, %.1f deg\n",
           ZK_Model_Name(arm), pose.position.x, pose.position.y, pose.position.z, largest_step, which, room);
    return 0;
}

int main(void) {
    ZK_Model* giver = ZK_Model_New(0, 0);
    ZK_Model* taker = ZK_Model_New(1, 0);
    if (!giver || !taker) return EXIT_FAILURE;

    const Pose table = world_seen_from(-0.60f, 0, 0), ceiling = world_seen_from(0.40f, 0, 1.05f);
    const Pose gripper = {{0, 0, 0.12f}, {1, 0, 0, 0}, {0, 0, 0}};
    ZK_Model_Set_Work_Frame(giver, &table);
    ZK_Model_Set_Work_Frame(taker, &ceiling);
    ZK_Model_Set_Mounting(taker, 180, 0, 0);
    ZK_Model_Set_Tool(giver, &gripper);
    ZK_Model_Set_Tool(taker, &gripper);

    const float giver_start[6] = {0, 20, 70, 0, 0, 0}, taker_start[7] = {180, 30, 0, 60, 0, 30, 0};
    const Pose left = grasp(0, 0, 0.40f, 1), right = grasp(0.02f, 0, 0.40f, 0);
    float giver_end[6], taker_end[7];
    int failed = show(giver, giver_end, approach(giver, &left, -0.10f, giver_start, giver_end));
    failed |= show(taker, taker_end, approach(taker, &right, 0.10f, taker_start, taker_end));

    ZK_Model_Free(giver);
    ZK_Model_Free(taker);
    return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
