// JSON values, objects, arrays and documents with std::string texts.
//
// Each class holds exactly one Qt JSON object and forwards to it; copies are
// cheap (Qt shares the data implicitly) and there is no other state. Where
// these classes differ from plain Qt on purpose:
//   - a bool is stored as the JSON number 0 or 1, never as true/false;
//   - operator=(long) keeps only the low 32 bits, while the long constructor
//     keeps the full value (as a double);
//   - the readers (toBool, toDouble, toString, toDateTime, toArray, toObject)
//     never fail: a wrong type or a missing key gives 0, false or "";
//   - a text that does not parse leaves a null document, nothing is thrown.
// Nothing here throws on bad data; only memory exhaustion propagates.
#pragma once

#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include "nimb/object.h"

namespace nimb {

class JsonArray;
class JsonObject;

// A JSON number as an integer field reads it: truncated toward zero; NaN
// reads 0 and numbers beyond Int's range saturate, where a plain cast would
// be undefined.
template <typename Int>
Int truncatedNumber(double value) {
    if (std::isnan(value))
        return 0;
    if (value <= static_cast<double>(std::numeric_limits<Int>::min()))
        return std::numeric_limits<Int>::min();
    if (value >= static_cast<double>(std::numeric_limits<Int>::max()))
        return std::numeric_limits<Int>::max();
    return static_cast<Int>(value);
}

// One JSON value: null, boolean, number, string, array, object or undefined.
//
// Writing a record field: JsonValue(x) for every arithmetic type and text
// (or let JsonObject::setValue convert it implicitly). Assignment exists only
// for bool, int, long, double, texts, arrays and objects; assigning another
// integer type does not compile on purpose (use the constructor).
class JsonValue : public Object {
public:
    // The type codes of type(); an unknown Qt type reads as Null.
    enum Type : int {
        Null = 0,
        Bool = 1,
        Double = 2,
        String = 3,
        Array = 4,
        Object = 5,
        Undefined = 6,
    };

    // Null.
    JsonValue();
    JsonValue(const JsonValue& other);
    // Stored as the number 0 or 1: isBool() is false, toBool() reads it.
    JsonValue(bool value);
    // Stored as an integer number.
    JsonValue(int value);
    // Stored as a double, full range (unsigned values stay positive).
    JsonValue(unsigned int value);
    JsonValue(long value);
    JsonValue(unsigned long value);
    JsonValue(long long value);
    JsonValue(unsigned long long value);
    JsonValue(double value);
    // A JSON string of the UTF-8 text; a null pointer gives "".
    JsonValue(const char* value);
    JsonValue(const std::string& value);
    JsonValue(const JsonArray& value);
    JsonValue(const JsonObject& value);
    // Wraps the Qt value as it is (a Qt bool stays a bool).
    JsonValue(const QJsonValue& value);
    ~JsonValue() override;

    // Debug text by the lenient rule: a string gives its text, a boolean
    // "1"/"0", a number its value rounded to a whole number in fixed
    // notation (2.6 gives "3"); anything else "". toStr() returns the same.
    std::string toString() const override;

    // The wrapped Qt value; every test and conversion reads through it.
    virtual QJsonValue toValue() const;

    virtual JsonValue& operator=(const JsonValue& other);
    // The number 0 or 1.
    virtual JsonValue& operator=(bool value);
    virtual JsonValue& operator=(int value);
    // Keeps only the low 32 bits and stores them as an int:
    // 5000000000 is stored as 705032704. The constructor keeps all bits.
    virtual JsonValue& operator=(long value);
    virtual JsonValue& operator=(double value);
    // A JSON string of the UTF-8 text; a null pointer gives "".
    virtual JsonValue& operator=(const char* value);
    virtual JsonValue& operator=(const std::string& value);
    virtual JsonValue& operator=(const JsonArray& value);
    virtual JsonValue& operator=(const JsonObject& value);

    virtual Type type() const;
    virtual bool isNull() const;
    // True only for a real JSON true/false (as parsed), not for JsonValue(bool).
    virtual bool isBool() const;
    virtual bool isDouble() const;
    virtual bool isString() const;
    virtual bool isArray() const;
    virtual bool isObject() const;
    // True for the value of a missing key or an out-of-range index.
    virtual bool isUndefined() const;

    // Boolean: the value; number: true unless 0 (NaN is true); string: true
    // when its lower-case form is "true" or "1"; anything else false.
    virtual bool toBool() const;
    // Number: the value; boolean: 1.0/0.0; string: the number it spells
    // completely, else 0.0; anything else 0.0.
    virtual double toDouble() const;
    // The array or object when the type matches, otherwise an empty one.
    virtual JsonArray toArray() const;
    virtual JsonObject toObject() const;
    // Milliseconds since the epoch. A number is truncated toward zero to 64
    // bits (NaN gives 0, numbers beyond the range saturate); a
    // string is read from its first 23 characters as local time
    // "yyyy-MM-ddTHH:mm:ss.zzz" (a zone designator behind them is ignored);
    // anything else gives 0.
    virtual long long toDateTime() const;

    virtual bool operator==(const JsonValue& other) const;
    virtual bool operator!=(const JsonValue& other) const;

    // Stores the JSON string of ms + offsetMs (milliseconds since the epoch)
    // as local time "yyyy-MM-ddTHH:mm:ss.zzz" followed by the zone designator
    // of the local zone's current offset from UTC ("Z", or "+01:00", "-05:30"),
    // for example "2024-05-01T14:03:07.250+01:00". Returns *this.
    virtual JsonValue& fromDateTime(long long ms, int offsetMs = 0);

private:
    QJsonValue m_value;
};

// A JSON object: string keys, kept in sorted order, mapped to values.
class JsonObject : public nimb::Object {
public:
    JsonObject();
    JsonObject(const JsonObject& other);
    // Wraps the Qt object as it is.
    JsonObject(const QJsonObject& object);
    // The members in one go: JsonObject{{"id", id}, {"enabled", enabled}};
    // a repeated key keeps the last value.
    JsonObject(std::initializer_list<std::pair<std::string, JsonValue>> members);
    ~JsonObject() override;

    // Compact debug text built by hand (no escaping):
    // {"key":value,...} in key order, where null is null, a boolean 1/0, a
    // number has six significant digits, a string is between double quotes,
    // arrays and objects nest, and anything else is "<undefined>".
    std::string toString() const override;

    virtual JsonObject& operator=(const JsonObject& other);
    // The keys in sorted order.
    virtual std::vector<std::string> keys() const;
    virtual int size() const;
    virtual bool isEmpty() const;
    // The member's value, Undefined when the key is missing. A null key is "".
    virtual JsonValue value(const char* key) const;
    virtual JsonValue value(const std::string& key) const;
    // Inserts the member or replaces its value.
    virtual void setValue(const char* key, const JsonValue& value);
    virtual void setValue(const std::string& key, const JsonValue& value);
    virtual void remove(const char* key);
    virtual void remove(const std::string& key);
    // Removes the member and returns its value (Undefined when missing).
    virtual JsonValue take(const char* key);
    virtual JsonValue take(const std::string& key);
    virtual bool contains(const char* key) const;
    virtual bool contains(const std::string& key) const;
    virtual bool operator==(const JsonObject& other) const;
    virtual bool operator!=(const JsonObject& other) const;

    // Same as setValue(key, value).
    void insert(const std::string& key, const JsonValue& value) { setValue(key, value); }
    // The wrapped Qt object.
    const QJsonObject& toQJsonObject() const { return m_object; }

private:
    QJsonObject m_object;
};

// A JSON array. Indexes are 0-based; at() and value() of an index out of
// range give Undefined. first(), last(), setValue(), removeFirst() and
// removeLast() must not be called on an empty array or a missing index.
class JsonArray : public nimb::Object {
public:
    JsonArray();
    JsonArray(const JsonArray& other);
    // Wraps the Qt array as it is.
    JsonArray(const QJsonArray& array);
    ~JsonArray() override;

    // "[" + toStringList() joined by "," + "]", for example [1,"a",{"k":2}].
    std::string toString() const override;

    virtual JsonArray& operator=(const JsonArray& other);
    virtual int size() const;
    virtual bool isEmpty() const;
    virtual JsonValue at(int index) const;
    virtual JsonValue first() const;
    virtual JsonValue last() const;
    virtual void prepend(const JsonValue& value);
    virtual void append(const JsonValue& value);
    virtual void removeAt(int index);
    virtual JsonValue takeAt(int index);
    virtual void removeFirst();
    virtual void removeLast();
    // Inserts before index (index == size() appends).
    virtual void insert(int index, const JsonValue& value);
    virtual void replace(int index, const JsonValue& value);
    virtual bool contains(const JsonValue& value) const;
    virtual JsonValue value(int index) const;
    // Assigns in place at an existing index.
    virtual void setValue(int index, const JsonValue& value);
    virtual bool operator==(const JsonArray& other) const;
    virtual bool operator!=(const JsonArray& other) const;
    // Each element rendered as in JsonObject::toString() (strings keep their
    // double quotes).
    virtual std::vector<std::string> toStringList() const;
    // Replaces the whole array by the texts as JSON strings.
    virtual void fromStringList(const std::vector<std::string>& list);

    // The wrapped Qt array.
    const QJsonArray& toQJsonArray() const { return m_array; }

private:
    QJsonArray m_array;
};

// A JSON document: null, or one object or array, with its JSON text.
//
// Reading a record: JsonDocument doc; doc.fromJson(text);
// if (doc.isObject()) record.fromJson(doc.object());
// Writing: JsonDocument(record.toJson()).toJson(false).
class JsonDocument : public nimb::Object {
public:
    // Null.
    JsonDocument();
    JsonDocument(const JsonDocument& other);
    JsonDocument(const JsonObject& object);
    JsonDocument(const JsonArray& array);
    // Wraps the Qt document as it is.
    JsonDocument(const QJsonDocument& document);
    ~JsonDocument() override;

    // The compact JSON text, toJson(false).
    std::string toString() const override;

    virtual JsonDocument& operator=(const JsonDocument& other);
    virtual JsonDocument& operator=(const JsonObject& object);
    virtual JsonDocument& operator=(const JsonArray& array);
    // True when the document holds neither an object nor an array (an empty
    // object or array is content).
    virtual bool isEmpty() const;
    virtual bool isArray() const;
    virtual bool isObject() const;
    virtual bool isNull() const;
    // The UTF-8 JSON text, indented (four spaces, one member a line, final
    // line break) or compact (no white space at all); "" for a null document.
    virtual std::string toJson(bool indented) const;
    // The content; empty when the document holds the other kind or nothing.
    virtual JsonObject object() const;
    virtual JsonArray array() const;
    virtual void setObject(const JsonObject& object);
    virtual void setArray(const JsonArray& array);
    virtual bool operator==(const JsonDocument& other) const;
    virtual bool operator!=(const JsonDocument& other) const;
    // Parse exactly size bytes of UTF-8 JSON text (copied) and replace the
    // document by the result; a text that does not parse gives a null
    // document, without an exception.
    virtual void fromRawData(const void* data, unsigned long size);
    // The same for a NUL-terminated text; a null pointer gives a null document.
    virtual void fromJson(const char* text);
    virtual void fromJson(const std::string& text);

    // The wrapped Qt document.
    const QJsonDocument& toQJsonDocument() const { return m_document; }

private:
    QJsonDocument m_document;
};

}  // namespace nimb
