// SPDX-License-Identifier: GPL-3.0-or-later
// Whole conversions in each reading arrangement, checked by ffprobe: the source's own timing, 24 to
// 30 by duplication, 30 to 24 and 30 to 30 through the composition; a one-frame video; a first
// frame at 2 s; a preset size.
#include "tests/video/VideoHarness.h"

#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace ConversionEngine;
using namespace VideoTest;
using TestSupport::Fixtures;

namespace {

bool near(double a, double b, double tolerance = 0.002)
{
    return std::abs(a - b) <= tolerance;
}

} // namespace

class TestVideoArrangements : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;

    QString path(const QString& name) const { return m_directory.filePath(name); }

private slots:
    void initTestCase() { QVERIFY(m_directory.isValid()); }

    void sourceTimingKeepsTheSourceFrames()
    {
        const QString source = makeClip(m_directory.path(), "s25.mp4", 2.0, "25");
        QVERIFY(!source.isEmpty());
        const QStringList lines =
            convertAndRecord(source, path("s25-out.mp4"), settingsFor(VideoFrameRate::source));
        QVERIFY(!lines.contains("failed"));
        QVERIFY(!lines.contains("   Mode: UPSAMPLING (frame duplication)"));
        QVERIFY(!lines.contains("   Mode: DOWNSAMPLING (frame dropping)"));
        const std::vector<double> times = frameTimes(path("s25-out.mp4"));
        QCOMPARE(int(times.size()), 50);
        for (std::size_t index = 0; index < times.size(); ++index)
            QVERIFY2(near(times[index] - times[0], double(index) / 25.0),
                     qPrintable(QString::number(times[index])));
        QVERIFY(near(formatDuration(path("s25-out.mp4")), 2.0, 0.05));
    }

    void upsampling24To30()
    {
        const QString source = makeClip(m_directory.path(), "s24.mp4", 2.0, "24");
        QVERIFY(!source.isEmpty());
        const QStringList lines =
            convertAndRecord(source, path("s24-30.mp4"), settingsFor(VideoFrameRate::fps30));
        QVERIFY(lines.contains("🎬 Frame rate conversion: 24.0 fps → 30 fps"));
        QVERIFY(lines.contains("   Mode: UPSAMPLING (frame duplication)"));
        QVERIFY(lines.contains("🎬 Processing video sample #1 at PTS: 0.0s (upsampling)"));
        const std::vector<double> times = frameTimes(path("s24-30.mp4"));
        // The first frame at 0, then the grid from the second (1/24 s) every 1/30 s up to before
        // the last source frame (47/24 s): 1 + 58 frames.
        QCOMPARE(int(times.size()), 59);
        const double start = times[0];
        QVERIFY(near(times[1] - start, 1.0 / 24.0));
        for (std::size_t index = 2; index < times.size(); ++index)
            QVERIFY2(near(times[index] - times[index - 1], 1.0 / 30.0),
                     qPrintable(QString::number(times[index])));
    }

    void downsampling30To24()
    {
        const QString source = makeClip(m_directory.path(), "s30.mp4", 2.0, "30");
        QVERIFY(!source.isEmpty());
        const QStringList lines =
            convertAndRecord(source, path("s30-24.mp4"), settingsFor(VideoFrameRate::fps24));
        QVERIFY(lines.contains("   Mode: DOWNSAMPLING (frame dropping)"));
        QVERIFY(lines.contains("🎬 Using video composition for downsampling"));
        QVERIFY(lines.contains("🎬 Video composition configured: 320.0×240.0 @ 24 fps"));
        const std::vector<double> times = frameTimes(path("s30-24.mp4"));
        QCOMPARE(int(times.size()), 48);
        for (std::size_t index = 0; index < times.size(); ++index)
            QVERIFY(near(times[index] - times[0], double(index) / 24.0));
        QVERIFY(near(formatDuration(path("s30-24.mp4")), 2.0, 0.05));
    }

    void equalRatesGoThroughTheComposition()
    {
        const QString source = makeClip(m_directory.path(), "e30.mp4", 2.0, "30");
        QVERIFY(!source.isEmpty());
        const QStringList lines =
            convertAndRecord(source, path("e30-30.mp4"), settingsFor(VideoFrameRate::fps30));
        QVERIFY(lines.contains("🎬 Frame rate conversion: 30.0 fps → 30 fps"));
        QVERIFY(lines.contains("   Mode: DOWNSAMPLING (frame dropping)"));
        const std::vector<double> times = frameTimes(path("e30-30.mp4"));
        QCOMPARE(int(times.size()), 60);
        for (std::size_t index = 0; index < times.size(); ++index)
            QVERIFY(near(times[index] - times[0], double(index) / 30.0));
    }

    void oneFrameVideo()
    {
        const QString source =
            makeClip(m_directory.path(), "one.mp4", 1.0, "25", {}, {"-frames:v", "1"});
        QVERIFY(!source.isEmpty());
        QCOMPARE(int(frameTimes(source).size()), 1);
        const QStringList lines = convertAndRecord(source, path("one-out.mp4"), settingsFor());
        QVERIFY(lines.contains("🎬 Processing video sample #1 at PTS: 0.0s"));
        QVERIFY(lines.contains("✅ Conversion completed"));
        QCOMPARE(int(frameTimes(path("one-out.mp4")).size()), 1);
    }

    void lateFirstFrameStartsTheSession()
    {
        const QString source =
            makeClip(m_directory.path(), "late.mp4", 1.0, "25", {}, {"-output_ts_offset", "2"});
        QVERIFY(!source.isEmpty());
        const QStringList lines = convertAndRecord(source, path("late-out.mp4"), settingsFor());
        QVERIFY2(lines.contains("✅ Writer session started at PTS: 2.0"),
                 qPrintable(lines.join('\n')));
        QVERIFY(lines.contains("🎬 Read video sample #1 at PTS: 2.04s"));
        QCOMPARE(int(frameTimes(path("late-out.mp4")).size()), 25);
    }

    void presetSizeScalesTheSourcePictures()
    {
        const QString source = makeClip(m_directory.path(), "size.mp4", 1.0, "25");
        QVERIFY(!source.isEmpty());
        VideoConversionSettings settings = settingsFor();
        settings.resolution = VideoResolution::hd720;
        const QStringList lines = convertAndRecord(source, path("size-out.mp4"), settings);
        QVERIFY(lines.contains(
            "🎯 Scaled dimensions to maintain aspect ratio: 960×720 (AR: 1.3333333333333333)"));
        const std::vector<QJsonObject> video = streamsOf(path("size-out.mp4"), "video");
        QCOMPARE(int(video.size()), 1);
        QCOMPARE(video[0].value("width").toInt(), 960);
        QCOMPARE(video[0].value("height").toInt(), 720);
    }
};

QTEST_GUILESS_MAIN(TestVideoArrangements)
#include "tst_videoarrangements.moc"
