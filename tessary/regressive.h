// Shutdown countdowns of a device, one per cause of shutdown.
#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>

#include "nimb/json.h"
#include "nimb/object.h"

namespace tessary {

// Why a device asks for a shutdown.
enum class ShutdownCause : std::int32_t {
    None = 0,
    Manual = 1,
    EndAutonomy = 2,
    LoBattery = 3,
    Failure = 4,
    Scheduled = 5,
    PowerLook = 6,
};

// The cause's name ("Manual"); a value outside the table as its decimal
// number.
std::string causeToStr(ShutdownCause cause);
std::ostream& operator<<(std::ostream& out, ShutdownCause cause);

// One countdown. Times are milliseconds; ticks are milliseconds since the
// epoch from the system clock. A countdown that is not running reads -1.
class Regressive : public nimb::Object {
public:
    // True while the countdown is running.
    bool active;
    // The tick at which the countdown was started; 0 when never started.
    std::uint64_t initial;
    // The length of the countdown as given to start().
    std::uint64_t max;
    // The shutdown for this countdown has been started.
    bool inShutdown;

    // Cause None, or the given cause; not active, initial 0, value -1, max 0,
    // inShutdown false.
    Regressive();
    explicit Regressive(ShutdownCause cause);
    Regressive(const Regressive& other);
    ~Regressive() override;

    // A new countdown of the given cause, as the constructor makes it.
    static Regressive create(ShutdownCause cause);

    // "active=1,cause=Manual,value=5000,max=5000,initial=1714568587250,
    // inShutdown=0" and a line feed; value is the stored field, even when the
    // countdown is not active.
    std::string toString() const override;

    // Starts counting max ms down from now, unless already running: a second
    // start neither restarts nor extends a countdown. Clears inShutdown.
    virtual void start(unsigned long max);
    // Stops counting; the value and start tick are kept for enable().
    virtual void disable();
    // Counts again from the first start, as if never disabled.
    virtual void enable();
    // Back to the constructed state; the cause stays.
    virtual void reset();
    // While running and above 0: the value becomes max minus the time since
    // the start, and 0 once that is negative. At 0 it stays without reading
    // the clock.
    virtual void update();
    virtual Regressive& operator=(const Regressive& other);
    // The remaining ms; -1 when not active (whatever the stored value).
    virtual long value() const;
    virtual ShutdownCause cause() const;
    virtual std::string causeAsStr() const;
    // Resets, then reads "cause", "active", "value" and "inShutdown"; a
    // missing key gives 0 or false. max and initial are not carried, so the
    // result is a snapshot to read, not a countdown to update().
    virtual void fromJson(const nimb::JsonObject& json);
    // "cause" and "value" (the stored field) always; "active": 1 when the
    // stored value is 0 or more (whether or not the countdown is running);
    // "inShutdown": 1 when set.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const Regressive& other) const;
    bool operator!=(const Regressive& other) const { return !(*this == other); }

private:
    ShutdownCause m_cause;
    std::int64_t m_value;
};

// The countdowns of one device, one per cause except None. Operations on a
// cause without a countdown (None) do nothing or answer false.
class RegressiveCounter : public nimb::Object {
public:
    // By ascending cause: Manual, EndAutonomy, LoBattery, Failure, Scheduled,
    // PowerLook.
    std::map<ShutdownCause, Regressive> counters;

    RegressiveCounter();
    RegressiveCounter(const RegressiveCounter& other);
    ~RegressiveCounter() override;

    // A line feed, "regressive: [", "{cause=Manual, value=5000}" for each
    // countdown in cause order joined by ", " (value() of each), "]" and a
    // line feed.
    std::string toString() const override;

    virtual RegressiveCounter& operator=(const RegressiveCounter& other);
    // That countdown's active flag.
    virtual bool isActive(ShutdownCause cause) const;
    // The active flag of the countdown that ends first (see value()).
    virtual bool isActive() const;
    // That countdown's value() is 0 (a disabled countdown never is).
    virtual bool isZero(ShutdownCause cause) const;
    // The countdown that ends first has reached 0.
    virtual bool isZero() const;
    virtual void start(ShutdownCause cause, unsigned long max);
    virtual void reset(ShutdownCause cause);
    virtual void reset();
    virtual void disable(ShutdownCause cause);
    virtual void disable();
    virtual void enable(ShutdownCause cause);
    virtual void enable();
    // Updates every countdown.
    virtual void update();
    // A copy of the running countdown with the smallest value(), the lowest
    // cause among equals; when none is running, Regressive() (cause None,
    // value -1, not active).
    virtual Regressive value() const;
    // The inShutdown flag of the countdown that ends first.
    virtual bool inShutdown() const;
    // Sets the inShutdown flag of the countdown that ends first; nothing when
    // none is running.
    virtual void setInShutdown(bool flag);

    bool operator==(const RegressiveCounter& other) const { return counters == other.counters; }
    bool operator!=(const RegressiveCounter& other) const { return !(*this == other); }

private:
    // The running countdown with the smallest value, or null.
    const Regressive* first() const;
};

}  // namespace tessary
