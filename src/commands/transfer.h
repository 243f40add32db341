// What the transfers of files to the controller share.
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

// Bytes of a file from its start to its end, or -1; more than the wire's 32 bits hold counts as unreadable. Leaves the
// file at its start.
int32_t size_of(FILE* file);

// A text of so many bytes, up to a limit, or to its end mark.
std::string bounded(const char* text, int32_t length, int32_t limit = ZK_PATH_SIZE);

// Where the last '/' stands, or failing that the last '\'; npos without either.
size_t last_separator(std::string_view path);

// Tells a callback how far a transfer is, a hundred times at most.
class Progress {
 public:
    Progress(ZK_TransferProgress tell, void* user) : tell_(tell), user_(user) {}
    void begin(int64_t total) {
        total_ = total;
        hundredths_ = -1;
        sent(0);
    }
    void sent(int64_t bytes);

 private:
    ZK_TransferProgress tell_;
    void* user_;
    int64_t total_ = 0;
    int64_t hundredths_ = -1;
};

// A stream for a file, which gives up when the controller stops reading for as long as its verdict may take.
ByteStream file_stream(ArmSocket socket);

// Waits for what the controller makes of a file. `written` is how the writing of it ended: what was said before the end
// of the connection counts, and nothing more will be after a silence. `err_line` may be null.
int await_verdict(ArmSocket socket, int written, int32_t* err_line);

}  // namespace zk
