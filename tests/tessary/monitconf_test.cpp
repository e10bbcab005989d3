#include "tessary/monitconf.h"

#include <gtest/gtest.h>

#include <utility>

using tessary::MonitConfig;
using tessary::Url;

namespace {

// Each row's text form shows every field and the address built from them.
TEST(UrlTest, ParsesAndPrintsEveryRow) {
    const std::pair<const char*, const char*> rows[] = {
        {nullptr, R"(url="http://localhost:4470",host="localhost",port=4470,ssl=0)"},
        {"HTTPS://NodeA:8443/x", R"(url="https://nodea:8443",host="nodea",port=8443,ssl=1)"},
        {"myhost", R"(url="http://myhost",host="myhost",port=80,ssl=0)"},
        {"myhost:abc", R"(url="http://myhost",host="myhost",port=80,ssl=0)"},
        {"https://", R"(url="https://localhost:4470",host="localhost",port=4470,ssl=1)"},
        {"https://secure:80", R"(url="https://secure",host="secure",port=80,ssl=1)"},
        {"host/path", R"(url="http://host/path",host="host/path",port=80,ssl=0)"},
        {"x http://Box:0", R"(url="http://box",host="box",port=0,ssl=0)"},
    };
    for (const auto& [text, expected] : rows) {
        Url url("https://a:1");
        url = text;  // nothing of the old address stays
        EXPECT_EQ(expected, url.toString()) << (text ? text : "null");
    }
    Url url;
    url.host.clear();
    EXPECT_EQ("", url.url());
}

TEST(MonitConfigTest, ClearedTextFormKeepsTrailingComma) {
    MonitConfig config;
    config.logger.serialHidLevel = nimb::TRACE;
    config.server.udpPort = 7;
    EXPECT_EQ(
        "monitconfig: {monit: {monit.enable=1,rs232.enable=1},"
        "web: {tcp.port=4470,udp.port=7},"
        "log: {hist.hours=1, hist.days=1, hist.months=1, event.months=6},"
        "debug: {devicemonit.filename=tessvc.log, devicemonit.level=FATAL, "
        "devicemanager.filename=device.log, devicemanager.level=FATAL, "
        "serialhid.filename=serialhid.log, serialhid.level=TRACE},}",
        config.toString());
    config.clear();
    EXPECT_EQ(MonitConfig().toString(), config.toString());
}

}  // namespace
