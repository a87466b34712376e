// The options the command line accepts: name, value, accepted values and help, in the order the
// help lists them. The parser and the help text both read this one table, so that the help
// documents exactly what is accepted. Any thread.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Ondrilet {

struct CliOption
{
    enum class Group
    {
        action,
        video,
        audio,
        level,
        files,
        metadata,
    };

    QString name;        // "--format"
    QString valueName;   // "FORMAT"; empty for a switch
    QStringList choices; // the accepted values when they are a fixed list
    QString help;
    Group group = Group::action;

    bool takesValue() const { return !valueName.isEmpty(); }

    static const QList<CliOption>& all();
    // The option of this exact name, or null.
    static const CliOption* find(const QString& name);
    // The heading of a group in the help text.
    static QString groupTitle(Group group);
};

} // namespace Ondrilet
