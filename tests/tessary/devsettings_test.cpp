#include <string>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nimb/json.h"
#include "tessary/devsettings.h"
#include "tests/support.h"

using nimb::JsonObject;
using namespace tessary;

using support::compact;
using support::parsed;

namespace {

template <typename Record>
Record fromText(const std::string& text) {
    Record record;
    record.fromJson(parsed(text));
    return record;
}

// Every field away from its cleared value, as the monitor server sends it.
template <typename Record>
extern const std::string FILLED;
template <>
const std::string FILLED<DeviceShutCfg> = R"({"id": "UPS1", "enabled": 1, "counterManual": 11,
    "counterOpBattery": 12, "counterLoBattery": 13, "counterFailure": 14, "counterTimer": 15,
    "counterPowerLo": 16, "counterBatLevel": 17, "remCtrlDelay": 4000000000,
    "devShutEnabled": 0, "devStandByKeep": 1, "devShutTimer": 18, "cliShutEnabled": 0,
    "cliHibernate": 0, "cliShutTimer": 19, "cliRun": "/usr/local/bin/save --all"})";
// The slots as DeviceEventApp::toStringJson() writes them, in slot order.
const std::string EVENT_SLOTS =
    "\"dateEvent1\":1000,\"idEvent1\":1,\"dateEvent2\":2000,\"idEvent2\":2,"
    "\"dateEvent3\":3000,\"idEvent3\":3,\"dateEvent4\":4000,\"idEvent4\":4,"
    "\"dateEvent5\":5000,\"idEvent5\":5,\"dateEvent6\":6000,\"idEvent6\":6,"
    "\"dateEvent7\":7000,\"idEvent7\":7,\"dateEvent8\":8000,\"idEvent8\":8,"
    "\"dateEvent9\":9000,\"idEvent9\":9,\"dateEvent10\":10000,\"idEvent10\":4294967295}";
template <>
const std::string FILLED<DeviceEventApp> = "{\"id\":\"UPS1\"," + EVENT_SLOTS;
template <>
const std::string FILLED<DeviceSchedule> = R"({"id": "UPS1", "option": 1, "year": 2024,
    "month": 5, "day": 1, "houron": 7, "minon": 30, "utcon": 1, "houroff": 22, "minoff": 45,
    "utcoff": 2, "allweekday": 1, "allmonth": 1})";
template <>
const std::string FILLED<DeviceDialCfg> = R"({"id": "UPS1", "trigger": 2, "triggerTmr": 30,
    "outputTmr": 5, "phone1": "+34 600 000 001", "phone2": "", "phone3": "112", "phone4": "",
    "phone5": "", "phone6": "", "phone7": "", "phone8": "0"})";
template <>
const std::string FILLED<DeviceMailCfg> = R"({"id": "UPS1", "server": "smtp.example.org",
    "port": 465, "from": "ups@example.org", "auth": 1, "username": "ups", "password": "s3cret!!",
    "secure": 0, "test": 1, "enable": 0, "to1": "a@example.org", "to2": "b@example.org",
    "cc": "c@example.org", "bcc": "d@example.org"})";

template <typename Record>
Record filled() {
    return fromText<Record>(FILLED<Record>);
}

}  // namespace

template <typename Record>
class SettingsRecordTest : public ::testing::Test {};

using SettingsRecords =
    ::testing::Types<DeviceShutCfg, DeviceEventApp, DeviceSchedule, DeviceDialCfg, DeviceMailCfg>;
TYPED_TEST_SUITE(SettingsRecordTest, SettingsRecords);

// A field forgotten in clear(), a copy, toJson() or fromJson() shows here;
// the exchange keys are the ones the monitor server sends.
TYPED_TEST(SettingsRecordTest, ClearCopyAndJsonRoundTripCoverEveryField) {
    const TypeParam record = filled<TypeParam>();
    ASSERT_NE(record, TypeParam());
    EXPECT_EQ(record.toJson(), parsed(FILLED<TypeParam>)) << compact(record.toJson());

    TypeParam assigned = record;
    assigned.clear();
    EXPECT_EQ(assigned, TypeParam());
    EXPECT_EQ(assigned.toString(), TypeParam().toString());

    // fromJson() clears first: nothing of the filled record shines through.
    assigned = record;
    assigned.fromJson(JsonObject());
    EXPECT_EQ(assigned, fromText<TypeParam>("{}"));
}

TEST(DeviceShutCfgTest, TextAndJsonForms) {
    EXPECT_EQ(compact(DeviceShutCfg().toJson()),
              "{\"cliHibernate\":1,\"cliRun\":\"\",\"cliShutEnabled\":1,\"cliShutTimer\":5,"
              "\"counterBatLevel\":10,\"counterFailure\":20,\"counterLoBattery\":20,"
              "\"counterManual\":20,\"counterOpBattery\":30,\"counterPowerLo\":10,"
              "\"counterTimer\":20,\"devShutEnabled\":1,\"devShutTimer\":120,"
              "\"devStandByKeep\":0,\"enabled\":0,\"id\":\"\",\"remCtrlDelay\":1000}");
    EXPECT_EQ(filled<DeviceShutCfg>().toString(),
              "shutdown: {id=UPS1, \nenabled=1, \ncounterManual=11, \ncounterOpBattery=12, \n"
              "counterLoBattery=13, \ncounterFailure=14, \ncounterTimer=15, \n"
              "counterPowerLo=16, \ncounterBatLevel=17, \nremCtrlDelay=4000000000}, \n"
              "device: {devShutEnabled=0, \ndevShutTimer=18, \ndevstandByKeep=1}\n"
              "client: {cliShutEnabled=0, \ncliHibernate=0, \ncliShutTimer=19, \n"
              "cliRun=\"/usr/local/bin/save --all\"}");
}

TEST(DeviceShutCfgTest, LenientReadingTruncatesAndWrapsTo32Bits) {
    // The JSON, then counterManual and enabled as read.
    const std::tuple<const char*, uint32_t, uint32_t> rows[] = {
        {"{\"enabled\": true}", 0, 1},  // a missing counter reads 0, not its default
        {"{\"counterManual\": -1.9, \"enabled\": 2}", 4294967295u, 1},
        {"{\"counterManual\": 5000000000, \"enabled\": \"yes\"}", 705032704u, 0},
        {"{\"counterManual\": 1e300, \"enabled\": \"1\"}", 4294967295u, 1},
    };
    for (const auto& [json, counterManual, enabled] : rows) {
        const DeviceShutCfg cfg = fromText<DeviceShutCfg>(json);
        EXPECT_EQ(cfg.counterManual, counterManual) << json;
        EXPECT_EQ(cfg.enabled, enabled) << json;
    }
}

TEST(DeviceEventAppTest, TextFormsListTheSlotsInOrder) {
    DeviceEventApp events = filled<DeviceEventApp>();
    EXPECT_EQ(events.toString(),
              "dateEvent1=1000,idEvent1=1,dateEvent2=2000,idEvent2=2,dateEvent3=3000,idEvent3=3,"
              "dateEvent4=4000,idEvent4=4,dateEvent5=5000,idEvent5=5,dateEvent6=6000,idEvent6=6,"
              "dateEvent7=7000,idEvent7=7,dateEvent8=8000,idEvent8=8,dateEvent9=9000,idEvent9=9,"
              "dateEvent10=10000,idEvent10=4294967295");
    EXPECT_EQ(events.toStringJson(), FILLED<DeviceEventApp>);
    events.id.clear();
    EXPECT_EQ(events.toStringJson(), "{" + EVENT_SLOTS);
}

TEST(DeviceScheduleTest, TheListPositionStaysBehind) {
    DeviceSchedule schedule = filled<DeviceSchedule>();
    schedule.idList = 3;
    schedule.status = 4;
    schedule.activeDay = 5;
    EXPECT_EQ(fromText<DeviceSchedule>(compact(schedule.toJson())), filled<DeviceSchedule>());
    EXPECT_EQ(schedule.toString(),
              "schedule: {id=UPS1, \nidList=3, \nstatus=4, \nactiveDay=5, \nspecific=1, \n"
              "year=2024, \nmonth=5, \nday=1, \nhourOn=7, \nminOn=30, \nutcOn=1, \n"
              "hourOff=22, \nminOff=45, \nutcOff=2, \nallWeekDay=1, \nallMonth=1}\n");
}

TEST(DeviceDialCfgTest, TextForm) {
    EXPECT_EQ(filled<DeviceDialCfg>().toString(),
              "id=UPS1, \ntrigger=2, \ntriggerTmr=30, \noutputTmr=5, \n"
              "phone1=+34 600 000 001, \nphone2=, \nphone3=112, \nphone4=, \nphone5=, \n"
              "phone6=, \nphone7=, \nphone8=0");
}

TEST(DeviceMailCfgTest, OnlyValidMembersAreWrittenAndThePasswordIsMasked) {
    const std::string from = DEFAULT_MAIL_FROM;
    EXPECT_EQ(compact(DeviceMailCfg().toJson()), "{\"auth\":0,\"enable\":1,\"from\":\"" + from +
                                                     "\",\"port\":587,\"secure\":1,\"test\":0}");
    // At most five main recipients travel, numbered by their position, and
    // one of each copy list; a switch or a port out of range stays behind.
    DeviceMailCfg mail;
    mail.to = {"1@x", "", "3@x", "4@x", "5@x", "6@x"};
    mail.cc = {"c1@x", "c2@x"};
    mail.bcc = {"", "b2@x"};
    mail.port = 65535;
    mail.auth = 2;
    mail.from.clear();
    EXPECT_EQ(compact(mail.toJson()),
              "{\"cc\":\"c1@x\",\"enable\":1,\"port\":65535,\"secure\":1,\"test\":0,"
              "\"to1\":\"1@x\",\"to3\":\"3@x\",\"to4\":\"4@x\",\"to5\":\"5@x\"}");
    EXPECT_THAT(fromText<DeviceMailCfg>(compact(mail.toJson())).toString(),
                ::testing::EndsWith(",to: {1@x,3@x,4@x,5@x}, cc: {c1@x}, }"));
    mail.port = 65536;
    EXPECT_FALSE(mail.toJson().contains("port"));

    EXPECT_EQ(filled<DeviceMailCfg>().toString(),
              "mail: {id=UPS1,server=smtp.example.org,port=465,from=ups@example.org,auth=1,"
              "username=ups,password=********,secure=0,test=1,enable=0,"
              "to: {a@example.org,b@example.org}, cc: {c@example.org}, bcc: {d@example.org}}");
    // Missing members read as 0 or empty, not as the defaults.
    EXPECT_EQ(fromText<DeviceMailCfg>("{\"cc\": \"x@y\"}").toString(),
              "mail: {id=,server=,port=0,from=,auth=0,username=,password=,secure=0,test=0,"
              "enable=0,cc: {x@y}, }");
}
