/* A tool or work frame, as the frame queries return it and as the local model takes it. */
#ifndef ZK_FRAME_RECORD_H
#define ZK_FRAME_RECORD_H

#include "zk/transform_types.h"

typedef struct FrameRec {
    char frame_name[12]; /* at most 10 bytes of text are written by the library */
    Pose pose;           /* metres, radians; queries leave the quaternion as it was */
    float payload;       /* kilograms on the controller's scale divided by 1000; tool frames only */
    float x, y, z;       /* centre of gravity in metres; tool frames only */
} FrameRec;

ZK_STATIC_ASSERT(sizeof(FrameRec) == 68 && offsetof(FrameRec, pose) == 12 && offsetof(FrameRec, payload) == 52,
                 "layout of FrameRec");

#endif
