#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "client.h"

namespace sim {

// What goes wrong with a file on its way, on demand.
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

// A file of announced size on its way from a client.
class Reception : public Receiver {
 public:
    struct Order {
        FileRecord file;  // its size is what was announced
        bool keeps_text;  // of a project, to be read; an update is too large for that
        TransferFault fault;
        std::weak_ptr<Client> client;
        // Reads the text and gives the first line that is wrong, or 0.
        std::function<int(std::string text)> judge;
    };
    Reception(Order order, const std::string& path, std::vector<FileRecord>& records);
    ~Reception() override;
    Reception(const Reception&) = delete;
    Reception& operator=(const Reception&) = delete;

    size_t take(std::string_view bytes) override;
    bool wants_more() const override { return !ended_; }

    // Time passes; a file that does not come to its end is refused.
    void wait(int milliseconds);

 private:
    void give_verdict();
    void end(bool good, int error_line);

    Order order_;
    std::string path_;
    std::ofstream copy_;
    std::vector<FileRecord>& records_;
    std::string text_;
    FileRecord got_;
    int silence_ms_ = 0;
    bool ended_ = false;
    bool kept_ = false;
};

// The files that clients have sent.
class Files {
 public:
    std::string directory;  // where they are kept; empty: nowhere
    std::vector<FileRecord> records;

    // False for a name that is none of a file; throws BadRequest for a file that cannot be written.
    bool receive(const std::shared_ptr<Client>& client, Reception::Order order);
    void step(int milliseconds);

 private:
    std::vector<std::weak_ptr<Reception>> running_;
};

}  // namespace sim
