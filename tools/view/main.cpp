// Tries the view until the program zk has it: zk_view [--control] [--port N] HOST:PORT...
#include <cstdlib>
#include <string>

#include "view/view.h"

int main(int count, char** arguments) {
    zk::view::Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        if (word == "--control") {
            options.control = true;
        } else if (word == "--port" && i + 1 < count) {
            options.port = std::atoi(arguments[++i]);
        } else {
            const auto colon = word.rfind(':');
            options.arms.push_back({word.substr(0, colon), std::atoi(word.c_str() + colon + 1), ""});
        }
    }
    return zk::view::serve(options);
}
