// Turns the words of a command line into a CliRequest: the action, the input files, the preset
// and the panel settings in the order given. It checks every value against what the panel
// offers and throws UsageError for anything it cannot accept; it touches no model and no file.
// Any thread.
#pragma once

#include "cli/CliRequest.h"

#include <QString>
#include <QStringList>

namespace Ondrilet {

class CliOptionParser
{
public:
    // `arguments` without the program's name. Relative paths are taken from `workingDirectory`.
    // Options and files may come in any order; "--" ends the options. Throws UsageError.
    static CliRequest parse(const QStringList& arguments, const QString& workingDirectory);

private:
    explicit CliOptionParser(QString workingDirectory);

    void take(const QString& name, const QString& value);
    bool takeAction(const QString& name, const QString& value);
    CliSetting setting(const QString& name, const QString& value) const;
    QString absolutePath(const QString& path) const;
    CliRequest finish() const;

    QString m_workingDirectory;
    CliRequest m_request;
    bool m_help = false;
    bool m_version = false;
    bool m_listPresets = false;
    bool m_measure = false;
};

} // namespace Ondrilet
