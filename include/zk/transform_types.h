/*
 * The two records that carry rigid-body computations, and their parts. Lengths are metres, angles radians, quaternions
 * scalar first. One Euler convention holds throughout: R = Rz(rz) Ry(ry) Rx(rx).
 */
#ifndef ZK_TRANSFORM_TYPES_H
#define ZK_TRANSFORM_TYPES_H

#include <stddef.h>
#include <stdint.h>

#include "zk/export.h"

typedef struct Position {
    float x, y, z; /* metres */
} Position;

typedef struct Quat {
    float w, x, y, z; /* scalar first */
} Quat;

typedef struct Euler {
    float rx, ry, rz; /* radians, R = Rz(rz) Ry(ry) Rx(rx) */
} Euler;

/*
 * A pose. The record is redundant on purpose: functions that make a pose fill all three fields, functions that read one
 * take either the quaternion or the Euler angles, and say which.
 */
typedef struct Pose {
    Position position;
    Quat quaternion;
    Euler euler;
} Pose;

/*
 * A matrix of up to 4 by 4. A transform has rows = cols = 4 and the last row 0, 0, 0, 1; a rotation has rows = cols = 3
 * and zeros outside the block; a vector has rows = 3, cols = 1. Row major, the row stride is always 4.
 */
typedef struct Matrix {
    int16_t rows;
    int16_t cols;
    float m[4][4];
} Matrix;

/* A matrix of up to 7 by 7; the row stride is always 7. */
typedef struct Matrix7 {
    int16_t rows;
    int16_t cols;
    float m[7][7];
} Matrix7;

ZK_STATIC_ASSERT(sizeof(Pose) == 40 && offsetof(Pose, quaternion) == 12 && offsetof(Pose, euler) == 28,
                 "layout of Pose");
ZK_STATIC_ASSERT(sizeof(Matrix) == 68 && offsetof(Matrix, m) == 4, "layout of Matrix");
ZK_STATIC_ASSERT(sizeof(Matrix7) == 200 && offsetof(Matrix7, m) == 4, "layout of Matrix7");

#endif
