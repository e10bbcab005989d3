#include "plugins/ini/iniconfig.h"

#include <dlfcn.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSettings>
#include <QtGlobal>

namespace iniconfig {

namespace {

// Reads typed keys of one INI file and reports values that do not parse.
class Reader {
public:
    explicit Reader(const std::string& fileName)
        : m_fileName(fileName),
          m_settings(QString::fromStdString(fileName), QSettings::IniFormat) {}

    void text(const char* key, std::string& value) {
        if (m_settings.contains(key))
            value = m_settings.value(key).toString().toStdString();
    }

    template <typename Int>
    void number(const char* key, Int& value) {
        if (!m_settings.contains(key))
            return;
        bool ok = false;
        const qlonglong read = m_settings.value(key).toString().trimmed().toLongLong(&ok);
        if (ok && read >= 0)
            value = static_cast<Int>(read);
        else
            bad(key);
    }

    void flag(const char* key, bool& value) {
        if (!m_settings.contains(key))
            return;
        const QString read = m_settings.value(key).toString().trimmed().toLower();
        if (read == "1" || read == "true")
            value = true;
        else if (read == "0" || read == "false")
            value = false;
        else
            bad(key);
    }

    // Level names TRACE ... FATAL in any letter case.
    void level(const char* key, nimb::LogLevel& value) {
        if (!m_settings.contains(key))
            return;
        const QString read = m_settings.value(key).toString().toUpper();
        for (int level = nimb::TRACE; level <= nimb::FATAL; ++level) {
            const auto candidate = static_cast<nimb::LogLevel>(level);
            if (read.toStdString() == nimb::Logger::levelToStr(candidate)) {
                value = candidate;
                return;
            }
        }
        bad(key);
    }

private:
    void bad(const char* key) {
        qWarning("config: bad value \"%s\" of key %s in file %s; the default is used",
                 qPrintable(m_settings.value(key).toString()), key, m_fileName.c_str());
    }

    std::string m_fileName;
    QSettings m_settings;
};

QJsonObject readJson(const QString& fileName) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QJsonObject();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError)
        qWarning("config: file %s is not valid JSON: %s", qPrintable(fileName),
                 qPrintable(error.errorString()));
    return document.object();
}

}  // namespace

std::string suiteDir() {
    Dl_info info;
    if (dladdr(reinterpret_cast<void*>(&suiteDir), &info) != 0 && info.dli_fname != nullptr)
        return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath().toStdString();
    return QDir::currentPath().toStdString();
}

void readClientConfig(const std::string& fileName, tessary::ClientConfig& config) {
    Reader in(fileName);
    in.text("shutsvc/web.host", config.shutSvc.webHost);
    in.number("shutsvc/web.port", config.shutSvc.webPort);
    in.text("notifysvc/web.host", config.notifySvc.webHost);
    in.number("notifysvc/web.port", config.notifySvc.webPort);
    in.number("notifysvc/message.interval", config.notifySvc.messageInterval);
    in.text("notifygui/web.host", config.notifyGui.webHost);
    in.number("notifygui/web.port", config.notifyGui.webPort);
    in.number("notifygui/message.interval", config.notifyGui.messageInterval);
    in.text("cloudsvc/web.host", config.cloudSvc.webHost);
    in.number("cloudsvc/web.port", config.cloudSvc.webPort);
    in.number("cloudsvc/message.interval", config.cloudSvc.messageInterval);
    in.flag("mqtt/enable", config.cloudSvc.mqtt.enable);
    in.text("mqtt/brokerHost", config.cloudSvc.mqtt.brokerHost);
    in.number("mqtt/brokerPort", config.cloudSvc.mqtt.brokerPort);
    tessary::ClientLoggerConfig& log = config.logger;
    in.text("debug/monitclient.filename", log.monitClientFilename);
    in.level("debug/monitclient.level", log.monitClientLevel);
    in.text("debug/notifysvc.filename", log.notifySvcFilename);
    in.level("debug/notifysvc.level", log.notifySvcLevel);
    in.text("debug/notifygui.filename", log.notifyGuiFilename);
    in.level("debug/notifygui.level", log.notifyGuiLevel);
    in.text("debug/shutsvc.filename", log.shutSvcFilename);
    in.level("debug/shutsvc.level", log.shutSvcLevel);
    in.text("debug/cloudsvc.filename", log.cloudSvcFilename);
    in.level("debug/cloudsvc.level", log.cloudSvcLevel);
}

void readMonitConfig(const std::string& fileName, tessary::MonitConfig& config) {
    Reader in(fileName);
    in.flag("monit/monit.enable", config.general.monitEnable);
    in.flag("monit/rs232.enable", config.general.rs232Enable);
    in.number("web/tcp.port", config.server.tcpPort);
    in.number("web/udp.port", config.server.udpPort);
    in.number("log/hist.hours", config.log.histHours);
    in.number("log/hist.days", config.log.histDays);
    in.number("log/hist.months", config.log.histMonths);
    in.number("log/event.months", config.log.eventMonths);
    tessary::MonitLoggerConfig& log = config.logger;
    in.text("debug/devicemonit.filename", log.deviceMonitFileName);
    in.level("debug/devicemonit.level", log.deviceMonitLevel);
    in.text("debug/devicemanager.filename", log.deviceManagerFileName);
    in.level("debug/devicemanager.level", log.deviceManagerLevel);
    in.text("debug/serialhid.filename", log.serialHidFileName);
    in.level("debug/serialhid.level", log.serialHidLevel);
}

void readDetectionConfig(const std::string& dir, tessary::DetectionConfig& config) {
    const QString fileName = QString::fromStdString(dir) + "/detection.json";
    if (QFileInfo::exists(fileName))
        config.fromJson(nimb::JsonObject(readJson(fileName)));
    else
        config.clear();
}

bool readDeviceConfig(const std::string& dir, int family, int model,
                      tessary::DeviceConfig& config) {
    const QString fileName =
        QString("%1/%2-%3.json").arg(QString::fromStdString(dir)).arg(family).arg(model);
    if (!QFileInfo::exists(fileName))
        return false;
    config.fromJson(nimb::JsonObject(readJson(fileName)));
    return true;
}

}  // namespace iniconfig
