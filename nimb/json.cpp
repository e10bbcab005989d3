#include "nimb/json.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sstream>

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include "nimb/datetime.h"

namespace nimb {

namespace {

const char* const DATE_TIME_FORMAT = "yyyy-MM-ddTHH:mm:ss.zzz";
// "yyyy-MM-ddTHH:mm:ss.zzz" spelled out has this many characters.
const int DATE_TIME_LENGTH = 23;
const long long MS_PER_HOUR = 3600000;
const long long MS_PER_MINUTE = 60000;

std::string toUtf8(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

QString fromUtf8(const char* text) {
    return QString::fromUtf8(text != nullptr ? text : "");
}

QString fromUtf8(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

// The local zone's current offset from UTC in milliseconds, east positive,
// daylight saving time included: the distance between the local wall clock
// and the UTC wall clock read as if it were local.
long long localZoneOffset() {
    const QDateTime local = QDateTime::currentDateTime();
    const QDateTime utc = local.toUTC();
    const QDateTime utcAsLocal(utc.date(), utc.time(), Qt::LocalTime);
    return utcAsLocal.msecsTo(local);
}

std::string zoneDesignator(long long offsetMs) {
    if (offsetMs == 0)
        return "Z";
    const long long absolute = std::llabs(offsetMs);
    const QString text =
        QStringLiteral("%1%2:%3")
            .arg(offsetMs < 0 ? QLatin1Char('-') : QLatin1Char('+'))
            .arg(absolute / MS_PER_HOUR, 2, 10, QLatin1Char('0'))
            .arg((absolute % MS_PER_HOUR) / MS_PER_MINUTE, 2, 10, QLatin1Char('0'));
    return toUtf8(text);
}

// A number truncated toward zero. Casting NaN or a number beyond the 64-bit
// range is undefined, so NaN reads as 0 and the others saturate.
long long truncateToLongLong(double number) {
    const double limit = 9223372036854775808.0;  // 2^63
    if (std::isnan(number))
        return 0;
    if (number >= limit)
        return std::numeric_limits<long long>::max();
    if (number < -limit)
        return std::numeric_limits<long long>::min();
    return static_cast<long long>(number);
}

// The debug rendering shared by object members and array elements.
std::string renderValue(const QJsonValue& value) {
    switch (value.type()) {
        case QJsonValue::Null:
            return "null";
        case QJsonValue::Bool:
            return value.toBool() ? "1" : "0";
        case QJsonValue::Double: {
            // A default stream keeps six significant digits; the text is for logs.
            std::ostringstream stream;
            stream << value.toDouble();
            return stream.str();
        }
        case QJsonValue::String:
            return "\"" + toUtf8(value.toString()) + "\"";
        case QJsonValue::Array:
            return JsonArray(value.toArray()).toString();
        case QJsonValue::Object:
            return JsonObject(value.toObject()).toString();
        default:
            return "\"<undefined>\"";
    }
}

}  // namespace

// ---------------------------------------------------------------- JsonValue

JsonValue::JsonValue() = default;
JsonValue::JsonValue(const JsonValue& other) = default;
// The integer constructor of the Qt value is what makes a bool a number.
JsonValue::JsonValue(bool value) : m_value(value ? 1 : 0) {}
JsonValue::JsonValue(int value) : m_value(value) {}
JsonValue::JsonValue(unsigned int value) : m_value(static_cast<double>(value)) {}
JsonValue::JsonValue(long value) : m_value(static_cast<double>(value)) {}
JsonValue::JsonValue(unsigned long value) : m_value(static_cast<double>(value)) {}
JsonValue::JsonValue(long long value) : m_value(static_cast<double>(value)) {}
JsonValue::JsonValue(unsigned long long value) : m_value(static_cast<double>(value)) {}
JsonValue::JsonValue(double value) : m_value(value) {}
JsonValue::JsonValue(const char* value) : m_value(fromUtf8(value)) {}
JsonValue::JsonValue(const std::string& value) : m_value(fromUtf8(value)) {}
JsonValue::JsonValue(const JsonArray& value) : m_value(value.toQJsonArray()) {}
JsonValue::JsonValue(const JsonObject& value) : m_value(value.toQJsonObject()) {}
JsonValue::JsonValue(const QJsonValue& value) : m_value(value) {}
JsonValue::~JsonValue() = default;

std::string JsonValue::toString() const {
    const QJsonValue value = toValue();
    if (value.isString())
        return toUtf8(value.toString());
    if (value.isBool())
        return value.toBool() ? "1" : "0";
    if (value.isDouble())
        // Whole numbers on purpose: this text serves integer-valued fields.
        return toUtf8(QString::number(value.toDouble(), 'f', 0));
    return std::string();
}

QJsonValue JsonValue::toValue() const {
    return m_value;
}

JsonValue& JsonValue::operator=(const JsonValue& other) {
    m_value = other.m_value;
    return *this;
}

JsonValue& JsonValue::operator=(bool value) {
    m_value = QJsonValue(value ? 1 : 0);
    return *this;
}

JsonValue& JsonValue::operator=(int value) {
    m_value = QJsonValue(value);
    return *this;
}

JsonValue& JsonValue::operator=(long value) {
    // Truncation to the low 32 bits is the assignment's long-standing contract;
    // the constructor is the one that keeps the full range.
    m_value = QJsonValue(static_cast<int>(static_cast<std::uint32_t>(value)));
    return *this;
}

JsonValue& JsonValue::operator=(double value) {
    m_value = QJsonValue(value);
    return *this;
}

JsonValue& JsonValue::operator=(const char* value) {
    m_value = QJsonValue(fromUtf8(value));
    return *this;
}

JsonValue& JsonValue::operator=(const std::string& value) {
    m_value = QJsonValue(fromUtf8(value));
    return *this;
}

JsonValue& JsonValue::operator=(const JsonArray& value) {
    m_value = QJsonValue(value.toQJsonArray());
    return *this;
}

JsonValue& JsonValue::operator=(const JsonObject& value) {
    m_value = QJsonValue(value.toQJsonObject());
    return *this;
}

JsonValue::Type JsonValue::type() const {
    switch (toValue().type()) {
        case QJsonValue::Bool:
            return Bool;
        case QJsonValue::Double:
            return Double;
        case QJsonValue::String:
            return String;
        case QJsonValue::Array:
            return Array;
        case QJsonValue::Object:
            return Object;
        case QJsonValue::Undefined:
            return Undefined;
        default:
            return Null;
    }
}

bool JsonValue::isNull() const {
    return toValue().isNull();
}
bool JsonValue::isBool() const {
    return toValue().isBool();
}
bool JsonValue::isDouble() const {
    return toValue().isDouble();
}
bool JsonValue::isString() const {
    return toValue().isString();
}
bool JsonValue::isArray() const {
    return toValue().isArray();
}
bool JsonValue::isObject() const {
    return toValue().isObject();
}
bool JsonValue::isUndefined() const {
    return toValue().isUndefined();
}

bool JsonValue::toBool() const {
    const QJsonValue value = toValue();
    if (value.isBool())
        return value.toBool();
    if (value.isDouble())
        // Written as a negated equality so that NaN reads as true.
        return !(value.toDouble() == 0.0);
    if (value.isString()) {
        const QString text = value.toString().toLower();
        return text == QLatin1String("true") || text == QLatin1String("1");
    }
    return false;
}

double JsonValue::toDouble() const {
    const QJsonValue value = toValue();
    if (value.isDouble())
        return value.toDouble();
    if (value.isBool())
        return value.toBool() ? 1.0 : 0.0;
    if (value.isString()) {
        bool ok = false;
        const double number = value.toString().toDouble(&ok);
        return ok ? number : 0.0;
    }
    return 0.0;
}

JsonArray JsonValue::toArray() const {
    return JsonArray(toValue().toArray());
}

JsonObject JsonValue::toObject() const {
    return JsonObject(toValue().toObject());
}

long long JsonValue::toDateTime() const {
    const QJsonValue value = toValue();
    if (value.isDouble())
        return truncateToLongLong(value.toDouble());
    if (value.isString()) {
        // The zone designator behind the date and time is not read: the text
        // is local time as written by fromDateTime().
        return DateTime::strToDateTime(toUtf8(value.toString().left(DATE_TIME_LENGTH)),
                                       DATE_TIME_FORMAT);
    }
    return 0;
}

bool JsonValue::operator==(const JsonValue& other) const {
    return toValue() == other.toValue();
}

bool JsonValue::operator!=(const JsonValue& other) const {
    return !(*this == other);
}

JsonValue& JsonValue::fromDateTime(long long ms, int offsetMs) {
    // The designator tells the zone of the machine now, not of offsetMs.
    const std::string text = DateTime::dateTimeToStr(ms, DATE_TIME_FORMAT, offsetMs) +
                             zoneDesignator(localZoneOffset());
    m_value = QJsonValue(fromUtf8(text));
    return *this;
}

// --------------------------------------------------------------- JsonObject

JsonObject::JsonObject() = default;
JsonObject::JsonObject(const JsonObject& other) = default;
JsonObject::JsonObject(const QJsonObject& object) : m_object(object) {}

JsonObject::JsonObject(std::initializer_list<std::pair<std::string, JsonValue>> members) {
    for (const auto& member : members)
        m_object.insert(fromUtf8(member.first), member.second.toValue());
}

JsonObject::~JsonObject() = default;

std::string JsonObject::toString() const {
    std::string text = "{";
    bool first = true;
    for (auto it = m_object.constBegin(); it != m_object.constEnd(); ++it) {
        if (!first)
            text += ",";
        first = false;
        text += "\"" + toUtf8(it.key()) + "\":" + renderValue(it.value());
    }
    return text + "}";
}

JsonObject& JsonObject::operator=(const JsonObject& other) {
    m_object = other.m_object;
    return *this;
}

std::vector<std::string> JsonObject::keys() const {
    std::vector<std::string> result;
    for (const QString& key : m_object.keys())
        result.push_back(toUtf8(key));
    return result;
}

int JsonObject::size() const {
    return m_object.size();
}
bool JsonObject::isEmpty() const {
    return m_object.isEmpty();
}

JsonValue JsonObject::value(const char* key) const {
    return JsonValue(m_object.value(fromUtf8(key)));
}

JsonValue JsonObject::value(const std::string& key) const {
    return value(key.c_str());
}

void JsonObject::setValue(const char* key, const JsonValue& value) {
    m_object.insert(fromUtf8(key), value.toValue());
}

void JsonObject::setValue(const std::string& key, const JsonValue& value) {
    setValue(key.c_str(), value);
}

void JsonObject::remove(const char* key) {
    m_object.remove(fromUtf8(key));
}

void JsonObject::remove(const std::string& key) {
    remove(key.c_str());
}

JsonValue JsonObject::take(const char* key) {
    return JsonValue(m_object.take(fromUtf8(key)));
}

JsonValue JsonObject::take(const std::string& key) {
    return take(key.c_str());
}

bool JsonObject::contains(const char* key) const {
    return m_object.contains(fromUtf8(key));
}

bool JsonObject::contains(const std::string& key) const {
    return contains(key.c_str());
}

bool JsonObject::operator==(const JsonObject& other) const {
    return m_object == other.m_object;
}

bool JsonObject::operator!=(const JsonObject& other) const {
    return !(*this == other);
}

// ---------------------------------------------------------------- JsonArray

JsonArray::JsonArray() = default;
JsonArray::JsonArray(const JsonArray& other) = default;
JsonArray::JsonArray(const QJsonArray& array) : m_array(array) {}
JsonArray::~JsonArray() = default;

std::string JsonArray::toString() const {
    std::string text = "[";
    bool first = true;
    for (const std::string& element : toStringList()) {
        if (!first)
            text += ",";
        first = false;
        text += element;
    }
    return text + "]";
}

JsonArray& JsonArray::operator=(const JsonArray& other) {
    m_array = other.m_array;
    return *this;
}

int JsonArray::size() const {
    return m_array.size();
}
bool JsonArray::isEmpty() const {
    return m_array.isEmpty();
}
JsonValue JsonArray::at(int index) const {
    return JsonValue(m_array.at(index));
}
JsonValue JsonArray::first() const {
    return JsonValue(m_array.first());
}
JsonValue JsonArray::last() const {
    return JsonValue(m_array.last());
}
void JsonArray::prepend(const JsonValue& value) {
    m_array.prepend(value.toValue());
}
void JsonArray::append(const JsonValue& value) {
    m_array.append(value.toValue());
}
void JsonArray::removeAt(int index) {
    m_array.removeAt(index);
}
JsonValue JsonArray::takeAt(int index) {
    return JsonValue(m_array.takeAt(index));
}
void JsonArray::removeFirst() {
    m_array.removeFirst();
}
void JsonArray::removeLast() {
    m_array.removeLast();
}
void JsonArray::insert(int index, const JsonValue& value) {
    m_array.insert(index, value.toValue());
}
void JsonArray::replace(int index, const JsonValue& value) {
    m_array.replace(index, value.toValue());
}
bool JsonArray::contains(const JsonValue& value) const {
    return m_array.contains(value.toValue());
}
JsonValue JsonArray::value(int index) const {
    return at(index);
}
void JsonArray::setValue(int index, const JsonValue& value) {
    m_array[index] = value.toValue();
}

bool JsonArray::operator==(const JsonArray& other) const {
    return m_array == other.m_array;
}

bool JsonArray::operator!=(const JsonArray& other) const {
    return !(*this == other);
}

std::vector<std::string> JsonArray::toStringList() const {
    std::vector<std::string> result;
    result.reserve(static_cast<size_t>(m_array.size()));
    for (const QJsonValue& element : m_array)
        result.push_back(renderValue(element));
    return result;
}

void JsonArray::fromStringList(const std::vector<std::string>& list) {
    QJsonArray array;
    for (const std::string& text : list)
        array.append(QJsonValue(fromUtf8(text)));
    m_array = array;
}

// ------------------------------------------------------------- JsonDocument

JsonDocument::JsonDocument() = default;
JsonDocument::JsonDocument(const JsonDocument& other) = default;
JsonDocument::JsonDocument(const JsonObject& object) {
    setObject(object);
}
JsonDocument::JsonDocument(const JsonArray& array) {
    setArray(array);
}
JsonDocument::JsonDocument(const QJsonDocument& document) : m_document(document) {}
JsonDocument::~JsonDocument() = default;

std::string JsonDocument::toString() const {
    return toJson(false);
}

JsonDocument& JsonDocument::operator=(const JsonDocument& other) {
    m_document = other.m_document;
    return *this;
}

JsonDocument& JsonDocument::operator=(const JsonObject& object) {
    setObject(object);
    return *this;
}

JsonDocument& JsonDocument::operator=(const JsonArray& array) {
    setArray(array);
    return *this;
}

bool JsonDocument::isEmpty() const {
    return m_document.isEmpty();
}
bool JsonDocument::isArray() const {
    return m_document.isArray();
}
bool JsonDocument::isObject() const {
    return m_document.isObject();
}
bool JsonDocument::isNull() const {
    return m_document.isNull();
}

std::string JsonDocument::toJson(bool indented) const {
    const QByteArray bytes =
        m_document.toJson(indented ? QJsonDocument::Indented : QJsonDocument::Compact);
    // Up to the first NUL, which valid output never holds.
    return std::string(bytes.constData(),
                       strnlen(bytes.constData(), static_cast<size_t>(bytes.size())));
}

JsonObject JsonDocument::object() const {
    return JsonObject(m_document.object());
}
JsonArray JsonDocument::array() const {
    return JsonArray(m_document.array());
}
void JsonDocument::setObject(const JsonObject& object) {
    m_document.setObject(object.toQJsonObject());
}
void JsonDocument::setArray(const JsonArray& array) {
    m_document.setArray(array.toQJsonArray());
}

bool JsonDocument::operator==(const JsonDocument& other) const {
    return m_document == other.m_document;
}

bool JsonDocument::operator!=(const JsonDocument& other) const {
    return !(*this == other);
}

void JsonDocument::fromRawData(const void* data, unsigned long size) {
    const QByteArray bytes(static_cast<const char*>(data), static_cast<int>(size));
    m_document = QJsonDocument::fromJson(bytes);
}

void JsonDocument::fromJson(const char* text) {
    if (text == nullptr) {
        m_document = QJsonDocument();
        return;
    }
    fromRawData(text, std::strlen(text));
}

void JsonDocument::fromJson(const std::string& text) {
    fromJson(text.c_str());
}

}  // namespace nimb
