#include <gtest/gtest.h>

#include "nimb/serialport.h"

namespace {

TEST(SerialConfigTest, OneLineTextClearAndCopy) {
    nimb::SerialPort::SerialConfig config(115200, 7, 2, 1, 2500), copy;
    copy = config;
    config.clear();
    EXPECT_EQ(copy.toStr(),
              "baudrate(bps)=115200, databits=7, stopbits=2, parity=1, timeout(ms)=2500");
    EXPECT_EQ(config.toStr(), "baudrate(bps)=0, databits=0, stopbits=0, parity=0, timeout(ms)=0");
    EXPECT_EQ(config, nimb::SerialPort::SerialConfig());
}

}  // namespace
