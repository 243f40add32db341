// The files of the page, bundled when the tools are built.
#pragma once

#include <string_view>

namespace zk::view {

struct PageFile {
    std::string_view path;  // of the request
    std::string_view content_type;
    std::string_view gzipped;
};

// Ends with a file without a path. Only that when the page was not built.
extern const PageFile kPage[];

}  // namespace zk::view
