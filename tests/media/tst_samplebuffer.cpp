// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/SampleBuffer.h"

#include <QTest>

#include <cstring>
#include <vector>

using Platform::MediaTime;
using Platform::SampleBuffer;

class TestSampleBuffer : public QObject
{
    Q_OBJECT

private slots:
    void holdsInterleavedSamplesInOneBlock()
    {
        const std::vector<float> samples{0.5f, -0.5f, 0.25f, -0.25f, 1.0f, -1.0f};
        const auto buffer =
            SampleBuffer::fromSamples(MediaTime::make(4410, 44100), 44100, 2, samples);
        QCOMPARE(buffer->frameCount(), 3);
        QCOMPARE(buffer->channelCount(), 2);
        QCOMPARE(buffer->sampleRate(), 44100);
        QCOMPARE(buffer->byteSize(), std::size_t(24));
        QCOMPARE(buffer->presentationTime(), MediaTime::make(1, 10));
        QCOMPARE(buffer->duration(), MediaTime::make(3, 44100));
        QVERIFY(std::memcmp(buffer->data(), samples.data(), 24) == 0);
        QVERIFY(buffer->isValid());
        buffer->data()[5] = 0.125f;
        QCOMPARE(buffer->samples()[5], 0.125f);
    }

    void newBuffersAreSilentAndFramesStayWithinCapacity()
    {
        const auto buffer = SampleBuffer::make(MediaTime::zero(), 48000, 6, 100);
        QCOMPARE(buffer->byteSize(), std::size_t(100 * 6 * 4));
        for (float sample : buffer->samples())
            QCOMPARE(sample, 0.0f);
        buffer->setFrameCount(1000);
        QCOMPARE(buffer->frameCount(), 100);
        buffer->setFrameCount(-1);
        QCOMPARE(buffer->frameCount(), 0);
    }

    void sixteenBitBuffersHaveNoFloatView()
    {
        SampleBuffer buffer(SampleBuffer::SampleFormat::int16, 44100, 2, 10);
        buffer.setFrameCount(10);
        QCOMPARE(buffer.byteSize(), std::size_t(40));
        QCOMPARE(buffer.bytesPerFrame(), 4);
        QVERIFY(buffer.samples().empty());
        buffer.int16Data()[19] = -32768;
        QCOMPARE(std::as_const(buffer).int16Data()[19], std::int16_t(-32768));
    }
};

QTEST_GUILESS_MAIN(TestSampleBuffer)
#include "tst_samplebuffer.moc"
