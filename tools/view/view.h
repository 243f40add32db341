// The live view: a page on this machine that shows arms as they move.
#pragma once

#include <string>
#include <vector>

namespace zk::view {

// Where a controller listens.
struct Address {
    std::string host;
    int port = 8080;
    std::string name;  // what the page calls the arm; "": its address
};

struct Options {
    std::vector<Address> arms;
    int port = 8090;       // of the page, on 127.0.0.1; 0: any free one
    bool control = false;  // offers a stop, to who knows the token
};

// Serves the page until SIGINT or SIGTERM. Writes its address on standard output, and errors on standard error. Every
// arm must answer at first; one that is lost later is connected to again. Returns an exit status: 0; 1 when an arm does
// not answer, the port is taken, or the program was built without the page.
int serve(const Options& options);

}  // namespace zk::view
