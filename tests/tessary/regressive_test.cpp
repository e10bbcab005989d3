#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "nimb/json.h"
#include "nimb/system.h"
#include "tessary/regressive.h"

using nimb::JsonDocument;
using nimb::JsonObject;
using tessary::Regressive;
using tessary::RegressiveCounter;
using tessary::ShutdownCause;

namespace {

std::string compact(const JsonObject& json) { return JsonDocument(json).toJson(false); }

JsonObject parsed(const std::string& text) {
    JsonDocument document;
    document.fromJson(text);
    return document.object();
}

std::uint64_t nowMs() { return nimb::System::getSystemTick(); }

void sleepMs(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

TEST(ShutdownCauseTest, NamesAndNumbersOutsideTheTable) {
    const char* const names[] = {"None",    "Manual",    "EndAutonomy", "LoBattery",
                                 "Failure", "Scheduled", "PowerLook",   "7"};
    for (int code = 0; code <= 7; ++code) {
        const auto cause = static_cast<ShutdownCause>(code);
        std::ostringstream out;
        out << cause;
        EXPECT_EQ(out.str(), names[code]);
        EXPECT_EQ(Regressive(cause).causeAsStr(), names[code]);
    }
    EXPECT_EQ(tessary::causeToStr(static_cast<ShutdownCause>(-2)), "-2");
}

TEST(RegressiveTest, CountsDownAgainstTheClock) {
    Regressive countdown = Regressive::create(ShutdownCause::Manual);
    const std::uint64_t before = nowMs();
    countdown.start(10000);
    const std::uint64_t after = nowMs();
    EXPECT_EQ(countdown.value(), 10000);
    EXPECT_GE(countdown.initial, before);
    EXPECT_LE(countdown.initial, after);

    sleepMs(300);
    countdown.update();
    EXPECT_LE(countdown.value(), 10000 - 300);
    EXPECT_GT(countdown.value(), 10000 - 300 - 5000);

    // A second start neither restarts nor extends.
    const Regressive running = countdown;
    countdown.start(60000);
    EXPECT_EQ(countdown, running);

    // Disabled it reads -1 but keeps its start, so enable() resumes from it.
    countdown.disable();
    EXPECT_EQ(countdown.value(), -1);
    countdown.enable();
    countdown.update();
    EXPECT_LE(countdown.value(), running.value());
    EXPECT_EQ(countdown.initial, running.initial);
}

TEST(RegressiveTest, StopsAtZeroWithoutReadingTheClockAgain) {
    Regressive countdown(ShutdownCause::LoBattery);
    countdown.start(100);
    sleepMs(250);
    countdown.update();
    EXPECT_EQ(countdown.value(), 0);
    countdown.max = 1000000;
    countdown.update();
    EXPECT_EQ(countdown.value(), 0);

    countdown.inShutdown = true;
    countdown.reset();
    EXPECT_EQ(countdown, Regressive(ShutdownCause::LoBattery));
    countdown.update();
    EXPECT_EQ(countdown.value(), -1);
}

TEST(RegressiveTest, TextShowsTheStoredValue) {
    EXPECT_EQ(Regressive().toString(),
              "active=0,cause=None,value=-1,max=0,initial=0,inShutdown=0\n");
    Regressive countdown(ShutdownCause::Scheduled);
    countdown.start(5000);
    countdown.disable();
    countdown.inShutdown = true;
    EXPECT_EQ(countdown.toString(), "active=0,cause=Scheduled,value=5000,max=5000,initial=" +
                                        std::to_string(countdown.initial) + ",inShutdown=1\n");
}

TEST(RegressiveTest, JsonWritesActiveFromTheValue) {
    Regressive countdown(ShutdownCause::Manual);
    EXPECT_EQ(compact(countdown.toJson()), "{\"cause\":1,\"value\":-1}");
    countdown.start(5000);
    EXPECT_EQ(compact(countdown.toJson()), "{\"active\":1,\"cause\":1,\"value\":5000}");
    countdown.disable();
    countdown.inShutdown = true;
    EXPECT_EQ(compact(countdown.toJson()),
              "{\"active\":1,\"cause\":1,\"inShutdown\":1,\"value\":5000}");

    // Read back it is a snapshot: running, but without start and length.
    Regressive decoded(ShutdownCause::Failure);
    decoded.fromJson(parsed(compact(countdown.toJson())));
    EXPECT_EQ(decoded.cause(), ShutdownCause::Manual);
    EXPECT_EQ(decoded.value(), 5000);
    EXPECT_TRUE(decoded.inShutdown);
    EXPECT_EQ(decoded.max, 0u);
    EXPECT_EQ(decoded.initial, 0u);

    decoded.fromJson(parsed("{\"cause\":4.8,\"active\":\"TRUE\",\"value\":6000000000.7}"));
    EXPECT_EQ(decoded.toString(),
              "active=1,cause=Failure,value=6000000000,max=0,initial=0,inShutdown=0\n");
    decoded.fromJson(JsonObject());
    EXPECT_EQ(decoded.toString(), "active=0,cause=None,value=0,max=0,initial=0,inShutdown=0\n");
}

TEST(RegressiveCounterTest, NewCounterHasNothingRunning) {
    RegressiveCounter counter;
    EXPECT_EQ(counter.counters.size(), 6u);
    EXPECT_EQ(counter.value(), Regressive());
    EXPECT_FALSE(counter.isActive());
    EXPECT_FALSE(counter.isZero());
    EXPECT_FALSE(counter.inShutdown());
    EXPECT_EQ(counter.toString(),
              "\nregressive: [{cause=Manual, value=-1}, {cause=EndAutonomy, value=-1}, "
              "{cause=LoBattery, value=-1}, {cause=Failure, value=-1}, "
              "{cause=Scheduled, value=-1}, {cause=PowerLook, value=-1}]\n");

    // None has no countdown: nothing happens and nothing is active.
    counter.start(ShutdownCause::None, 0);
    counter.setInShutdown(true);
    EXPECT_FALSE(counter.isActive(ShutdownCause::None));
    EXPECT_FALSE(counter.isZero(ShutdownCause::None));
    EXPECT_EQ(counter, RegressiveCounter());
}

TEST(RegressiveCounterTest, ChoosesTheCountdownThatEndsFirst) {
    RegressiveCounter counter;
    counter.start(ShutdownCause::Scheduled, 5000);
    counter.start(ShutdownCause::Manual, 5000);
    const std::string head = "\nregressive: [{cause=Manual, value=5000}, {cause=EndAutonomy, ";
    EXPECT_EQ(counter.toString().substr(0, head.size()), head);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::Manual);

    counter.start(ShutdownCause::PowerLook, 4000);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::PowerLook);
    counter.disable(ShutdownCause::PowerLook);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::Manual);
    EXPECT_FALSE(counter.isActive(ShutdownCause::PowerLook));
    counter.enable(ShutdownCause::PowerLook);
    EXPECT_EQ(counter.value().value(), 4000);

    counter.setInShutdown(true);
    EXPECT_TRUE(counter.counters.at(ShutdownCause::PowerLook).inShutdown);
    EXPECT_FALSE(counter.counters.at(ShutdownCause::Manual).inShutdown);
    EXPECT_TRUE(counter.inShutdown());

    counter.start(ShutdownCause::Failure, 0);
    EXPECT_TRUE(counter.isZero());
    EXPECT_TRUE(counter.isZero(ShutdownCause::Failure));
    counter.disable();
    EXPECT_FALSE(counter.isZero(ShutdownCause::Failure));
    EXPECT_EQ(counter.value(), Regressive());
    counter.enable();
    EXPECT_TRUE(counter.isActive());
    counter.reset(ShutdownCause::Failure);
    EXPECT_EQ(counter.value().cause(), ShutdownCause::PowerLook);
    counter.reset();
    EXPECT_EQ(counter, RegressiveCounter());
}

TEST(RegressiveCounterTest, UpdateReachesZeroOnTheClock) {
    RegressiveCounter counter;
    counter.start(ShutdownCause::EndAutonomy, 200);
    counter.start(ShutdownCause::LoBattery, 600000);
    EXPECT_FALSE(counter.isZero());
    sleepMs(400);
    counter.update();
    EXPECT_TRUE(counter.isZero());
    EXPECT_EQ(counter.value().cause(), ShutdownCause::EndAutonomy);
    EXPECT_GT(counter.counters.at(ShutdownCause::LoBattery).value(), 600000 - 400 - 5000);
    EXPECT_LE(counter.counters.at(ShutdownCause::LoBattery).value(), 600000 - 400);
}

}  // namespace
