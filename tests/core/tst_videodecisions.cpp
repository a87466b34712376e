// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/FrameGrid.h"
#include "ConversionEngine/core/ReadingArrangement.h"
#include "ConversionEngine/core/VideoAudioSettings.h"
#include "ConversionEngine/core/VideoDimensions.h"
#include "ConversionEngine/core/VideoFileKind.h"
#include "ConversionEngine/core/VideoPumpProgress.h"
#include "ConversionEngine/core/VideoQualityCurve.h"

#include <QTest>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

using namespace ConversionEngine;

Q_DECLARE_METATYPE(std::int64_t)

namespace {

using Rule = VideoDimensions::Rule;

// The grid times (in 1/600 s) written for a source whose frames come at `pts`, driven as the
// video pump drives the grid: the first frame starts it, each later one is owed every grid time
// before its threshold, then takes over the picture. `pictures` gets the source index shown at
// each written time.
std::vector<std::int64_t> gridTimes(const std::vector<double>& pts, double frameDuration,
                                    std::vector<int>* pictures = nullptr)
{
    FrameGrid grid(frameDuration);
    std::vector<std::int64_t> times;
    int picture = -1;
    for (int index = 0; index < int(pts.size()); ++index) {
        if (grid.isFirstFrame()) {
            grid.start(pts[std::size_t(index)]);
            picture = index;
            continue;
        }
        const double threshold = FrameGrid::threshold(pts[std::size_t(index)]);
        while (grid.owesFrameBefore(threshold)) {
            times.push_back(grid.nextOutputTimeValue());
            if (pictures)
                pictures->push_back(picture);
            grid.advance();
        }
        if (grid.isCaughtUpTo(threshold))
            picture = index;
    }
    return times;
}

// The times of frames 1 to count − 1 of a source at `rate`: what the pump sees, since frame 0
// goes out before it.
std::vector<double> framesAt(double rate, int count, double start = 0.0)
{
    std::vector<double> pts;
    for (int index = 1; index < count; ++index)
        pts.push_back(start + index / rate);
    return pts;
}

} // namespace

class TestVideoDecisions : public QObject
{
    Q_OBJECT

private slots:
    void dimensions_data()
    {
        QTest::addColumn<int>("sourceWidth");
        QTest::addColumn<int>("sourceHeight");
        QTest::addColumn<int>("presetWidth"); // 0: no preset
        QTest::addColumn<int>("presetHeight");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("rule");
        QTest::addColumn<bool>("adjusted");
        QTest::newRow("odd source goes down")
            << 1921 << 1081 << 0 << 0 << 1920 << 1080 << int(Rule::source) << true;
        QTest::newRow("even source stays")
            << 1920 << 1080 << 0 << 0 << 1920 << 1080 << int(Rule::source) << false;
        QTest::newRow("one odd side")
            << 321 << 240 << 0 << 0 << 320 << 240 << int(Rule::source) << true;
        QTest::newRow("exact match")
            << 1280 << 720 << 1280 << 720 << 1280 << 720 << int(Rule::exactMatch) << false;
        QTest::newRow("1080p to 720p, same aspect")
            << 1920 << 1080 << 1280 << 720 << 1280 << 720 << int(Rule::sameAspect) << false;
        QTest::newRow("1440x1080 to 720p")
            << 1440 << 1080 << 1280 << 720 << 960 << 720 << int(Rule::scaledToHeight) << false;
        QTest::newRow("portrait to 1080p")
            << 1080 << 1920 << 1920 << 1080 << 606 << 1080 << int(Rule::scaledToHeight) << false;
        QTest::newRow("576 to 480")
            << 720 << 576 << 640 << 480 << 600 << 480 << int(Rule::scaledToHeight) << false;
        QTest::newRow("640x480 enlarged to 1080p")
            << 640 << 480 << 1920 << 1080 << 1440 << 1080 << int(Rule::scaledToHeight) << false;
        QTest::newRow("320x240 to 720p")
            << 320 << 240 << 1280 << 720 << 960 << 720 << int(Rule::scaledToHeight) << false;
    }

    void dimensions()
    {
        QFETCH(int, sourceWidth);
        QFETCH(int, sourceHeight);
        QFETCH(int, presetWidth);
        QFETCH(int, presetHeight);
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, rule);
        QFETCH(bool, adjusted);
        std::optional<VideoSize> preset;
        if (presetWidth > 0)
            preset = VideoSize{presetWidth, presetHeight};
        const VideoDimensions result =
            outputVideoDimensions(VideoSize{sourceWidth, sourceHeight}, preset);
        QCOMPARE(result.size.width, width);
        QCOMPARE(result.size.height, height);
        QCOMPARE(int(result.rule), rule);
        QCOMPARE(result.adjustedOddSides, adjusted);
    }

    void fitScaleTakesTheSmallerRatio()
    {
        QCOMPARE(fitScale(VideoSize{1280, 720}, 1920.0, 1080.0), 1280.0 / 1920.0);
        QCOMPARE(fitScale(VideoSize{960, 720}, 320.0, 240.0), 3.0);
        QCOMPARE(fitScale(VideoSize{606, 1080}, 1080.0, 1920.0), 606.0 / 1080.0);
    }

    void bitRateTable_data()
    {
        QTest::addColumn<std::int64_t>("crf");
        QTest::addColumn<std::int64_t>("hd720");
        QTest::addColumn<std::int64_t>("hd1080");
        QTest::addColumn<std::int64_t>("uhd");
        QTest::newRow("5") << std::int64_t(5) << std::int64_t(19353600) << std::int64_t(43545600)
                           << std::int64_t(174182400);
        QTest::newRow("3, below the line") << std::int64_t(3) << std::int64_t(19353600)
                                           << std::int64_t(43545600) << std::int64_t(174182400);
        QTest::newRow("18") << std::int64_t(18) << std::int64_t(11446272) << std::int64_t(25754112)
                            << std::int64_t(103016448);
        QTest::newRow("23") << std::int64_t(23) << std::int64_t(8404991) << std::int64_t(18911232)
                            << std::int64_t(75644928);
        QTest::newRow("28") << std::int64_t(28) << std::int64_t(5363712) << std::int64_t(12068352)
                            << std::int64_t(48273408);
        QTest::newRow("35") << std::int64_t(35) << std::int64_t(1105920) << std::int64_t(2488320)
                            << std::int64_t(9953280);
        QTest::newRow("40, above the line") << std::int64_t(40) << std::int64_t(1105920)
                                            << std::int64_t(2488320) << std::int64_t(9953280);
    }

    void bitRateTable()
    {
        QFETCH(std::int64_t, crf);
        QFETCH(std::int64_t, hd720);
        QFETCH(std::int64_t, hd1080);
        QFETCH(std::int64_t, uhd);
        QCOMPARE(VideoQualityCurve::bitRate(crf, 1280.0, 720.0), hd720);
        QCOMPARE(VideoQualityCurve::bitRate(crf, 1920.0, 1080.0), hd1080);
        QCOMPARE(VideoQualityCurve::bitRate(crf, 3840.0, 2160.0), uhd);
    }

    void bitsPerPixelLine()
    {
        QCOMPARE(VideoQualityCurve::bitsPerPixel(5), 0.7);
        QCOMPARE(VideoQualityCurve::bitsPerPixel(-100), 0.7);
        QCOMPARE(VideoQualityCurve::bitsPerPixel(35), 0.04 - 0.7 + 0.7);
        QVERIFY(std::abs(VideoQualityCurve::bitsPerPixel(23) - 0.304) < 0.0005);
        QVERIFY(std::abs(VideoQualityCurve::bitsPerPixel(18) - 0.414) < 0.0005);
        QVERIFY(std::abs(VideoQualityCurve::bitsPerPixel(28) - 0.194) < 0.0005);
        QCOMPARE(VideoQualityCurve::bitsPerPixel(50), VideoQualityCurve::bitsPerPixel(35));
    }

    void proResQuality()
    {
        QCOMPARE(VideoQualityCurve::proResQuality(23), 0.5490196f);
        QCOMPARE(VideoQualityCurve::proResQuality(40), 0.21568626f);
        QCOMPARE(VideoQualityCurve::proResQuality(0), 1.0f);
        QCOMPARE(VideoQualityCurve::proResQuality(-4), 1.0f);
        QCOMPARE(VideoQualityCurve::proResQuality(51), 0.0f);
        QCOMPARE(VideoQualityCurve::proResQuality(60), 0.0f);
    }

    void fileKind()
    {
        QCOMPARE(videoFileKind(VideoCodecKind::h264, VideoContainerKind::m4v),
                 VideoFileKind::mpeg4);
        QCOMPARE(videoFileKind(VideoCodecKind::h264, VideoContainerKind::mp4),
                 VideoFileKind::mpeg4);
        QCOMPARE(videoFileKind(VideoCodecKind::hevc, VideoContainerKind::mov),
                 VideoFileKind::quickTimeMovie);
        QCOMPARE(videoFileKind(VideoCodecKind::proRes422, VideoContainerKind::mp4),
                 VideoFileKind::quickTimeMovie);
        QCOMPARE(videoFileKind(VideoCodecKind::proRes4444, VideoContainerKind::m4v),
                 VideoFileKind::quickTimeMovie);
        QVERIFY(isProRes(VideoCodecKind::proRes4444));
        QVERIFY(!isProRes(VideoCodecKind::hevc));
    }

    void arrangement()
    {
        QCOMPARE(readingArrangement(true, 0.0, 24.0), ReadingArrangement::sourceTiming);
        QCOMPARE(readingArrangement(true, 0.0, 0.0), ReadingArrangement::sourceTiming);
        QCOMPARE(readingArrangement(false, 30.0, 24.0), ReadingArrangement::upsampling);
        QCOMPARE(readingArrangement(false, 24.0, 30.0), ReadingArrangement::downsampling);
        QCOMPARE(readingArrangement(false, 30.0, 30.0), ReadingArrangement::downsampling);
        // No tolerance: a nominal rate a hair above the target counts as higher.
        QCOMPARE(readingArrangement(false, 29.97, double(29.97003f)),
                 ReadingArrangement::downsampling);
        QCOMPARE(readingArrangement(false, 24.0, 0.0), ReadingArrangement::upsampling);
    }

    void gridFrom24To30AveragesThirtyPerSecond()
    {
        std::vector<int> pictures;
        const std::vector<std::int64_t> times =
            gridTimes(framesAt(24.0, 49), 1.0 / 30.0, &pictures);
        // From the second sample (1/24 s) to the last (2 s) the grid writes every 1/30 s.
        QCOMPARE(times.front(), std::int64_t(25)); // 1/24 s in 1/600 s
        QCOMPARE(int(times.size()), 59);
        for (std::size_t index = 1; index < times.size(); ++index)
            QCOMPARE(times[index] - times[index - 1], std::int64_t(20));
        // Between two source frames one or two grid frames are written, never none or three.
        // (Pictures count from the second source frame, the first the grid sees.)
        std::vector<int> perSource(48, 0);
        for (const int picture : pictures)
            ++perSource[std::size_t(picture)];
        for (int index = 0; index < 47; ++index)
            QVERIFY2(perSource[std::size_t(index)] == 1 || perSource[std::size_t(index)] == 2,
                     qPrintable(QString::number(index)));
        QCOMPARE(perSource[47], 0); // the last frame has no successor and is not written
    }

    void gridPicturesAreTheLatestSourceWithinTheTolerance()
    {
        std::vector<int> pictures;
        const std::vector<double> pts = framesAt(24.0, 25);
        const std::vector<std::int64_t> times = gridTimes(pts, 1.0 / 30.0, &pictures);
        for (std::size_t index = 0; index < times.size(); ++index) {
            const double t = 1.0 / 24.0 + double(index) / 30.0;
            int latest = 0;
            for (int source = 0; source < int(pts.size()); ++source)
                if (pts[std::size_t(source)] <= t + FrameGrid::tolerance)
                    latest = source;
            QCOMPARE(pictures[index], latest);
        }
    }

    void gridFrom2997To30DuplicatesNowAndThen()
    {
        std::vector<int> pictures;
        const int sourceFrames = 2000;
        const std::vector<std::int64_t> times =
            gridTimes(framesAt(30000.0 / 1001.0, sourceFrames), 1.0 / 30.0, &pictures);
        int duplicates = 0;
        for (std::size_t index = 1; index < pictures.size(); ++index) {
            QVERIFY(pictures[index] - pictures[index - 1] <= 1); // none skipped
            if (pictures[index] == pictures[index - 1])
                ++duplicates;
        }
        // The grid gains one frame in every 1000 or so: few duplicates, but some.
        QVERIFY(duplicates >= 1);
        QVERIFY(duplicates <= 3);
        QCOMPARE(int(times.size()), sourceFrames - 2 + duplicates);
    }

    void gridTimesDoNotAccumulateRounding()
    {
        // 1001/60000 s is not a whole number of 1/600 s; each time rounds on its own.
        FrameGrid grid(1001.0 / 60000.0);
        grid.start(0.0);
        for (int index = 0; index < 6000; ++index)
            grid.advance();
        QCOMPARE(grid.nextOutputTimeValue(), std::llround(6000.0 * 1001.0 / 60000.0 * 600.0));
        QCOMPARE(FrameGrid::timeValue(1.0 / 30.0), std::int64_t(20));
        QCOMPARE(FrameGrid::timeValue(2.0), std::int64_t(1200));
    }

    void equalPtsReplacesThePictureWithoutWriting()
    {
        FrameGrid grid(1.0 / 30.0);
        grid.start(1.0);
        const double threshold = FrameGrid::threshold(1.0);
        QVERIFY(!grid.owesFrameBefore(threshold));
        QVERIFY(grid.isCaughtUpTo(threshold));
        std::vector<int> pictures;
        const std::vector<std::int64_t> times = gridTimes({0.5, 0.5, 0.6}, 0.05, &pictures);
        // 0.5 starts the grid; the equal 0.5 writes nothing and takes over; 0.6 is owed 0.5 and
        // 0.55.
        QCOMPARE(times, (std::vector<std::int64_t>{300, 330}));
        QCOMPARE(pictures, (std::vector<int>{1, 1}));
    }

    void gridStartsAtALateFirstFrame()
    {
        const std::vector<std::int64_t> times = gridTimes(framesAt(24.0, 3, 2.0), 1.0 / 30.0);
        QCOMPARE(times.front(), FrameGrid::timeValue(2.0 + 1.0 / 24.0));
    }

    void progressEverySixtyFrames()
    {
        QCOMPARE(VideoPumpProgress::fraction(0, 0.0, 4.0), std::optional<double>(0.25));
        QCOMPARE(VideoPumpProgress::fraction(59, 2.0, 4.0), std::nullopt);
        QCOMPARE(VideoPumpProgress::fraction(60, 2.0, 4.0), std::optional<double>(0.575));
        QCOMPARE(VideoPumpProgress::fraction(61, 2.0, 4.0), std::nullopt);
        QCOMPARE(VideoPumpProgress::fraction(120, 4.0, 4.0), std::optional<double>(0.9));
        QCOMPARE(VideoPumpProgress::fraction(180, 5.0, 4.0), std::optional<double>(0.9));
        QCOMPARE(VideoPumpProgress::fraction(60, 1.0, 0.0), std::nullopt);
        QCOMPARE(VideoPumpProgress::fraction(60, 1.0, std::numeric_limits<double>::quiet_NaN()),
                 std::nullopt);
        int reports = 0;
        for (std::int64_t count = 1; count <= 120; ++count)
            reports += VideoPumpProgress::fraction(count, 1.0, 4.0) ? 1 : 0;
        QCOMPARE(reports, 2);
    }

    void audioSettings_data()
    {
        QTest::addColumn<int>("channels"); // 0: no description
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("outputChannels");
        QTest::addColumn<double>("outputRate");
        QTest::addColumn<int>("bitRate");
        QTest::newRow("mono 44.1") << 1 << 44100.0 << 1 << 44100.0 << 128000;
        QTest::newRow("5.1 48") << 6 << 48000.0 << 6 << 48000.0 << 768000;
        QTest::newRow("8 channels") << 8 << 48000.0 << 6 << 48000.0 << 768000;
        QTest::newRow("22.05 resampled") << 2 << 22050.0 << 2 << 48000.0 << 256000;
        QTest::newRow("88.2 resampled") << 2 << 88200.0 << 2 << 48000.0 << 256000;
        QTest::newRow("96 stays") << 2 << 96000.0 << 2 << 96000.0 << 256000;
        QTest::newRow("no description") << 0 << 0.0 << 2 << 48000.0 << 256000;
    }

    void audioSettings()
    {
        QFETCH(int, channels);
        QFETCH(double, rate);
        QFETCH(int, outputChannels);
        QFETCH(double, outputRate);
        QFETCH(int, bitRate);
        const VideoAudioSettings settings = channels > 0
                                                ? videoAudioSettings(channels, rate)
                                                : videoAudioSettings(std::nullopt, std::nullopt);
        QCOMPARE(settings.channels, std::int64_t(outputChannels));
        QCOMPARE(settings.sampleRateHertz, outputRate);
        QCOMPARE(settings.bitRateBitsPerSecond(), std::int64_t(bitRate));
    }
};

QTEST_APPLESS_MAIN(TestVideoDecisions)
#include "tst_videodecisions.moc"
