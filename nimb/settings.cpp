#include "nimb/settings.h"

#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTextCodec>

#include <new>

namespace nimb {

namespace {

QString text(const char* utf8) { return QString::fromUtf8(utf8 ? utf8 : ""); }

std::vector<std::string> toVector(const QStringList& list) {
    std::vector<std::string> out;
    out.reserve(static_cast<std::size_t>(list.size()));
    for (const QString& item : list)
        out.push_back(item.toStdString());
    return out;
}

}  // namespace

Settings::Settings() = default;

Settings::~Settings() { close(); }

void Settings::open(const char* filename, const char* codec) {
    close();
    if (filename == nullptr || *filename == '\0')
        throw InvalidArgumentException("Empty \"filename\" argument.", ERR_INVALID_ARGUMENT);
    std::unique_ptr<QSettings> settings(new (std::nothrow) QSettings(text(filename), QSettings::IniFormat));
    if (!settings)
        throw OutOfMemoryException("Error creating \"Settings\" object.", ERR_OUT_OF_MEMORY);
    if (codec != nullptr && *codec != '\0') {
        QTextCodec* found = QTextCodec::codecForName(codec);
        if (found == nullptr)
            throw InvalidArgumentException("Invalid codec: \"" + std::string(codec) + "\".",
                                           ERR_INVALID_ARGUMENT);
        settings->setIniCodec(found);
    }
    m_settings = std::move(settings);
}

void Settings::open(const std::string& filename, const std::string& codec) {
    open(filename.c_str(), codec.c_str());
}

void Settings::close() { m_settings.reset(); }

bool Settings::isOpen() const { return m_settings != nullptr; }

QSettings& Settings::settings() const {
    if (!m_settings)
        throw FileNotOpenException("Error: file not opened.", ERR_FILE_NOT_OPEN);
    return *m_settings;
}

void Settings::chGroup(const char* name) {
    QSettings& s = settings();
    s.beginGroup(text(name));
    if (s.group() != text(name)) {
        s.endGroup();
        throw NotFoundException("Error: group not found.", ERR_NOT_FOUND);
    }
}

void Settings::chGroup(const std::string& name) { chGroup(name.c_str()); }

void Settings::backGroup() {
    QSettings& s = settings();
    // QSettings warns when there is no group to leave.
    if (!s.group().isEmpty())
        s.endGroup();
}

std::string Settings::pwdGroup() const { return settings().group().toStdString(); }

std::vector<std::string> Settings::lsGroups() const { return toVector(settings().childGroups()); }

std::vector<std::string> Settings::lsKeys() const { return toVector(settings().childKeys()); }

Variant Settings::value(const char* key) const {
    const QVariant found = settings().value(text(key), QVariant());
    if (!found.isValid())
        throw NotFoundException("Error: key not found.", ERR_NOT_FOUND);
    return Variant(found);
}

Variant Settings::value(const std::string& key) const { return value(key.c_str()); }

Variant Settings::value(const char* key, const Variant& defaultValue) const {
    if (!m_settings)
        return defaultValue;
    const QVariant found = m_settings->value(text(key), QVariant());
    return found.isValid() ? Variant(found) : defaultValue;
}

Variant Settings::value(const std::string& key, const Variant& defaultValue) const {
    return value(key.c_str(), defaultValue);
}

void Settings::setValue(const char* key, const Variant& value) {
    settings().setValue(text(key), value.toQVariant());
}

void Settings::setValue(const std::string& key, const Variant& value) { setValue(key.c_str(), value); }

}  // namespace nimb
