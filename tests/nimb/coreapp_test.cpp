#include "nimb/coreapp.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace {

TEST(CoreAppTest, CreatesOneApplicationWithoutArguments) {
    QCoreApplication* first = nimb::ensureCoreApplication();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, QCoreApplication::instance());
    EXPECT_EQ(nimb::ensureCoreApplication(), first);
    EXPECT_TRUE(QCoreApplication::arguments().size() <= 1);
}

}  // namespace
