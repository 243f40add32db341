/*
 * Calls that say what to do when something goes wrong. Their statuses of their own are below 0 (zk/status.h).
 */
#ifndef ZK_CONTROL_H
#define ZK_CONTROL_H

#include <stdint.h>

#include "zk/export.h"
#include "zk/status.h"

/* -------------------------------------------------------------------------------------------------- Explanations -- */

typedef enum ZK_GoOn {
    ZK_GO_ON,      /* the program may go on */
    ZK_RETRY,      /* the same call may succeed later */
    ZK_MEND_FIRST, /* after the remedy */
    ZK_MUST_NOT    /* the arm needs a person */
} ZK_GoOn;

typedef struct ZK_Advice {
    const char* cause; /* what happened */
    ZK_GoOn go_on;
    const char* remedy; /* the call or the act that mends it; "" when nothing needs to be done */
} ZK_Advice;

/*
 * Explains a result: of a call (a status), of a streamed set-point (the result of an ArmMotionReport of type 1 or 2),
 * or the error words of arm and system in a state. The first that is not 0 is explained: status, then arm_err, then
 * sys_err. The numbers of the words are the controller's own; the advice says how to find and clear an error.
 *
 * Returns 0; 19 for null; ZK_UNKNOWN_CODE with an advice that says so. Texts are constant. Any thread, also in
 * callbacks.
 */
ZK_API int ZK_Explain(int status, uint16_t arm_err, uint16_t sys_err, ZK_Advice* advice);

#endif
