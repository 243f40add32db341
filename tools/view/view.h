// The live view: a page on this machine that shows arms as they move.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zk::view {

// Where a controller listens.
struct Address {
    std::string host;
    int port = 8080;
    std::string name;  // what the page calls the arm; "": its address
};

// A recording, which the page plays in place of arms.
struct Film {
    std::string name;
    std::string arm;     // the event of that name
    std::string about;   // JSON: what the page knows before it has the states
    std::string states;  // floats, of each state those of all columns
};

struct Options {
    std::vector<Address> arms;
    std::optional<Film> film;
    int port = 8090;       // of the page, on 127.0.0.1; 0: any free one
    bool control = false;  // offers a stop, to who knows the token
};

// Serves the page until SIGINT or SIGTERM. Writes its address on standard output. Every arm must answer at first; one
// that is lost later is connected to again. Throws Failure when one does not answer, the port is taken, or the program
// was built without the page.
void serve(const Options& options);

}  // namespace zk::view
