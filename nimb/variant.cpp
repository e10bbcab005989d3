#include "nimb/variant.h"

#include <QByteArray>
#include <QChar>
#include <QDateTime>
#include <QStringList>
#include <QUrl>

#include "nimb/datetime.h"
#include "nimb/json.h"
#include "nimb/string.h"

namespace nimb {

namespace {

QVariant utf8(const char* text) { return QVariant(QString::fromUtf8(text ? text : "")); }

QVariant byteArray(const std::vector<unsigned char>& bytes) {
    return QVariant(QByteArray(reinterpret_cast<const char*>(bytes.data()),
                               static_cast<int>(bytes.size())));
}

}  // namespace

Variant::Variant() = default;
Variant::Variant(const Variant& other) : Object(other), m_value(other.m_value) {}
Variant::Variant(const std::vector<unsigned char>& bytes) : m_value(byteArray(bytes)) {}
Variant::Variant(int value) : m_value(value) {}
Variant::Variant(unsigned int value) : m_value(value) {}
Variant::Variant(long value) : m_value(static_cast<qlonglong>(value)) {}
Variant::Variant(unsigned long value) : m_value(static_cast<qulonglong>(value)) {}
Variant::Variant(long long value) : m_value(static_cast<qlonglong>(value)) {}
Variant::Variant(unsigned long long value) : m_value(static_cast<qulonglong>(value)) {}
Variant::Variant(char value) : m_value(QChar(static_cast<uchar>(value))) {}
Variant::Variant(bool value) : m_value(value) {}
Variant::Variant(float value) : m_value(value) {}
Variant::Variant(double value) : m_value(value) {}
Variant::Variant(const char* text) : m_value(utf8(text)) {}
Variant::Variant(const std::string& text) : m_value(utf8(text.c_str())) {}
Variant::Variant(const QVariant& value) : m_value(value) {}
Variant::~Variant() = default;

// clang-format off
Variant& Variant::operator=(const Variant& other) { m_value = other.m_value; return *this; }
Variant& Variant::operator=(const std::vector<unsigned char>& bytes) { m_value = byteArray(bytes); return *this; }
Variant& Variant::operator=(int value) { m_value = value; return *this; }
Variant& Variant::operator=(unsigned int value) { m_value = value; return *this; }
Variant& Variant::operator=(long value) { m_value = static_cast<qlonglong>(value); return *this; }
Variant& Variant::operator=(unsigned long value) { m_value = static_cast<qulonglong>(value); return *this; }
Variant& Variant::operator=(long long value) { m_value = static_cast<qlonglong>(value); return *this; }
Variant& Variant::operator=(unsigned long long value) { m_value = static_cast<qulonglong>(value); return *this; }
Variant& Variant::operator=(char value) { m_value = QChar(static_cast<uchar>(value)); return *this; }
Variant& Variant::operator=(bool value) { m_value = value; return *this; }
Variant& Variant::operator=(float value) { m_value = value; return *this; }
Variant& Variant::operator=(double value) { m_value = value; return *this; }
Variant& Variant::operator=(const char* text) { m_value = utf8(text); return *this; }
Variant& Variant::operator=(const std::string& text) { m_value = utf8(text.c_str()); return *this; }
Variant& Variant::operator=(const QVariant& value) { m_value = value; return *this; }
// clang-format on

void Variant::fromDateTime(long long ms) { m_value = QDateTime::fromMSecsSinceEpoch(ms); }

QVariant Variant::toQVariant() const { return m_value; }

Variant::Kind Variant::kind() const {
    switch (static_cast<int>(m_value.type())) {
    case QMetaType::UnknownType:
        return Kind::Invalid;
    case QMetaType::Bool:
        return Kind::Bool;
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::SChar:
        return Kind::Signed;
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return Kind::Unsigned;
    case QMetaType::Double:
        return Kind::Double;
    case QMetaType::QChar:
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
    case QMetaType::QUrl:
        return Kind::Text;
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
        return Kind::Date;
    default:
        return Kind::Other;
    }
}

template <typename Int>
Int Variant::integer(Int (*parse)(const std::string&, Int)) const {
    switch (kind()) {
    case Kind::Bool:
        return m_value.toBool() ? 1 : 0;
    case Kind::Signed:
        return static_cast<Int>(m_value.toLongLong());
    case Kind::Unsigned:
        return static_cast<Int>(m_value.toULongLong());
    case Kind::Double:
        return truncatedNumber<Int>(m_value.toDouble());
    case Kind::Text:
        return parse(toStr(), 0);
    case Kind::Date:
        return static_cast<Int>(toDateTime());
    default:
        return m_value.value<Int>();
    }
}

// clang-format off
int Variant::toInt() const { return integer<int>(&String::strToInt); }
unsigned int Variant::toUInt() const { return integer<unsigned int>(&String::strToUInt); }
long Variant::toLong() const { return integer<long>(&String::strToLong); }
unsigned long Variant::toULong() const { return integer<unsigned long>(&String::strToULong); }
long long Variant::toLLong() const { return integer<long long>(&String::strToLLong); }
unsigned long long Variant::toULLong() const { return integer<unsigned long long>(&String::strToULLong); }
// clang-format on

double Variant::toDouble() const {
    switch (kind()) {
    case Kind::Bool:
        return m_value.toBool() ? 1.0 : 0.0;
    case Kind::Signed:
        return static_cast<double>(m_value.toLongLong());
    case Kind::Unsigned:
        return static_cast<double>(m_value.toULongLong());
    case Kind::Double:
        return m_value.toDouble();
    case Kind::Text:
        return String::strToDouble(toStr(), 0.0);
    case Kind::Date:
        return static_cast<double>(toDateTime());
    default:
        return m_value.toDouble();
    }
}

// A stored float reads as itself; everything else goes through toDouble().
float Variant::toFloat() const {
    return m_value.type() == static_cast<QVariant::Type>(QMetaType::Float)
               ? m_value.toFloat()
               : static_cast<float>(toDouble());
}

bool Variant::toBool() const {
    switch (kind()) {
    case Kind::Bool:
        return m_value.toBool();
    case Kind::Signed:
        return m_value.toLongLong() != 0;
    case Kind::Unsigned:
        return m_value.toULongLong() != 0;
    case Kind::Double:
        return m_value.toDouble() != 0.0;  // NaN counts as true
    case Kind::Text:
        return String::strToInt(toStr(), 0) != 0;
    case Kind::Date:
        return toDateTime() != 0;
    default:
        return m_value.toBool();
    }
}

long long Variant::toDateTime() const {
    switch (kind()) {
    case Kind::Bool:
        return m_value.toBool() ? 1 : 0;
    case Kind::Signed:
        return m_value.toLongLong();
    case Kind::Unsigned:
        return static_cast<long long>(m_value.toULongLong());
    case Kind::Double:
        return truncatedNumber<long long>(m_value.toDouble());
    case Kind::Text:
        return DateTime::strToDateTime(toStr(), DateTime::DEFAULT_FORMAT);
    case Kind::Date:
        // A time of day alone counts from midnight.
        if (m_value.type() == QVariant::Time)
            return m_value.toTime().msecsSinceStartOfDay();
        return m_value.toDateTime().toMSecsSinceEpoch();
    default: {
        const QDateTime time = m_value.toDateTime();
        return time.isValid() ? time.toMSecsSinceEpoch() : 0;
    }
    }
}

char Variant::toChar() const {
    std::string text;
    switch (kind()) {
    case Kind::Bool:
        return m_value.toBool() ? '1' : '0';
    case Kind::Signed:
    case Kind::Unsigned:
    case Kind::Text:
        text = toStr();
        break;
    case Kind::Double:
        text = String::floatToStr(m_value.toDouble());
        break;
    case Kind::Date:
        text = String::intToStr(toDateTime());
        break;
    default: {
        const ushort code = m_value.toChar().unicode();
        return code < 256 ? static_cast<char>(code) : '\0';
    }
    }
    return text.empty() ? '\0' : text.front();
}

std::string Variant::toString() const {
    switch (kind()) {
    case Kind::Bool:
        return m_value.toBool() ? "1" : "0";
    case Kind::Signed:
        return String::intToStr(m_value.toLongLong(), 0, '0');
    case Kind::Unsigned:
        return String::intToStr(m_value.toULongLong(), 0, '0');
    case Kind::Double:
        // Whole numbers only: 2.6 reads "3".
        return String::floatToStr(m_value.toDouble(), 0, false);
    case Kind::Date:
        return DateTime::dateTimeToStr(toDateTime(), DateTime::DEFAULT_FORMAT, 0);
    default:
        break;
    }
    switch (static_cast<int>(m_value.type())) {
    case QMetaType::QStringList:
        return m_value.toStringList().join(QLatin1Char(',')).toStdString();
    case QMetaType::QByteArray:
        return m_value.toByteArray().toHex().toStdString();
    case QMetaType::QUrl:
        return m_value.toUrl().toString().toStdString();
    default:
        return m_value.toString().toStdString();
    }
}

std::vector<std::string> Variant::toStrList() const {
    if (m_value.type() != QVariant::StringList)
        return {toStr()};
    std::vector<std::string> items;
    for (const QString& item : m_value.toStringList())
        items.push_back(item.toStdString());
    return items;
}

std::vector<unsigned char> Variant::toBinary() const {
    if (m_value.type() == QVariant::ByteArray) {
        const QByteArray bytes = m_value.toByteArray();
        return std::vector<unsigned char>(bytes.begin(), bytes.end());
    }
    const std::string text = toStr();
    return std::vector<unsigned char>(text.begin(), text.end());
}

}  // namespace nimb
