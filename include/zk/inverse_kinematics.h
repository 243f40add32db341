/*
 * Inverse kinematics of the arm that the model (zk/model.h) describes. Joint angles are radians, one for each joint of
 * the arm; lengths are metres. Degrees and argument checks are in zk/algorithm.h; the derivations of the closed forms
 * are in docs/kinematics.md.
 */
#ifndef ZK_INVERSE_KINEMATICS_H
#define ZK_INVERSE_KINEMATICS_H

#include "zk/export.h"
#include "zk/model.h"
#include "zk/transform_types.h"

/* ------------------------------------------------------------------------------------------------- The whole arm -- */

/*
 * Solves for the tool at a pose of the work frame. With flag 1 the orientation is that of the pose's Euler angles, with
 * any other flag that of its quaternion, which is not normalised here. Each solver below states which of several
 * solutions it returns. A last joint of the seed that is up to two degrees past a full turn counts as the full turn,
 * except for model 7.
 *
 * Returns 0; -1 or -2 for no solution: the comment of the model's solver defines both, and what `joint` holds then; -4
 * for a model without a solver (2, 9 and unknown ones). One thread at a time.
 */
ZK_API int inverse_kinematics(const float* seed, const Pose* pose, float* joint, uint8_t flag);

/* The tool in the world at such a pose: world_T_tool, 4 by 4. flag as above. */
ZK_API void calc_Tbase2tool_from_Pose(Matrix* world_T_tool, const Pose* pose, int flag);

/*
 * Whether the arm can go from one joint vector to another within one control period (libalgo_set_control_loop_period):
 * returns 0, or the number, from 1, of the first joint whose step exceeds its speed limit times scale. A scale below 0
 * counts as 0; a NaN step is not too fast.
 */
ZK_API int joint_overspeed_judgment(const float* from, const float* to, float scale);

/* -------------------------------------------------------------------------------- Search of the seven-joint arms -- */

/*
 * Whether the solvers of models 1 and 7 search near the seed (narrow) or over the whole range of the free axis (wide).
 * Strategy and range are one setting: strategy 1 is narrow and sets the range to 0.013, any other is wide and sets it
 * to 3.14; a range above 1.0 sets the strategy to 0, any other to 1. The setting survives model selections; one thread
 * at a time. ikine_set_solution_range_zk75 returns the strategy.
 */
ZK_API void ikine_set_7dof_solver_search_strategy(int strategy);
ZK_API int ikine_get_7dof_solver_search_strategy(void);
ZK_API int ikine_set_solution_range_zk75(float range);
ZK_API float ikine_get_solution_range_zk75(void);

ZK_API float theta_v;      /* the range, 0.013 at first */
ZK_API int global_is_movl; /* the strategy, 1 at first */

/* ----------------------------------------------------------------------------- The solvers of the six-joint arms -- */

/*
 * Each solves for the tool at world_T_tool, whatever model is selected, with the lengths, offsets, limits, tool and
 * mounting of the model. Whole turns of joint 6 are those of the seed.
 *
 *     solver      models     distance to the seed    lengths read
 *     zk6         0          sum of squares          d1 d4 d6 a3
 *     zkl63_2     3          sum of squares          d1 d4 d6 a2 a3 a4
 *     zkl63_3     4          sum of squares          d1 d2 d4 d6 a2 a3 a4
 *     orb6        5, 6, 8    sum of absolute values  d1 d4 d5 d6 a2 a3 a4
 *
 * Joints 1 to 3 weigh 2.4 in the distance. zk6, zkl63_2 and orb6 return the nearest solution within the limits. zkl63_3
 * takes each joint the shorter way round, returns the nearest solution, and checks the limits last: -2 does not mean
 * that no other solution lies within them. "Within" allows 0.0087 radians, half a degree, beyond each limit, so a
 * solution used as the next seed of Algo_Inverse_Kinematics may be refused with 19.
 *
 * seed and joint hold six values; they may be the same array. The seed of zkl63_3 holds seven: at the wrist's exact
 * singularity its seventh, 0 on a six-joint arm, replaces joint 6.
 *
 * orb6 treats an elbow whose cosine exceeds 1 by less than 0.01 as straight or folded: it returns 0 for a target up to
 * 2 mm out of reach, and the flange misses by that distance.
 *
 * Returns 0; -1 when the target is out of reach, or NaN, and from zk6 and zkl63_2 also when every solution lies beyond
 * the limits; -2 when a joint of the solution lies beyond its limit.
 *
 *     solver      joint on -1                                  joint on -2
 *     zk6         model angle 0, plus the seed's whole turns   written
 *     zkl63_2     model angle 0, plus the seed's whole turns   written
 *     zkl63_3     untouched                                    written up to the joint beyond its limit
 *     orb6        untouched                                    written up to the joint beyond its limit
 *
 * Close to a wrist singularity rounding splits the turn between joints 4 and 6 of zk6 and zkl63_2; the pose is met.
 * With is_avoid_Singularity set, zk6 splits it as the seed does where joint 5 is within 0.087 of 0. zkl63_2 does so
 * where joint 5 is within 0.087 of -pi, and then misses the turn of the flange about its own axis. zkl63_3 splits it by
 * the seed where the sine of joint 5 is below 0.0014. orb6 takes joint 6 from the seed where joint 5 is within two
 * degrees of 0 or pi: the wrist point is met, the rotation misses by up to four degrees and the flange by up to 7 mm.
 *
 * They keep nothing between calls and read only the model: any thread, while no thread changes the model.
 * Method: wrist-centre split, Pieper, The Kinematics of Manipulators under Computer Control (1968), of which the arms
 * with three parallel axes are the other solvable case.
 */
ZK_API int inverse_kinematics_zk6(const float* seed, float* joint, Matrix world_T_tool);
ZK_API int inverse_kinematics_zkl63_2(const float* seed, float* joint, Matrix world_T_tool);
ZK_API int inverse_kinematics_zkl63_3(const float* seed, float* joint, Matrix world_T_tool);
ZK_API int inverse_kinematics_orb6(const float* seed, float* joint, Matrix world_T_tool);

/*
 * Moves *candidate by up to two whole turns either way to the value nearest to *seed between lower - *margin and
 * upper + *margin, both included; of two values equally near, to the lower. Returns the distance to the seed; 1e6 when
 * no value fits, and the candidate stays. Radians. Pure; any thread.
 */
ZK_API double find_nearest_joint(const double* seed, double* candidate, const double* margin, double lower,
                                 double upper);

/* The index of the smallest of the values, the first of equals; 0 when length is 1 or less. Pure; any thread. */
ZK_API int find_min_index(const double* values, int length);

#endif
