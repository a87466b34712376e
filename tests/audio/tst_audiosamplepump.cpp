// SPDX-License-Identifier: GPL-3.0-or-later
// The sample pump against stand-in endpoints: its counters, its exits with their texts and
// cancel calls, the loss of a buffer when the input stops taking data, the gain in place, the
// paced progress reports, the finish and the single resumption.
#include "ConversionEngine/audio/AudioSamplePump.h"
#include "ConversionEngine/core/Limiter.h"
#include "tests/audio/ConversionHarness.h"
#include "tests/support/ManualProgressClock.h"

#include <QTest>

#include <chrono>
#include <deque>

using namespace ConversionEngine;
using Platform::AssetReader;
using Platform::AssetWriter;
using Platform::MediaTime;
using Platform::SampleBuffer;
using TestSupport::ManualProgressClock;

namespace {

std::shared_ptr<SampleBuffer> goodBuffer(double seconds = 0.0,
                                         std::vector<float> samples = {0.25f, -0.25f})
{
    return SampleBuffer::fromSamples(
        MediaTime::make(static_cast<std::int64_t>(seconds * 48000), 48000), 48000, 2, samples);
}

std::shared_ptr<SampleBuffer> invalidBuffer()
{
    auto buffer = SampleBuffer::make(MediaTime::zero(), 48000, 2, 0);
    buffer->setValid(false);
    return buffer;
}

class FakeEndpoints : public AudioSamplePump::Endpoints
{
public:
    // The buffers handed out in order; the end of the list is the end of the stream.
    std::deque<std::shared_ptr<SampleBuffer>> buffers;
    // Asked at each readiness test with its running number (from 1); always ready by default.
    std::function<bool(int)> ready = [](int) { return true; };
    AssetReader::Status statusWhileReading = AssetReader::Status::reading;
    AssetReader::Status statusAtEnd = AssetReader::Status::completed;
    std::optional<QString> readerError;
    AssetWriter::Status writerState = AssetWriter::Status::writing;
    AssetWriter::Status writerStateAfterFinish = AssetWriter::Status::completed;
    std::optional<QString> writerError;
    // Appends answer false for the buffers whose number (from 1) is listed here.
    std::function<bool(int)> appendFails = [](int) { return false; };
    bool taskCancelled = false;

    int readinessTests = 0;
    int copies = 0;
    int appendAttempts = 0;
    std::vector<std::shared_ptr<SampleBuffer>> appended;
    int markedFinished = 0;
    int finishes = 0;
    int readingCancels = 0;
    int writingCancels = 0;

    bool isCurrentTaskCancelled() override { return taskCancelled; }
    bool isReadyForMoreMediaData() override { return ready(++readinessTests); }
    AssetReader::Status readerStatus() override
    {
        return m_ended ? statusAtEnd : statusWhileReading;
    }
    std::optional<QString> readerErrorDescription() override { return readerError; }
    std::shared_ptr<SampleBuffer> copyNextSampleBuffer() override
    {
        ++copies;
        if (buffers.empty()) {
            m_ended = true;
            return nullptr;
        }
        std::shared_ptr<SampleBuffer> next = buffers.front();
        buffers.pop_front();
        return next;
    }
    AssetWriter::Status writerStatus() override { return writerState; }
    std::optional<QString> writerErrorDescription() override { return writerError; }
    bool append(const std::shared_ptr<SampleBuffer>& buffer) override
    {
        if (appendFails(++appendAttempts))
            return false;
        appended.push_back(buffer);
        return true;
    }
    void markAsFinished() override { ++markedFinished; }
    void finishWriting(std::function<void()> completion) override
    {
        ++finishes;
        writerState = writerStateAfterFinish;
        completion();
    }
    void cancelReading() override { ++readingCancels; }
    void cancelWriting() override { ++writingCancels; }

private:
    bool m_ended = false;
};

// One pump with its tracker, stand-in endpoints and a count of resumptions.
struct Rig
{
    ManualProgressClock progressClock;
    EnhancedProgressTracker tracker;
    AudioTest::TrackerLog log{&tracker};
    std::shared_ptr<FakeEndpoints> endpoints = std::make_shared<FakeEndpoints>();
    std::shared_ptr<Resumer> resumer = std::make_shared<Resumer>();
    int resumptions = 0;
    std::chrono::steady_clock::time_point now{};
    std::chrono::steady_clock::duration step = std::chrono::seconds(0);

    Rig() { tracker.startTracking(ConversionPhase::processingAudio); }

    AudioSamplePump make(float lufsGain = 1.0f, float dbfsGain = 1.0f, double duration = 10.0)
    {
        AudioSamplePump::Parameters parameters;
        parameters.endpoints = endpoints;
        parameters.tracker = &tracker;
        parameters.resumer = resumer;
        parameters.continuation = [this] { ++resumptions; };
        parameters.durationSeconds = duration;
        parameters.lufsGain = lufsGain;
        parameters.dbfsGain = dbfsGain;
        parameters.clock = [this] {
            now += step;
            return now;
        };
        return AudioSamplePump(std::move(parameters));
    }

    // Lets the main-thread posts of the pump run.
    void settle()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    QStringList linesAfterStart() const { return log.lines(); }
};

const QString successEnd[] = {
    QStringLiteral("update: Audio processing complete | Finalizing | 0.9"),
    QStringLiteral("update: Writing audio file... | Writing Output | 0.95"),
    QStringLiteral("update: Audio conversion completed successfully | Completed | 1"),
};

QStringList successLines()
{
    return QStringList(std::begin(successEnd), std::end(successEnd));
}

} // namespace

class TestAudioSamplePump : public QObject
{
    Q_OBJECT

private slots:
    void wholeStreamInOneCallFinishesTheWriter()
    {
        Rig rig;
        rig.endpoints->buffers = {goodBuffer(0.0), goodBuffer(0.1), goodBuffer(0.2)};
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(3));
        QCOMPARE(rig.endpoints->markedFinished, 1);
        QCOMPARE(rig.endpoints->finishes, 1);
        QCOMPARE(rig.resumptions, 0); // resumption is a main-thread task
        rig.settle();
        QCOMPARE(rig.log.lines(), successLines());
        QCOMPARE(rig.resumptions, 1);
        QCOMPARE(rig.endpoints->readingCancels + rig.endpoints->writingCancels, 0);
    }

    void writerFailingToFinishStopsWithItsText()
    {
        Rig rig;
        rig.endpoints->buffers = {goodBuffer()};
        rig.endpoints->writerStateAfterFinish = AssetWriter::Status::failed;
        rig.endpoints->writerError = QStringLiteral("No space left on device");
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        rig.settle();
        const QStringList expected{
            successEnd[0], successEnd[1],
            QStringLiteral("stop: Failed to write audio file: No space left on device")};
        QCOMPARE(rig.log.lines(), expected);
        QCOMPARE(rig.resumptions, 1);

        Rig silent;
        silent.endpoints->buffers = {goodBuffer()};
        silent.endpoints->writerStateAfterFinish = AssetWriter::Status::failed;
        AudioSamplePump other = silent.make();
        silent.log.clear();
        other();
        silent.settle();
        QCOMPARE(silent.log.lines().last(),
                 QStringLiteral("stop: Failed to write audio file: Unknown writing error"));
    }

    void nineInvalidBuffersThenAGoodOneGoOn()
    {
        Rig rig;
        for (int i = 0; i < 9; ++i)
            rig.endpoints->buffers.push_back(invalidBuffer());
        rig.endpoints->buffers.push_back(goodBuffer());
        for (int i = 0; i < 9; ++i)
            rig.endpoints->buffers.push_back(invalidBuffer());
        rig.endpoints->buffers.push_back(goodBuffer());
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        rig.settle();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(2));
        QCOMPARE(rig.log.lines(), successLines());
    }

    void tenInvalidBuffersInARowEndTheRunWithCancelCalls()
    {
        Rig rig;
        rig.endpoints->buffers.push_back(goodBuffer());
        for (int i = 0; i < 10; ++i)
            rig.endpoints->buffers.push_back(invalidBuffer());
        rig.endpoints->buffers.push_back(goodBuffer());
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(1));
        QCOMPARE(rig.endpoints->copies, 11);
        QCOMPARE(rig.endpoints->readingCancels, 1);
        QCOMPARE(rig.endpoints->writingCancels, 1);
        QCOMPARE(rig.endpoints->markedFinished, 0);
        rig.settle();
        QCOMPARE(rig.log.lines(),
                 QStringList{QStringLiteral(
                     "stop: Too many invalid audio samples - file may be corrupted")});
        QCOMPARE(rig.resumptions, 1);
    }

    void invalidBuffersAndFailedAppendsShareOneCounter()
    {
        Rig rig;
        for (int i = 0; i < 4; ++i)
            rig.endpoints->buffers.push_back(invalidBuffer());
        for (int i = 0; i < 8; ++i)
            rig.endpoints->buffers.push_back(goodBuffer());
        rig.endpoints->appendFails = [](int) { return true; };
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        // Four invalid buffers and six refused appends make ten.
        QCOMPARE(rig.endpoints->appendAttempts, 6);
        QCOMPARE(rig.endpoints->readingCancels, 1);
        QCOMPARE(rig.endpoints->writingCancels, 1);
        rig.settle();
        QCOMPARE(rig.log.lines(),
                 QStringList{QStringLiteral(
                     "stop: Failed to write audio samples - output format may be incompatible")});
    }

    void aSuccessfulAppendStartsTheCountAgain()
    {
        Rig rig;
        for (int i = 0; i < 20; ++i)
            rig.endpoints->buffers.push_back(goodBuffer());
        // Every tenth append goes through: nine refusals never reach the limit.
        rig.endpoints->appendFails = [](int attempt) { return attempt % 10 != 0; };
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        rig.settle();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(2));
        QCOMPARE(rig.log.lines(), successLines());
    }

    void endOfStreamWithNothingAppendedInThisCallStopsWithoutFinishing()
    {
        Rig rig;
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        QCOMPARE(rig.endpoints->markedFinished, 0);
        QCOMPARE(rig.endpoints->finishes, 0);
        QCOMPARE(rig.endpoints->readingCancels + rig.endpoints->writingCancels, 0);
        rig.settle();
        QCOMPARE(rig.log.lines(),
                 QStringList{QStringLiteral(
                     "stop: No audio samples processed - file may be corrupted or have no audio")});
        QCOMPARE(rig.resumptions, 1);
    }

    void countersBelongToOneCall()
    {
        Rig rig;
        rig.endpoints->buffers = {goodBuffer(), goodBuffer()};
        // The input stops taking data after the second buffer went out.
        int appendedWhenStopped = -1;
        rig.endpoints->ready = [&rig, &appendedWhenStopped](int) {
            if (rig.endpoints->appended.size() == 2 && appendedWhenStopped < 0) {
                appendedWhenStopped = 2;
                return false;
            }
            return true;
        };
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(2));
        rig.settle();
        QCOMPARE(rig.log.lines(), QStringList{});
        // The next call finds the end at once and has appended nothing itself.
        pump();
        rig.settle();
        QCOMPARE(rig.log.lines(),
                 QStringList{QStringLiteral(
                     "stop: No audio samples processed - file may be corrupted or have no audio")});
        QCOMPARE(rig.endpoints->markedFinished, 0);
    }

    void bufferInHandIsLostWhenTheInputStopsTakingData()
    {
        Rig rig;
        rig.endpoints->buffers = {goodBuffer(0.0), goodBuffer(0.1), goodBuffer(0.2)};
        // Tests: 1 loop head, 2 after the first buffer's report, 3 before its append, 4 loop
        // head, 5 after the second buffer's report: refused there.
        rig.endpoints->ready = [](int test) { return test != 5; };
        AudioSamplePump pump = rig.make();
        pump();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(1));
        QCOMPARE(rig.endpoints->copies, 2);
        pump();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(2));
        QCOMPARE(rig.endpoints->appended.back()->presentationTime(), MediaTime::make(9600, 48000));
    }

    void readerFailureExitsWithItsTextAndNoCancelCalls()
    {
        Rig rig;
        rig.endpoints->statusWhileReading = AssetReader::Status::failed;
        rig.endpoints->readerError = QStringLiteral("Invalid data found when processing input");
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        rig.settle();
        QCOMPARE(rig.log.lines(),
                 QStringList{QStringLiteral(
                     "stop: Audio reading failed: Invalid data found when processing input")});
        QCOMPARE(rig.endpoints->copies, 0);
        QCOMPARE(rig.endpoints->readingCancels + rig.endpoints->writingCancels, 0);

        Rig unknown;
        unknown.endpoints->buffers = {goodBuffer()};
        unknown.endpoints->statusAtEnd = AssetReader::Status::failed;
        AudioSamplePump other = unknown.make();
        unknown.log.clear();
        other();
        unknown.settle();
        QCOMPARE(unknown.log.lines(),
                 QStringList{QStringLiteral("stop: Audio reading failed: Unknown reading error")});
        QCOMPARE(unknown.endpoints->markedFinished, 0);
    }

    void readerCancelledExitsWithoutCancelCalls()
    {
        Rig rig;
        rig.endpoints->statusWhileReading = AssetReader::Status::cancelled;
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        rig.settle();
        QCOMPARE(rig.log.lines(), QStringList{QStringLiteral("stop: Audio reading was cancelled")});
        QCOMPARE(rig.endpoints->readingCancels + rig.endpoints->writingCancels, 0);
        QCOMPARE(rig.resumptions, 1);
    }

    void writerOutOfWritingStateExitsWithCancelCalls()
    {
        Rig rig;
        rig.endpoints->buffers = {goodBuffer()};
        rig.endpoints->writerState = AssetWriter::Status::failed;
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        rig.settle();
        QCOMPARE(rig.log.lines(),
                 QStringList{
                     QStringLiteral("stop: Audio writer entered invalid state during conversion")});
        QCOMPARE(rig.endpoints->appendAttempts, 0);
        QCOMPARE(rig.endpoints->readingCancels, 1);
        QCOMPARE(rig.endpoints->writingCancels, 1);
    }

    void cancelledTaskExitsFirst()
    {
        Rig rig;
        rig.endpoints->buffers = {goodBuffer()};
        rig.endpoints->taskCancelled = true;
        AudioSamplePump pump = rig.make();
        rig.log.clear();
        pump();
        rig.settle();
        QCOMPARE(rig.log.lines(), QStringList{QStringLiteral("stop: Conversion cancelled")});
        QCOMPARE(rig.endpoints->copies, 0);
        QCOMPARE(rig.endpoints->readingCancels, 1);
        QCOMPARE(rig.endpoints->writingCancels, 1);
    }

    void onlyTheFirstExitResumes()
    {
        Rig rig;
        rig.endpoints->statusWhileReading = AssetReader::Status::cancelled;
        AudioSamplePump pump = rig.make();
        pump();
        pump();
        rig.settle();
        QCOMPARE(rig.resumptions, 1);
    }

    void loudnessGainScalesInPlaceWithTheSafetyFactorThenClips()
    {
        Rig rig;
        const std::vector<float> samples{0.1f, -0.2f, 0.6f,   -0.9f, 0.0f,
                                         0.3f, 0.05f, -0.05f, 0.4f,  0.45f};
        auto buffer = goodBuffer(0.0, samples);
        const float* const before = buffer->data();
        rig.endpoints->buffers = {buffer};
        AudioSamplePump pump = rig.make(2.0f, 3.0f);
        pump();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(1));
        // The very buffer that was read is the one written: no copy.
        QCOMPARE(rig.endpoints->appended.front().get(), buffer.get());
        QCOMPARE(buffer->data(), before);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            float expected = (samples[i] * 2.0f) * 0.98f;
            expected = std::clamp(expected, -Limiter::ceiling, Limiter::ceiling);
            QCOMPARE(buffer->data()[i], expected);
        }
    }

    void peakGainScalesWhenNoLoudnessGainApplies()
    {
        Rig rig;
        auto buffer = goodBuffer(0.0, {0.25f, -0.75f});
        rig.endpoints->buffers = {buffer};
        AudioSamplePump pump = rig.make(1.0f, 2.0f);
        pump();
        QCOMPARE(buffer->data()[0], 0.5f);
        QCOMPARE(buffer->data()[1], -Limiter::ceiling);
    }

    void unitGainsLeaveTheBufferAloneWithoutAClip()
    {
        Rig rig;
        auto buffer = goodBuffer(0.0, {1.5f, -2.0f});
        rig.endpoints->buffers = {buffer};
        AudioSamplePump pump = rig.make();
        pump();
        QCOMPARE(buffer->data()[0], 1.5f);
        QCOMPARE(buffer->data()[1], -2.0f);
    }

    void emptyBufferWithAGainIsDroppedUncounted()
    {
        Rig rig;
        rig.endpoints->buffers = {SampleBuffer::make(MediaTime::zero(), 48000, 2, 0), goodBuffer()};
        AudioSamplePump pump = rig.make(1.0f, 0.5f);
        rig.log.clear();
        pump();
        rig.settle();
        QCOMPARE(rig.endpoints->appended.size(), std::size_t(1));
        QCOMPARE(rig.log.lines(), successLines());

        Rig plain;
        plain.endpoints->buffers = {SampleBuffer::make(MediaTime::zero(), 48000, 2, 0)};
        AudioSamplePump unscaled = plain.make();
        unscaled();
        QCOMPARE(plain.endpoints->appended.size(), std::size_t(1));
    }

    void progressIsPacedAndTellsTheShareOfTheFile()
    {
        Rig rig;
        rig.step = std::chrono::milliseconds(101);
        auto invalidTime = goodBuffer();
        invalidTime->setPresentationTime(MediaTime::invalid());
        auto negative = goodBuffer();
        negative->setPresentationTime(MediaTime::make(-4800, 48000));
        rig.endpoints->buffers = {goodBuffer(0.0), goodBuffer(2.5),   invalidTime,
                                  negative,        goodBuffer(7.777), goodBuffer(12.0)};
        AudioSamplePump pump = rig.make(1.0f, 1.0f, 10.0);
        rig.log.clear();
        pump();
        rig.settle();
        const QStringList expected{
            QStringLiteral("update: Processing audio... (0%) | Processing Audio | 0.3"),
            QStringLiteral("update: Processing audio... (25%) | Processing Audio | 0.45"),
            QStringLiteral("update: Processing audio... (77%) | Processing Audio | 0.76662"),
            QStringLiteral("update: Processing audio... (100%) | Processing Audio | 0.9"),
        };
        QCOMPARE(rig.log.progressReports(), expected);
    }

    void progressNeedsMoreThanATenthOfASecond()
    {
        Rig rig;
        rig.step = std::chrono::milliseconds(100);
        rig.endpoints->buffers = {goodBuffer(1.0), goodBuffer(2.0), goodBuffer(3.0)};
        AudioSamplePump pump = rig.make();
        pump();
        rig.settle();
        // A tenth after the start is not enough; two tenths are, and the next tenth again not.
        QCOMPARE(rig.log.progressReports(),
                 QStringList{QStringLiteral(
                     "update: Processing audio... (20%) | Processing Audio | 0.42")});

        Rig unknownDuration;
        unknownDuration.step = std::chrono::seconds(1);
        unknownDuration.endpoints->buffers = {goodBuffer(1.0)};
        AudioSamplePump other = unknownDuration.make(1.0f, 1.0f, 0.0);
        other();
        unknownDuration.settle();
        QCOMPARE(unknownDuration.log.progressReports(), QStringList{});
    }
};

QTEST_GUILESS_MAIN(TestAudioSamplePump)
#include "tst_audiosamplepump.moc"
