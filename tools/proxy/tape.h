// What the proxy records: every frame between it and the controller, every state, and what it did itself.
#pragma once

#include <memory>
#include <string>

#include "command.h"
#include "recording/state_reader.h"

namespace tool {

class Tape {
 public:
    // Records nothing without a path. Throws Failure when the file cannot be written.
    Tape(const std::string& path, const std::string& controller);

    enum class Way { kToController, kFromController };
    // client: who sends it, or who gets it; "" for all.
    void frame(Way way, const std::string& text, const std::string& client);
    // Also tells the operator.
    void event(const std::string& text);
    void state(const std::string& datagram);
    // What was written until now survives a crash of the proxy.
    void flush();
    // Throws Failure when something could not be written.
    void finish();

 private:
    struct File {
        explicit File(const std::string& path) : mcap(path), topics(mcap) {}
        McapWriter mcap;
        Topics topics;
    };
    template <class Write>
    void write(const Write& write);

    std::unique_ptr<File> file_;  // none: nothing is recorded, or no more since it failed
    std::string failure_;
    StateReader states_;
};

}  // namespace tool
