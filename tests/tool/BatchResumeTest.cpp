// SPDX-License-Identifier: Apache-2.0
// A batch or a worker that dies, and --resume.
#include <csignal>
#include <functional>
#include <iterator>

#include "tests/tool/Batch.h"
#include "tools/zvtext/batch/Digest.h"

namespace {

using Json = nlohmann::json;

// Kills it after each number of results, and so after each kind of step.
TEST_F(BatchCommand, KilledItLeavesWholePicturesAndResumesTheRest) {
    constexpr size_t kLines = 12;
    std::string lines;
    for (size_t i = 1; i <= kLines; ++i) {
        lines += Json({{"text", "Line " + std::to_string(i)}, {"outer-glow", "size=20"}}).dump() + "\n";
    }
    const auto pictures = [&] {
        size_t count = 0;
        for (const auto& entry : fs::directory_iterator(folder())) {
            if (entry.path().extension() != ".png") continue;
            EXPECT_GT(readPng(entry.path()).ink(), 0u);
            ++count;
        }
        return count;
    };
    for (size_t results = 1; results < kLines; results += 2) {
        Running running(arguments("--jobs 3 --resume"));
        running.put(lines);
        for (size_t i = 0; i < results; ++i) running.next();
        const std::vector<pid_t> workers = running.workers();
        running.signalAll(SIGKILL);
        running.wait();
        for (const pid_t worker : workers) EXPECT_TRUE(Running::ends(worker));
        EXPECT_GE(pictures(), results);
    }
    write("out/7.png.zvtext-a1b2c3", "cut short");
    write("out/7.png.backup", "mine");
    const std::vector<Json> results = batch(lines, "--jobs 2 --resume", 0);
    ASSERT_EQ(results.size(), kLines);
    EXPECT_TRUE(results[0].value("skipped", false));
    EXPECT_EQ(pictures(), kLines);
    for (size_t i = 1; i <= kLines; ++i) {
        EXPECT_EQ(slurp(folder() / (std::to_string(i) + ".png")),
                  bytes("'Line " + std::to_string(i) + "' -f $FONT -s 24 --outer-glow size=20"));
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), ptrdiff_t{kLines} + 2)
        << "and the journal";
    EXPECT_TRUE(fs::exists(folder() / "7.png.backup"));
}

// Pictures that are no longer the line's own are made again; the others are kept.
TEST_F(BatchCommand, ResumingMakesAgainWhatChanged) {
    const auto remade = [&](const std::string& lines, const std::string& more = "") {
        std::string numbers;
        for (const Json& result : batch(lines, "--resume " + more, 0)) {
            if (!result.value("skipped", false)) numbers += std::to_string(result.value("line", 0)) + " ";
            EXPECT_GT(result.value("width", 0), 0);
            EXPECT_TRUE(result.contains("baseline"));
        }
        return numbers;
    };
    const std::string five = "{\"text\":\"1\"}\n{\"text\":\"2\"}\n{\"text\":\"3\"}\n{\"text\":\"4\"}\n",
                      edited = "{\"text\":\"Edited\"}" + five.substr(five.find('\n'));
    const std::string styled =
        R"({"text":"One","output":"1.png","style":")" + write("style.json", "{}").string() + "\"}";
    const std::string thai = R"({"text":"ก","output":"1.png","metrics":"1.json"})";
    fs::create_directory(file("fonts"));
    fs::copy_file("/usr/share/fonts/truetype/noto/NotoSansThai-Regular.ttf", file("fonts") / "thai.ttf");
    write("fonts.conf",
          expanded("<fontconfig><dir>$DIR/fonts</dir><cachedir>$DIR/cache</cachedir></fontconfig>"));
    const fs::path journal = folder() / ".zvtext-batch";
    const auto lastRecord = [&] {
        const std::string all = slurp(journal);
        return all.substr(all.rfind('\n', all.size() - 2) + 1);
    };
    const struct {
        const char* what;
        std::function<void()> change;
        std::string lines, numbers, more;
    } steps[] = {
        {"all", [] {}, five, "1 2 3 4 ", ""},
        {"nothing", [] {}, five, "", ""},
        {"a file cut short", [&] { fs::resize_file(folder() / "2.png", 99); }, five, "2 ", ""},
        {"another's picture",
         [&] { fs::copy_file(folder() / "2.png", folder() / "3.png", fs::copy_options::overwrite_existing); },
         five, "3 ", ""},
        {"a file gone", [&] { fs::remove(folder() / "4.png"); }, five, "4 ", ""},
        {"a line", [] {}, edited, "1 ", ""},
        {"its record is there, its picture is another", [] {}, five, "1 ", ""},
        {"another line", [] {}, styled, "1 ", ""},
        {"nothing", [] {}, styled, "", ""},
        {"the style", [&] { write("style.json", "{\"color\":\"#f00\"}"); }, styled, "1 ", ""},
        {"an option", [] {}, styled, "1 ", "--align right"},
        {"metrics, a font", [&] { setenv("FONTCONFIG_FILE", file("fonts.conf").c_str(), 1); }, thai, "1 ",
         ""},
        {"nothing", [] {}, thai, "", ""},
        {"the metrics gone", [&] { fs::remove(folder() / "1.json"); }, thai, "1 ", ""},
        {"the time of the font",
         [&] { fs::last_write_time(file("fonts") / "thai.ttf", fs::file_time_type::clock::now()); }, thai,
         "1 ", ""},
        {"another font serves it", [] { unsetenv("FONTCONFIG_FILE"); }, thai, "1 ", ""},
        {"a byte of the record",
         [&] {
             std::string other = lastRecord();
             other[other.find(",\"height\"") - 1] ^= 1;
             write("out/.zvtext-batch", other);
         },
         thai, "1 ", ""},
        {"foreign keys in the record",
         [&] {
             std::string foreign = lastRecord();
             foreign.resize(foreign.size() - 34);
             foreign.insert(foreign.size() - 1, ",\"path\":\"other\",\"skipped\":false");
             write("out/.zvtext-batch", foreign + " " + zvtext::Digest().add(foreign).hex() + "\n");
         },
         thai, "", ""},
        {"the record cut short", [&] { fs::resize_file(journal, 40); }, thai, "1 ", ""},
        {"nothing", [] {}, thai, "", ""}};
    for (const auto& step : steps) {
        step.change();
        EXPECT_EQ(remade(step.lines, step.more), step.numbers) << step.what;
    }
}

TEST_F(BatchCommand, ADeadWorkerCostsItsLineAlone) {
    Running running(arguments());
    running.put(slowLine() + "{\"text\":\"after\"}\n");
    kill(running.worker(), SIGKILL);
    EXPECT_EQ(error(running.next()), "the worker process died, killed: Killed");
    EXPECT_GT(running.next().value("width", 0), 0);
    // A worker that dies between two lines costs nothing.
    const pid_t idle = running.worker();
    kill(idle, SIGKILL);
    EXPECT_TRUE(Running::ends(idle));
    running.put("{\"text\":\"again\"}\n");
    EXPECT_EQ(error(running.next()), "");
    running.endInput();
    EXPECT_EQ(running.next(), nullptr);
    EXPECT_EQ(running.wait(), 1 << 8);
    // A worker that is busy with a line does not outlive its batch.
    Running killed(arguments());
    killed.put(slowLine());
    const int held = holdSlowLine();
    const pid_t worker = killed.worker();
    kill(killed.process, SIGKILL);
    killed.wait();
    EXPECT_TRUE(Running::ends(worker));
    close(held);
}

// Files that are on their way to the disk when their worker dies are made again.
TEST_F(BatchCommand, DyingWorkersLoseNoLine) {
    constexpr int kLines = 60;
    Running running(arguments("--jobs 2"));
    std::string lines;
    for (int i = 1; i <= kLines; ++i)
        lines +=
            "{\"text\":\"x\",\"output\":\"d" + std::to_string(i % 7) + "/" + std::to_string(i) + ".png\"}\n";
    running.put(lines);
    running.endInput();
    int errors = 0, kills = 0;
    for (int i = 1; i <= kLines; ++i) {
        const Json result = running.next();
        ASSERT_EQ(result.value("line", 0), i);
        if (!error(result).empty()) {
            EXPECT_EQ(error(result), "the worker process died, killed: Killed");
            ++errors;
        } else {
            EXPECT_GT(readPng(result.value("path", "")).ink(), 0u);
        }
        const std::vector<pid_t> workers = running.workers();
        if (i % 5 != 0 || i > kLines - 20) continue;
        for (const pid_t worker : workers) kills += kill(worker, SIGKILL) == 0 ? 1 : 0;
    }
    EXPECT_EQ(running.next(), nullptr);
    EXPECT_EQ(running.wait(), (errors > 0 ? 1 : 0) << 8);
    EXPECT_LE(errors, kills);
}

}  // namespace
