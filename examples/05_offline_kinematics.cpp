// The local model without an arm: degrees, metres, radians, and what comes of them. Every call of the algorithm front
// is here once; the program checks what it shows and exits with 1 when a check fails.
#include <cmath>
#include <cstdio>
#include <initializer_list>

#include "zk_base.h"

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    std::printf("  %s %s\n", holds ? "ok  " : "FAIL", what);
    failures += !holds;
}

bool near(float a, float b, float tolerance = 1e-4f) { return std::fabs(a - b) <= tolerance; }

bool near(const Pose& a, const Pose& b) {
    return near(a.position.x, b.position.x) && near(a.position.y, b.position.y) && near(a.position.z, b.position.z) &&
           near(a.euler.rx, b.euler.rx, 1e-3f) && near(a.euler.ry, b.euler.ry, 1e-3f) &&
           near(a.euler.rz, b.euler.rz, 1e-3f);
}

void print(const char* what, const Pose& p) {
    std::printf("%s: x %.4f y %.4f z %.4f m, rx %.3f ry %.3f rz %.3f rad\n", what, p.position.x, p.position.y,
                p.position.z, p.euler.rx, p.euler.ry, p.euler.rz);
}

constexpr float joints[6] = {10, 20, 60, 15, 40, 20};  // degrees

// Selecting an arm forgets everything that was set before: so it comes first, then mounting, frames and limits.
void describe_the_arm() {
    std::printf("Algorithm version %s, a ZK65 with a six-axis force sensor\n", Algo_Version());
    Algo_Init_Sys_Data(0, 2);

    float x, y, z;
    Algo_Set_Angle(0, 90, 0);  // on a wall
    Algo_Get_Angle(&x, &y, &z);
    expect(near(y, 90), "Algo_Set_Angle, Algo_Get_Angle: degrees");
    Algo_Set_Angle(0, 0, 0);

    FrameRec tool{}, held{};
    tool.pose.position = {0.02f, 0, 0.12f};
    tool.payload = 0.8f;
    Algo_Set_ToolFrame(&tool);
    Algo_Get_Curr_ToolFrame(&held);
    expect(near(held.pose.position.z, 0.12f) && near(held.payload, 0.8f),
           "Algo_Set_ToolFrame, Algo_Get_Curr_ToolFrame");

    FrameRec work{};
    work.pose.position = {0.3f, -0.2f, 0.05f};
    work.pose.euler = {0, 0, 0.5f};
    Algo_Set_WorkFrame(&work);
    Algo_Get_Curr_WorkFrame(&held);
    expect(near(held.pose.euler.rz, 0.5f), "Algo_Set_WorkFrame, Algo_Get_Curr_WorkFrame");
}

void limits() {
    struct Limit {
        const char* what;
        void (*set)(const float*);
        void (*get)(float*);
        float value;
    };
    for (const Limit& limit :
         {Limit{"Algo_Set_Joint_Max_Limit: degrees", Algo_Set_Joint_Max_Limit, Algo_Get_Joint_Max_Limit, 170},
          Limit{"Algo_Set_Joint_Min_Limit: degrees", Algo_Set_Joint_Min_Limit, Algo_Get_Joint_Min_Limit, -170},
          Limit{"Algo_Set_Joint_Max_Speed: turns a minute", Algo_Set_Joint_Max_Speed, Algo_Get_Joint_Max_Speed, 30},
          Limit{"Algo_Set_Joint_Max_Acc: on the same scale", Algo_Set_Joint_Max_Acc, Algo_Get_Joint_Max_Acc, 100}}) {
        float value[8], held[8] = {};
        for (float& v : value) v = limit.value;
        limit.set(value);
        limit.get(held);
        expect(near(held[0], limit.value, 1e-3f), limit.what);
    }
}

void forward_and_inverse() {
    const Pose pose = Algo_Forward_Kinematics(joints);
    print("Tool in the work frame", pose);
    expect(near(Forward_Kinematics_e(joints).m[0][3], pose.position.x), "Forward_Kinematics_e: the same as a matrix");

    float seed[6], solution[7] = {};
    for (int i = 0; i < 6; ++i) seed[i] = joints[i] + 2;
    expect(zk_algo_judgment_overpos(seed) == 0, "zk_algo_judgment_overpos: the seed lies within the limits");
    const int status =
        Algo_Inverse_Kinematics(seed, &pose, solution, 1);  // 1: by the Euler angles, 0: by the quaternion
    std::printf("Joints: %.3f %.3f %.3f %.3f %.3f %.3f deg, status %d\n", solution[0], solution[1], solution[2],
                solution[3], solution[4], solution[5], status);
    expect(status == 0 && near(solution[1], joints[1], 1e-2f), "Algo_Inverse_Kinematics: the joints again");

    Pose queried{pose.position, {}, pose.euler};  // a controller reports no quaternion
    ZK_Complete_Pose(&queried);
    InverseKinematicsCall call{};
    call.seed = seed;
    call.pose = &queried;
    call.flag = 0;
    expect(Algo_Inverse_Kinematics_Wrap(&call) == 0 && near(call.joint[1], joints[1], 1e-2f),
           "ZK_Complete_Pose, Algo_Inverse_Kinematics_Wrap: by the quaternion");

    expect(ZK_Inverse_Kinematics_Checked(seed, &pose, solution, 0) == 0,
           "ZK_Inverse_Kinematics_Checked: it meets the target");
    Pose far = pose;
    far.position.x = 5;
    expect(Algo_Inverse_Kinematics(seed, &far, solution, 1) == ZK_NO_SOLUTION, "a target out of reach has no solution");
}

void conversions() {
    const Pose pose = Algo_Forward_Kinematics(joints);
    expect(near(Algo_Matrix2Pos(Algo_Pos2Matrix(pose)), pose), "Algo_Pos2Matrix, Algo_Matrix2Pos");
    const Quat quaternion = Algo_Euler2Quaternion(pose.euler);
    expect(near(Algo_Quaternion2Euler(quaternion).rx, pose.euler.rx), "Algo_Euler2Quaternion, Algo_Quaternion2Euler");
    expect(near(Algo_Euler2Matrix(pose.euler).m[2][0], -std::sin(pose.euler.ry)),
           "Algo_Euler2Matrix: row 2 begins with -sin ry");

    // The matrix that carries base coordinates into the work frame is the inverse of the work frame's pose.
    Matrix work_T_base;
    libalgo_get_work_cs_to_base_matrix(&work_T_base);
    const Pose in_base = Algo_WorkFrame2Base(work_T_base, pose);
    print("Tool in the base frame", in_base);
    expect(near(Algo_Base2WorkFrame(work_T_base, in_base), pose), "Algo_WorkFrame2Base, Algo_Base2WorkFrame");
    expect(near(Algo_Tool2End(Algo_End2Tool(pose)), pose), "Algo_End2Tool, Algo_Tool2End: each other's inverse");
}

void moves() {
    const Pose here = Algo_Forward_Kinematics(joints);
    print("5 cm along the tool", Algo_Cartesian_Tool(joints, 0, 0, 0.05f));
    const Position p = here.position, q = Algo_Cartesian_Tool(joints, 0, 0, 0.05f).position;
    expect(near(std::hypot(p.x - q.x, p.y - q.y, p.z - q.z), 0.05f),
           "Algo_Cartesian_Tool: metres along the tool's own axes");

    const Pose turned = Algo_RotateMove(joints, 3, 30, Pose{});
    print("turned by 30 degrees", turned);
    expect(near(turned.position.x, p.x) && !near(turned.euler.rz, here.euler.rz), "Algo_RotateMove: degrees, in place");

    const float step[6] = {0.01f, 0, 0, 0, 0, 0};
    expect(near(Algo_PoseMove(step, 0, here).position.x, p.x + 0.01f), "Algo_PoseMove: a step in the work frame");
}

// Seven joints are solved near the seed. For a seed far from the target, search the whole range of arm angles.
void seven_joints() {
    Algo_Init_Sys_Data(1, 0);
    const float posture[7] = {20, 40, 30, -60, 25, 50, 10};
    const Pose pose = Algo_Forward_Kinematics(posture);
    float seed[7], solution[7];
    for (int i = 0; i < 7; ++i) seed[i] = posture[i] + 1;
    expect(Algo_Inverse_Kinematics(seed, &pose, solution, 1) == 0 && near(Algo_Forward_Kinematics(solution), pose),
           "seven joints: an answer near the seed");
    Algo_Set_Redundant_Parameter_Traversal_Mode(true);
    expect(Algo_Inverse_Kinematics(seed, &pose, solution, 1) == 0 && near(Algo_Forward_Kinematics(solution), pose),
           "Algo_Set_Redundant_Parameter_Traversal_Mode: the whole range");
}

}  // namespace

int main() {
    describe_the_arm();
    limits();
    forward_and_inverse();
    conversions();
    moves();
    seven_joints();
    std::printf(failures ? "%d checks failed\n" : "All as it should be.\n", failures);
    return failures ? 1 : 0;
}
