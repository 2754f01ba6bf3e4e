// SPDX-License-Identifier: Apache-2.0
#include <cctype>
#include <nlohmann/json.hpp>

#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;
using VersionCommand = Program;

TEST_F(VersionCommand, NamesWhatAReportNeeds) {
    const Result result = run({"version", "--json"});
    const Json version = Json::parse(result.out, nullptr, false);
    ASSERT_TRUE(version.is_object()) << result.out;
    for (const char* key : {"version", "compiler", "instructionSet"})
        EXPECT_NE(version.value(key, ""), "") << key;
    std::string lines = run({"version"}).out;
    for (const auto& [name, number] : version["libraries"].items()) {
        EXPECT_TRUE(std::isdigit(number.get<std::string>()[0])) << name;
        EXPECT_NE(lines.find("\n" + name + " " + number.get<std::string>() + "\n"), std::string::npos)
            << lines;
    }
    EXPECT_EQ(lines.rfind("zvtext " + version.value("version", "") + "\n", 0), 0u);
}

}  // namespace
