// Shared by the transfers of files to the controller.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "connection/byte_stream.h"
#include "zk/file_transfer.h"

namespace zk {

struct CloseFile {
    void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

// Size of a file in bytes, or -1 when it cannot be read or does not fit the 32 bits of the wire. Rewinds the file.
int32_t size_of(FILE* file);

// The first `length` bytes of a text, at most `limit`, or up to its terminating zero.
std::string bounded(const char* text, int32_t length, int32_t limit = ZK_PATH_SIZE);

// Position of the last '/', or without any of the last '\'; npos without both.
size_t last_separator(std::string_view path);

// Reports the progress of a transfer to a callback, at most 101 times.
class Progress {
 public:
    Progress(ZK_TransferProgress callback, void* user) : callback_(callback), user_(user) {}
    void begin(int64_t total) {
        total_ = total;
        hundredths_ = -1;
        sent(0);
    }
    void sent(int64_t bytes);

 private:
    ZK_TransferProgress callback_;
    void* user_;
    int64_t total_ = 0;
    int64_t hundredths_ = -1;
};

// A stream for a file. It gives up when the controller reads nothing for as long as its verdict may take.
ByteStream file_stream(const Connection& connection);

// Waits for the controller's verdict on a file. `written` is the status of the writing: after a timeout only a verdict
// counts that is there. Once the controller has closed the connection, only one counts that it sent before. `err_line`
// may be null.
int await_verdict(const Connection& connection, const ByteStream& stream, int written, int32_t* err_line);

}  // namespace zk
