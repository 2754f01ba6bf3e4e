// SPDX-License-Identifier: Apache-2.0
// The main function of a fuzz target without libFuzzer: runs the files of the given folders (a missing folder
// has none), then seeded random inputs. If a check fails or an input takes too long, prints the input as
// arguments for `printf`.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <vector>

#include "fuzz/Input.h"

namespace {

constexpr int kRandomInputs = 2000;
constexpr auto kRandomTime = std::chrono::seconds(10);  // at most
constexpr unsigned kInputSeconds = 10;

std::vector<uint8_t> current;

extern "C" void showInput(int signal) {
    std::fprintf(stderr, "signal %d at the input '", signal);
    for (const uint8_t byte : current) std::fprintf(stderr, "\\x%02x", static_cast<unsigned>(byte));
    std::fprintf(stderr, "'\n");
    _exit(1);
}

// The memory has exactly the input's size, so that the sanitizer finds a read beyond it.
void run(const std::vector<uint8_t>& bytes) {
    current.assign(bytes.begin(), bytes.end());
    current.shrink_to_fit();
    alarm(kInputSeconds);
    LLVMFuzzerTestOneInput(current.data(), current.size());
    alarm(0);
}

}  // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    for (const int number : {SIGABRT, SIGALRM}) signal(number, showInput);
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        if (fs::is_regular_file(argv[i])) files.emplace_back(argv[i]);
        if (!fs::is_directory(argv[i])) continue;
        for (const auto& entry : fs::directory_iterator(argv[i])) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        std::fprintf(stderr, "%s\n", file.c_str());
        std::ifstream stream(file, std::ios::binary);
        std::vector<uint8_t> input(fs::file_size(file));
        stream.read(reinterpret_cast<char*>(input.data()), static_cast<std::streamsize>(input.size()));
        run(input);
    }

    std::mt19937 random(20);
    const auto end = std::chrono::steady_clock::now() + kRandomTime;
    int count = 0;
    for (; count < kRandomInputs && std::chrono::steady_clock::now() < end; ++count) {
        std::vector<uint8_t> bytes(random() % (count % 10 == 0 ? 2000 : 150));
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
        run(bytes);
    }
    std::fprintf(stderr, "%zu files and %d random inputs\n", files.size(), count);
    return 0;
}
