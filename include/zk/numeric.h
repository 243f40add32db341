/*
 * Rigid-body arithmetic on the fixed records Matrix, Pose, Quat and Euler, and on the larger Matrix7.
 *
 * Records go in and out by value. Every function here is pure: it reads and writes no global and no static store,
 * allocates nothing, reports nothing, and may run on any thread. Lengths are metres, angles radians, and computation is
 * in single precision unless a comment says otherwise.
 *
 * The counts `rows` and `cols` are trusted: they are stored in results unchanged. A count below 1 leaves the block
 * empty and a count beyond the record reaches its end and not further. Elements of a result outside its used block are
 * 0.
 */
#ifndef ZK_NUMERIC_H
#define ZK_NUMERIC_H

#include "zk/transform_types.h"

/* ---------------------------------------------------------------------------------------------------------------------
 * Matrices of up to 4 by 4
 * ------------------------------------------------------------------------------------------------------------------ */

/* The rows by cols matrix of zeros. */
ZK_API Matrix zero_matrix(int rows, int cols);

/* The identity of size n, 1 to 4. Below 1 the result is zeros; above 4 all four ones are set, and n is stored
 * unchanged. */
ZK_API Matrix unit_matrix(int n);

/* The transpose of A, rows and cols exchanged. */
ZK_API Matrix matrix_t(Matrix A);

/*
 * The product A B, with A's rows and B's cols. The inner count is A's cols; B's rows is not read. Products are
 * formed in single precision, summed in double precision in ascending order, and rounded once.
 */
ZK_API Matrix matrix_m(Matrix A, Matrix B);

/* A + B when flag is 1 or more, A - B when it is 0 or less. The size is A's; B's counts are not read. */
ZK_API Matrix matrix_a(Matrix A, Matrix B, int flag);

/* A times the number k, element by element. */
ZK_API Matrix matrix_m_num(Matrix A, float k);

/* The 3 by 3 rotation block of the transform A, whatever its counts say. */
ZK_API Matrix matrix_T2R(Matrix A);

/* The cross product a x b of two 3 by 1 vectors. */
ZK_API Matrix cross(Matrix a, Matrix b);

/* ---------------------------------------------------------------------------------------------------------------------
 * Scalars
 * ------------------------------------------------------------------------------------------------------------------ */

/* 1 when v is above 0, -1 when it is below, else 0, which includes NaN. */
ZK_API int zk_sign(float v);

/*
 * The angle of the point (x, y) by the arc cosine: acos(x / r) when y is 0 or more (-0 included), else its negative.
 * Unlike atan2f it returns NaN at the origin, and pi at (-0.0, -1). Conversions of this library use atan2f.
 */
ZK_API float my_atan2f(float y, float x);

/* ---------------------------------------------------------------------------------------------------------------------
 * Rotations: matrices, Euler angles, quaternions
 *
 * One convention throughout: R = Rz(rz) Ry(ry) Rx(rx), rotations about the fixed axes x, then y, then z.
 * ------------------------------------------------------------------------------------------------------------------ */

/* The rotation by an angle (radians) about the x, y or z axis, 3 by 3. */
ZK_API Matrix rotx(float angle);
ZK_API Matrix roty(float angle);
ZK_API Matrix rotz(float angle);

/* The rotation matrix of Euler angles, 3 by 3. */
ZK_API Matrix euler_to_matrix(Euler e);

/* The rotation matrix of a quaternion of any length, 3 by 3; the identity for a squared norm of 0.000001 or less. */
ZK_API Matrix quat_to_matrix(Quat q);

/*
 * The Euler angles of a rotation; only the 3 by 3 block is read. Beyond |m20| = 0.999999 the pitch is singular: rz is 0
 * and rx carries the whole turn. Each angle below -3.13 has 2 pi added once, so results lie from -3.13 up to about
 * 3.1532, and not from -pi to pi.
 */
ZK_API Euler matrix_to_euler(Matrix R);

/*
 * The quaternion of a rotation; only the 3 by 3 block is read. The component that is divided by is the positive one, so
 * w may be negative, and nearby rotations may have opposite signs. Not renormalised.
 * Method: Shepperd, Quaternion from Rotation Matrix, Journal of Guidance and Control 1 (1978).
 */
ZK_API Quat matrix_to_quat(Matrix R);

/* The unit quaternion of Euler angles. */
ZK_API Quat euler_to_quat(Euler e);

/* The Euler angles of a quaternion, through its matrix: the ranges of matrix_to_euler hold. */
ZK_API Euler quat_to_euler(Quat q);

/*
 * Spherical interpolation by an absolute angle: theta is the whole angle between q1 and q2, phi the part of it covered,
 * both in radians. The caller provides theta and chooses the arc. Not finite where sin(theta) is 0.
 * Method: Shoemake, Animating Rotation with Quaternion Curves, SIGGRAPH 1985.
 */
ZK_API Quat quaternion_interpolation(float theta, float phi, Quat q1, Quat q2);

/* ---------------------------------------------------------------------------------------------------------------------
 * Poses and transforms
 * ------------------------------------------------------------------------------------------------------------------ */

/* The 4 by 4 transform of a pose's position and Euler angles; its quaternion is not read. */
ZK_API Matrix pose_euler_to_transformation_matrix(Pose p);

/* The 4 by 4 transform of a pose's position and quaternion; its Euler angles are not read. */
ZK_API Matrix pose_quat_to_transformation_matrix(Pose p);

/* The pose of a transform, all three fields filled; rows and cols are not read. */
ZK_API Pose transformation_matrix_to_pose(Matrix T);

/* ---------------------------------------------------------------------------------------------------------------------
 * Inverses of matrices of up to 4 by 4. The result for a singular matrix holds infinities or NaN.
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * The inverse of the square block of size `rows`; `cols` is not read and kept. With rows below 1, A itself.
 * Method: Gauss-Jordan exchange in place with complete pivoting, in double precision on single-precision elements.
 */
ZK_API Matrix matrix_inv(Matrix A);

/* The inverse of a 4 by 4 matrix by its cofactors; counts are not read. */
ZK_API Matrix matrix_inv_full_rank(Matrix A);

/*
 * The inverse of an affine transform, 4 by 4. The block need not be a rotation; the last row is taken for 0, 0, 0, 1
 * whatever it holds. Counts are not read.
 */
ZK_API Matrix matrix_inv_coordinate_system(Matrix T);

/* ---------------------------------------------------------------------------------------------------------------------
 * Matrices of up to 7 by 7: as their namesakes above on the larger record
 * ------------------------------------------------------------------------------------------------------------------ */

ZK_API Matrix7 unit_matrix_dim7(int n);
ZK_API Matrix7 matrix_t_dim7(Matrix7 A);
ZK_API Matrix7 matrix_a_dim7(Matrix7 A, Matrix7 B, int flag);
ZK_API Matrix7 matrix_m_dim7(Matrix7 A, Matrix7 B);
ZK_API Matrix7 matrix_m_num_dim7(Matrix7 A, float k);
ZK_API Matrix7 matrix_inv_dim7(Matrix7 A);

/*
 * The inverse, in closed form, of a 7 by 7 tridiagonal matrix whose first row is 1, 0, ... and whose last row is
 * ..., 0, 1: the system of a cubic spline through seven knots with fixed end values. Only the elements next to and on
 * the diagonal of rows 1 to 5 are read; the counts are not. Not finite when the determinant is 0.
 * Method: Usmani, Inversion of a tridiagonal Jacobi matrix, Linear Algebra and its Applications 212 (1994).
 */
ZK_API Matrix7 simp_matrix_inv77(Matrix7 A);

#endif
