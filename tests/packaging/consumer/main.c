/* A program of another project: it queries versions, computes with the local model, and uses the cJSON that comes

 * along. */
#include <cJSON.h>
#include <math.h>
#include <stdio.h>
#include <string.h>
#include <zk_base.h>

/* A name that the library uses too: this variable is the program's own, whatever the library computes. */
float position = 7.5f;

static int failures = 0;

static void expect(int holds, const char* what) {
    if (holds) return;
    printf("does not hold: %s\n", what);
    ++failures;
}

int main(void) {
    const float joints[8] = {10.0f, -20.0f, 30.0f, 40.0f, 50.0f, 60.0f};
    cJSON* request = cJSON_Parse("{\"command\":\"movej\"}");
    Pose pose;

    expect(strcmp(API_Version(), PACKAGE_VERSION) == 0 && strcmp(API_Version(), ZK_VERSION_STRING) == 0,
           "library, header and package have one version");
    expect(strcmp(Algo_Version(), "1.4.8") == 0, "the algorithms are 1.4.8");
    expect(Get_Json_KeyCode("{\"state\":\"joint_degree\"}") == 58, "joint degrees have code 58");
    expect(strcmp(cJSON_GetObjectItem(request, "command")->valuestring, "movej") == 0, "cJSON reads what it is given");
    cJSON_Delete(request);

    Algo_Init_Sys_Data(0, 2);
    pose = Algo_Forward_Kinematics(joints);
    expect(sqrtf(pose.position.x * pose.position.x + pose.position.y * pose.position.y) > 0.01f, "the arm reaches out");
    expect(position == 7.5f, "the program's variable is its own");
    return failures != 0;
}
