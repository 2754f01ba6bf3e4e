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
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

// The real program with real files, as a user calls it.

namespace fs = std::filesystem;

inline const std::string kFont = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
inline const std::string kCjk = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
inline const std::string kInter = "/usr/share/fonts/truetype/inter-vf/Inter.var.ttf";

// Memory, lines and calls of the sanitizers are unknown, so checks of these are left out.
#ifdef ZVTEXT_SANITIZED
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

// In a child process: becomes the program. Returns a status if that fails.
inline int execute(const std::vector<std::string>& arguments) {
    std::vector<char*> argv = {const_cast<char*>(ZVTEXT_BINARY)};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(ZVTEXT_BINARY, argv.data());
    return 127;
}

struct Result {
    int status = -1;  // exit status; -1 when the program was killed
    std::string out, err;
    double peakMegabytes = 0;  // peak memory
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

// A line of a file of cases.
struct Row {
    std::string input, answer;
    bool whole;  // the answer, not how it begins
};

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

    // Replaces $FONT and so on by the names of the files that many tests use.
    std::string expanded(std::string text) const {
        const std::pair<std::string, std::string> names[] = {{"$DIR", mFolder},
                                                             {"$FONT", kFont},
                                                             {"$CJK", kCjk},
                                                             {"$INTER", kInter},
                                                             {"$SOURCE", ZVTEXT_SOURCE}};
        for (const auto& [name, path] : names) {
            for (size_t at; (at = text.find(name)) != std::string::npos;) text.replace(at, name.size(), path);
        }
        return text;
    }

    // A command line's words, separated by blanks; words in '' may contain blanks or be empty.
    std::vector<std::string> words(const std::string& line) const {
        std::vector<std::string> words;
        bool within = false, quoted = false;
        for (const char c : expanded(line)) {
            if (c == '\'') quoted = !quoted;
            if (!quoted && c == ' ') within = false;
            if (!quoted && c == ' ') continue;
            if (!std::exchange(within, true)) words.emplace_back();
            if (c != '\'') words.back() += c;
        }
        return words;
    }

    // In a child process: becomes the program, with its streams in the folder's files of their names.
    int become(const std::vector<std::string>& arguments) const {
        dup2(open(file("stdin").c_str(), O_RDONLY), 0);
        dup2(open(file("stdout").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
        dup2(open(file("stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
        return execute(arguments);
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

    Result zvtext(const std::string& line, const std::string& input = "") const {
        return run(words(line), input);
    }

    nlohmann::json report(const std::string& line) const {
        const Result result = zvtext(line + " --json");
        EXPECT_EQ(result.status, 0) << line << "\n" << result.err;
        return nlohmann::json::parse(result.out, nullptr, false);
    }

    // The bytes of the picture that render draws for the line.
    std::string bytes(const std::string& line, const std::string& input = "") const {
        const Result result = zvtext("render -o $DIR/out.png " + line, input);
        EXPECT_EQ(result.status, 0) << line << "\n" << result.err;
        return slurp(file("out.png"));
    }
    Image render(const std::string& line, const std::string& input = "") const {
        bytes(line, input);
        return readPng(file("out.png"));
    }

    // The run prints one error line that begins with `message` and nothing else, and leaves the folder
    // unchanged.
    void expectRefused(const std::string& line, int status, const std::string& message) const {
        const auto before = left();
        const Result result = zvtext(line);
        EXPECT_EQ(result.status, status) << line;
        const std::string expected = "zvtext: " + expanded(message);
        EXPECT_EQ(result.err.substr(0, expected.size()), expected) << line;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(left(), before) << line;
    }

    // The folder's files except those of the streams.
    std::set<std::string> left() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(mFolder)) {
            const std::string name = entry.path().filename();
            if (name.rfind("std", 0) != 0) names.insert(name);
        }
        return names;
    }

    // The lines of a section of refusals.txt or answers.txt, which say how they are written.
    static std::vector<Row> rows(const std::string& name, const std::string& section) {
        std::vector<Row> rows;
        std::vector<std::pair<std::string, std::string>> names;
        std::stringstream file(slurp(fs::path(ZVTEXT_SOURCE) / "tests/tool" / (name + ".txt")));
        bool here = false;
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line[0] == '#') continue;
            if (line[0] == '=') {
                here = line.rfind("== " + section + ":", 0) == 0;
                continue;
            }
            const size_t equals = line[0] == '$' ? line.find(" = ") : std::string::npos;
            const size_t arrow = line.find(" =>");
            if (equals != std::string::npos && arrow == std::string::npos) {
                names.emplace_back(line.substr(0, equals), line.substr(equals + 3));
            } else if (here && arrow != std::string::npos) {
                for (auto replaced = names.rbegin(); replaced != names.rend(); ++replaced) {
                    for (size_t at; (at = line.find(replaced->first)) != std::string::npos;)
                        line.replace(at, replaced->first.size(), replaced->second);
                }
                const size_t end = line.find(" =>");
                std::string message = unpacked(line.substr(std::min(end + 4, line.size())));
                const bool whole = message.size() < 3 || message.compare(message.size() - 3, 3, "...") != 0;
                if (!whole) message.resize(message.size() - 3);
                rows.push_back({unpacked(line.substr(0, end)), message, whole});
            }
        }
        EXPECT_FALSE(rows.empty()) << section;
        return rows;
    }

    // For a run of the program with each row: under the sanitizers every fourth, or all with ZVEX_TEST_ALL.
    static std::vector<Row> sampled(const std::vector<Row>& rows) {
        std::vector<Row> some;
        const size_t stride = kSanitized && std::getenv("ZVEX_TEST_ALL") == nullptr ? 4 : 1;
        for (size_t i = 0; i < rows.size(); i += stride) some.push_back(rows[i]);
        return some;
    }

    // With the repetitions and bytes written out.
    static std::string unpacked(std::string text) {
        for (size_t at; (at = text.find("<<")) != std::string::npos;) {
            const size_t bar = text.find('|', at), end = text.find(">>", at);
            const std::string part = text.substr(bar + 1, end - bar - 1);
            std::string many;
            for (int i = std::atoi(text.c_str() + at + 2); i > 0; --i) many += part;
            text.replace(at, end + 2 - at, many);
        }
        for (size_t at = 0; (at = text.find("\\x", at)) != std::string::npos; ++at) {
            text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
        }
        return text;
    }

    // Standard error without the lines that begin with `begin`. Builds with every log line compiled in also
    // write the library's debug lines there; these are left out too.
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
