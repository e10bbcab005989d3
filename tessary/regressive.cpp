#include "tessary/regressive.h"

#include <cmath>
#include <limits>

#include "nimb/system.h"

namespace tessary {

namespace {

const char* const CAUSE_NAMES[] = {"None",    "Manual",    "EndAutonomy", "LoBattery",
                                   "Failure", "Scheduled", "PowerLook"};

const ShutdownCause COUNTED_CAUSES[] = {ShutdownCause::Manual,    ShutdownCause::EndAutonomy,
                                        ShutdownCause::LoBattery, ShutdownCause::Failure,
                                        ShutdownCause::Scheduled, ShutdownCause::PowerLook};

std::uint64_t now() { return nimb::System::getSystemTick(); }


}  // namespace

std::string causeToStr(ShutdownCause cause) {
    const int code = static_cast<int>(cause);
    if (code >= 0 && code < static_cast<int>(sizeof(CAUSE_NAMES) / sizeof(CAUSE_NAMES[0])))
        return CAUSE_NAMES[code];
    return std::to_string(code);
}

std::ostream& operator<<(std::ostream& out, ShutdownCause cause) { return out << causeToStr(cause); }

// ---- Regressive ----

Regressive::Regressive() : Regressive(ShutdownCause::None) {}

Regressive::Regressive(ShutdownCause cause)
    : active(false), initial(0), max(0), inShutdown(false), m_cause(cause), m_value(-1) {}

Regressive::Regressive(const Regressive& other) = default;

Regressive::~Regressive() = default;

Regressive Regressive::create(ShutdownCause cause) { return Regressive(cause); }

std::string Regressive::toString() const {
    return std::string("active=") + (active ? "1" : "0") + ",cause=" + causeAsStr() +
           ",value=" + std::to_string(m_value) + ",max=" + std::to_string(max) +
           ",initial=" + std::to_string(initial) + ",inShutdown=" + (inShutdown ? "1" : "0") +
           "\n";
}

void Regressive::start(unsigned long max) {
    // A running countdown is never restarted nor extended.
    if (active)
        return;
    inShutdown = false;
    this->max = max;
    initial = now();
    m_value = static_cast<std::int64_t>(max);
    active = true;
}

void Regressive::disable() { active = false; }

void Regressive::enable() { active = true; }

void Regressive::reset() {
    max = 0;
    m_value = -1;
    initial = 0;
    active = false;
    inShutdown = false;
}

void Regressive::update() {
    // Once at 0 the countdown stays there without reading the clock again.
    if (!active || m_value == 0)
        return;
    const std::int64_t elapsed = static_cast<std::int64_t>(now() - initial);
    const std::int64_t left = static_cast<std::int64_t>(max) - elapsed;
    m_value = left < 0 ? 0 : left;
}

Regressive& Regressive::operator=(const Regressive& other) = default;

long Regressive::value() const { return active ? static_cast<long>(m_value) : -1; }

ShutdownCause Regressive::cause() const { return m_cause; }

std::string Regressive::causeAsStr() const { return causeToStr(m_cause); }

void Regressive::fromJson(const nimb::JsonObject& json) {
    reset();
    m_cause = static_cast<ShutdownCause>(nimb::truncatedNumber<std::int32_t>(json.value("cause").toDouble()));
    active = json.value("active").toBool();
    m_value = nimb::truncatedNumber<std::int64_t>(json.value("value").toDouble());
    inShutdown = json.value("inShutdown").toBool();
}

nimb::JsonObject Regressive::toJson() const {
    nimb::JsonObject json;
    json.setValue("cause", static_cast<int>(m_cause));
    json.setValue("value", static_cast<long long>(m_value));
    // Written from the value, not the flag: a disabled countdown that still
    // holds a value reads as active on the other side.
    if (m_value >= 0)
        json.setValue("active", true);
    if (inShutdown)
        json.setValue("inShutdown", true);
    return json;
}

bool Regressive::operator==(const Regressive& other) const {
    return m_cause == other.m_cause && active == other.active && initial == other.initial &&
           m_value == other.m_value && max == other.max && inShutdown == other.inShutdown;
}

// ---- RegressiveCounter ----

RegressiveCounter::RegressiveCounter() {
    for (ShutdownCause cause : COUNTED_CAUSES)
        counters.emplace(cause, Regressive::create(cause));
}

RegressiveCounter::RegressiveCounter(const RegressiveCounter& other) = default;

RegressiveCounter::~RegressiveCounter() = default;

std::string RegressiveCounter::toString() const {
    std::string text = "\nregressive: [";
    bool firstItem = true;
    for (const auto& entry : counters) {
        if (!firstItem)
            text += ", ";
        firstItem = false;
        text += "{cause=" + entry.second.causeAsStr() +
                ", value=" + std::to_string(entry.second.value()) + "}";
    }
    return text + "]\n";
}

RegressiveCounter& RegressiveCounter::operator=(const RegressiveCounter& other) = default;

bool RegressiveCounter::isActive(ShutdownCause cause) const {
    const auto found = counters.find(cause);
    return found != counters.end() && found->second.active;
}

bool RegressiveCounter::isActive() const { return value().active; }

bool RegressiveCounter::isZero(ShutdownCause cause) const {
    const auto found = counters.find(cause);
    return found != counters.end() && found->second.value() == 0;
}

bool RegressiveCounter::isZero() const { return value().value() == 0; }

void RegressiveCounter::start(ShutdownCause cause, unsigned long max) {
    const auto found = counters.find(cause);
    if (found != counters.end())
        found->second.start(max);
}

void RegressiveCounter::reset(ShutdownCause cause) {
    const auto found = counters.find(cause);
    if (found != counters.end())
        found->second.reset();
}

void RegressiveCounter::reset() {
    for (auto& entry : counters)
        entry.second.reset();
}

void RegressiveCounter::disable(ShutdownCause cause) {
    const auto found = counters.find(cause);
    if (found != counters.end())
        found->second.disable();
}

void RegressiveCounter::disable() {
    for (auto& entry : counters)
        entry.second.disable();
}

void RegressiveCounter::enable(ShutdownCause cause) {
    const auto found = counters.find(cause);
    if (found != counters.end())
        found->second.enable();
}

void RegressiveCounter::enable() {
    for (auto& entry : counters)
        entry.second.enable();
}

void RegressiveCounter::update() {
    for (auto& entry : counters)
        entry.second.update();
}

Regressive RegressiveCounter::value() const {
    const Regressive* found = first();
    return found ? *found : Regressive();
}

bool RegressiveCounter::inShutdown() const { return value().inShutdown; }

void RegressiveCounter::setInShutdown(bool flag) {
    if (const Regressive* found = first())
        counters.at(found->cause()).inShutdown = flag;
}

const Regressive* RegressiveCounter::first() const {
    const Regressive* kept = nullptr;
    for (const auto& entry : counters) {
        const long left = entry.second.value();
        if (left == -1)
            continue;
        // Strictly smaller only: among equal values the lowest cause stays.
        if (kept == nullptr || left < kept->value())
            kept = &entry.second;
    }
    // A kept cause None counts as nothing found, like no entry at all.
    return kept != nullptr && kept->cause() != ShutdownCause::None ? kept : nullptr;
}

}  // namespace tessary
