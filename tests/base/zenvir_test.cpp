#include "base/zenvir.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

std::string read_text(const fs::path& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class ZenvirTest : public ::testing::Test {
protected:
    void SetUp() override {
        zenvir::status() = {};
        zenvir::msg().clear();
        base = fs::path(::testing::TempDir()) / "zenvir_test";
        fs::remove(log_path());
    }
    void TearDown() override { zenvir::xerror(0); } // closes any log a test left open
    fs::path log_path() const { return fs::path(base.string() + ".log"); }

    // Runs f with standard output captured and returns what it wrote.
    template <class F> static std::string stdout_of(F f) {
        ::testing::internal::CaptureStdout();
        f();
        return ::testing::internal::GetCapturedStdout();
    }

    fs::path base;
};

TEST_F(ZenvirTest, SetErrorCutsEveryFieldTo72Characters) {
    const std::string long_text(100, 'x');
    zenvir::set_error("adim", long_text, "short");
    const auto& s = zenvir::status();
    EXPECT_TRUE(s.err);
    EXPECT_EQ(s.mdl, "adim");
    EXPECT_EQ(s.sub, std::string(72, 'x'));
    EXPECT_EQ(s.msg, "short");
}

TEST_F(ZenvirTest, XerrorReportsTheStatusRecordOnStandardOutput) {
    struct Case {
        bool err;
        const char* expected;
    };
    const Case cases[] = {
        {false, "NO ERROR DETECTED\n"},
        {true, "MOD: adim\nSUB: setup_reference\nMSG: Unknown reference var p\n"},
    };
    for (const auto& c : cases) {
        zenvir::status() = {};
        if (c.err) zenvir::set_error("adim", "setup_reference", "Unknown reference var p");
        for (int unit : {0, 6, 42})
            EXPECT_EQ(stdout_of([&] { zenvir::xerror(unit); }), c.expected) << "unit " << unit;
    }
}

TEST_F(ZenvirTest, XmessageWithoutLogWritesStandardOutputOnly) {
    ASSERT_LT(zenvir::idf(), 1);
    zenvir::msg() = std::string(80, 'a') + "zz";
    EXPECT_EQ(stdout_of([] { zenvir::xmessage(); }), std::string(78, 'a') + "\n");
    EXPECT_FALSE(fs::exists(log_path()));
}

TEST_F(ZenvirTest, LogReceivesMessagesAndTheErrorReportThenCloses) {
    zenvir::imessage(10, false, base.string());
    EXPECT_EQ(zenvir::idf(), 10);
    zenvir::msg() = "first line";
    EXPECT_EQ(stdout_of([] { zenvir::xmessage(); }), "first line\n");
    zenvir::set_error("adim", "dim_value", "Unknown variable q");
    EXPECT_EQ(stdout_of([] { zenvir::xerror(10); }), "");
    EXPECT_EQ(read_text(log_path()),
              "first line\nMOD: adim\nSUB: dim_value\nMSG: Unknown variable q\n");

    // Closed: later messages reach standard output only.
    EXPECT_LT(zenvir::idf(), 1);
    zenvir::msg() = "after close";
    EXPECT_EQ(stdout_of([] { zenvir::xmessage(); }), "after close\n");
    EXPECT_EQ(read_text(log_path()).find("after close"), std::string::npos);
}

TEST_F(ZenvirTest, AppendKeepsTheLogAndRewriteStartsAfresh) {
    const auto write_log = [&](bool app, const char* text) {
        zenvir::imessage(3, app, base.string());
        zenvir::msg() = text;
        stdout_of([] { zenvir::xmessage(); });
        stdout_of([] { zenvir::xerror(6); }); // another unit: report on stdout, log closed
    };
    write_log(false, "one");
    write_log(true, "two");
    EXPECT_EQ(read_text(log_path()), "one\ntwo\n");
    write_log(false, "three");
    EXPECT_EQ(read_text(log_path()), "three\n");
}

TEST_F(ZenvirTest, UnopenableLogLeavesStandardOutputWorking) {
    zenvir::imessage(7, false, (fs::path(::testing::TempDir()) / "no_such_dir" / "log").string());
    zenvir::msg() = "still here";
    EXPECT_EQ(stdout_of([] { zenvir::xmessage(); }), "still here\n");
    EXPECT_EQ(stdout_of([] { zenvir::xerror(7); }), "NO ERROR DETECTED\n");
}

} // namespace
