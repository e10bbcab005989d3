// One value of a scalar, text, list, binary or date-time type, with lenient
// conversions to every built-in number, to text and to time.
#pragma once

#include <string>
#include <vector>

#include <QVariant>

#include "nimb/object.h"

namespace nimb {

// Holds exactly one QVariant. long and long long are stored as 64-bit
// signed, their unsigned kin as 64-bit unsigned, a char as one character,
// texts as UTF-8 strings, byte vectors as byte arrays. Conversions never
// throw: what does not convert reads 0, false or "".
class Variant : public Object {
public:
    // Invalid: holds nothing.
    Variant();
    Variant(const Variant& other);
    Variant(const std::vector<unsigned char>& bytes);
    Variant(int value);
    Variant(unsigned int value);
    Variant(long value);
    Variant(unsigned long value);
    Variant(long long value);
    Variant(unsigned long long value);
    Variant(char value);
    Variant(bool value);
    Variant(float value);
    Variant(double value);
    Variant(const char* text);
    Variant(const std::string& text);
    Variant(const QVariant& value);
    ~Variant() override;

    // toStr().
    std::string toString() const override;

    virtual Variant& operator=(const Variant& other);
    virtual Variant& operator=(const std::vector<unsigned char>& bytes);
    virtual Variant& operator=(int value);
    virtual Variant& operator=(unsigned int value);
    virtual Variant& operator=(long value);
    virtual Variant& operator=(unsigned long value);
    virtual Variant& operator=(long long value);
    virtual Variant& operator=(unsigned long long value);
    virtual Variant& operator=(char value);
    virtual Variant& operator=(bool value);
    virtual Variant& operator=(float value);
    virtual Variant& operator=(double value);
    virtual Variant& operator=(const char* text);
    virtual Variant& operator=(const std::string& text);
    // Stores the date-time of ms milliseconds since the epoch.
    virtual void fromDateTime(long long ms);

    // Integers: a bool reads 0 or 1, a double is truncated toward zero, a
    // text is parsed in base 10 (0 when it does not parse), a date-time
    // gives its milliseconds.
    virtual int toInt() const;
    virtual unsigned int toUInt() const;
    virtual long toLong() const;
    virtual unsigned long toULong() const;
    virtual long long toLLong() const;
    virtual unsigned long long toULLong() const;
    virtual float toFloat() const;
    virtual double toDouble() const;
    // The first character of the value's text; 0 when there is none.
    virtual char toChar() const;
    // A text is true when it reads as a non-zero integer: "1" is true, but
    // "true" is false.
    virtual bool toBool() const;
    // A text list's items; any other value as a one-item list of toStr().
    virtual std::vector<std::string> toStrList() const;
    // Milliseconds since the epoch; a text is read in the default format
    // "yyyy/MM/dd HH:mm:ss.zzz".
    virtual long long toDateTime() const;
    // A byte array's bytes; any other value as the bytes of toStr().
    virtual std::vector<unsigned char> toBinary() const;
    virtual Variant& operator=(const QVariant& value);
    virtual QVariant toQVariant() const;

private:
    // Which column of the conversion rules the stored type falls in.
    enum class Kind { Invalid, Bool, Signed, Unsigned, Double, Text, Date, Other };
    Kind kind() const;
    // The integer conversions, with the type's base-10 text parser.
    template <typename Int>
    Int integer(Int (*parse)(const std::string&, Int)) const;

    QVariant m_value;
};

}  // namespace nimb
