// A controller without an arm: it speaks the protocol of the real one and moves its joints in simulated time.

#include <csignal>
#include <iostream>

#include "controller.h"
#include "serve.h"
#include "wire/note.h"

namespace sim {
namespace {

int run(int argc, char** argv) {
    constexpr int kUsageError = 2;
    try {
        const std::vector<Options> arms = parse_options(argc, argv);
        const Options& options = arms.front();
        if (options.help) {
            std::cout << usage();
            return 0;
        }
        if (options.version) {
            std::cout << "zk_simulator " ZK_VERSION "\n";
            return 0;
        }
        if (options.commands) {
            for (const std::string& name : Controller(options).dispatcher().commands.names()) std::cout << name << '\n';
            return 0;
        }
        if (wanted_by_any(arms, &Options::quiet)) silence_notes();
        serve(arms);
        return 0;
    } catch (const std::invalid_argument& error) {
        std::cerr << "zk_simulator: " << error.what() << "\nTry --help.\n";
        return kUsageError;
    } catch (const std::exception& error) {
        std::cerr << "zk_simulator: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace
}  // namespace sim

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // the reader of standard error may close it
    return sim::run(argc, argv);
}
