// SPDX-License-Identifier: GPL-3.0-or-later
// Tells when the system's memory pressure changes: a kernel pressure-stall trigger on
// /proc/pressure/memory raises it, and a quiet spell afterwards marks the return to normal.
// Where the kernel offers no trigger (or refuses one), the source is simply silent. GUI thread.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

class QSocketNotifier;

namespace Platform {

class MemoryPressureSource : public QObject
{
    Q_OBJECT

public:
    static QString defaultPressureFilePath();

    explicit MemoryPressureSource(QObject* parent = nullptr);
    // Watches another file of the kernel's pressure format, such as a control group's
    // memory.pressure; a path that cannot be opened gives an unavailable, silent source.
    explicit MemoryPressureSource(const QString& pressureFilePath, QObject* parent = nullptr);
    ~MemoryPressureSource() override;

    // A new source is suspended: it reports nothing until resumed. Once cancelled it stays
    // silent for good, and resuming it again does nothing.
    void resume();
    void cancel();
    bool isActive() const;
    // False where the trigger could not be set up (no events then, and no error), and after
    // cancel.
    bool isAvailable() const;
    bool isUnderPressure() const { return m_underPressure; }

    // How long after the last stall the pressure counts as over.
    double quietIntervalSeconds() const;
    void setQuietIntervalSeconds(double seconds);

    // What the trigger calls when the kernel reports a stall. Public so that stalls can also be
    // fed in from elsewhere; ignored unless the source is active.
    void reportStall();

signals:
    // Emitted when the pressure begins and when it is over again.
    void pressureChanged();

private:
    void openTrigger(const QString& pressureFilePath);
    void quietSpellEnded();
    void closeTrigger();

    int m_triggerFd = -1;
    QSocketNotifier* m_notifier = nullptr;
    QTimer m_quietTimer;
    bool m_resumed = false;
    bool m_cancelled = false;
    bool m_underPressure = false;
};

} // namespace Platform
