#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nimb/json.h"
#include "tessary/devsettings.h"
#include "tests/support.h"

using nimb::JsonDocument;
using nimb::JsonObject;
using tessary::DeviceDialCfg;
using tessary::DeviceEventApp;
using tessary::DeviceMailCfg;
using tessary::DeviceSchedule;
using tessary::DeviceShutCfg;

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
const char* const SHUT_JSON = R"({"id": "UPS1", "enabled": 1, "counterManual": 11,
    "counterOpBattery": 12, "counterLoBattery": 13, "counterFailure": 14, "counterTimer": 15,
    "counterPowerLo": 16, "counterBatLevel": 17, "remCtrlDelay": 4000000000,
    "devShutEnabled": 0, "devStandByKeep": 1, "devShutTimer": 18, "cliShutEnabled": 0,
    "cliHibernate": 0, "cliShutTimer": 19, "cliRun": "/usr/local/bin/save --all"})";
const char* const SCHEDULE_JSON = R"({"id": "UPS1", "option": 1, "year": 2024, "month": 5,
    "day": 1, "houron": 7, "minon": 30, "utcon": 1, "houroff": 22, "minoff": 45, "utcoff": 2,
    "allweekday": 1, "allmonth": 1})";
const char* const DIAL_JSON = R"({"id": "UPS1", "trigger": 2, "triggerTmr": 30, "outputTmr": 5,
    "phone1": "+34 600 000 001", "phone3": "112", "phone8": "0"})";
const char* const MAIL_JSON = R"({"id": "UPS1", "server": "smtp.example.org", "port": 465,
    "from": "ups@example.org", "auth": 1, "username": "ups", "password": "s3cret!!",
    "secure": 0, "test": 1, "enable": 0, "to1": "a@example.org", "to2": "b@example.org",
    "cc": "c@example.org", "bcc": "d@example.org"})";

DeviceEventApp filledEvents(const std::string& id) {
    DeviceEventApp events;
    events.id = id;
    for (int slot = 1; slot <= DeviceEventApp::SLOTS; ++slot) {
        events.dateEvent(slot) = 1000u * slot;
        events.idEvent(slot) = slot;
    }
    events.idEvent10 = 4294967295u;
    return events;
}

template <typename Record>
Record filled();
template <>
DeviceShutCfg filled() {
    return fromText<DeviceShutCfg>(SHUT_JSON);
}
template <>
DeviceEventApp filled() {
    return filledEvents("UPS1");
}
template <>
DeviceSchedule filled() {
    return fromText<DeviceSchedule>(SCHEDULE_JSON);
}
template <>
DeviceDialCfg filled() {
    return fromText<DeviceDialCfg>(DIAL_JSON);
}
template <>
DeviceMailCfg filled() {
    return fromText<DeviceMailCfg>(MAIL_JSON);
}

}  // namespace

template <typename Record>
class SettingsRecordTest : public ::testing::Test {};

using SettingsRecords =
    ::testing::Types<DeviceShutCfg, DeviceEventApp, DeviceSchedule, DeviceDialCfg, DeviceMailCfg>;
TYPED_TEST_SUITE(SettingsRecordTest, SettingsRecords);

// A field forgotten in clear(), a copy, toJson() or fromJson() shows here.
TYPED_TEST(SettingsRecordTest, ClearCopyAndJsonRoundTripCoverEveryField) {
    const TypeParam record = filled<TypeParam>();
    ASSERT_NE(record, TypeParam());
    EXPECT_EQ(fromText<TypeParam>(compact(record.toJson())), record) << compact(record.toJson());

    TypeParam assigned;
    assigned = record;
    EXPECT_EQ(assigned, record);
    EXPECT_EQ(TypeParam(record), record);
    assigned.clear();
    EXPECT_EQ(assigned, TypeParam());
    EXPECT_EQ(assigned.toString(), TypeParam().toString());

    // fromJson() clears first: nothing of the filled record shines through.
    assigned = record;
    assigned.fromJson(JsonObject());
    EXPECT_EQ(assigned, fromText<TypeParam>("{}"));
}

TEST(DeviceShutCfgTest, DefaultsTravelAsTheSystemDefaults) {
    EXPECT_EQ(compact(DeviceShutCfg().toJson()),
              "{\"cliHibernate\":1,\"cliRun\":\"\",\"cliShutEnabled\":1,\"cliShutTimer\":5,"
              "\"counterBatLevel\":10,\"counterFailure\":20,\"counterLoBattery\":20,"
              "\"counterManual\":20,\"counterOpBattery\":30,\"counterPowerLo\":10,"
              "\"counterTimer\":20,\"devShutEnabled\":1,\"devShutTimer\":120,"
              "\"devStandByKeep\":0,\"enabled\":0,\"id\":\"\",\"remCtrlDelay\":1000}");
}

TEST(DeviceShutCfgTest, TextFormGroupsShutdownDeviceAndClient) {
    EXPECT_EQ(filled<DeviceShutCfg>().toString(),
              "shutdown: {id=UPS1, \nenabled=1, \ncounterManual=11, \ncounterOpBattery=12, \n"
              "counterLoBattery=13, \ncounterFailure=14, \ncounterTimer=15, \n"
              "counterPowerLo=16, \ncounterBatLevel=17, \nremCtrlDelay=4000000000}, \n"
              "device: {devShutEnabled=0, \ndevShutTimer=18, \ndevstandByKeep=1}\n"
              "client: {cliShutEnabled=0, \ncliHibernate=0, \ncliShutTimer=19, \n"
              "cliRun=\"/usr/local/bin/save --all\"}");
}

TEST(DeviceShutCfgTest, LenientReadingTruncatesAndGivesConverterDefaults) {
    const DeviceShutCfg onlyEnabled = fromText<DeviceShutCfg>("{\"enabled\": true}");
    EXPECT_EQ(onlyEnabled.enabled, 1u);
    EXPECT_EQ(onlyEnabled.counterOpBattery, 0u);
    EXPECT_EQ(onlyEnabled.remCtrlDelay, 0u);
    EXPECT_EQ(onlyEnabled.cliHibernate, 0u);

    struct Row {
        const char* json;
        uint32_t counterManual;
        uint32_t enabled;
    };
    const Row rows[] = {
        {"{\"counterManual\": 2.9, \"enabled\": 0}", 2, 0},
        {"{\"counterManual\": -1, \"enabled\": 2}", 4294967295u, 1},
        {"{\"counterManual\": 5000000000, \"enabled\": \"true\"}", 705032704u, 1},
        {"{\"counterManual\": \"7\", \"enabled\": \"yes\"}", 7, 0},
        {"{\"counterManual\": [1], \"enabled\": {}}", 0, 0},
        {"{\"counterManual\": 1e300, \"enabled\": \"1\"}", 4294967295u, 1},
    };
    for (const Row& row : rows) {
        const DeviceShutCfg cfg = fromText<DeviceShutCfg>(row.json);
        EXPECT_EQ(cfg.counterManual, row.counterManual) << row.json;
        EXPECT_EQ(cfg.enabled, row.enabled) << row.json;
    }
}

TEST(DeviceEventAppTest, TextFormsListTheSlotsInOrder) {
    const DeviceEventApp events = filledEvents("UPS1");
    EXPECT_EQ(events.toString(),
              "dateEvent1=1000,idEvent1=1,dateEvent2=2000,idEvent2=2,dateEvent3=3000,idEvent3=3,"
              "dateEvent4=4000,idEvent4=4,dateEvent5=5000,idEvent5=5,dateEvent6=6000,idEvent6=6,"
              "dateEvent7=7000,idEvent7=7,dateEvent8=8000,idEvent8=8,dateEvent9=9000,idEvent9=9,"
              "dateEvent10=10000,idEvent10=4294967295");
    const std::string members =
        "\"dateEvent1\":1000,\"idEvent1\":1,\"dateEvent2\":2000,\"idEvent2\":2,"
        "\"dateEvent3\":3000,\"idEvent3\":3,\"dateEvent4\":4000,\"idEvent4\":4,"
        "\"dateEvent5\":5000,\"idEvent5\":5,\"dateEvent6\":6000,\"idEvent6\":6,"
        "\"dateEvent7\":7000,\"idEvent7\":7,\"dateEvent8\":8000,\"idEvent8\":8,"
        "\"dateEvent9\":9000,\"idEvent9\":9,\"dateEvent10\":10000,\"idEvent10\":4294967295}";
    EXPECT_EQ(events.toStringJson(), "{\"id\":\"UPS1\"," + members);
    EXPECT_EQ(filledEvents("").toStringJson(), "{" + members);
    // The hand-built text says what the object form says.
    EXPECT_EQ(parsed(events.toStringJson()), events.toJson());
    EXPECT_EQ(DeviceEventApp().toJson().size(), 21);
}

TEST(DeviceScheduleTest, ExchangeKeysAreLowerCaseAndTheListPositionStaysBehind) {
    EXPECT_EQ(compact(filled<DeviceSchedule>().toJson()),
              "{\"allmonth\":1,\"allweekday\":1,\"day\":1,\"houroff\":22,\"houron\":7,"
              "\"id\":\"UPS1\",\"minoff\":45,\"minon\":30,\"month\":5,\"option\":1,"
              "\"utcoff\":2,\"utcon\":1,\"year\":2024}");
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

TEST(DeviceDialCfgTest, TextAndJsonForms) {
    EXPECT_EQ(filled<DeviceDialCfg>().toString(),
              "id=UPS1, \ntrigger=2, \ntriggerTmr=30, \noutputTmr=5, \n"
              "phone1=+34 600 000 001, \nphone2=, \nphone3=112, \nphone4=, \nphone5=, \n"
              "phone6=, \nphone7=, \nphone8=0");
    EXPECT_EQ(compact(DeviceDialCfg().toJson()),
              "{\"id\":\"\",\"outputTmr\":0,\"phone1\":\"\",\"phone2\":\"\",\"phone3\":\"\","
              "\"phone4\":\"\",\"phone5\":\"\",\"phone6\":\"\",\"phone7\":\"\",\"phone8\":\"\","
              "\"trigger\":0,\"triggerTmr\":0}");
}

TEST(DeviceMailCfgTest, OnlyValidMembersAreWritten) {
    const std::string defaults = std::string("{\"auth\":0,\"enable\":1,\"from\":\"") +
                                 tessary::DEFAULT_MAIL_FROM +
                                 "\",\"port\":587,\"secure\":1,\"test\":0";
    EXPECT_EQ(compact(DeviceMailCfg().toJson()), defaults + "}");

    struct Row {
        const char* missing;
        void (*change)(DeviceMailCfg&);
    };
    const Row rows[] = {
        {"port", [](DeviceMailCfg& m) { m.port = 70000; }},
        {"port", [](DeviceMailCfg& m) { m.port = 65536; }},
        {"auth", [](DeviceMailCfg& m) { m.auth = 2; }},
        {"secure", [](DeviceMailCfg& m) { m.secure = 7; }},
        {"test", [](DeviceMailCfg& m) { m.test = 2; }},
        {"enable", [](DeviceMailCfg& m) { m.enable = 4294967295u; }},
        {"from", [](DeviceMailCfg& m) { m.from.clear(); }},
    };
    for (const Row& row : rows) {
        DeviceMailCfg mail = filled<DeviceMailCfg>();
        row.change(mail);
        JsonObject expected = filled<DeviceMailCfg>().toJson();
        expected.remove(row.missing);
        EXPECT_EQ(mail.toJson(), expected) << row.missing;
    }

    DeviceMailCfg mail;
    mail.to = {"1@x", "", "3@x", "4@x", "5@x", "6@x"};
    mail.cc = {"c1@x", "c2@x"};
    mail.bcc = {"", "b2@x"};
    mail.port = 65535;
    EXPECT_EQ(compact(mail.toJson()),
              std::string("{\"auth\":0,\"cc\":\"c1@x\",\"enable\":1,\"from\":\"") +
                  tessary::DEFAULT_MAIL_FROM +
                  "\",\"port\":65535,\"secure\":1,\"test\":0,\"to1\":\"1@x\",\"to3\":\"3@x\","
                  "\"to4\":\"4@x\",\"to5\":\"5@x\"}");
    const DeviceMailCfg back = fromText<DeviceMailCfg>(compact(mail.toJson()));
    EXPECT_EQ(back.to, (std::vector<std::string>{"1@x", "3@x", "4@x", "5@x"}));
    EXPECT_EQ(back.cc, std::vector<std::string>{"c1@x"});
    EXPECT_TRUE(back.bcc.empty());
}

TEST(DeviceMailCfgTest, MissingMembersReadAsZeroNotAsDefaults) {
    const DeviceMailCfg mail = fromText<DeviceMailCfg>("{\"server\": \"s\", \"to2\": \"x@y\"}");
    EXPECT_EQ(mail.port, 0u);
    EXPECT_EQ(mail.enable, 0u);
    EXPECT_EQ(mail.secure, 0u);
    EXPECT_EQ(mail.from, "");
    EXPECT_EQ(mail.to, std::vector<std::string>{"x@y"});
}

TEST(DeviceMailCfgTest, TextFormMasksThePasswordAndListsOnlyPresentRecipients) {
    EXPECT_EQ(filled<DeviceMailCfg>().toString(),
              "mail: {id=UPS1,server=smtp.example.org,port=465,from=ups@example.org,auth=1,"
              "username=ups,password=********,secure=0,test=1,enable=0,"
              "to: {a@example.org,b@example.org}, cc: {c@example.org}, bcc: {d@example.org}}");
    DeviceMailCfg mail;
    mail.cc = {"c@x", "d@x"};
    EXPECT_EQ(mail.toString(), std::string("mail: {id=,server=,port=587,from=") +
                                   tessary::DEFAULT_MAIL_FROM +
                                   ",auth=0,username=,password=,secure=1,test=0,enable=1,"
                                   "cc: {c@x,d@x}, }");
}
