/* One call of every family, from C, against a simulated arm with a force sensor: every_family ADDRESS PORT */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <zk_base.h>

static int failures = 0;

static void expect(int status, const char* call) {
    if (status == ZK_OK) return;
    printf("%s: %d, %s\n", call, status, ZK_Status_Text(status));
    ++failures;
}
#define EXPECT_OK(call) expect(call, #call)

static void compute(const float* joint) {
    Pose pose = Algo_Forward_Kinematics(joint);
    float turned[7] = {0}, solution[7] = {0}, mounting[3] = {1.0f, 1.0f, 1.0f};
    TxQueue ring = {NULL, 0, 0, 0};
    int i;
    EXPECT_OK(libalgo_get_rbt_dof() != 6);
    invoke_libalgo_get_robot_install_angle(&mounting[0], &mounting[1], &mounting[2]);
    EXPECT_OK(mounting[0] != 0.0f);
    EXPECT_OK(fabsf(algo_matrix_to_pose(algo_pose_to_matrix(pose)).position.x - pose.position.x) > 1e-6f);
    EXPECT_OK(mat_trace(mat_eye(3, 3)) != 3.0f);
    EXPECT_OK(!ZK_Queue_Create(&ring, 2) || !ZK_Queue_Empty(&ring));
    ZK_Queue_Deleate(&ring);
    EXPECT_OK(Get_Json_KeyCode("{\"command\":\"set_arm_stop\",\"arm_stop\":true}") != 67);
    EXPECT_OK(Parser_Move_Stop_E("{\"command\":\"set_arm_stop\",\"arm_stop\":true}"));
    for (i = 0; i < 6; ++i) turned[i] = joint[i] * 0.0174532925f;
    pose = forward_kinematics(turned);
    EXPECT_OK(inverse_kinematics(turned, &pose, solution, 0));
    EXPECT_OK(ZK_Inverse_Kinematics_Checked(joint, &pose, solution, 0));
    EXPECT_OK(fabsf(rotx(0.5f).m[1][1] - cosf(0.5f)) > 1e-6f);
}

static void ask(ArmSocket arm) {
    float joint[7], force[6], zero[6], work[6], tool[6], speed;
    uint8_t enabled[7], state;
    int32_t type, grade, id, on, coil;
    Pose pose;
    FrameRec frame;
    RealtimePushConfig push;
    FenceConfig fence;
    GripperState gripper;
    int32_t height, current, mode;
    uint16_t error;
    float data[8];
    EXPECT_OK(Get_Joint_EN_State(arm, enabled));
    EXPECT_OK(Get_Current_Arm_State(arm, joint, &pose, &error, &error));
    EXPECT_OK(Get_Arm_Line_Speed(arm, &speed));
    EXPECT_OK(Get_Current_Tool_Frame(arm, &frame));
    EXPECT_OK(Get_Current_Trajectory(arm, &type, data));
    EXPECT_OK(Get_Arm_Power_State(arm, &on));
    EXPECT_OK(Get_Realtime_Push(arm, &push));
    EXPECT_OK(Get_DO_State(arm, 1, &state));
    EXPECT_OK(Get_Gripper_State(arm, &gripper));
    EXPECT_OK(Get_Drag_Teach_Sensitivity(arm, &grade));
    EXPECT_OK(Get_Force_Data(arm, force, zero, work, tool));
    EXPECT_OK(Set_Modbus_Mode(arm, 0, 115200, 10, true));
    EXPECT_OK(Get_Read_Coils(arm, 0, 7, 1, 1, &coil));
    EXPECT_OK(Get_Lift_State(arm, &height, &current, &error, &mode));
    EXPECT_OK(Get_Default_Run_Program(arm, &id));
    EXPECT_OK(Get_Electronic_Fence_Config(arm, &fence));
}

static void act(ArmSocket arm) {
    const float target[6] = {0.0f, 20.0f, 70.0f, 0.0f, 90.0f, 0.0f};
    int32_t saving = 1;
    EXPECT_OK(Movej_Cmd(arm, target, 100, 0, 0, true));
    EXPECT_OK(Movej_CANFD(arm, target, false, 0.0f));
    EXPECT_OK(Joint_Step_Cmd(arm, 1, 100, 1.0f, true));
    EXPECT_OK(Start_Force_Position_Move(arm, false));
    EXPECT_OK(Stop_Force_Position_Move(arm, false));
    EXPECT_OK(Get_Save_Trajectory_Flag_E(&saving));
    compute(target);
}

int main(int argc, char** argv) {
    ArmSocket arm;
    if (argc < 3) return 2;
    ZK_API_Init(65, NULL);
    arm = Arm_Socket_Start(argv[1], (int32_t)strtol(argv[2], NULL, 10), 5000);
    if (arm <= ZK_LARGEST_STATUS) {
        printf("no connection: %s\n", ZK_Status_Text(arm));
        return 1;
    }
    ask(arm);
    act(arm);
    Arm_Socket_Close(arm);
    ZK_API_UnInit();
    return failures != 0;
}
