#include "proxy/proxy.h"

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <iostream>
#include <memory>

#include "arms.h"
#include "proxy/listener.h"
#include "proxy/player.h"
#include "proxy/sharing.h"

namespace tool {

using asio::ip::tcp;

namespace {

struct ProxyRequest {
    ArmOption arm;
    std::string controller, play, output, faults, silent_on, refuse_on, listen = "127.0.0.1";
    int port = 8081;
    unsigned seed = 1;
    SharingOptions sharing;
};

FaultDesk faults_of(const ProxyRequest& request) {
    FaultDesk faults;
    faults.wire.max_clients = 100;
    faults.seed = request.seed;
    faults.set(request.faults, request.silent_on, request.refuse_on);
    return faults;
}

tcp::endpoint find_controller(asio::io_context& io, const Address& address) {
    const std::string name = address.host + ":" + std::to_string(address.port);
    asio::error_code error;
    const auto found = tcp::resolver(io).resolve(tcp::v4(), address.host, std::to_string(address.port), error);
    if (error) throw Failure(kNoArm, name + ": " + error.message());
    return found.begin()->endpoint();
}

asio::ip::address listening_address(const std::string& text) {
    asio::error_code error;
    const auto address = asio::ip::make_address_v4(text, error);
    if (error) throw Failure(kUsage, "--listen '" + text + "' is no IPv4 address");
    return address;
}

// Until a signal ends it.
void run(asio::io_context& io, Listener& listener, FaultDesk& faults, Tape& tape, const std::string& what) {
    faults.refuse_clients = [&](int milliseconds) { listener.refuse(milliseconds); };
    faults.disconnect_others = [&](const Client& spared, bool reset) { listener.disconnect_others(spared, reset); };
    asio::signal_set signals(io, SIGINT, SIGTERM, SIGHUP);
    signals.async_wait([&](const asio::error_code& error, int) {
        if (!error) io.stop();
    });
    std::cout << "zk proxy port=" << listener.port() << ' ' << what << std::endl;
    io.run();
    tape.finish();
}

void share(ProxyRequest request) {
    asio::io_context io(1);
    const Address address = request.controller.empty() ? request.arm.address() : find_arm(request.controller);
    const asio::ip::address listen = listening_address(request.listen);
    FaultDesk faults = faults_of(request);
    request.sharing.controller = address.host + ":" + std::to_string(address.port);
    request.sharing.endpoint = find_controller(io, address);
    Tape tape(request.output, request.sharing.controller);
    PushShare push(io, listen, faults);
    Sharing sharing(io, request.sharing, push, faults, tape);
    sharing.begin();
    Listener listener(io, {listen, static_cast<asio::ip::port_type>(request.port)}, faults, sharing);
    run(io, listener, faults, tape, "controller=" + request.sharing.controller);
}

void play(const ProxyRequest& request) {
    if (!request.controller.empty() || !request.output.empty() || request.sharing.subscribe ||
        !request.sharing.writer.empty())
        throw Failure(kUsage, "--play needs no controller, and has no --output, --writer and --subscribe");
    asio::io_context io(1);
    const asio::ip::address listen = listening_address(request.listen);
    FaultDesk faults = faults_of(request);
    Tape tape("", "");
    PushShare push(io, listen, faults);
    Player player(io, request.play, push, faults);
    Listener listener(io, {listen, static_cast<asio::ip::port_type>(request.port)}, faults, player);
    run(io, listener, faults, tape,
        "requests=" + std::to_string(player.request_count()) + " states=" + std::to_string(player.state_count()));
}

}  // namespace

void add_proxy(CLI::App& zk) {
    const auto request = std::make_shared<ProxyRequest>();
    CLI::App* command = zk.add_subcommand("proxy", "stand before a controller: many programs read it, one writes");
    command->footer(
        "--play: a request is answered by the recorded answers to it, or else to its command, in their order, "
        "the last again and again. One that was never recorded is not answered.");
    command->add_option("CONTROLLER", request->controller, "HOST[:PORT], or a name of the file of arms");
    request->arm.add_to(*command);
    command->add_option("--port", request->port, "where programs connect; 0: any free port")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command->add_option("--listen", request->listen, "the address of this host that they use; 0.0.0.0: all")
        ->capture_default_str();
    command->add_option("--writer", request->sharing.writer,
                        "the host that may move and change the arm; none: nobody; without it the first that does");
    command->add_flag("--subscribe", request->sharing.subscribe, "make the controller push its states to this host");
    command->add_option("--play", request->play, "be the controller of this recording");
    command->add_option("-o,--output", request->output, "record everything in this file .mcap");
    command->add_option("--fault", request->faults, "faults of the wire, as NAME=N,...; zk_simulator has the names");
    command->add_option("--silent-on", request->silent_on, "commands to ignore, as NAME,...");
    command->add_option("--refuse-on", request->refuse_on, "commands to answer with false, as NAME,...");
    command->add_option("--seed", request->seed, "of the faults that come by chance");
    command->callback([request] { request->play.empty() ? share(*request) : play(*request); });
}

}  // namespace tool
