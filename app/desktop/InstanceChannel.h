// SPDX-License-Identifier: GPL-3.0-or-later
// The single-instance channel: the first running Ondrilet listens on a local socket in the user's
// runtime folder, and a later launch hands its files over there and exits, so that "open with"
// always lands in the one window. GUI thread only.
#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>
#include <QStringList>

class QLocalSocket;

namespace Ondrilet {

class InstanceChannel : public QObject
{
    Q_OBJECT

public:
    // The socket of the current user: "ondrilet-instance" in the runtime folder
    // ($XDG_RUNTIME_DIR), which only that user can enter.
    static QString defaultServerName();

    // Arguments as a file manager or a shell give them (paths relative to `workingDirectory`,
    // absolute paths or file: URLs) as absolute, clean local paths, in order. Anything that is
    // not a local file location is left out.
    static QStringList fileLocations(const QStringList& arguments, const QString& workingDirectory);

    // Files opened with the program arrive here. Once the main window has appeared they are
    // posted as "AddFilesFromFinder" (user info "files": the paths); before that they wait in
    // the pending list, which the window's first appearance takes.
    static void openFiles(const QStringList& files, bool windowHasAppeared);
    // Empties the pending list and answers what it held, in arrival order.
    static QStringList takePendingFiles();

    explicit InstanceChannel(QString serverName = defaultServerName(), QObject* parent = nullptr);
    ~InstanceChannel() override;

    // Gives `files` to the instance that listens, if any, and waits for its receipt. True when
    // that instance took them; false when none listens or it did not answer in time.
    bool handOff(const QStringList& files, int timeoutMilliseconds = 3000) const;

    // Starts listening. False when another instance answers on the socket; a socket left behind
    // by an instance that ended without closing it is taken over.
    bool listen();
    bool isListening() const { return m_server->isListening(); }
    QString serverName() const { return m_serverName; }

signals:
    // Files handed over by a later launch, as that launch resolved them, in its order.
    void filesReceived(const QStringList& files);

private:
    void acceptConnections();
    void readFrom(QLocalSocket* socket);

    QString m_serverName;
    QLocalServer* m_server = nullptr;
};

} // namespace Ondrilet
