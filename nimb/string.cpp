#include "nimb/string.h"

#include <cstdarg>
#include <cstdio>
#include <type_traits>

#include <QRegularExpression>
#include <QString>

namespace nimb {

namespace {

QString qText(const char* text) { return text ? QString::fromUtf8(text) : QString(); }

std::string justified(const QString& digits, int width, char fill) {
    return digits.rightJustified(width, QLatin1Char(fill)).toStdString();
}

// A negative value is "-" and the digits of its magnitude (Qt alone would
// write the two's complement).
template <typename Int>
std::string hexText(Int value, int width, char fill, bool upperCase) {
    using Unsigned = std::make_unsigned_t<Int>;
    const bool negative = value < 0;
    const Unsigned magnitude =
        negative ? Unsigned(0) - static_cast<Unsigned>(value) : static_cast<Unsigned>(value);
    QString digits = QString::number(static_cast<qulonglong>(magnitude), 16);
    if (negative)
        digits.prepend(QLatin1Char('-'));
    if (upperCase)
        digits = digits.toUpper();
    return justified(digits, width, fill);
}

// Runs one of QString's checked conversions; the default unless it succeeds.
template <typename Number, typename Convert>
Number parsed(const char* text, Number defaultValue, Convert convert) {
    if (text == nullptr)
        return defaultValue;
    bool ok = false;
    const Number value = convert(QString::fromUtf8(text), &ok);
    return ok ? value : defaultValue;
}

template <typename Number, typename Convert>
Number hexParsed(const char* text, Number defaultValue, Convert convert) {
    if (text == nullptr || *text == '\0')
        return defaultValue;
    QString digits = QString::fromUtf8(text);
    if (digits.endsWith(QLatin1Char('H'), Qt::CaseInsensitive))
        digits.chop(1);
    bool ok = false;
    const Number value = convert(digits, &ok);
    return ok ? value : defaultValue;
}

// Whether text starts (or ends) with one unit of marks; the unit's length.
size_t unitAtStart(const std::string& text, const std::string& marks, bool anyChar) {
    if (anyChar)
        return marks.find(text.front()) != std::string::npos ? 1 : 0;
    return text.compare(0, marks.size(), marks) == 0 ? marks.size() : 0;
}

size_t unitAtEnd(const std::string& text, const std::string& marks, bool anyChar) {
    if (anyChar)
        return marks.find(text.back()) != std::string::npos ? 1 : 0;
    return text.size() >= marks.size() &&
                   text.compare(text.size() - marks.size(), marks.size(), marks) == 0
               ? marks.size()
               : 0;
}

}  // namespace

// clang-format off
std::string String::intToStr(int v, int w, char f) { return justified(QString::number(v), w, f); }
std::string String::intToStr(unsigned int v, int w, char f) { return justified(QString::number(v), w, f); }
std::string String::intToStr(long v, int w, char f) { return justified(QString::number(v), w, f); }
std::string String::intToStr(unsigned long v, int w, char f) { return justified(QString::number(v), w, f); }
std::string String::intToStr(long long v, int w, char f) { return justified(QString::number(v), w, f); }
std::string String::intToStr(unsigned long long v, int w, char f) { return justified(QString::number(v), w, f); }

std::string String::intToHex(int v, int w, char f, bool u) { return hexText(v, w, f, u); }
std::string String::intToHex(unsigned int v, int w, char f, bool u) { return hexText(v, w, f, u); }
std::string String::intToHex(long v, int w, char f, bool u) { return hexText(v, w, f, u); }
std::string String::intToHex(unsigned long v, int w, char f, bool u) { return hexText(v, w, f, u); }
std::string String::intToHex(long long v, int w, char f, bool u) { return hexText(v, w, f, u); }
std::string String::intToHex(unsigned long long v, int w, char f, bool u) { return hexText(v, w, f, u); }
// clang-format on

std::string String::floatToStr(float value, int decimals, bool scientific) {
    return floatToStr(static_cast<double>(value), decimals, scientific);
}

std::string String::floatToStr(double value, int decimals, bool scientific) {
    return QString::number(value, scientific ? 'e' : 'f', decimals).toStdString();
}

// clang-format off
int String::strToInt(const char* t, int d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toInt(ok); }); }
unsigned int String::strToUInt(const char* t, unsigned int d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toUInt(ok); }); }
long String::strToLong(const char* t, long d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toLong(ok); }); }
unsigned long String::strToULong(const char* t, unsigned long d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toULong(ok); }); }
long long String::strToLLong(const char* t, long long d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toLongLong(ok); }); }
unsigned long long String::strToULLong(const char* t, unsigned long long d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toULongLong(ok); }); }
float String::strToFloat(const char* t, float d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toFloat(ok); }); }
double String::strToDouble(const char* t, double d) { return parsed(t, d, [](const QString& s, bool* ok) { return s.toDouble(ok); }); }

int String::hexToInt(const char* t, int d) { return hexParsed(t, d, [](const QString& s, bool* ok) { return s.toInt(ok, 16); }); }
unsigned int String::hexToUInt(const char* t, unsigned int d) { return hexParsed(t, d, [](const QString& s, bool* ok) { return s.toUInt(ok, 16); }); }
long String::hexToLong(const char* t, long d) { return hexParsed(t, d, [](const QString& s, bool* ok) { return s.toLong(ok, 16); }); }
unsigned long String::hexToULong(const char* t, unsigned long d) { return hexParsed(t, d, [](const QString& s, bool* ok) { return s.toULong(ok, 16); }); }
long long String::hexToLLong(const char* t, long long d) { return hexParsed(t, d, [](const QString& s, bool* ok) { return s.toLongLong(ok, 16); }); }
unsigned long long String::hexToULLong(const char* t, unsigned long long d) { return hexParsed(t, d, [](const QString& s, bool* ok) { return s.toULongLong(ok, 16); }); }

int String::strToInt(const std::string& t, int d) { return strToInt(t.c_str(), d); }
unsigned int String::strToUInt(const std::string& t, unsigned int d) { return strToUInt(t.c_str(), d); }
long String::strToLong(const std::string& t, long d) { return strToLong(t.c_str(), d); }
unsigned long String::strToULong(const std::string& t, unsigned long d) { return strToULong(t.c_str(), d); }
long long String::strToLLong(const std::string& t, long long d) { return strToLLong(t.c_str(), d); }
unsigned long long String::strToULLong(const std::string& t, unsigned long long d) { return strToULLong(t.c_str(), d); }
float String::strToFloat(const std::string& t, float d) { return strToFloat(t.c_str(), d); }
double String::strToDouble(const std::string& t, double d) { return strToDouble(t.c_str(), d); }
int String::hexToInt(const std::string& t, int d) { return hexToInt(t.c_str(), d); }
unsigned int String::hexToUInt(const std::string& t, unsigned int d) { return hexToUInt(t.c_str(), d); }
long String::hexToLong(const std::string& t, long d) { return hexToLong(t.c_str(), d); }
unsigned long String::hexToULong(const std::string& t, unsigned long d) { return hexToULong(t.c_str(), d); }
long long String::hexToLLong(const std::string& t, long long d) { return hexToLLong(t.c_str(), d); }
unsigned long long String::hexToULLong(const std::string& t, unsigned long long d) { return hexToULLong(t.c_str(), d); }

std::string String::trim(const char* text) { return qText(text).trimmed().toStdString(); }
std::string String::trim(const std::string& text) { return trim(text.c_str()); }
std::string String::toUpper(const char* text) { return qText(text).toUpper().toStdString(); }
std::string String::toUpper(const std::string& text) { return toUpper(text.c_str()); }
std::string String::toLower(const char* text) { return qText(text).toLower().toStdString(); }
std::string String::toLower(const std::string& text) { return toLower(text.c_str()); }
// clang-format on

std::string String::toAscii(const char* text) {
    static const QRegularExpression NON_ASCII(QStringLiteral("[^\\x00-\\x7F]"));
    return qText(text).normalized(QString::NormalizationForm_KD).remove(NON_ASCII).toStdString();
}

std::string String::toAscii(const std::string& text) { return toAscii(text.c_str()); }

std::string String::surround(const char* text, const char* mark) {
    return surround(std::string(text ? text : ""), std::string(mark ? mark : ""));
}

std::string String::surround(const std::string& text, const std::string& mark) {
    if (text.empty() || mark.empty())
        return text;
    std::string result = text;
    if (result.compare(0, mark.size(), mark) != 0)
        result.insert(0, mark);
    if (unitAtEnd(result, mark, false) == 0)
        result += mark;
    return result;
}

std::string String::quote(const char* text) { return surround(text, "\""); }
std::string String::quote(const std::string& text) { return surround(text, "\""); }

std::string String::unSurround(const char* text, const char* marks, bool anyChar) {
    return unSurround(std::string(text ? text : ""), std::string(marks ? marks : ""), anyChar);
}

std::string String::unSurround(const std::string& text, const std::string& marks, bool anyChar) {
    std::string result = text;
    if (marks.empty())
        return result;
    while (!result.empty()) {
        const size_t head = unitAtStart(result, marks, anyChar);
        result.erase(0, head);
        const size_t tail = result.empty() ? 0 : unitAtEnd(result, marks, anyChar);
        result.erase(result.size() - tail);
        if (head == 0 && tail == 0)
            break;
    }
    return result;
}

std::string String::unQuote(const char* text) { return unSurround(text, "\"'", true); }
std::string String::unQuote(const std::string& text) { return unSurround(text, "\"'", true); }

std::string String::format(const char* fmt, ...) {
    if (fmt == nullptr || *fmt == '\0')
        return std::string();
    va_list args;
    va_start(args, fmt);
    va_list again;
    va_copy(again, args);
    const int size = std::vsnprintf(nullptr, 0, fmt, args);
    va_end(args);
    std::string result;
    if (size > 0) {
        result.resize(static_cast<size_t>(size));
        std::vsnprintf(&result[0], result.size() + 1, fmt, again);
    }
    va_end(again);
    return result;
}

std::vector<std::string> String::tokenize(const std::string& text, const std::string& separator) {
    if (text.empty())
        return {};
    if (separator.empty())
        return {text};
    std::vector<std::string> pieces;
    size_t start = 0;
    for (size_t at = text.find(separator); at != std::string::npos;
         at = text.find(separator, start)) {
        pieces.push_back(text.substr(start, at - start));
        start = at + separator.size();
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

std::vector<std::string> String::tokenize(const char* text, const char* separator) {
    return tokenize(std::string(text ? text : ""), std::string(separator ? separator : ""));
}

std::vector<std::string> String::tokenize(const char* text, char separator) {
    return tokenize(std::string(text ? text : ""), std::string(1, separator));
}

std::vector<std::string> String::tokenize(const std::string& text, char separator) {
    return tokenize(text, std::string(1, separator));
}

}  // namespace nimb
