#include <gtest/gtest.h>

#include "nimb/json.h"

using nimb::JsonDocument;
using nimb::JsonObject;
using nimb::JsonValue;

TEST(JsonDocumentTest, BoolIsWrittenAsNumber)
{
    EXPECT_EQ(JsonDocument(JsonObject{{"on", true}, {"n", 5000000000L}}).toJson(false),
              "{\"n\":5000000000,\"on\":1}");
}
