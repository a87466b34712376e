// SPDX-License-Identifier: GPL-3.0-or-later
// Where converted files go when they do not go beside their sources: the chosen directory, its
// remembered bookmark in the user defaults, the write test after a choice and the restore at
// launch. No failure here stops anything: it prints, warns or forgets. Main thread only.
#pragma once

#include <QObject>
#include <QString>

#include <optional>

namespace Ondrilet {

class OutputDirectoryModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString outputDirectory READ outputDirectory NOTIFY outputDirectoryChanged)
    Q_PROPERTY(QString defaultOutputDirectoryPath READ defaultOutputDirectoryPath NOTIFY
                   defaultOutputDirectoryPathChanged)
    Q_PROPERTY(std::optional<QString> securityScopedOutputURL READ securityScopedOutputURL NOTIFY
                   securityScopedOutputURLChanged)
    Q_PROPERTY(bool showingDirectoryPicker READ showingDirectoryPicker WRITE
                   setShowingDirectoryPicker NOTIFY showingDirectoryPickerChanged)

public:
    static inline const QString bookmarkKey = QStringLiteral("outputDirectoryBookmark");
    static inline const QString defaultPathKey = QStringLiteral("defaultOutputDirectoryPath");
    // The probe the write test leaves for a moment in a chosen directory.
    static inline const QString writeTestFileName = QStringLiteral(".ondrilet_write_test");

    // The home directory + "/Downloads": the directory until one is restored or chosen.
    static QString downloadsDirectory();

    // Starts at the Downloads directory; reads the stored default path for display only.
    explicit OutputDirectoryModel(QObject* parent = nullptr);

    QString outputDirectory() const { return m_outputDirectory; }
    QString defaultOutputDirectoryPath() const { return m_defaultOutputDirectoryPath; }
    // Set only by a restore; a directory chosen in this run is reached without it.
    std::optional<QString> securityScopedOutputURL() const { return m_securityScopedOutputURL; }
    bool showingDirectoryPicker() const { return m_showingDirectoryPicker; }
    void setShowingDirectoryPicker(bool showing);

    // The "Change.." button: asks the view for the directory panel (showingDirectoryPicker).
    Q_INVOKABLE void chooseOutputDirectory();
    // The panel's end: a directory for OK, nothing for anything else (which changes nothing).
    void directoryPanelFinished(const std::optional<QString>& chosen);
    // Takes `directory` as the output directory: remembers it, stores its bookmark (a failure
    // only prints), then writes and removes the probe file; when that fails the warning is
    // posted through alertRequested, and the choice stays.
    Q_INVOKABLE void useDirectory(const QString& directory);

    // At first appearance: without a stored bookmark nothing happens. A bookmark that no longer
    // resolves is printed and forgotten; a stale one is printed and used; one that resolves to
    // a directory that cannot be entered is kept but not used.
    Q_INVOKABLE void restoreOutputDirectory();

signals:
    void outputDirectoryChanged(const QString& outputDirectory);
    void defaultOutputDirectoryPathChanged(const QString& defaultOutputDirectoryPath);
    void securityScopedOutputURLChanged(const std::optional<QString>& securityScopedOutputURL);
    void showingDirectoryPickerChanged(bool showingDirectoryPicker);
    // The window's plain alert should show `message`; emitted on a later turn of the main loop.
    void alertRequested(const QString& message);

private:
    void setOutputDirectory(const QString& directory);
    void setDefaultOutputDirectoryPath(const QString& path);
    void setSecurityScopedOutputURL(const std::optional<QString>& url);
    static bool passesWriteTest(const QString& directory);

    QString m_outputDirectory;
    QString m_defaultOutputDirectoryPath;
    std::optional<QString> m_securityScopedOutputURL;
    bool m_showingDirectoryPicker = false;
};

} // namespace Ondrilet
