// Sine and cosine of one angle, single precision, from one call.
#pragma once

#include <math.h>

namespace zk {

struct SineCosine {
    float s, c;
};

inline SineCosine sine_cosine(float angle) {
    SineCosine r;
    ::sincosf(angle, &r.s, &r.c);
    return r;
}

}  // namespace zk
