#include "support/outputs.h"

namespace zk::test {

std::string joined(std::initializer_list<std::string> outputs) {
    std::string text;
    bool written = false;
    for (const std::string& output : outputs) {
        written |= !output.empty() && output != "-";
        text += (text.empty() ? "" : "; ") + (output.empty() ? "-" : output);
    }
    return written ? text : "";
}

}  // namespace zk::test
