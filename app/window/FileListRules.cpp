// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/FileListRules.h"

#include "app/window/WindowTexts.h"

#include <QFileInfo>

namespace Ondrilet {

namespace {

QString lowerExtension(const QString& path)
{
    return FileListRules::pathExtension(path).toLower();
}

} // namespace

QString FileListRules::pathExtension(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0 || dot == name.size() - 1)
        return {};
    return name.mid(dot + 1);
}

const QStringList& FileListRules::audioExtensions()
{
    static const QStringList extensions{
        QStringLiteral("mp3"),  QStringLiteral("m4a"),  QStringLiteral("aac"),
        QStringLiteral("wav"),  QStringLiteral("aiff"), QStringLiteral("aif"),
        QStringLiteral("flac"), QStringLiteral("alac"), QStringLiteral("ogg"),
        QStringLiteral("wma"),  QStringLiteral("ac3"),  QStringLiteral("dts"),
        QStringLiteral("caf"),
    };
    return extensions;
}

const QStringList& FileListRules::videoExtensions()
{
    static const QStringList extensions{
        QStringLiteral("mp4"), QStringLiteral("m4v"),  QStringLiteral("mov"),
        QStringLiteral("avi"), QStringLiteral("mkv"),  QStringLiteral("wmv"),
        QStringLiteral("flv"), QStringLiteral("webm"), QStringLiteral("3gp"),
        QStringLiteral("3g2"), QStringLiteral("mts"),  QStringLiteral("m2ts"),
        QStringLiteral("ts"),  QStringLiteral("mxf"),  QStringLiteral("prores"),
    };
    return extensions;
}

bool FileListRules::isSupportedMediaFile(const QString& path)
{
    const QString extension = lowerExtension(path);
    if (extension.isEmpty())
        return false;
    return audioExtensions().contains(extension) || videoExtensions().contains(extension);
}

FileListRules::RowLook FileListRules::rowLook(const QString& path)
{
    static const QStringList video{QStringLiteral("mp4"), QStringLiteral("mov"),
                                   QStringLiteral("avi"), QStringLiteral("mkv"),
                                   QStringLiteral("m4v")};
    static const QStringList audio{QStringLiteral("mp3"),  QStringLiteral("wav"),
                                   QStringLiteral("aiff"), QStringLiteral("flac"),
                                   QStringLiteral("m4a"),  QStringLiteral("aac")};
    static const QStringList pictures{QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                      QStringLiteral("png"), QStringLiteral("gif"),
                                      QStringLiteral("bmp"), QStringLiteral("tiff")};
    const QString extension = lowerExtension(path);
    if (extension.isEmpty())
        return {QStringLiteral("doc"), RowColour::secondary};
    if (video.contains(extension))
        return {QStringLiteral("video"), RowColour::blue};
    if (audio.contains(extension))
        return {QStringLiteral("music.note"), RowColour::orange};
    if (extension == QStringLiteral("pdf"))
        return {QStringLiteral("doc.text"), RowColour::red};
    if (pictures.contains(extension))
        return {QStringLiteral("photo"), RowColour::green};
    return {QStringLiteral("doc"), RowColour::secondary};
}

QString FileListRules::colourName(RowColour colour)
{
    switch (colour) {
    case RowColour::blue:
        return QStringLiteral("blue");
    case RowColour::orange:
        return QStringLiteral("orange");
    case RowColour::red:
        return QStringLiteral("red");
    case RowColour::green:
        return QStringLiteral("green");
    case RowColour::secondary:
        return QStringLiteral("secondary");
    }
    return {};
}

QString FileListRules::detectFormat(const QString& path)
{
    const QString extension = lowerExtension(path);
    if (extension == QStringLiteral("mp3"))
        return QStringLiteral("MP3 Audio");
    if (extension == QStringLiteral("m4a"))
        return QStringLiteral("M4A Audio");
    if (extension == QStringLiteral("wav"))
        return QStringLiteral("WAV Audio");
    if (extension == QStringLiteral("aiff") || extension == QStringLiteral("aif"))
        return QStringLiteral("AIFF Audio");
    if (extension == QStringLiteral("flac"))
        return QStringLiteral("FLAC Audio");
    if (extension == QStringLiteral("mp4"))
        return QStringLiteral("MP4 Video");
    if (extension == QStringLiteral("mov"))
        return QStringLiteral("QuickTime Video");
    if (extension == QStringLiteral("m4v"))
        return QStringLiteral("M4V Video");
    if (extension == QStringLiteral("avi"))
        return QStringLiteral("AVI Video");
    if (extension == QStringLiteral("mkv"))
        return QStringLiteral("MKV Video");
    return QStringLiteral("Unknown Format");
}

const QStringList& FileListRules::openPanelPatterns()
{
    static const QStringList patterns{
        QStringLiteral("*.mp3"), QStringLiteral("*.wav"), QStringLiteral("*.aiff *.aif"),
        QStringLiteral("*.m4a"), QStringLiteral("*.mp4"), QStringLiteral("*.mov"),
        QStringLiteral("*.avi"), QStringLiteral("*.mkv"), QStringLiteral("*.flac"),
        QStringLiteral("*.ogg"),
    };
    return patterns;
}

FileAlert FileListRules::unsupportedFilesAlert(const QStringList& fileNames)
{
    if (fileNames.size() == 1)
        return {
            WindowTexts::unsupportedFileTitle,
            QStringLiteral("The file '%1' is not a supported media file.").arg(fileNames.front())};
    return {WindowTexts::unsupportedFilesTitle,
            QStringLiteral("The following files are not supported media files and were "
                           "skipped:\n\n") +
                fileNames.join(QStringLiteral(", "))};
}

FileAlert FileListRules::unsupportedDropAlert(const QString& fileName)
{
    return {WindowTexts::unsupportedFileTitle,
            QStringLiteral("The file '%1' is not a supported media file. Please select audio or "
                           "video files only.")
                .arg(fileName)};
}

} // namespace Ondrilet
