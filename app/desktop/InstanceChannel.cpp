// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/desktop/InstanceChannel.h"

#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/NotificationNames.h"

#include <QDataStream>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace Ondrilet {

namespace {

constexpr auto streamVersion = QDataStream::Qt_6_4;
// A request bigger than this is not a list of files from a launch; the connection is dropped.
constexpr qint64 largestRequestBytes = 16 * 1024 * 1024;

QString absoluteCleanPath(const QString& path, const QString& workingDirectory)
{
    const QString absolute =
        QDir::isAbsolutePath(path) ? path : QDir(workingDirectory).absoluteFilePath(path);
    QString clean = QDir::cleanPath(absolute);
    while (clean.size() > 1 && clean.endsWith(QLatin1Char('/')))
        clean.chop(1);
    return clean;
}

// Files that arrived before the main window; touched on the GUI thread only.
QStringList& pendingFiles()
{
    static QStringList files;
    return files;
}

} // namespace

void InstanceChannel::openFiles(const QStringList& files, bool windowHasAppeared)
{
    if (files.isEmpty())
        return;
    if (!windowHasAppeared) {
        pendingFiles().append(files);
        return;
    }
    Platform::NotificationCenter::defaultCenter().post(
        Platform::NotificationNames::addFilesFromFinder, nullptr,
        QVariantMap{{Platform::NotificationNames::filesKey, files}});
}

QStringList InstanceChannel::takePendingFiles()
{
    return std::exchange(pendingFiles(), {});
}

QString InstanceChannel::defaultServerName()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    return QDir(folder).filePath(QStringLiteral("ondrilet-instance"));
}

QStringList InstanceChannel::fileLocations(const QStringList& arguments,
                                           const QString& workingDirectory)
{
    QStringList locations;
    for (const QString& argument : arguments) {
        if (argument.isEmpty())
            continue;
        if (argument.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
            const QUrl url(argument);
            if (url.isLocalFile())
                locations.append(absoluteCleanPath(url.toLocalFile(), workingDirectory));
            continue;
        }
        // Other schemes ("https://…") name no local file.
        const QUrl url(argument);
        if (url.scheme().size() > 1 && !QDir::isAbsolutePath(argument))
            continue;
        locations.append(absoluteCleanPath(argument, workingDirectory));
    }
    return locations;
}

InstanceChannel::InstanceChannel(QString serverName, QObject* parent)
    : QObject(parent)
    , m_serverName(std::move(serverName))
    , m_server(new QLocalServer(this))
{
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server, &QLocalServer::newConnection, this, &InstanceChannel::acceptConnections);
}

InstanceChannel::~InstanceChannel()
{
    m_server->close();
}

bool InstanceChannel::handOff(const QStringList& files, int timeoutMilliseconds) const
{
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(timeoutMilliseconds))
        return false;

    QByteArray request;
    {
        QDataStream out(&request, QIODevice::WriteOnly);
        out.setVersion(streamVersion);
        out << files;
    }
    socket.write(request);
    if (!socket.waitForBytesWritten(timeoutMilliseconds))
        return false;

    // The receipt is the number of files taken; it tells the listener really read them.
    while (socket.bytesAvailable() < qint64(sizeof(quint32))) {
        if (!socket.waitForReadyRead(timeoutMilliseconds))
            return false;
    }
    QDataStream in(&socket);
    in.setVersion(streamVersion);
    quint32 taken = 0;
    in >> taken;
    socket.disconnectFromServer();
    return in.status() == QDataStream::Ok && taken == quint32(files.size());
}

bool InstanceChannel::listen()
{
    if (m_server->isListening())
        return true;
    // Listening with access options replaces whatever has the name, so ask first whether an
    // instance answers there.
    QLocalSocket probe;
    probe.connectToServer(m_serverName);
    if (probe.waitForConnected(1000)) {
        probe.disconnectFromServer();
        return false;
    }
    // Nobody answers: a socket file left by an instance that ended without closing it.
    QLocalServer::removeServer(m_serverName);
    return m_server->listen(m_serverName);
}

void InstanceChannel::acceptConnections()
{
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); });
        if (socket->bytesAvailable() > 0)
            readFrom(socket);
    }
}

void InstanceChannel::readFrom(QLocalSocket* socket)
{
    if (socket->bytesAvailable() > largestRequestBytes) {
        socket->abort();
        return;
    }
    QDataStream in(socket);
    in.setVersion(streamVersion);
    in.startTransaction();
    QStringList files;
    in >> files;
    if (!in.commitTransaction()) {
        if (in.status() != QDataStream::Ok)
            socket->abort(); // Not a list of files: nothing to hand over.
        return;              // Otherwise the rest of the request is still on its way.
    }

    QByteArray receipt;
    {
        QDataStream out(&receipt, QIODevice::WriteOnly);
        out.setVersion(streamVersion);
        out << quint32(files.size());
    }
    socket->write(receipt);
    socket->flush();
    emit filesReceived(files);
}

} // namespace Ondrilet
