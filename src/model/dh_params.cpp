// The arm's DH parameters. The setters write joints 1 to 7, the most an arm has.
#include <algorithm>
#include <cmath>

#include "zk/model.h"

namespace {

using Row = float (DhParams::*)[8];
constexpr Row kRows[] = {&DhParams::d, &DhParams::a, &DhParams::alpha, &DhParams::offset};
constexpr Row kCompensationRows[] = {&DhParams::d_comp, &DhParams::a_comp, &DhParams::alpha_comp,
                                     &DhParams::offset_comp};

void copy_rows(const Row (&rows)[4], const DhParams& from, DhParams& to) {
    for (const Row row : rows) std::copy_n(from.*row, 7, to.*row);
}

}  // namespace

ZK_API void libalgo_set_dh_params(const DhParams* params) { copy_rows(kRows, *params, robot.dh); }
ZK_API void libalgo_set_dh_compensation_value(const DhParams* params) {
    copy_rows(kCompensationRows, *params, robot.dh);
}
ZK_API void libalgo_get_dh_compensation_value(DhParams* params) { copy_rows(kCompensationRows, robot.dh, *params); }

ZK_API void libalgo_get_dh_value(DhParams* params) { *params = robot.dh; }
ZK_API void libalgo_get_dh_params_default(DhParams* params) { *params = dh_default; }
ZK_API void libalgo_set_dh_params_default(void) { robot.dh = dh_default; }

ZK_API int libalgo_check_dh_params_is_default(void) {
    for (int joint = 0; joint < robot.dof; ++joint) {
        for (const Row row : kRows) {
            const float difference = std::fabs((robot.dh.*row)[joint] - (dh_default.*row)[joint]);
            if (!(1e-10 > static_cast<double>(difference))) return 0;
        }
    }
    return 1;
}
