#include "programs/files.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "wire/note.h"
#include "wire/request.h"

namespace sim {
namespace {

constexpr int kSilenceMs = 5000;
constexpr uint64_t kDigestStart = 0xcbf29ce484222325, kDigestPrime = 0x100000001b3;

uint64_t digest(std::string_view bytes, uint64_t before) {
    for (const char byte : bytes) before = (before ^ static_cast<unsigned char>(byte)) * kDigestPrime;
    return before;
}

}  // namespace

bool is_transfer_fault(const std::string& kind) {
    constexpr std::array kinds{"", "refuse", "error_line", "silent", "close", "stall"};
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

Reception::Reception(Order order, const std::string& path, std::vector<FileRecord>& records, const bool& disk_full)
    : order_(std::move(order)), path_(path), records_(records), disk_full_(disk_full), got_(order_.file) {
    got_.size = 0;
    got_.digest = kDigestStart;
    if (!path_.empty()) copy_.open(path_, std::ios::binary | std::ios::trunc);
    if (!path_.empty() && !copy_) throw BadRequest("cannot write " + path_);
}

Reception::~Reception() {
    copy_.close();
    if (!kept_ && !path_.empty()) std::remove(path_.c_str());
}

size_t Reception::take(std::string_view bytes) {
    const TransferFault& fault = order_.fault;
    const bool breaks = fault.kind == "close" || fault.kind == "stall";
    const int64_t wanted = (breaks ? std::min(fault.at, order_.file.size) : order_.file.size) - got_.size;
    bytes = bytes.substr(0, static_cast<size_t>(wanted));
    if (order_.keeps_text) text_ += bytes;
    if (!path_.empty()) copy_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    got_.digest = digest(bytes, got_.digest);
    got_.size += static_cast<int64_t>(bytes.size());
    silence_ms_ = 0;
    if (static_cast<int64_t>(bytes.size()) == wanted) give_verdict();
    return bytes.size();
}

void Reception::give_verdict() {
    const TransferFault& fault = order_.fault;
    const auto client = order_.client.lock();
    ended_ = true;
    if (!client || fault.kind == "silent") return;
    if (fault.kind == "close") {
        client->disconnect();
    } else if (fault.kind == "stall") {
        client->stop_reading();
    } else if (disk_full_) {
        end(false, 0);
    } else if (fault.kind == "refuse" || fault.kind == "error_line") {
        end(false, fault.kind == "refuse" ? 0 : static_cast<int>(fault.at));
    } else {
        const int error_line = order_.judge(std::move(text_));
        end(error_line == 0, error_line);
    }
}

void Reception::end(bool good, int error_line) {
    ended_ = true;
    kept_ = good;
    copy_.close();
    if (good) records_.push_back(got_);
    Json verdict{{"command", "download_project"}, {"project_state", good}};
    if (error_line != 0) verdict["err_line"] = error_line;
    if (const auto client = order_.client.lock()) client->send(verdict);
}

void Reception::wait(double milliseconds) {
    silence_ms_ += milliseconds;
    if (ended_ || silence_ms_ < kSilenceMs) return;
    note("only " + std::to_string(got_.size) + " of " + std::to_string(order_.file.size) + " bytes of " +
         order_.file.name + " came");
    end(false, 0);
}

bool Files::receive(const std::shared_ptr<Client>& client, Reception::Order order) {
    const std::string name = order.file.name;
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) return false;
    if (disk_full) throw Refusal("the disk is full");
    order.client = client;
    const std::string path = directory.empty() ? "" : directory + "/" + name;
    const auto reception = std::make_shared<Reception>(std::move(order), path, records, disk_full);
    running_.push_back(reception);
    client->receive(reception);
    return true;
}

void Files::step(double milliseconds) {
    for (const auto& running : running_) {
        if (const auto reception = running.lock()) reception->wait(milliseconds);
    }
    std::erase_if(running_, [](const auto& running) { return running.expired(); });
}

}  // namespace sim
