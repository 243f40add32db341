// Prints docs/troubleshooting.md from the table of ZK_Explain: build/release/bin/troubleshooting_page >
// docs/troubleshooting.md
#include <cstdio>
#include <string>

#include "control/advice.h"

namespace {

const char* go_on(ZK_GoOn go_on) {
    switch (go_on) {
        case ZK_GO_ON:
            return "yes";
        case ZK_RETRY:
            return "try again";
        case ZK_MEND_FIRST:
            return "after the remedy";
        case ZK_MUST_NOT:
            return "needs a person";
    }
    return "";
}

std::string code(int code) {
    switch (code) {
#define X(name, number, text) \
    case name:                \
        return #number " `" #name "`";
        ZK_STATUS_LIST(X)
#undef X
        case zk::kArmWord:
            return "`arm_err`";
        case zk::kSystemWord:
            return "`sys_err`";
        default:
            return std::to_string(code);
    }
}

void print_section(const zk::AdviceSection& section) {
    std::printf("\n## %s\n\n| symptom | status | cause | go on? | remedy |\n| --- | --- | --- | --- | --- |\n",
                section.title);
    for (const zk::AdviceRow* row = section.begin; row != section.end; ++row) {
        if (!*row->symptom) continue;
        std::printf("| %s | %s | %s | %s | %s |\n", row->symptom, code(row->code).c_str(), row->advice.cause,
                    go_on(row->advice.go_on), row->advice.remedy);
    }
}

}  // namespace

int main() {
    std::printf(
        "# Troubleshooting\n\n"
        "What a user sees, the status or error word that goes with it, its cause and its remedy. `ZK_Explain` returns "
        "the\n"
        "same at run time. The page is printed by `build/release/bin/troubleshooting_page` from "
        "`src/control/advice.h`.\n");
    for (const zk::AdviceSection& section : zk::kAdvice) print_section(section);
}
