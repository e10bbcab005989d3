// Strict reading and writing of INI files.
#pragma once

#include "nimb/object.h"
#include "nimb/variant.h"

#include <memory>
#include <string>
#include <vector>

class QSettings;

namespace nimb {

// An INI file over QSettings whose missing keys and groups are failures,
// not defaults, unless a default is passed. Names are UTF-8; a null name
// counts as empty. Every operation but open(), close(), isOpen() and
// value(key, default) throws FileNotOpenException (-32012) "Error: file not
// opened." while no file is open. Not copyable; not safe to share between
// threads without a lock of the caller's.
class Settings : public Object {
public:
    // Closed until open().
    Settings();
    // Closes the file, writing out pending changes.
    ~Settings() override;
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    // Closes any open file, then opens filename (created on the first
    // write if missing). A codec name ("UTF-8", "ISO-8859-1") sets the
    // file's text codec; null or empty keeps Qt's default. Throws
    // InvalidArgumentException (-202) "Empty \"filename\" argument." or
    // 'Invalid codec: "name".', OutOfMemoryException (-300) "Error creating
    // \"Settings\" object."; the object is closed after a failure.
    void open(const char* filename, const char* codec = nullptr);
    void open(const std::string& filename, const std::string& codec = std::string());
    // Writes out pending changes; closed afterwards. Does nothing when closed.
    void close();
    bool isOpen() const;

    // Enters the group name below the current group. Succeeds only when the
    // resulting group path equals name, so nested groups are entered with
    // their full path from the top level ("A/B"); otherwise stays in the
    // current group and throws NotFoundException (-302) "Error: group not
    // found.".
    void chGroup(const char* name);
    void chGroup(const std::string& name);
    // Leaves the innermost group; nothing at top level.
    void backGroup();
    // The current group path ("A/B"); "" at top level.
    std::string pwdGroup() const;
    // The child groups of the current group.
    std::vector<std::string> lsGroups() const;
    // The keys directly in the current group.
    std::vector<std::string> lsKeys() const;

    // The key's value (a present but empty value is an empty text). Throws
    // NotFoundException (-302) "Error: key not found." when it is missing.
    Variant value(const char* key) const;
    Variant value(const std::string& key) const;
    // The key's value, or defaultValue when the key is missing or no file is
    // open; never throws.
    Variant value(const char* key, const Variant& defaultValue) const;
    Variant value(const std::string& key, const Variant& defaultValue) const;
    // Stores value under key in the current group.
    void setValue(const char* key, const Variant& value);
    void setValue(const std::string& key, const Variant& value);

private:
    QSettings& settings() const;

    std::unique_ptr<QSettings> m_settings;
};

}  // namespace nimb
