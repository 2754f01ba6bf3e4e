// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/UsableCores.h"

#include <sched.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

namespace zvtext {

namespace {

constexpr double kNoLimit = std::numeric_limits<double>::infinity();

// A quota and its period, both in microseconds; "max", -1 and a missing file are no quota.
double coresOf(std::istream& quota, std::istream& period) {
    double time = 0, every = 0;
    return quota >> time && period >> every && time > 0 && every > 0 ? time / every : kNoLimit;
}

double quotaOf(const std::string& group) {
    std::ifstream both(group + "/cpu.max");
    std::ifstream quota(group + "/cpu.cfs_quota_us"), period(group + "/cpu.cfs_period_us");
    return std::min(coresOf(both, both), coresOf(quota, period));
}

// The least of the quotas of the group and those around it. A container may see its own group as the
// outermost one and yet know its name on the host, so that folders may be missing.
double leastQuota(const std::string& mount, std::string group) {
    double least = quotaOf(mount);
    for (; group.size() > 1; group.resize(std::min(group.rfind('/'), group.size())))
        least = std::min(least, quotaOf(mount + group));
    return least;
}

double groupQuota(const std::string& root) {
    const std::string mounts = root + "/sys/fs/cgroup";
    double least = kNoLimit;
    std::ifstream groups(root + "/proc/self/cgroup");  // number:controllers:group
    for (std::string line; std::getline(groups, line);) {
        std::stringstream parts(line);
        std::string number, controllers, group;
        std::getline(std::getline(std::getline(parts, number, ':'), controllers, ':'), group);
        if (controllers.empty()) {
            least = std::min({least, leastQuota(mounts, group), leastQuota(mounts + "/unified", group)});
        } else if (("," + controllers + ",").find(",cpu,") != std::string::npos) {
            least = std::min(
                {least, leastQuota(mounts + "/" + controllers, group), leastQuota(mounts + "/cpu", group)});
        }
    }
    return least;
}

}  // namespace

int usableCores(const std::string& root) {
    cpu_set_t set;
    double cores = sched_getaffinity(0, sizeof set, &set) == 0 ? CPU_COUNT(&set) : 1;
    cores = std::min(cores, std::ceil(groupQuota(root)));
    const char* task = std::getenv("SLURM_CPUS_PER_TASK");
    const int ofTask = task != nullptr ? std::atoi(task) : 0;
    if (ofTask > 0) cores = std::min(cores, static_cast<double>(ofTask));
    return std::max(static_cast<int>(cores), 1);
}

}  // namespace zvtext
