#include "tessary/monitconf.h"

#include <gtest/gtest.h>

using tessary::MonitConfig;
using tessary::Url;

namespace {

TEST(UrlTest, ParsesAndPrintsEveryRow) {
    const struct {
        const char* text;
        bool ssl;
        const char* host;
        uint32_t port;
        const char* url;
    } rows[] = {
        {nullptr, false, "localhost", 4470, "http://localhost:4470"},
        {"HTTPS://NodeA:8443/x", true, "nodea", 8443, "https://nodea:8443"},
        {"myhost", false, "myhost", 80, "http://myhost"},
        {"myhost:", false, "myhost", 80, "http://myhost"},
        {"myhost:abc", false, "myhost", 80, "http://myhost"},
        {"https://", true, "localhost", 4470, "https://localhost:4470"},
        {"https://secure:80", true, "secure", 80, "https://secure"},
        {"host/path", false, "host/path", 80, "http://host/path"},
        {"x http://Box:0", false, "box", 0, "http://box"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text ? row.text : "null");
        Url url("https://a:1");
        url = row.text;  // nothing of the old address stays
        EXPECT_EQ(row.ssl, url.ssl);
        EXPECT_EQ(row.host, url.host);
        EXPECT_EQ(row.port, url.port);
        EXPECT_EQ(row.url, url.url());
    }
    Url url("https://NODEA:8443");
    EXPECT_EQ("url=\"https://nodea:8443\",host=\"nodea\",port=8443,ssl=1", url.toString());
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
