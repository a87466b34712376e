// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/NotificationCenter.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>

#include <memory>
#include <thread>

using Platform::NotificationCenter;
using Notification = Platform::NotificationCenter::Notification;

namespace {

const QString memoryPressure = QStringLiteral("memoryPressureDetected");
const QString addFiles = QStringLiteral("AddFilesFromFinder");

// Lets the GUI thread's queue run dry.
void drain()
{
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

} // namespace

class TestNotificationCenter : public QObject
{
    Q_OBJECT

private slots:
    void defaultCenterIsOne()
    {
        QCOMPARE(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
    }

    void postFromAWorkerArrivesOnTheGuiThread()
    {
        NotificationCenter center;
        QObject observer;
        QList<Notification> heard;
        QThread* heardOn = nullptr;
        center.addObserver(&observer, addFiles, nullptr, [&](const Notification& notification) {
            heard.append(notification);
            heardOn = QThread::currentThread();
        });
        std::thread worker([&] {
            center.post(addFiles, nullptr,
                        {{QStringLiteral("files"), QStringList{QStringLiteral("/tmp/a.mov")}}});
        });
        worker.join();
        QTRY_COMPARE(heard.size(), 1);
        QCOMPARE(heardOn, QCoreApplication::instance()->thread());
        QCOMPARE(heard.front().name, addFiles);
        QCOMPARE(heard.front().object, nullptr);
        QCOMPARE(heard.front().userInfo.value(QStringLiteral("files")).toStringList(),
                 QStringList{QStringLiteral("/tmp/a.mov")});
    }

    void deliveryIsQueuedAndInPostOrder()
    {
        NotificationCenter center;
        QObject observer;
        QList<int> heard;
        center.addObserver(&observer, memoryPressure, nullptr, [&](const Notification& n) {
            heard.append(n.userInfo.value(QStringLiteral("n")).toInt());
        });
        for (int i = 0; i < 5; ++i)
            center.post(memoryPressure, nullptr, {{QStringLiteral("n"), i}});
        QVERIFY(heard.isEmpty());
        drain();
        QCOMPARE(heard, (QList<int>{0, 1, 2, 3, 4}));
    }

    void onlyTheNameObservedArrives()
    {
        NotificationCenter center;
        QObject observer;
        QStringList heard;
        center.addObserver(&observer, memoryPressure, nullptr,
                           [&](const Notification& n) { heard.append(n.name); });
        center.post(addFiles);
        center.post(QStringLiteral("helpSectionChange"));
        center.post(memoryPressure);
        drain();
        QCOMPARE(heard, QStringList{memoryPressure});
    }

    void anObjectFilterLetsOnlyThatObjectThrough()
    {
        NotificationCenter center;
        QObject observer;
        const int sender = 0;
        const int otherSender = 0;
        QList<const void*> filtered;
        QList<const void*> unfiltered;
        center.addObserver(&observer, addFiles, &sender,
                           [&](const Notification& n) { filtered.append(n.object); });
        center.addObserver(&observer, addFiles, nullptr,
                           [&](const Notification& n) { unfiltered.append(n.object); });
        center.post(addFiles, &otherSender);
        center.post(addFiles, &sender);
        center.post(addFiles);
        drain();
        QCOMPARE(filtered, QList<const void*>{&sender});
        QCOMPARE(unfiltered, (QList<const void*>{&otherSender, &sender, nullptr}));
    }

    void removeObserverStopsDeliveryEvenOfAQueuedPost()
    {
        NotificationCenter center;
        QObject observer;
        int heard = 0;
        center.addObserver(&observer, memoryPressure, nullptr,
                           [&](const Notification&) { ++heard; });
        center.addObserver(&observer, addFiles, nullptr, [&](const Notification&) { ++heard; });
        center.post(memoryPressure);
        center.removeObserver(&observer);
        drain();
        center.post(memoryPressure);
        center.post(addFiles);
        drain();
        QCOMPARE(heard, 0);
    }

    void removeObserverByNameKeepsTheOtherNames()
    {
        NotificationCenter center;
        QObject observer;
        QStringList heard;
        const auto record = [&](const Notification& n) { heard.append(n.name); };
        center.addObserver(&observer, memoryPressure, nullptr, record);
        center.addObserver(&observer, addFiles, nullptr, record);
        center.removeObserver(&observer, memoryPressure);
        center.post(memoryPressure);
        center.post(addFiles);
        drain();
        QCOMPARE(heard, QStringList{addFiles});
    }

    void aDestroyedObserverHearsNothing()
    {
        NotificationCenter center;
        int heard = 0;
        auto observer = std::make_unique<QObject>();
        center.addObserver(observer.get(), memoryPressure, nullptr,
                           [&](const Notification&) { ++heard; });
        center.post(memoryPressure);
        observer.reset();
        drain();
        center.post(memoryPressure);
        drain();
        QCOMPARE(heard, 0);

        // A new object, perhaps at the same address, starts with no observations.
        QObject successor;
        center.post(memoryPressure);
        drain();
        QCOMPARE(heard, 0);
    }

    void observersOfOneNameAllHearIt()
    {
        NotificationCenter center;
        QObject first;
        QObject second;
        QStringList heard;
        center.addObserver(&first, memoryPressure, nullptr,
                           [&](const Notification&) { heard.append(QStringLiteral("first")); });
        center.addObserver(&second, memoryPressure, nullptr,
                           [&](const Notification&) { heard.append(QStringLiteral("second")); });
        center.post(memoryPressure);
        drain();
        QCOMPARE(heard, (QStringList{QStringLiteral("first"), QStringLiteral("second")}));
    }

    void aHandlerMayRemoveObservers()
    {
        NotificationCenter center;
        QObject first;
        QObject second;
        QStringList heard;
        center.addObserver(&first, memoryPressure, nullptr, [&](const Notification&) {
            heard.append(QStringLiteral("first"));
            center.removeObserver(&second);
            center.removeObserver(&first);
        });
        center.addObserver(&second, memoryPressure, nullptr,
                           [&](const Notification&) { heard.append(QStringLiteral("second")); });
        center.post(memoryPressure);
        center.post(memoryPressure);
        drain();
        QCOMPARE(heard, QStringList{QStringLiteral("first")});
    }

    void defaultCenterDeliversToo()
    {
        QObject observer;
        int heard = 0;
        NotificationCenter::defaultCenter().addObserver(&observer, memoryPressure, nullptr,
                                                        [&](const Notification&) { ++heard; });
        std::thread([] { NotificationCenter::defaultCenter().post(memoryPressure); }).join();
        QTRY_COMPARE(heard, 1);
        NotificationCenter::defaultCenter().removeObserver(&observer);
    }
};

QTEST_GUILESS_MAIN(TestNotificationCenter)
#include "tst_notificationcenter.moc"
