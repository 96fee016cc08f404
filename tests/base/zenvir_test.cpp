#include "base/zenvir.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

const fs::path base = fs::path(::testing::TempDir()) / "zenvir_test";
const fs::path log_path = fs::path(base.string() + ".log");

std::string log_text() {
    std::stringstream text;
    text << std::ifstream(log_path).rdbuf();
    return text.str();
}

// Standard output of one message line written by xmessage.
std::string xmessage_of(const std::string& line) {
    zenvir::msg() = line;
    CaptureStdout();
    zenvir::xmessage();
    return GetCapturedStdout();
}

std::string xerror_of(int unit) {
    CaptureStdout();
    zenvir::xerror(unit);
    return GetCapturedStdout();
}

TEST(Zenvir, XerrorReportsTheStatusRecordOnAnyUnitWithoutLog) {
    const std::string long_text(100, 'x');
    for (int unit : {0, 6, 42}) {
        zenvir::status() = {};
        EXPECT_EQ(xerror_of(unit), "NO ERROR DETECTED\n");
        zenvir::set_error("adim", long_text, "Unknown reference var p");
        EXPECT_EQ(xerror_of(unit),
                  "MOD: adim\nSUB: " + std::string(72, 'x') + "\nMSG: Unknown reference var p\n");
    }
}

TEST(Zenvir, LogTakesMessagesAndTheReportOfItsUnitOnly) {
    fs::remove(log_path);
    EXPECT_EQ(xmessage_of(std::string(80, 'a')), std::string(78, 'a') + "\n");
    EXPECT_FALSE(fs::exists(log_path)); // no log open: standard output only

    zenvir::imessage(10, false, base.string());
    EXPECT_EQ(zenvir::idf(), 10);
    EXPECT_EQ(xmessage_of("first"), "first\n");
    zenvir::set_error("adim", "dim_value", "Unknown variable q");
    EXPECT_EQ(xerror_of(10), "");
    EXPECT_LT(zenvir::idf(), 1); // closed by xerror
    EXPECT_EQ(xmessage_of("after close"), "after close\n");
    EXPECT_EQ(log_text(), "first\nMOD: adim\nSUB: dim_value\nMSG: Unknown variable q\n");

    // Appending keeps the log; opening anew empties it. A report to another unit closes it too.
    zenvir::status() = {};
    for (const auto& [app, line, expected] :
         {std::tuple{true, "two", "\ntwo\n"}, std::tuple{false, "three", "three\n"}}) {
        zenvir::imessage(3, app, base.string());
        xmessage_of(line);
        EXPECT_EQ(xerror_of(6), "NO ERROR DETECTED\n");
        EXPECT_TRUE(log_text().ends_with(expected)) << log_text();
    }
    EXPECT_EQ(log_text(), "three\n");
}

TEST(Zenvir, UnopenableLogLeavesStandardOutputWorking) {
    zenvir::status() = {};
    zenvir::imessage(7, false, (fs::path(::testing::TempDir()) / "no_such_dir" / "log").string());
    EXPECT_EQ(xmessage_of("still here"), "still here\n");
    EXPECT_EQ(xerror_of(7), "NO ERROR DETECTED\n");
}

} // namespace
