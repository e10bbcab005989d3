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

TEST(ShutdownCauseTest, NamesAndNumbersOutsideTheTable) {
    std::ostringstream streamed;
    for (int code = -1; code <= 7; ++code)
        streamed << static_cast<ShutdownCause>(code) << "|";
    EXPECT_EQ(streamed.str(),
              "-1|None|Manual|EndAutonomy|LoBattery|Failure|Scheduled|PowerLook|7|");
}

TEST(RegressiveTest, TextAndJsonShowTheStoredValueAndAreReadAsASnapshot) {
    Regressive countdown(ShutdownCause::Scheduled);
    EXPECT_EQ(countdown.toString(),
              "active=0,cause=Scheduled,value=-1,max=0,initial=0,inShutdown=0\n");
    EXPECT_EQ(compact(countdown.toJson()), "{\"cause\":5,\"value\":-1}");
    // A disabled countdown that holds a value is written as active.
    countdown.start(5000);
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
        {"{\"cause\":4.8,\"active\":\"TRUE\",\"value\":1e30}",
         "active=1,cause=Failure,value=9223372036854775807,max=0,initial=0,inShutdown=0\n"},
        {"{}", "active=0,cause=None,value=0,max=0,initial=0,inShutdown=0\n"},
    };
    for (const auto& row : rows) {
        Regressive decoded(ShutdownCause::Manual);
        decoded.start(100);
        decoded.fromJson(parsed(row.first));
        EXPECT_EQ(decoded.toString(), row.second) << row.first;
    }
}

TEST(RegressiveCounterTest, ChoosesTheCountdownThatEndsFirst) {
    RegressiveCounter counter;
    EXPECT_EQ(counter.toString(),
              "\nregressive: [{cause=Manual, value=-1}, {cause=EndAutonomy, value=-1}, "
              "{cause=LoBattery, value=-1}, {cause=Failure, value=-1}, "
              "{cause=Scheduled, value=-1}, {cause=PowerLook, value=-1}]\n");

    // On a tie the lower cause wins.
    counter.start(ShutdownCause::Scheduled, 5000);
    counter.start(ShutdownCause::Manual, 5000);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::Manual);
    counter.start(ShutdownCause::PowerLook, 4000);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::PowerLook);
    // A disabled countdown reads -1 and no longer counts.
    counter.disable(ShutdownCause::PowerLook);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::Manual);
    counter.setInShutdown(true);
    EXPECT_TRUE(counter.inShutdown() && counter.counters.at(ShutdownCause::Manual).inShutdown);

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

TEST(RegressiveCounterTest, CountsDownOnTheClockToZeroAndStaysThere) {
    RegressiveCounter counter;
    counter.start(ShutdownCause::EndAutonomy, 200);
    counter.start(ShutdownCause::LoBattery, 600000);
    Regressive& running = counter.counters.at(ShutdownCause::LoBattery);
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    counter.update();
    EXPECT_TRUE(counter.isZero());
    // The bounds also show that the start tick is the clock's.
    EXPECT_GT(running.value(), 600000 - 400 - 5000);
    EXPECT_LE(running.value(), 600000 - 400);

    // A second start neither restarts nor extends.
    const Regressive before = running;
    counter.start(ShutdownCause::LoBattery, 900000);
    EXPECT_EQ(running, before);

    // Disabled it reads -1 but keeps its start, so enable() resumes from it.
    running.disable();
    EXPECT_EQ(running.value(), -1);
    running.enable();
    running.update();
    EXPECT_LE(running.value(), before.value());
    EXPECT_GT(running.value(), before.value() - 5000);

    // At 0 the clock is no longer read, so a longer length changes nothing.
    counter.counters.at(ShutdownCause::EndAutonomy).max = 1000000;
    counter.update();
    EXPECT_TRUE(counter.isZero(ShutdownCause::EndAutonomy));
}

}  // namespace
