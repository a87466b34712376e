// SPDX-License-Identifier: GPL-3.0-or-later
// The single-instance channel: argument resolution, the handoff from a later launch to a
// listening instance with its receipt, the take-over of a socket left behind, and the routing of
// opened files into the pending list or the "AddFilesFromFinder" notification.
#include "app/desktop/InstanceChannel.h"
#include "app/window/ContentViewModel.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/NotificationNames.h"

#include <QLocalServer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using Ondrilet::InstanceChannel;

class InstanceChannelTest : public QObject
{
    Q_OBJECT

private slots:
    void resolvesArgumentsAgainstTheWorkingDirectory();
    void handsFilesToTheListeningInstance();
    void handOffFailsWithoutAListener();
    void aSecondListenerIsRefused();
    void takesOverASocketLeftBehind();
    void filesWaitInThePendingListUntilTheWindowHasAppeared();
    void filesAfterTheWindowHasAppearedArePosted();

private:
    QTemporaryDir m_dir;
};

void InstanceChannelTest::resolvesArgumentsAgainstTheWorkingDirectory()
{
    const QStringList resolved = InstanceChannel::fileLocations(
        {QStringLiteral("clip.mov"), QStringLiteral("../music/take 2.wav"),
         QStringLiteral("/abs//x/./y.mp3"), QStringLiteral("file:///tmp/a%20b.wav"),
         QStringLiteral("https://example.invalid/x.mp4"), QString(),
         QStringLiteral("/tmp/folder/")},
        QStringLiteral("/home/user/videos"));
    QCOMPARE(resolved, QStringList({QStringLiteral("/home/user/videos/clip.mov"),
                                    QStringLiteral("/home/user/music/take 2.wav"),
                                    QStringLiteral("/abs/x/y.mp3"), QStringLiteral("/tmp/a b.wav"),
                                    QStringLiteral("/tmp/folder")}));
}

void InstanceChannelTest::handsFilesToTheListeningInstance()
{
    const QString name = m_dir.filePath(QStringLiteral("handoff"));
    // The listener runs in a thread of its own: the handoff blocks the caller's thread.
    QThread listenerThread;
    auto* listener = new InstanceChannel(name);
    listener->moveToThread(&listenerThread);
    QStringList received;
    connect(
        listener, &InstanceChannel::filesReceived, this,
        [&received](const QStringList& files) { received = files; }, Qt::QueuedConnection);
    listenerThread.start();
    bool listening = false;
    QMetaObject::invokeMethod(
        listener, [listener, &listening] { listening = listener->listen(); },
        Qt::BlockingQueuedConnection);
    QVERIFY(listening);

    const InstanceChannel sender(name);
    const QStringList files{QStringLiteral("/media/a.wav"), QStringLiteral("/media/b c.mov")};
    QVERIFY(sender.handOff(files));
    QTRY_COMPARE(received, files);

    // An empty handoff is taken too: it only asks the running window to come forward.
    received = {QStringLiteral("unchanged")};
    QVERIFY(sender.handOff({}));
    QTRY_COMPARE(received, QStringList());

    QMetaObject::invokeMethod(listener, &QObject::deleteLater);
    listenerThread.quit();
    listenerThread.wait();
}

void InstanceChannelTest::handOffFailsWithoutAListener()
{
    const InstanceChannel sender(m_dir.filePath(QStringLiteral("nobody")));
    QVERIFY(!sender.handOff({QStringLiteral("/media/a.wav")}, 500));
}

void InstanceChannelTest::aSecondListenerIsRefused()
{
    const QString name = m_dir.filePath(QStringLiteral("twice"));
    InstanceChannel first(name);
    QVERIFY(first.listen());
    InstanceChannel second(name);
    // The probe connection needs the first one's event loop only to be accepted by the kernel.
    QVERIFY(!second.listen());
    QVERIFY(!second.isListening());
}

void InstanceChannelTest::takesOverASocketLeftBehind()
{
    // A socket file bound and then closed without removal, as an instance that crashed leaves.
    const QString name = m_dir.filePath(QStringLiteral("stale"));
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QVERIFY(descriptor >= 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(name);
    QVERIFY(std::size_t(path.size()) < sizeof(address.sun_path));
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    QCOMPARE(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ::close(descriptor);
    QVERIFY(QFile::exists(name));

    InstanceChannel channel(name);
    QVERIFY(channel.listen());
    QVERIFY(channel.isListening());
}

void InstanceChannelTest::filesWaitInThePendingListUntilTheWindowHasAppeared()
{
    InstanceChannel::takePendingFiles();
    QObject observer;
    int posts = 0;
    Platform::NotificationCenter::defaultCenter().addObserver(
        &observer, Platform::NotificationNames::addFilesFromFinder, nullptr,
        [&posts](const Platform::NotificationCenter::Notification&) { ++posts; });

    InstanceChannel::openFiles({QStringLiteral("/m/a.wav")}, false);
    InstanceChannel::openFiles({QStringLiteral("/m/b.wav"), QStringLiteral("/m/a.wav")}, false);
    InstanceChannel::openFiles({}, false);
    QCoreApplication::processEvents();
    QCOMPARE(posts, 0);
    QCOMPARE(InstanceChannel::takePendingFiles(),
             QStringList({QStringLiteral("/m/a.wav"), QStringLiteral("/m/b.wav"),
                          QStringLiteral("/m/a.wav")}));
    QCOMPARE(InstanceChannel::takePendingFiles(), QStringList());
}

void InstanceChannelTest::filesAfterTheWindowHasAppearedArePosted()
{
    InstanceChannel::takePendingFiles();
    QObject observer;
    QList<QVariantMap> userInfos;
    Platform::NotificationCenter::defaultCenter().addObserver(
        &observer, Platform::NotificationNames::addFilesFromFinder, nullptr,
        [&userInfos](const Platform::NotificationCenter::Notification& notification) {
            userInfos.append(notification.userInfo);
        });

    InstanceChannel::openFiles({QStringLiteral("/m/c.mov"), QStringLiteral("/m/d.mp3")}, true);
    QTRY_COMPARE(userInfos.size(), 1);
    QCOMPARE(userInfos.front().value(Platform::NotificationNames::filesKey).toStringList(),
             QStringList({QStringLiteral("/m/c.mov"), QStringLiteral("/m/d.mp3")}));
    QCOMPARE(InstanceChannel::takePendingFiles(), QStringList());
}

QTEST_GUILESS_MAIN(InstanceChannelTest)
#include "tst_instancechannel.moc"
