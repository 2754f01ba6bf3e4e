// SPDX-License-Identifier: Apache-2.0
// Memory, descriptors and cores of a batch.
#include <poll.h>

#include <atomic>
#include <cmath>
#include <csignal>
#include <thread>

#include "tests/tool/Batch.h"
#include "tools/zvtext/batch/UsableCores.h"

namespace {

using Json = nlohmann::json;

TEST_F(BatchCommand, TenThousandLinesBehindASlowOneTakeBoundedMemory) {
    constexpr size_t kLines = 10'000;
    // Long results, because the reader quotes what it cannot read.
    const std::string bad = "{\"text\":\"" + std::string(1500, 'x') + "\n";
    std::atomic<size_t> sent = 1;
    Running running(arguments("--jobs 2"));
    std::thread feeder([&] {
        running.put(slowLine());
        for (; sent < kLines; ++sent) running.put(sent % 32 == 0 ? "{\"text\":\"i\",\"size\":8}\n" : bad);
        running.endInput();
    });
    // By now it waits, whatever comes next: the feeder's pipe is full.
    pollfd room = {running.input, POLLOUT, 0};
    EXPECT_TRUE(comesTrue([&] { return sent > 1000 && poll(&room, 1, 200) == 0; }));
    EXPECT_LT(sent, 2000u);
    releaseSlowLine();
    size_t count = 0;
    for (Json result; (result = running.next()) != nullptr;) EXPECT_EQ(result.value("line", 0u), ++count);
    EXPECT_EQ(count, kLines);
    if (count < kLines) running.signalAll(SIGKILL);
    feeder.join();
    EXPECT_EQ(running.wait(), 1 << 8);
    EXPECT_TRUE(kSanitized || running.usage.ru_maxrss < 24 << 10) << running.usage.ru_maxrss << " kB";
}

TEST_F(BatchCommand, FontsOfTheirOwnDoNotFillTheMemory) {
    std::string lines;
    for (int i = 0; i < 150; ++i) {
        fs::create_symlink(kFont, file("font" + std::to_string(i)));
        lines += "{\"text\":\"x\",\"font\":\"" + file("font" + std::to_string(i)).string() + "\"}\n";
    }
    Running running(arguments());
    running.put(lines);
    running.endInput();
    const pid_t first = running.worker();
    for (int i = 0; i < 150; ++i) EXPECT_EQ(error(running.next()), "");
    EXPECT_NE(kill(first, 0), 0) << "another worker has taken over";
    EXPECT_EQ(running.wait(), 0);
}

TEST_F(BatchCommand, MoreJobsThanDescriptorsDoNotMatter) {
    std::string command = "ulimit -n 64; seq 100 | sed 's,.*,{\"text\":\"x\"},' | timeout 60 " ZVTEXT_BINARY
                          " batch >/dev/null";
    for (const std::string& argument : arguments("--jobs 100")) command += " '" + argument + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_TRUE(fs::exists(folder() / "100.png"));
}

// 40 pictures of 4 MB and a reader that takes none for a while.
TEST_F(BatchCommand, ASlowReaderOfPicturesStopsNothingElseAndFillsNoMemory) {
    constexpr int kPictures = 40;
    constexpr size_t kBytes = size_t{1000} * 1000 * 4;
    const int errors = open(file("errors").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    Running running(arguments("--width 1000 --height 1000 --format raw"), errors);
    std::string lines;
    for (int i = 0; i < kPictures; ++i) lines += "{\"text\":\"x\",\"output\":\"-\"}\n";
    running.put(lines + "{\"text\":\"x\",\"width\":9,\"height\":9,\"output\":\"last.rgba\"}\n");
    EXPECT_TRUE(comesTrue([&] { return fs::exists(folder() / "last.rgba"); }, 60));
    for (int i = 1; i < kPictures; ++i) {
        const Json result = running.next();
        ASSERT_EQ(result.value("line", 0), i);
        ASSERT_EQ(running.picture(result).size(), kBytes);
    }
    EXPECT_EQ(running.next().value("line", 0), kPictures);
    running.closeOutput();
    EXPECT_EQ(running.wait(), 1 << 8);
    EXPECT_TRUE(kSanitized || running.usage.ru_maxrss < 110 << 10) << running.usage.ru_maxrss << " kB";
    EXPECT_NE(
        slurp(file("errors"))
            .find("zvtext: cannot write to standard output: the reader has closed it after 39 pictures\n"),
        std::string::npos)
        << slurp(file("errors"));
    close(errors);
}

TEST_F(BatchCommand, TheCoresThatMayBeUsed) {
    const std::string v1 = "3:memory:/a\n2:cpuacct,cpu:/job/task\n0::/\n", folder = "cpuacct,cpu/";
    unsetenv("SLURM_CPUS_PER_TASK");
    const int all = zvtext::usableCores(file("empty"));
    const struct {
        const char* what;
        std::string groups, quota, text, period;
        double cores;  // infinite: those of the machine
    } cases[] = {{"a container", "0::/\n", "cpu.max", "50000 100000\n", "", 0.5},
                 {"a share more", "0::/\n", "cpu.max", "100001 100000\n", "", 2},
                 {"no quota", "0::/job\n", "job/cpu.max", "max 100000\n", "", INFINITY},
                 {"of a group around it", "0::/slurm/job/step\n", "slurm/cpu.max", "20000 20000\n", "", 1},
                 {"of another group", "0::/job/2\n", "job/3/cpu.max", "10000 20000\n", "", INFINITY},
                 {"beside the first version", v1, "unified/cpu.max", "1000 2000\n", "", 1},
                 {"first version", v1, folder + "job/task/cpu.cfs_quota_us", "100000\n",
                  folder + "job/task/cpu.cfs_period_us", 1},
                 {"as a container sees it", v1, "cpu/cpu.cfs_quota_us", "1\n", "cpu/cpu.cfs_period_us", 1},
                 {"no quota there", v1, folder + "job/cpu.cfs_quota_us", "-1\n",
                  folder + "job/cpu.cfs_period_us", INFINITY}};
    for (const auto& each : cases) {
        fs::remove_all(file("root"));
        const std::string mount = "root/sys/fs/cgroup/";
        fs::create_directories(file("root/proc/self"));
        fs::create_directories(file(mount + each.quota).parent_path());
        write("root/proc/self/cgroup", each.groups);
        write(mount + each.quota, each.text);
        if (!each.period.empty()) write(mount + each.period, "100000\n");
        const double cores = std::min<double>(all, std::ceil(each.cores));
        EXPECT_EQ(zvtext::usableCores(file("root")), cores) << each.what;
    }
    for (const auto& [text, cores] : {std::pair("1", 1), {"4096", all}, {"0", all}, {"", all}}) {
        setenv("SLURM_CPUS_PER_TASK", text, 1);
        EXPECT_EQ(zvtext::usableCores(file("empty")), cores) << text;
    }
    unsetenv("SLURM_CPUS_PER_TASK");
}

}  // namespace
