// Helpers shared by the unit tests: JSON in its compact text, files, and the
// exact message and code of an expected exception.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "nimb/json.h"
#include "tests/files.h"

namespace support {

inline std::string compact(const nimb::JsonObject& json) {
    return nimb::JsonDocument(json).toJson(false);
}

// The object of a JSON text; a text that is not an object fails the test.
inline nimb::JsonObject parsed(const std::string& text) {
    nimb::JsonDocument document;
    document.fromJson(text);
    EXPECT_TRUE(document.isObject()) << text;
    return document.object();
}

// Expects call() to throw exactly an E (or a subclass) with this message and code.
template <class E, class F>
void expectFailure(F call, const std::string& message, int code) {
    try {
        call();
        ADD_FAILURE() << "no exception: " << message;
    } catch (const E& e) {
        EXPECT_EQ(e.message(), message);
        EXPECT_EQ(e.code(), code);
    }
}

}  // namespace support
