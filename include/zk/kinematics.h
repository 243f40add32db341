/*
 * Forward kinematics of the arm that the model (zk/model.h) describes. Joint angles are radians, one for each joint of
 * the arm; lengths are metres; computation is in single precision. Limits are not
 * checked, and NaN passes through. Degrees and argument checks are in zk/algorithm.h.
 *
 * Frames: base is the arm's foot, flange its end, tool the tool of the model, world where the mounting rotation starts,
 * work the work frame. A name such as base_T_flange is the transform that takes coordinates of flange to coordinates of
 * base; transforms of that naming compose.
 *
 * Results also stay in statics (zk/kinematics_statics.h), so call from one thread at a time.
 */
#ifndef ZK_KINEMATICS_H
#define ZK_KINEMATICS_H

#include "zk/export.h"
#include "zk/model.h"
#include "zk/transform_types.h"

/* A transform both ways. */
typedef struct PoseAndMatrix {
    Pose pose;
    Matrix matrix;
} PoseAndMatrix;

ZK_STATIC_ASSERT(sizeof(PoseAndMatrix) == 108 && offsetof(PoseAndMatrix, matrix) == 40, "layout of PoseAndMatrix");

/* ------------------------------------------------------------------------------------------------- The whole arm -- */

/* Flange in the base: base_T_flange, 4 by 4. */
ZK_API Matrix forward_kinematics_e(const float* joint);

/* Flange in the world, mounting included: world_T_flange, 4 by 4. */
ZK_API Matrix forward_kinematics_world_to_flange(const float* joint);

/* Tool in the work frame: as pose, as rotation (3 by 3), as position. All three describe the same frame. */
ZK_API Pose forward_kinematics(const float* joint);
ZK_API Matrix forward_kinematics_rotate(const float* joint);
ZK_API Position forward_kinematics_pos(const float* joint);

/* Flange in the work frame, rotation only, 3 by 3. */
ZK_API Matrix forward_kinematics_rotate_flange(const float* joint);

/* Tool in the world, the work frame left out: as pose and matrix, and as position. */
ZK_API PoseAndMatrix forward_kinematics_for_unity(const float* joint);
ZK_API Position forward_kinematics_pos_calibration(const float* joint);

/* ---------------------------------------------------------------------------------------------- Family by family -- */

/*
 * Flange in the base for one family of arms, whatever model is selected. The twists of each family are built in; of the
 * DH parameters they read the offsets (zk75 does not) and the lengths that the family has, as the last function above
 * left them: call one of those after each change of the model.
 *
 *     family     models     lengths read
 *     zk65       0, 9       d1 d4 d6 a3
 *     zk75       1          d1 d3 d5 d7
 *     zkl63_2    3          d1 d4 d6 a2 a3 a4
 *     zkl63_3    4          d1 d2 d4 d6 a2 a3 a4
 *     orb6       5, 6, 8    d1 d4 d5 d6 a2 a3 a4
 *     tau7       7          d1 d3 d5 d7 a4 a5 a7
 *
 * `e` returns the transform, `rotate` a 4 by 4 transform of its rotation without translation, `pos` its translation;
 * the three agree to the last bit, and the latter two do less work. Method: products of the link transforms, Craig,
 * Introduction to Robotics, section 3.6; for zk75 the original convention of Denavit and Hartenberg, A Kinematic
 * Notation for Lower-Pair Mechanisms (1955).
 */
ZK_API Matrix forward_kinematics_e_zk65(const float* joint);
ZK_API Matrix forward_kinematics_rotate_zk65(const float* joint);
ZK_API Position forward_kinematics_pos_zk65(const float* joint);

ZK_API Matrix forward_kinematics_e_zk75(const float* joint);
ZK_API Matrix forward_kinematics_rotate_zk75(const float* joint);
ZK_API Position forward_kinematics_pos_zk75(const float* joint);

ZK_API Matrix forward_kinematics_e_zkl63_2(const float* joint);
ZK_API Matrix forward_kinematics_rotate_zkl63_2(const float* joint);
ZK_API Position forward_kinematics_pos_zkl63_2(const float* joint);

ZK_API Matrix forward_kinematics_e_zkl63_3(const float* joint);
ZK_API Matrix forward_kinematics_rotate_zkl63_3(const float* joint);
ZK_API Position forward_kinematics_pos_zkl63_3(const float* joint);

ZK_API Matrix forward_kinematics_e_orb6(const float* joint);
ZK_API Matrix forward_kinematics_rotate_orb6(const float* joint);
ZK_API Position forward_kinematics_pos_orb6(const float* joint);

ZK_API Matrix forward_kinematics_e_tau7(const float* joint);
ZK_API Matrix forward_kinematics_rotate_tau7(const float* joint);
ZK_API Position forward_kinematics_pos_tau7(const float* joint);

#endif
