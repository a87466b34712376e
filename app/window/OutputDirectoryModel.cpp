// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/OutputDirectoryModel.h"

#include "app/window/DirectoryBookmark.h"
#include "app/window/WindowTexts.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/FileSystemError.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QSaveFile>

namespace Ondrilet {

using Platform::Console;
using Platform::UserDefaults;

QString OutputDirectoryModel::downloadsDirectory()
{
    return QDir::homePath() + QStringLiteral("/Downloads");
}

OutputDirectoryModel::OutputDirectoryModel(QObject* parent)
    : QObject(parent)
    , m_outputDirectory(downloadsDirectory())
    , m_defaultOutputDirectoryPath(
          UserDefaults::standard().string(defaultPathKey).value_or(downloadsDirectory()))
{}

void OutputDirectoryModel::setShowingDirectoryPicker(bool showing)
{
    if (showing == m_showingDirectoryPicker)
        return;
    m_showingDirectoryPicker = showing;
    emit showingDirectoryPickerChanged(showing);
}

void OutputDirectoryModel::chooseOutputDirectory()
{
    setShowingDirectoryPicker(true);
}

void OutputDirectoryModel::directoryPanelFinished(const std::optional<QString>& chosen)
{
    setShowingDirectoryPicker(false);
    if (chosen && !chosen->isEmpty())
        useDirectory(*chosen);
}

void OutputDirectoryModel::useDirectory(const QString& directory)
{
    const bool accessing = DirectoryBookmark::startAccessing(directory);
    setOutputDirectory(directory);
    setDefaultOutputDirectoryPath(directory);
    UserDefaults::standard().setString(defaultPathKey, directory);

    try {
        UserDefaults::standard().setData(bookmarkKey, DirectoryBookmark::create(directory));
    } catch (const Platform::FileSystemError& error) {
        // The former bookmark, if any, stays in place.
        Console::print(QStringLiteral("⚠️ Failed to create security bookmark: ") +
                       error.localizedDescription());
    }

    if (!passesWriteTest(directory)) {
        // A warning only: the directory stays chosen and its bookmark stays stored.
        QPointer<OutputDirectoryModel> self(this);
        Platform::MainQueue::async([self] {
            if (self)
                emit self->alertRequested(WindowTexts::notWritableWarning);
        });
    }

    if (accessing)
        DirectoryBookmark::stopAccessing(directory);
}

bool OutputDirectoryModel::passesWriteTest(const QString& directory)
{
    const QString probe = QDir(directory).filePath(writeTestFileName);
    QSaveFile file(probe);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QStringLiteral("test").toUtf8());
    if (!file.commit())
        return false;
    return QFile::remove(probe);
}

void OutputDirectoryModel::restoreOutputDirectory()
{
    UserDefaults& defaults = UserDefaults::standard();
    const std::optional<QByteArray> bookmark = defaults.data(bookmarkKey);
    if (!bookmark)
        return;

    DirectoryBookmark::Resolution resolution;
    try {
        resolution = DirectoryBookmark::resolve(*bookmark);
    } catch (const Platform::FileSystemError& error) {
        Console::print(QStringLiteral("⚠️ Failed to restore security bookmark: ") +
                       error.localizedDescription());
        defaults.removeObject(bookmarkKey);
        return;
    }
    if (resolution.isStale)
        Console::print(QStringLiteral("⚠️ Security bookmark is stale for output directory"));

    // Once granted, access stays for the rest of the run.
    if (!DirectoryBookmark::startAccessing(resolution.path))
        return;
    setOutputDirectory(resolution.path);
    setSecurityScopedOutputURL(resolution.path);
    Console::print(QStringLiteral("✅ Restored security scoped access to: ") + resolution.path);
}

void OutputDirectoryModel::setOutputDirectory(const QString& directory)
{
    if (directory == m_outputDirectory)
        return;
    m_outputDirectory = directory;
    emit outputDirectoryChanged(directory);
}

void OutputDirectoryModel::setDefaultOutputDirectoryPath(const QString& path)
{
    if (path == m_defaultOutputDirectoryPath)
        return;
    m_defaultOutputDirectoryPath = path;
    emit defaultOutputDirectoryPathChanged(path);
}

void OutputDirectoryModel::setSecurityScopedOutputURL(const std::optional<QString>& url)
{
    if (url == m_securityScopedOutputURL)
        return;
    m_securityScopedOutputURL = url;
    emit securityScopedOutputURLChanged(url);
}

} // namespace Ondrilet
