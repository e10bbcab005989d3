#include <gtest/gtest.h>

#include "nimb/serialport.h"

using nimb::SerialPort;

namespace {

TEST(SerialConfigTest, OneLineTextClearAndCopy) {
    SerialPort::SerialConfig config(115200, 7, 2, 1, 2500);
    EXPECT_EQ(config.toString(),
              "baudrate(bps)=115200, databits=7, stopbits=2, parity=1, timeout(ms)=2500");
    SerialPort::SerialConfig copy;
    copy = config;
    EXPECT_EQ(copy.toStr(), config.toString());
    config.clear();
    EXPECT_EQ(config, SerialPort::SerialConfig());
    EXPECT_EQ(config.toString(),
              "baudrate(bps)=0, databits=0, stopbits=0, parity=0, timeout(ms)=0");
    EXPECT_NE(copy, config);
    EXPECT_EQ(SerialPort::SerialConfig(copy).timeout, 2500);
}

}  // namespace
