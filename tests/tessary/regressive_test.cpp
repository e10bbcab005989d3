#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessary/regressive.h"
#include "tests/support.h"

using namespace tessary;

using support::compact;
using support::parsed;

namespace {

void sleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

TEST(ShutdownCauseTest, NamesAndNumbersOutsideTheTable) {
    std::ostringstream streamed;
    std::string named;
    for (int code = -1; code <= 7; ++code) {
        streamed << static_cast<ShutdownCause>(code) << "|";
        named += Regressive(static_cast<ShutdownCause>(code)).causeAsStr() + "|";
    }
    const std::string names = "-1|None|Manual|EndAutonomy|LoBattery|Failure|Scheduled|PowerLook|7|";
    EXPECT_EQ(streamed.str(), names);
    EXPECT_EQ(named, names);
}

TEST(RegressiveTest, CountsDownAgainstTheClock) {
    Regressive countdown = Regressive::create(ShutdownCause::Manual);
    countdown.start(10000);
    EXPECT_EQ(countdown.value(), 10000);
    // The bounds also show that the start tick is the clock's.
    sleepMs(300);
    countdown.update();
    EXPECT_LE(countdown.value(), 10000 - 300);
    EXPECT_GT(countdown.value(), 10000 - 300 - 5000);

    // A second start neither restarts nor extends.
    const Regressive running = countdown;
    countdown.start(60000);
    EXPECT_EQ(countdown, running);
    countdown.inShutdown = true;

    // Disabled it reads -1 but keeps its start, so enable() resumes from it.
    countdown.disable();
    EXPECT_EQ(countdown.value(), -1);
    countdown.enable();
    countdown.update();
    EXPECT_LE(countdown.value(), running.value());

    countdown.reset();
    EXPECT_EQ(countdown, Regressive(ShutdownCause::Manual));
}

TEST(RegressiveTest, TextAndJsonShowTheStoredValueAndAreReadAsASnapshot) {
    Regressive countdown(ShutdownCause::Scheduled);
    EXPECT_EQ(countdown.toString(),
              "active=0,cause=Scheduled,value=-1,max=0,initial=0,inShutdown=0\n");
    EXPECT_EQ(compact(countdown.toJson()), "{\"cause\":5,\"value\":-1}");
    countdown.start(5000);
    EXPECT_EQ(compact(countdown.toJson()), "{\"active\":1,\"cause\":5,\"value\":5000}");
    // A disabled countdown that holds a value is written as active.
    countdown.disable();
    countdown.inShutdown = true;
    EXPECT_EQ(countdown.toString(), "active=0,cause=Scheduled,value=5000,max=5000,initial=" +
                                        std::to_string(countdown.initial) + ",inShutdown=1\n");
    EXPECT_EQ(compact(countdown.toJson()),
              "{\"active\":1,\"cause\":5,\"inShutdown\":1,\"value\":5000}");

    // Neither the length nor the start tick travels.
    const std::pair<std::string, const char*> rows[] = {
        {compact(countdown.toJson()),
         "active=1,cause=Scheduled,value=5000,max=0,initial=0,inShutdown=1\n"},
        {"{\"cause\":4.8,\"active\":\"TRUE\",\"value\":6000000000.7}",
         "active=1,cause=Failure,value=6000000000,max=0,initial=0,inShutdown=0\n"},
        {"{}", "active=0,cause=None,value=0,max=0,initial=0,inShutdown=0\n"},
    };
    for (const auto& row : rows) {
        Regressive decoded(ShutdownCause::Manual);
        decoded.start(100);
        decoded.fromJson(parsed(row.first));
        EXPECT_EQ(decoded.toString(), row.second) << row.first;
    }
}

TEST(RegressiveCounterTest, NewCounterHasNothingRunning) {
    RegressiveCounter counter;
    EXPECT_EQ(counter.value(), Regressive());
    EXPECT_FALSE(counter.isActive() || counter.isZero() || counter.inShutdown());
    EXPECT_EQ(counter.toString(),
              "\nregressive: [{cause=Manual, value=-1}, {cause=EndAutonomy, value=-1}, "
              "{cause=LoBattery, value=-1}, {cause=Failure, value=-1}, "
              "{cause=Scheduled, value=-1}, {cause=PowerLook, value=-1}]\n");

    // None has no countdown: nothing happens and nothing is active.
    counter.start(ShutdownCause::None, 0);
    counter.setInShutdown(true);
    EXPECT_FALSE(counter.isActive(ShutdownCause::None) || counter.isZero(ShutdownCause::None));
    EXPECT_EQ(counter, RegressiveCounter());
}

TEST(RegressiveCounterTest, ChoosesTheCountdownThatEndsFirst) {
    RegressiveCounter counter;
    counter.start(ShutdownCause::Scheduled, 5000);
    counter.start(ShutdownCause::Manual, 5000);
    EXPECT_THAT(counter.toString(), ::testing::StartsWith("\nregressive: [{cause=Manual, "
                                                          "value=5000}, {cause=EndAutonomy, "));
    EXPECT_EQ(counter.value().cause(), ShutdownCause::Manual);

    counter.start(ShutdownCause::PowerLook, 4000);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::PowerLook);
    counter.disable(ShutdownCause::PowerLook);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::Manual);
    counter.enable(ShutdownCause::PowerLook);
    EXPECT_EQ(counter.value().value(), 4000);

    counter.setInShutdown(true);
    EXPECT_TRUE(counter.inShutdown() && counter.counters.at(ShutdownCause::PowerLook).inShutdown);
    EXPECT_FALSE(counter.counters.at(ShutdownCause::Manual).inShutdown);

    counter.start(ShutdownCause::Failure, 0);
    EXPECT_TRUE(counter.isZero() && counter.isZero(ShutdownCause::Failure));
    counter.disable();
    EXPECT_FALSE(counter.isZero(ShutdownCause::Failure));
    EXPECT_EQ(counter.value(), Regressive());
    counter.enable();
    counter.reset(ShutdownCause::Failure);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::PowerLook);
    counter.reset();
    EXPECT_EQ(counter, RegressiveCounter());
}

TEST(RegressiveCounterTest, UpdateReachesZeroOnTheClockAndStaysThere) {
    RegressiveCounter counter;
    counter.start(ShutdownCause::EndAutonomy, 200);
    counter.start(ShutdownCause::LoBattery, 600000);
    sleepMs(400);
    counter.update();
    EXPECT_TRUE(counter.isZero());
    EXPECT_EQ(counter.value().cause(), ShutdownCause::EndAutonomy);
    EXPECT_GT(counter.counters.at(ShutdownCause::LoBattery).value(), 600000 - 400 - 5000);
    EXPECT_LE(counter.counters.at(ShutdownCause::LoBattery).value(), 600000 - 400);

    // At 0 the clock is no longer read, so a longer length changes nothing.
    counter.counters.at(ShutdownCause::EndAutonomy).max = 1000000;
    counter.update();
    EXPECT_TRUE(counter.isZero(ShutdownCause::EndAutonomy));
}

}  // namespace
