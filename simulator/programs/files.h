#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "wire/client.h"

namespace sim {

// A fault that a client injects into a file transfer.
struct TransferFault {
    std::string kind;  // empty: nothing; refuse, error_line, silent, close, stall
    int64_t at = 0;    // close, stall: after so many bytes; error_line: the line
};
bool is_transfer_fault(const std::string& kind);

struct FileRecord {
    std::string kind;  // "project" or "update"
    std::string name;
    int64_t size = 0;
    uint64_t digest = 0;  // FNV-1a, 64 bits
};

// The transfer of a file of announced size from a client.
class Reception : public Receiver {
 public:
    struct Order {
        FileRecord file;  // with the announced size
        bool keeps_text;  // true for a project, which is parsed; an update is too large to keep
        TransferFault fault;
        std::weak_ptr<Client> client;
        // Parses the text and returns the first line that is wrong, or 0.
        std::function<int(std::string text)> judge;
    };
    Reception(Order order, const std::string& path, std::vector<FileRecord>& records, const bool& disk_full);
    ~Reception() override;
    Reception(const Reception&) = delete;
    Reception& operator=(const Reception&) = delete;

    size_t take(std::string_view bytes) override;
    bool wants_more() const override { return !ended_; }

    // Passes time. A transfer that stalls is refused.
    void wait(double milliseconds);

 private:
    void give_verdict();
    void end(bool good, int error_line);

    Order order_;
    std::string path_;
    std::ofstream copy_;
    std::vector<FileRecord>& records_;
    const bool& disk_full_;
    std::string text_;
    FileRecord got_;
    double silence_ms_ = 0;
    bool ended_ = false;
    bool kept_ = false;
};

// The files received from clients.
class Files {
 public:
    std::string directory;  // where they are stored; empty: nowhere
    TransferFault fault;    // of the transfers to come
    bool disk_full = false;
    std::vector<FileRecord> records;

    // False for an invalid file name. Throws Refusal for a file that cannot be written.
    bool receive(const std::shared_ptr<Client>& client, Reception::Order order);
    // Passes the time of the clients, not that of the arm.
    void step(double milliseconds);

 private:
    std::vector<std::weak_ptr<Reception>> running_;
};

}  // namespace sim
