// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_TOOL_PROGRAM_H_
#define ZVEX_TESTS_TOOL_PROGRAM_H_

#include <fcntl.h>
#include <gtest/gtest.h>
#include <png.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// The real program with real files, as a user calls it.

namespace fs = std::filesystem;

inline const std::string kFont = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";

struct Result {
    int status = -1;  // exit status; -1 when the program was killed
    std::string out, err;
    double peakMegabytes = 0;  // of the memory it had at once
    double seconds = 0;        // of the processor
};

inline std::string slurp(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

struct Image {
    unsigned width = 0, height = 0;
    std::vector<uint8_t> rgba;

    // Sum of the alpha over the columns [x0, x1).
    uint64_t ink(unsigned x0, unsigned x1) const {
        uint64_t sum = 0;
        for (unsigned y = 0; y < height; ++y)
            for (unsigned x = x0; x < std::min(x1, width); ++x) sum += rgba[(size_t{y} * width + x) * 4 + 3];
        return sum;
    }
    uint64_t ink() const { return ink(0, width); }
};

inline Image readPng(const fs::path& path) {
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    Image image;
    EXPECT_TRUE(png_image_begin_read_from_file(&png, path.c_str())) << path << ": " << png.message;
    png.format = PNG_FORMAT_RGBA;
    image.width = png.width;
    image.height = png.height;
    image.rgba.resize(PNG_IMAGE_SIZE(png));
    EXPECT_TRUE(png_image_finish_read(&png, nullptr, image.rgba.data(), 0, nullptr)) << png.message;
    return image;
}

class Program : public testing::Test {
protected:
    Program() {
        std::string pattern = (fs::temp_directory_path() / "zvtext-test-XXXXXX").string();
        mFolder = mkdtemp(pattern.data());
    }
    ~Program() override { fs::remove_all(mFolder); }

    fs::path file(const std::string& name) const { return mFolder / name; }

    fs::path write(const std::string& name, const std::string& content) const {
        std::ofstream(file(name), std::ios::binary) << content;
        return file(name);
    }

    // In a child process: goes on as the program, with its streams in the folder's files of their names.
    int become(const std::vector<std::string>& arguments) const {
        dup2(open(file("stdin").c_str(), O_RDONLY), 0);
        dup2(open(file("stdout").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
        dup2(open(file("stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
        std::vector<char*> argv = {const_cast<char*>(ZVTEXT_BINARY)};
        for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        execv(ZVTEXT_BINARY, argv.data());
        return 127;
    }

    Result run(const std::vector<std::string>& arguments, const std::string& input = "") const {
        write("stdin", input);
        const pid_t child = fork();
        if (child == 0) _exit(become(arguments));
        int status = 0;
        rusage usage = {};
        wait4(child, &status, 0, &usage);
        Result result;
        result.peakMegabytes = static_cast<double>(usage.ru_maxrss) * 1024 / 1e6;
        for (const timeval& time : {usage.ru_utime, usage.ru_stime})
            result.seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
        result.out = slurp(file("stdout"));
        result.err = errorsBut({});
        return result;
    }

    // Standard error without the lines that begin so. Builds with every log line compiled in write the
    // library's debug lines there too; they go as well.
    std::string errorsBut(const std::string& begin) const {
        std::stringstream errors(slurp(file("stderr")));
        std::string rest;
        for (std::string line; std::getline(errors, line);) {
            const bool goes = line.rfind("D/", 0) == 0 || (!begin.empty() && line.rfind(begin, 0) == 0);
            if (!goes) rest += line + "\n";
        }
        return rest;
    }

    fs::path mFolder;
};

#endif  // ZVEX_TESTS_TOOL_PROGRAM_H_
