// The fixture of every end-to-end test of the daemon.
#pragma once

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <string>

#include "tests/service/isolation.h"

namespace e2e {

// Base of every daemon test: refuses to run outside the isolation and checks
// afterwards that no shutdown command of the system was reached.
class DaemonTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(Isolation::instance().ready()) << Isolation::instance().error();
        const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
        // Parameterised tests carry '/' in their names: one folder per test.
        std::string name = std::string(info->test_suite_name()) + "." + info->name();
        std::replace(name.begin(), name.end(), '/', '_');
        suite = std::make_unique<Suite>(name);
    }
    void TearDown() override {
        if (suite) {
            suite->killAll();
            if (HasFailure()) {
                std::cerr << "---- daemon log\n"
                          << suite->log() << "---- daemon stderr\n"
                          << suite->stderrText() << "---- journal (tail)\n"
                          << tail(suite->journal(), 4000);
            }
        }
        EXPECT_FALSE(exists(Isolation::instance().realShutdownAttempts()))
            << "a system shutdown command was reached: "
            << readFile(Isolation::instance().realShutdownAttempts());
    }

    static std::string tail(const std::string& text, size_t size) {
        return text.size() > size ? text.substr(text.size() - size) : text;
    }

    std::unique_ptr<Suite> suite;
};

}  // namespace e2e
