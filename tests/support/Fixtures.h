// SPDX-License-Identifier: GPL-3.0-or-later
// Test fixtures made and checked with the ffmpeg and ffprobe command-line tools, which stand
// apart from the program's own media code: make a tone or a short video into a directory,
// read a file's first audio stream as ffprobe sees it, decode a file to float samples, hash a
// file. Failures return empty results and put the tool's message in lastError(). Test threads.
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

namespace TestSupport {

// The first audio stream of a file as ffprobe reports it; empty fields when absent.
struct AudioStreamProbe
{
    bool found = false;
    QString formatName;   // the container, e.g. "wav", "aiff", "mov,mp4,m4a,3gp,3g2,mj2", "caf"
    QString codecName;    // e.g. "pcm_s16le", "aac", "alac"
    QString sampleFormat; // e.g. "s16", "fltp", "s32p"
    int sampleRate = 0;
    int channels = 0;
    // bits_per_raw_sample where given, else bits_per_sample; 0 for lossy codecs.
    int bitsPerSample = 0;
    qint64 bitRate = 0; // bit/s; 0 when not reported
    double durationSeconds = 0.0;
};

// Decoded audio: interleaved float samples.
struct DecodedAudio
{
    int sampleRate = 0;
    int channels = 0;
    std::vector<float> samples;
    qint64 frameCount() const { return channels > 0 ? qint64(samples.size()) / channels : 0; }
};

class Fixtures
{
public:
    // Runs ffmpeg quietly with `arguments`, overwriting outputs. False on failure.
    static bool runFfmpeg(const QStringList& arguments);

    // A tone of `seconds` at `sampleRate` with `channels`, channel c a sine of 220·(c+1) Hz at
    // half scale, encoded with `codecArguments` (e.g. {"-c:a", "pcm_s24le"}) into
    // directory/fileName. Returns the path, or an empty string on failure.
    static QString makeTone(const QString& directory, const QString& fileName, double seconds,
                            int sampleRate, int channels, const QStringList& codecArguments = {});

    // A 320×240, 25 fps test picture of `seconds`, H.264 unless `codecArguments` say otherwise,
    // with a 44.1 kHz stereo AAC tone when `withAudio`. Returns the path or an empty string.
    static QString makeVideo(const QString& directory, const QString& fileName, double seconds,
                             bool withAudio, const QStringList& codecArguments = {});

    // ffprobe's JSON for the file's format and streams; empty on failure.
    static QJsonObject probe(const QString& path);
    static AudioStreamProbe probeAudio(const QString& path);

    // The first audio stream decoded to interleaved float at its own rate and channel count.
    static DecodedAudio decode(const QString& path);

    // Every file below `directory`, hidden ones too, as paths relative to it, sorted.
    static QStringList filesBelow(const QString& directory);

    // SHA-256 of the file's bytes as lower-case hex; empty when it cannot be read.
    static QByteArray sha256(const QString& path);

    // The message of the last failed call.
    static QString lastError();
};

} // namespace TestSupport
