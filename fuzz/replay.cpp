// Runs the files of a corpus through a fuzzer, for builds without a fuzzing engine.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <vector>

#include "input.h"

int main(int argc, char** argv) {
    std::set<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            files.insert(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.insert(entry.path());
    }
    for (const auto& file : files) {
        std::cerr << file.filename().string() << std::endl;  // the last one named is the one that failed
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::cout << files.size() << " inputs replayed\n";
    return files.empty() ? 1 : 0;
}
