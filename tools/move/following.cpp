#include "move/following.h"

#include "remedy.h"

namespace tool {

Following::Following(const zk::Arm& arm)
    : arm_(arm), reports_(zk::on_motion_report([this](const ArmMotionReport& report) {
          if (report.socket == arm_.handle() && report.result != ZK_SET_POINT_FOLLOWED) refusal_ = report.result;
      })) {}

void Following::check() const {
    const zk::Result<ZK_ConnectionRecord> record = arm_.connection();
    if (!record || record->state != ZK_CONNECTION_UP) {
        throw Failure(kNoArm, "the connection is lost" +
                                  (record ? " (" + std::string(record->cause) + ")" : std::string()) +
                                  "; the arm rests where its last set-point was");
    }
    ZK_Advice advice{};
    if (const int refusal = refusal_; refusal != 0)
        throw Failure(kFailed, ZK_Explain(refusal, 0, 0, &advice) == ZK_OK
                                   ? std::string("the arm does not follow: ") + advice.cause + " " + remedy_of(refusal)
                                   : "the arm does not follow: see zk doctor");
}

}  // namespace tool
