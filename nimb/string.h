// Conversions between numbers and text and small text operations, all
// static and all returning new std::string values. Numbers are spelled and
// parsed the way Qt's QString does it. Every operation that takes a
// const char* treats null as an empty text and has a std::string overload.
#pragma once

#include <string>
#include <vector>

#include "nimb/object.h"

namespace nimb {

class String : public Object {
public:
    // Decimal digits (a leading "-" for negatives), right-justified to at
    // least width characters with fill; a longer text is never cut.
    static std::string intToStr(int value, int width = 0, char fill = '0');
    static std::string intToStr(unsigned int value, int width = 0, char fill = '0');
    static std::string intToStr(long value, int width = 0, char fill = '0');
    static std::string intToStr(unsigned long value, int width = 0, char fill = '0');
    static std::string intToStr(long long value, int width = 0, char fill = '0');
    static std::string intToStr(unsigned long long value, int width = 0, char fill = '0');

    // Hexadecimal digits without "0x" ("-" and the magnitude's digits for a
    // negative value), upper-cased on request, then justified as above.
    static std::string intToHex(int value, int width = 0, char fill = '0', bool upperCase = false);
    static std::string intToHex(unsigned int value, int width = 0, char fill = '0',
                                bool upperCase = false);
    static std::string intToHex(long value, int width = 0, char fill = '0', bool upperCase = false);
    static std::string intToHex(unsigned long value, int width = 0, char fill = '0',
                                bool upperCase = false);
    static std::string intToHex(long long value, int width = 0, char fill = '0',
                                bool upperCase = false);
    static std::string intToHex(unsigned long long value, int width = 0, char fill = '0',
                                bool upperCase = false);

    // Fixed notation ('f') or, when scientific, 'e', with decimals digits
    // after the point.
    static std::string floatToStr(float value, int decimals = 6, bool scientific = false);
    static std::string floatToStr(double value, int decimals = 6, bool scientific = false);

    // Base-10 parsing; defaultValue when the text is null or does not parse
    // completely (or does not fit the type).
    static int strToInt(const char* text, int defaultValue = 0);
    static int strToInt(const std::string& text, int defaultValue = 0);
    static unsigned int strToUInt(const char* text, unsigned int defaultValue = 0);
    static unsigned int strToUInt(const std::string& text, unsigned int defaultValue = 0);
    static long strToLong(const char* text, long defaultValue = 0);
    static long strToLong(const std::string& text, long defaultValue = 0);
    static unsigned long strToULong(const char* text, unsigned long defaultValue = 0);
    static unsigned long strToULong(const std::string& text, unsigned long defaultValue = 0);
    static long long strToLLong(const char* text, long long defaultValue = 0);
    static long long strToLLong(const std::string& text, long long defaultValue = 0);
    static unsigned long long strToULLong(const char* text, unsigned long long defaultValue = 0);
    static unsigned long long strToULLong(const std::string& text,
                                          unsigned long long defaultValue = 0);
    static float strToFloat(const char* text, float defaultValue = 0);
    static float strToFloat(const std::string& text, float defaultValue = 0);
    static double strToDouble(const char* text, double defaultValue = 0);
    static double strToDouble(const std::string& text, double defaultValue = 0);

    // Base-16 parsing after removing one final "H" or "h" ("1FH" is 0x1F);
    // defaultValue for a null or empty text or one that does not parse.
    static int hexToInt(const char* text, int defaultValue = 0);
    static int hexToInt(const std::string& text, int defaultValue = 0);
    static unsigned int hexToUInt(const char* text, unsigned int defaultValue = 0);
    static unsigned int hexToUInt(const std::string& text, unsigned int defaultValue = 0);
    static long hexToLong(const char* text, long defaultValue = 0);
    static long hexToLong(const std::string& text, long defaultValue = 0);
    static unsigned long hexToULong(const char* text, unsigned long defaultValue = 0);
    static unsigned long hexToULong(const std::string& text, unsigned long defaultValue = 0);
    static long long hexToLLong(const char* text, long long defaultValue = 0);
    static long long hexToLLong(const std::string& text, long long defaultValue = 0);
    static unsigned long long hexToULLong(const char* text, unsigned long long defaultValue = 0);
    static unsigned long long hexToULLong(const std::string& text,
                                          unsigned long long defaultValue = 0);

    // Without leading and trailing white space.
    static std::string trim(const char* text);
    static std::string trim(const std::string& text);
    static std::string toUpper(const char* text);
    static std::string toUpper(const std::string& text);
    static std::string toLower(const char* text);
    static std::string toLower(const std::string& text);
    // Compatibility decomposition, then every character outside 7-bit ASCII
    // removed: "Ñandú €" gives "Nandu ".
    static std::string toAscii(const char* text);
    static std::string toAscii(const std::string& text);

    // mark added at each end of a non-empty text that does not already
    // start or end with it.
    static std::string surround(const char* text, const char* mark);
    static std::string surround(const std::string& text, const std::string& mark);
    static std::string quote(const char* text);
    static std::string quote(const std::string& text);
    // Strips marks from both ends, one unit per end and pass, until a pass
    // strips nothing. A unit is any one character of marks when anyChar is
    // true, else the whole marks text.
    static std::string unSurround(const char* text, const char* marks, bool anyChar);
    static std::string unSurround(const std::string& text, const std::string& marks,
                                  bool anyChar);
    // Surrounding double or single quotes removed: "\"'x'\"" gives "x".
    static std::string unQuote(const char* text);
    static std::string unQuote(const std::string& text);

    // printf-style formatting; "" for a null or empty format.
    static std::string format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

    // The pieces between the occurrences of the whole separator, empty
    // pieces kept; no pieces for an empty text, the whole text for an
    // empty separator.
    static std::vector<std::string> tokenize(const char* text, const char* separator);
    static std::vector<std::string> tokenize(const std::string& text, const std::string& separator);
    static std::vector<std::string> tokenize(const char* text, char separator);
    static std::vector<std::string> tokenize(const std::string& text, char separator);
};

}  // namespace nimb
