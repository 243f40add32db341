#include "control/advice.h"

using namespace zk;

#define X(name, number, text) static_assert(row_of(name), "the status " #name " has no advice");
ZK_STATUS_LIST(X)
#undef X

ZK_API int ZK_Explain(int status, uint16_t arm_err, uint16_t sys_err, ZK_Advice* advice) {
    if (!advice) return ZK_BAD_ARGUMENT;
    const int word = arm_err ? kArmWord : sys_err ? kSystemWord : int(ZK_OK);
    const int code = status ? status : word;
    const bool is_word = status == kArmWord || status == kSystemWord;
    const AdviceRow* row = is_word ? nullptr : row_of(code);
    *advice = (row ? row : row_of(ZK_UNKNOWN_CODE))->advice;
    return row ? ZK_OK : ZK_UNKNOWN_CODE;
}
