/*
 * The records of rigid-body computations. Lengths are metres, angles radians, quaternions scalar first. One Euler
 * convention holds throughout: R = Rz(rz) Ry(ry) Rx(rx).
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
 * A pose. The record is redundant on purpose: functions that compute a pose fill all three fields, functions that read
 * one take either the quaternion or the Euler angles, and say which. Queries of the controller leave the quaternion as
 * it was: ZK_Complete_Pose fills it from the Euler angles.
 */
typedef struct Pose {
    Position position;
    Quat quaternion;
    Euler euler;
} Pose;

/* A tool or work frame. */
typedef struct FrameRec {
    char frame_name[12]; /* at most 10 bytes of text are written by the library */
    Pose pose;           /* metres, radians; queries leave the quaternion as it was */
    float payload;       /* kilograms on the controller's scale divided by 1000; tool frames only */
    float x, y, z;       /* centre of gravity in metres; tool frames only */
} FrameRec;

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
ZK_STATIC_ASSERT(sizeof(FrameRec) == 68 && offsetof(FrameRec, pose) == 12 && offsetof(FrameRec, payload) == 52,
                 "layout of FrameRec");
ZK_STATIC_ASSERT(sizeof(Matrix) == 68 && offsetof(Matrix, m) == 4, "layout of Matrix");
ZK_STATIC_ASSERT(sizeof(Matrix7) == 200 && offsetof(Matrix7, m) == 4, "layout of Matrix7");

#endif
