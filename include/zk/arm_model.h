/*
 * Models of one's own: forward and inverse kinematics of any number of arms in one program.
 *
 * A ZK_Model describes one arm: its geometry, tool, work frame, mounting and joint limits. It has nothing to do with a
 * connection, nor with the process-wide model of zk/model.h. All computation is in double precision.
 *
 * Units are those of zk/algorithm.h: joints in degrees, one value for each joint of the arm; lengths in metres; Euler
 * angles in radians, R = Rz(rz) Ry(ry) Rx(rx). Poses are those of the tool in the work frame.
 *
 * Threads: any number of threads may compute with one model, as long as none of them changes it (the setters and
 * ZK_Model_Free). Different models are independent. Nothing here sends, waits or keeps anything between calls.
 *
 * Functions that return a status return 0 (ZK_OK), 19 (ZK_BAD_ARGUMENT) or 21 (ZK_NO_SOLUTION), and write their outputs
 * with 0 only, unless they say otherwise. 19: a required pointer is null, a count is negative, or an input is not
 * finite or not in its range.
 */
#ifndef ZK_ARM_MODEL_H
#define ZK_ARM_MODEL_H

#include <stdint.h>

#include "zk/export.h"
#include "zk/transform_types.h"

typedef struct ZK_Model ZK_Model;

/* ---------------------------------------------------------------------------------------------- Life of a model -- */

/*
 * A new model with the arm's defaults: no tool, the work frame at the base, upright on the floor. Model and sensor
 * numbers are those of libalgo_set_robot_and_sensor_type; model 9 has no geometry. Free it with ZK_Model_Free. Returns
 * null for a pair that does not exist, or without memory. Any thread.
 */
ZK_API ZK_Model* ZK_Model_New(int model, int sensor);

/*
 * A new model that is what the process-wide model is now: DH lengths and offsets, frames, mounting and limits. Returns
 * null while that has no geometry, or without memory. Call it while no other thread changes the process-wide model; a
 * connection's start-up does.
 */
ZK_API ZK_Model* ZK_Model_Copy_Current(void);

/* A copy of its own. Returns null for null, or without memory. */
ZK_API ZK_Model* ZK_Model_Clone(const ZK_Model* model);

/* Frees the model. Null is allowed. */
ZK_API void ZK_Model_Free(ZK_Model* model);

/* --------------------------------------------------------------------------------------- What a model describes -- */

/* Number of joints, 6 or 7; 0 for null. */
ZK_API int ZK_Model_Joint_Count(const ZK_Model* model);

/* The name of the arm, "65" for example. Constant text; "" for null. */
ZK_API const char* ZK_Model_Name(const ZK_Model* model);

/* The tool in the flange frame, the work frame in the world. Setters read position and Euler angles; getters fill all
 * of the pose. Status. */
ZK_API int ZK_Model_Set_Tool(ZK_Model* model, const Pose* flange_T_tool);
ZK_API int ZK_Model_Get_Tool(const ZK_Model* model, Pose* flange_T_tool);
ZK_API int ZK_Model_Set_Work_Frame(ZK_Model* model, const Pose* world_T_work);
ZK_API int ZK_Model_Get_Work_Frame(const ZK_Model* model, Pose* world_T_work);

/* The mounting angles x, y, z in degrees: rotation of the base in the world. Status. */
ZK_API int ZK_Model_Set_Mounting(ZK_Model* model, float x, float y, float z);
ZK_API int ZK_Model_Get_Mounting(const ZK_Model* model, float* x, float* y, float* z);

/* Joint limits in degrees, one value for each joint, min <= max, up to 3600 either way. Status. */
ZK_API int ZK_Model_Set_Joint_Limits(ZK_Model* model, const float* min, const float* max);
ZK_API int ZK_Model_Get_Joint_Limits(const ZK_Model* model, float* min, float* max);

/* Largest joint speeds in degrees per second and accelerations in degrees per second squared, one value for each
 * joint. Status. */
ZK_API int ZK_Model_Get_Speed_Limits(const ZK_Model* model, float* speed, float* acceleration);

/* ------------------------------------------------------------------------------------------------------ Forward -- */

/* The pose of the tool: position, quaternion and Euler angles. Limits are not checked. Status. */
ZK_API int ZK_Model_Forward(const ZK_Model* model, const float* joint, Pose* pose);

typedef enum ZK_Axes {
    ZK_BASE_AXES, /* of the arm's base, the mounting left out */
    ZK_TOOL_AXES  /* of the tool */
} ZK_Axes;

/*
 * The Jacobian of the tool tip: 6 rows of as many columns as the arm has joints, row by row. It turns joint speeds in
 * radians per second into the velocity of the tip in metres per second (rows 1 to 3) and the angular velocity of the
 * tool in radians per second (rows 4 to 6), in the axes asked for. Status.
 *
 * Method: each joint's axis, and its cross product with the way to the tip (Whitney 1972).
 */
ZK_API int ZK_Model_Jacobian(const ZK_Model* model, const float* joint, ZK_Axes axes, double* jacobian);

/* The manipulability sqrt(det(J J')) of the Jacobian above, 0 at a singular posture. It does not depend on the axes.
 * Status. Method: Yoshikawa, Manipulability of Robotic Mechanisms (1985). */
ZK_API int ZK_Model_Manipulability(const ZK_Model* model, const float* joint, double* manipulability);

/* How far the joint nearest to one of its limits is from it, in degrees, below 0 when it is beyond; which_joint, which
 * may be null, becomes its number from 1. Status. */
ZK_API int ZK_Model_Limit_Distance(const ZK_Model* model, const float* joint, float* degrees, int* which_joint);

/* ------------------------------------------------------------------------------------------------------ Inverse -- */

/* How far from its target the tool may be with an answer: 0.01 mm and 0.1 mrad. */
#define ZK_INVERSE_METRES 1e-5f
#define ZK_INVERSE_RADIANS 1e-4f

typedef enum ZK_Orientation {
    ZK_BY_EULER,     /* the target's Euler angles */
    ZK_BY_QUATERNION /* the target's quaternion, of unit length to one percent of its square */
} ZK_Orientation;

/* Options of the inverse kinematics. All zero is the default of each. */
typedef struct ZK_InverseOptions {
    ZK_Orientation orientation; /* which field of the target has the orientation */
    float max_step;             /* the largest way of a joint from the seed, degrees; 0: no bound */
    float joint_weight[7];      /* of each joint's square in the distance to the seed, above 0; all 0: equal */
    float min_manipulability;   /* answers below are refused; 0: none */
    float circle_step;          /* seven axes, ZK_Model_Inverse_All: step along the circle, 0.1 to 360 degrees; 0: 5 */
} ZK_InverseOptions;

/* Why there is no answer. */
typedef enum ZK_Cause {
    ZK_CAUSE_NONE,          /* there is one */
    ZK_CAUSE_OUT_OF_REACH,  /* no posture brings the tool there */
    ZK_CAUSE_BEYOND_LIMITS, /* every posture found has a joint beyond its limits; `joint` is the one of the posture that
                               is least beyond */
    ZK_CAUSE_SINGULAR,      /* the answers are below min_manipulability */
    ZK_CAUSE_LARGER_STEP,   /* every answer within the limits takes a joint further than max_step */
    ZK_CAUSE_BAD_TARGET     /* the target is not finite */
} ZK_Cause;

/* What came of an inverse computation. */
typedef struct ZK_InverseResult {
    ZK_Cause cause;
    int32_t joint;      /* number from 1 of the joint beyond its limits; 0 with the other causes */
    float miss_metres;  /* between target and tool at the joints that were written */
    float miss_radians; /* the angle between them */
    float largest_step; /* the largest way of a joint from the seed, degrees */
} ZK_InverseResult;

/*
 * Joints within the limits that bring the tool to the target, those nearest to the seed: with the least sum of squared
 * differences, weighted by joint_weight. Only the ratios of the weights matter.
 *
 * Every answer is checked in the single precision that is written: it meets the target within ZK_INVERSE_METRES and
 * ZK_INVERSE_RADIANS, and lies within the limits. With six joints it is the nearest posture there is. With seven joints
 * postures form circles: near the seed the answer is the one that the smallest steps lead to, within some percent of
 * the nearest; further away it is the nearest of 64 places on the circle, improved from there. Where rounding took a
 * target out of reach by less than 5 micrometres the straight arm is the answer. Whole turns are added where the limits
 * allow them and bring a joint nearer to the seed.
 *
 * Where two axes are on one line (sine below 1e-6) only the sum of their joints is defined: they share the way from the
 * seed by their weights, as far as limits allow.
 *
 * seed, joint: degrees; they may be the same array. The seed may stand beyond the limits, by up to a whole turn.
 * options, result: null is allowed. joint is written with 0 only, result always.
 *
 * Returns 0; 19; 21 when there is no answer, with the cause in the result. Takes about 0.5 microseconds with six
 * joints, some with seven near the seed and some dozens far from it; a refusal for limits up to a millisecond with
 * seven.
 *
 * Method: closed forms. Wrist at a point and parallel axes: Pieper, The Kinematics of Manipulators under Computer
 * Control (1968). Model 1: arm angle, Shimizu et al., Analytical Inverse Kinematic Computation for 7-DOF Redundant
 * Manipulators With Joint Limits, IEEE Transactions on Robotics 24 (2008). Model 7: Pieper's method from the hand, for
 * each angle of joint 7. Near the seed seven joints, and at a limit all, use damped least squares: Sugihara,
 * Solvability-Unconcerned Inverse Kinematics by the Levenberg-Marquardt Method, IEEE Transactions on Robotics 27
 * (2011).
 */
ZK_API int ZK_Model_Inverse(const ZK_Model* model, const Pose* target, const float* seed,
                            const ZK_InverseOptions* options, float* joint, ZK_InverseResult* result);

/*
 * Every posture within the limits that brings the tool to the target, whole turns included where the limits allow them,
 * nearest to the seed first. With seven joints: those at each circle_step of the free circle, counted from the seed's
 * place on it. The circle is that of the arm angle (the turn of the elbow about the line from shoulder to wrist) for
 * model 1, that of joint 7 for model 7.
 *
 * joint: room for `capacity` rows of one value for each joint. *count becomes the number of postures found, which may
 * be above capacity; the nearest ones are written. max_step and min_manipulability exclude postures.
 *
 * Returns 0, also when *count is 0; 19. Takes memory; without it, or above two million postures, *count is 0.
 */
ZK_API int ZK_Model_Inverse_All(const ZK_Model* model, const Pose* target, const float* seed,
                                const ZK_InverseOptions* options, float* joint, int capacity, int* count);

/* ------------------------------------------------------------------------------------------------- Many at once -- */

/* What came of following a path. */
typedef struct ZK_FollowResult {
    int32_t followed;         /* poses that were followed: the rows of joint that are written */
    ZK_InverseResult refusal; /* of the first pose that could not be followed */
} ZK_FollowResult;

/*
 * Joints for a sequence of poses, each from the one before it, the first from the seed, without a jump. The joints go
 * on as they moved: at a straight elbow and at an aligned wrist they pass through. With seven joints the arm angle is
 * held, the turn of the elbow about the line from shoulder to wrist; it moves where holding it would take a joint half
 * as far again as it has to go. When that comes to a pose that only a larger step reaches, a way along all poses is
 * looked for with the arm angle free; that takes about a millisecond and up to 0.8 kB of memory a pose.
 *
 * joint: room for `count` rows. max_step bounds the way of a joint between two poses; 0 is 10 degrees here. Other
 * options as for ZK_Model_Inverse. options, result: null is allowed.
 *
 * Returns 0 when all poses were followed; 21 when one could not be, which result names: the rows before it are written;
 * 19, with the rows before a pose whose quaternion is not unit.
 *
 * Method of the search: beam search over the arm angle, its steps by the least squares of ZK_Model_Inverse.
 */
ZK_API int ZK_Model_Follow(const ZK_Model* model, const Pose* poses, int count, const float* seed,
                           const ZK_InverseOptions* options, float* joint, ZK_FollowResult* result);

/*
 * ZK_Model_Forward and ZK_Model_Inverse for `count` rows of joints, poses and seeds, over as many threads as `threads`
 * says, 1 to 64; the caller's counts as one. Each row is the same to the bit as that of a single call. A processor with
 * AVX2 instructions computes four rows at once. Rows whose status is not 0 are not written. status: room for `count`
 * statuses; null is allowed.
 *
 * Returns 0 when every row has the status 0, else the first status that is not; 19 for arguments of the call itself.
 */
ZK_API int ZK_Model_Forward_Batch(const ZK_Model* model, const float* joint, int count, Pose* pose, int threads);
ZK_API int ZK_Model_Inverse_Batch(const ZK_Model* model, const Pose* target, const float* seed, int count,
                                  const ZK_InverseOptions* options, float* joint, int* status, int threads);

#endif
