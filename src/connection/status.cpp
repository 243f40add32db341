#include "zk/status.h"

ZK_API const char* ZK_Status_Text(int status) {
    switch (status) {
#define X(name, number, text) \
    case number:              \
        return text;
        ZK_STATUS_LIST(X)
#undef X
        default:
            return "unknown status";
    }
}
