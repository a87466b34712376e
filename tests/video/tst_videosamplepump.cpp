// SPDX-License-Identifier: GPL-3.0-or-later
// The video and audio pumps of a video conversion against stand-in endpoints: the plain and the
// upsampling branch, a full input at any point, pictures missing, equal times, failed appends,
// the 60-frame progress reports, and the finish shared by both pumps.
#include "ConversionEngine/video/PumpFinish.h"
#include "ConversionEngine/video/VideoAudioPump.h"
#include "ConversionEngine/video/VideoSamplePump.h"
#include "platform/foundation/Console.h"

#include <QSignalSpy>
#include <QTest>

#include <deque>

using namespace ConversionEngine;
using Platform::MediaTime;

namespace {

struct Picture
{
    int source = 0;
};

VideoPumpSample sampleAt(double seconds, int source, bool withPicture = true)
{
    VideoPumpSample sample;
    sample.buffer = std::make_shared<Picture>(Picture{source});
    sample.presentationSeconds = seconds;
    if (withPicture)
        sample.imageBuffer = std::make_shared<Picture>(Picture{source});
    return sample;
}

int sourceOf(const std::shared_ptr<void>& handle)
{
    return static_cast<const Picture*>(handle.get())->source;
}

class FakeVideoEndpoints : public VideoSamplePump::Endpoints
{
public:
    std::deque<VideoPumpSample> samples;
    // Asked at each readiness test with its running number (from 1).
    std::function<bool(int)> ready = [](int) { return true; };
    // Appends (of either kind) answer false from this number on (from 1); 0: never.
    int failFrom = 0;

    int readinessTests = 0;
    int appends = 0;
    int markedFinished = 0;
    // What was written: source index and time in 1/600 s (-1 for a sample's own time).
    std::vector<std::pair<int, std::int64_t>> written;

    bool isReadyForMoreMediaData() override { return ready(++readinessTests); }
    std::optional<VideoPumpSample> copyNextSampleBuffer() override
    {
        if (samples.empty())
            return std::nullopt;
        VideoPumpSample sample = samples.front();
        samples.pop_front();
        return sample;
    }
    bool append(const VideoPumpSample& sample) override
    {
        if (failFrom > 0 && ++appends >= failFrom)
            return false;
        written.emplace_back(sourceOf(sample.buffer), -1);
        return true;
    }
    bool appendPicture(const std::shared_ptr<void>& imageBuffer, MediaTime time) override
    {
        if (failFrom > 0 && ++appends >= failFrom)
            return false;
        if (time.timescale != 600)
            return false;
        written.emplace_back(sourceOf(imageBuffer), time.value);
        return true;
    }
    void markAsFinished() override { ++markedFinished; }
};

struct Harness
{
    std::shared_ptr<FakeVideoEndpoints> endpoints = std::make_shared<FakeVideoEndpoints>();
    std::shared_ptr<VideoProcessingState> state;
    int finishes = 0;
    std::vector<std::pair<QString, double>> reports;
    std::unique_ptr<VideoSamplePump> pump;

    Harness(bool upsampling, double frameDuration, double duration = 10.0)
        : state(std::make_shared<VideoProcessingState>(frameDuration))
    {
        VideoSamplePump::Parameters parameters;
        parameters.endpoints = endpoints;
        parameters.state = state;
        parameters.needsUpsampling = upsampling;
        parameters.hasAdaptor = upsampling;
        parameters.durationSeconds = duration;
        parameters.finished = [this] { ++finishes; };
        parameters.postProgress = [this](QString message, double fraction) {
            reports.emplace_back(message, fraction);
        };
        pump = std::make_unique<VideoSamplePump>(std::move(parameters));
    }

    // Calls the pump until it finished the input, as the writer would; at most `calls` times.
    int runToEnd(int calls = 1000)
    {
        int made = 0;
        while (endpoints->markedFinished == 0 && made < calls) {
            (*pump)();
            ++made;
        }
        return made;
    }
};

// The second sample onwards of a source at `rate` (the first went out before the pump).
std::deque<VideoPumpSample> sourceFrames(double rate, int count, int first = 1)
{
    std::deque<VideoPumpSample> samples;
    for (int index = first; index < count; ++index)
        samples.push_back(sampleAt(index / rate, index));
    return samples;
}

class FakeAudioEndpoints : public VideoAudioPump::Endpoints
{
public:
    int remaining = 0;
    int failAt = 0;
    int appended = 0;
    int markedFinished = 0;

    std::shared_ptr<Platform::SampleBuffer> copyNextSampleBuffer() override
    {
        if (remaining == 0)
            return nullptr;
        --remaining;
        return Platform::SampleBuffer::make(MediaTime::zero(), 48000, 2, 16);
    }
    bool append(const std::shared_ptr<Platform::SampleBuffer>&) override
    {
        return ++appended != failAt;
    }
    void markAsFinished() override { ++markedFinished; }
};

} // namespace

class TestVideoSamplePump : public QObject
{
    Q_OBJECT

private slots:
    void plainBranchPassesSamplesWithTheirOwnTimes()
    {
        Harness harness(false, 1.0 / 30.0);
        harness.endpoints->samples = sourceFrames(30.0, 10);
        Platform::Console::Recorder console;
        QCOMPARE(harness.runToEnd(), 1);
        QCOMPARE(int(harness.endpoints->written.size()), 9);
        for (int index = 0; index < 9; ++index)
            QCOMPARE(harness.endpoints->written[std::size_t(index)],
                     (std::pair<int, std::int64_t>(index + 1, -1)));
        QCOMPARE(harness.state->videoSampleCount, std::int64_t(9));
        QCOMPARE(harness.state->outputFrameCount, std::int64_t(9));
        QCOMPARE(harness.finishes, 1);
        QCOMPARE(harness.endpoints->markedFinished, 1);
        QCOMPARE(console.lines(), (QStringList{
                                      "🎬 Read video sample #1 at PTS: 0.03333333333333333s",
                                      "🎬 Read video sample #2 at PTS: 0.06666666666666667s",
                                      "🎬 Read video sample #3 at PTS: 0.1s",
                                  }));
    }

    void plainBranchKeepsTheSampleWhenTheInputFills()
    {
        Harness harness(false, 1.0 / 30.0);
        harness.endpoints->samples = sourceFrames(30.0, 6);
        // Ready for the loop test of each call, full at the branch's own test every third time.
        harness.endpoints->ready = [](int test) { return test % 3 != 0; };
        harness.runToEnd();
        QCOMPARE(int(harness.endpoints->written.size()), 5);
        for (int index = 0; index < 5; ++index)
            QCOMPARE(harness.endpoints->written[std::size_t(index)].first, index + 1);
        QCOMPARE(harness.state->videoSampleCount, std::int64_t(5));
        QCOMPARE(harness.finishes, 1);
    }

    void upsamplingFrom24To30()
    {
        Harness harness(true, 1.0 / 30.0);
        harness.endpoints->samples = sourceFrames(24.0, 25);
        harness.runToEnd();
        const auto& written = harness.endpoints->written;
        // Grid from the second sample (1/24 s = 25/600) to before the last (1 s), every 20/600.
        QCOMPARE(int(written.size()), 29);
        for (std::size_t index = 0; index < written.size(); ++index)
            QCOMPARE(written[index].second, std::int64_t(25 + 20 * index));
        QCOMPARE(written.front().first, 1);
        QCOMPARE(written.back().first, 23);
        QCOMPARE(harness.state->outputFrameCount, std::int64_t(29));
        QCOMPARE(harness.finishes, 1);
    }

    void fullInputMidDuplicationResumesWithoutDoublingOrLosing()
    {
        Harness whole(true, 1.0 / 30.0);
        whole.endpoints->samples = sourceFrames(10.0, 8);
        whole.runToEnd();

        for (const int period : {3, 4, 5, 7}) {
            Harness interrupted(true, 1.0 / 30.0);
            interrupted.endpoints->samples = sourceFrames(10.0, 8);
            // Every `period`-th readiness test finds the input full, wherever the pump stands.
            interrupted.endpoints->ready = [period](int test) { return test % period != 0; };
            QVERIFY(interrupted.runToEnd() > 1);
            QCOMPARE(interrupted.endpoints->written, whole.endpoints->written);
            QCOMPARE(interrupted.state->outputFrameCount, whole.state->outputFrameCount);
            QCOMPARE(interrupted.finishes, 1);
        }
        // Each 1/10 s source frame is shown three times on the 1/30 s grid.
        QCOMPARE(int(whole.endpoints->written.size()), 18);
    }

    void sampleWithoutPictureIsDroppedAndTheGridGoesOn()
    {
        Harness harness(true, 0.1);
        harness.endpoints->samples = {sampleAt(1.0, 1), sampleAt(1.2, 2, false), sampleAt(1.4, 3),
                                      sampleAt(1.6, 4)};
        Platform::Console::Recorder console;
        harness.runToEnd();
        QVERIFY(console.lines().contains("⚠️ Failed to get pixel buffer from sample #2"));
        // Picture 1 runs through the gap left by sample 2, then picture 3 until 1.6.
        const std::vector<std::pair<int, std::int64_t>> expected{{1, 600}, {1, 660}, {1, 720},
                                                                 {1, 780}, {3, 840}, {3, 900}};
        QCOMPARE(harness.endpoints->written, expected);
    }

    void equalTimesReplaceThePictureWithoutWriting()
    {
        Harness harness(true, 0.05, 0.0);
        harness.endpoints->samples = {sampleAt(0.5, 1), sampleAt(0.5, 2), sampleAt(0.6, 3)};
        harness.runToEnd();
        const std::vector<std::pair<int, std::int64_t>> expected{{2, 300}, {2, 330}};
        QCOMPARE(harness.endpoints->written, expected);
    }

    void failedAppendEndsTheInputWithoutFinishing()
    {
        Harness plain(false, 1.0 / 30.0);
        plain.endpoints->samples = sourceFrames(30.0, 6);
        plain.endpoints->failFrom = 3;
        Platform::Console::Recorder console;
        QCOMPARE(plain.runToEnd(), 1);
        QCOMPARE(plain.endpoints->markedFinished, 1);
        QCOMPARE(plain.finishes, 0);
        QVERIFY(console.lines().contains("❌ Failed to append video sample #3"));

        Harness upsampled(true, 1.0 / 30.0);
        upsampled.endpoints->samples = sourceFrames(10.0, 6);
        upsampled.endpoints->failFrom = 4;
        upsampled.runToEnd();
        QCOMPARE(upsampled.finishes, 0);
        QVERIFY(console.lines().contains("❌ Failed to append upsampled frame #3"));
    }

    void progressEverySixtyFrames()
    {
        Harness harness(false, 1.0 / 30.0, 4.0);
        harness.endpoints->samples = sourceFrames(30.0, 122);
        harness.runToEnd();
        QCOMPARE(int(harness.reports.size()), 2);
        QCOMPARE(harness.reports[0].first, QStringLiteral("Encoding video (60 frames)..."));
        QCOMPARE(harness.reports[0].second, 2.0 / 4.0 * 0.65 + 0.25);
        QCOMPARE(harness.reports[1].first, QStringLiteral("Encoding video (120 frames)..."));
        QCOMPARE(harness.reports[1].second, 4.0 / 4.0 * 0.65 + 0.25);

        Harness upsampled(true, 1.0 / 60.0, 4.0);
        upsampled.endpoints->samples = sourceFrames(30.0, 32);
        upsampled.runToEnd();
        QCOMPARE(int(upsampled.reports.size()), 1);
        QCOMPARE(upsampled.reports.front().first,
                 QStringLiteral("Upsampling video (60 frames)..."));

        // A sample that writes nothing reaches the report with 0 frames, a multiple of 60 too.
        Harness equal(true, 1.0 / 60.0, 4.0);
        equal.endpoints->samples = {sampleAt(0.5, 1), sampleAt(0.5, 2)};
        equal.runToEnd();
        QCOMPARE(int(equal.reports.size()), 1);
        QCOMPARE(equal.reports.front().first, QStringLiteral("Upsampling video (0 frames)..."));
        QCOMPARE(equal.reports.front().second, 0.5 / 4.0 * 0.65 + 0.25);
    }

    void noProgressWithoutADuration()
    {
        for (const double duration : {0.0, std::numeric_limits<double>::quiet_NaN()}) {
            Harness harness(false, 1.0 / 30.0, duration);
            harness.endpoints->samples = sourceFrames(30.0, 130);
            harness.runToEnd();
            QVERIFY(harness.reports.empty());
            QCOMPARE(harness.finishes, 1);
        }
    }

    void audioPumpOneSamplePerCall()
    {
        auto endpoints = std::make_shared<FakeAudioEndpoints>();
        endpoints->remaining = 3;
        auto count = std::make_shared<std::int64_t>(0);
        int finishes = 0;
        VideoAudioPump pump({endpoints, count, [&finishes] { ++finishes; }});
        Platform::Console::Recorder console;
        pump();
        QCOMPARE(endpoints->appended, 1);
        pump();
        pump();
        QCOMPARE(finishes, 0);
        pump();
        QCOMPARE(*count, std::int64_t(3));
        QCOMPARE(endpoints->markedFinished, 1);
        QCOMPARE(finishes, 1);
        QCOMPARE(console.lines(), QStringList{"✅ Audio processing complete - 3 samples processed"});
    }

    void audioPumpFailedAppend()
    {
        auto endpoints = std::make_shared<FakeAudioEndpoints>();
        endpoints->remaining = 5;
        endpoints->failAt = 2;
        auto count = std::make_shared<std::int64_t>(0);
        int finishes = 0;
        VideoAudioPump pump({endpoints, count, [&finishes] { ++finishes; }});
        Platform::Console::Recorder console;
        pump();
        pump();
        QCOMPARE(endpoints->markedFinished, 1);
        QCOMPARE(finishes, 0);
        QCOMPARE(console.lines(), QStringList{"❌ Failed to append audio sample #2"});
    }

    void finishTextsTellWhichPumpCameLast_data()
    {
        QTest::addColumn<bool>("hasAudio");
        QTest::addColumn<bool>("audioLast");
        QTest::addColumn<bool>("completed");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("line");
        QTest::newRow("video only")
            << false << false << true << "✅ Conversion completed successfully!"
            << "✅ Conversion completed";
        QTest::newRow("audio last")
            << true << true << true << "✅ CRF conversion completed successfully!"
            << "✅ CRF conversion completed";
        QTest::newRow("video last")
            << true << false << true << "✅ Conversion completed successfully!"
            << "✅ Conversion completed";
        QTest::newRow("audio last, failed") << true << true << false << "❌ CRF conversion failed"
                                            << "";
        QTest::newRow("video last, failed") << true << false << false << "❌ Conversion failed"
                                            << "";
    }

    void finishTextsTellWhichPumpCameLast()
    {
        QFETCH(bool, hasAudio);
        QFETCH(bool, audioLast);
        QFETCH(bool, completed);
        QFETCH(QString, status);
        QFETCH(QString, line);
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::processingVideo);
        int finishCalls = 0;
        int resumes = 0;
        PumpFinish::Parameters parameters;
        parameters.finishWriting = [&finishCalls](std::function<void()> done) {
            ++finishCalls;
            done();
        };
        parameters.writerCompleted = [completed] { return completed; };
        parameters.tracker = &tracker;
        parameters.resume = [&resumes] { ++resumes; };
        parameters.hasAudio = hasAudio;
        PumpFinish finish(std::move(parameters));
        Platform::Console::Recorder console;
        if (hasAudio) {
            finish.finished(audioLast ? PumpFinish::Pump::video : PumpFinish::Pump::audio);
            QCOMPARE(finishCalls, 0);
        }
        finish.finished(audioLast ? PumpFinish::Pump::audio : PumpFinish::Pump::video);
        QCOMPARE(finishCalls, 1);
        QCOMPARE(resumes, 1);
        QVERIFY(finish.videoCompleted() && finish.audioCompleted());
        QTRY_COMPARE(tracker.statusMessage(), status);
        QCOMPARE(console.lines(), line.isEmpty() ? QStringList{} : QStringList{line});
    }
};

QTEST_GUILESS_MAIN(TestVideoSamplePump)
#include "tst_videosamplepump.moc"
