#include "tessary/clientconf.h"
#include "tests/support.h"

#include <gtest/gtest.h>

using namespace tessary;

using support::compact;

namespace {

TEST(ClientConfigTest, TextFormAndClearThatKeepsMqtt) {
    ClientConfig config;
    config.logger.shutSvcLevel = nimb::DEBUG;
    EXPECT_EQ(
        "clientconfig: {"
        "notifysvc: {web.host=localhost,web.port=4470,message.interval=3000},"
        "notifygui: {web.host=localhost,web.port=4470,message.interval=3000},"
        "shutsvc: {web.host=localhost,web.port=4470},"
        "cloudsvc: {web.host=localhost,web.port=4470, message.interval=3000},"
        "debug: {monitclient.filename=client.log, monitclient.level=FATAL, "
        "notifysvc.filename=notifysvc.log, notifysvc.level=FATAL, "
        "notifygui.filename=notifygui.log, notifygui.level=FATAL, "
        "shutsvc.filename=shutsvc.log, shutsvc.level=DEBUG, "
        "cloudsvc.filename=cloudsvc.log, cloudsvc.level=FATAL}}",
        config.toString());
    EXPECT_EQ(std::string("mqtt: {enable=1,brokerHost=\"") + DEFAULT_MQTT_BROKER_HOST +
                  "\",brokerPort=1883}",
              config.cloudSvc.mqtt.toString());

    config.cloudSvc.mqtt.brokerPort = 8883;
    config.cloudSvc.webPort = 1;
    config.clear();
    EXPECT_EQ(ClientConfig().toString(), config.toString());
    EXPECT_EQ(8883u, config.cloudSvc.mqtt.brokerPort);
}

TEST(NotifySvcConfigTest, JsonRoundTripAndMissingKeys) {
    NotifySvcConfig config;
    config.webHost = "box";
    config.messageInterval = 5000000000ULL;
    EXPECT_EQ("{\"messageInterval\":5000000000,\"webHost\":\"box\",\"webPort\":4470}",
              compact(config.toJson()));
    EXPECT_EQ(config.toString(), NotifySvcConfig().fromJson(config.toJson()).toString());
    EXPECT_EQ("notifysvc: {web.host=,web.port=0,message.interval=0}",
              NotifySvcConfig().fromJson(nimb::JsonObject()).toString());
}

// valSecond is kept in milliseconds and travels in whole minutes; the id is
// written but not read.
TEST(NotifyConfigTest, SecondsTravelAsMinutes) {
    NotifyConfig config;
    EXPECT_EQ("{\"id\":1,\"option\":1,\"valPercent\":10,\"valSecond\":5}",
              compact(config.toJson()));
    EXPECT_EQ("notifyConfig: {id=1,option=1,value.Ref.Percent=10,value.Ref.Seconds=300000}",
              config.toString());
    config.valSecond = 119999;
    EXPECT_EQ(1.0, config.toJson().value("valSecond").toDouble());

    config.fromJson(
        nimb::JsonObject{{"id", 7}, {"option", 3}, {"valPercent", 40}, {"valSecond", 2.5}});
    EXPECT_EQ("notifyConfig: {id=1,option=3,value.Ref.Percent=40,value.Ref.Seconds=150000}",
              config.toString());
    // Numbers beyond an unsigned field read as its nearest end, never wrapped.
    config.fromJson(nimb::JsonObject{{"option", -1}, {"valPercent", 1e12}, {"valSecond", -1}});
    EXPECT_EQ("notifyConfig: {id=1,option=0,value.Ref.Percent=4294967295,value.Ref.Seconds=0}",
              config.toString());
}

}  // namespace
