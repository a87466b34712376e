// SPDX-License-Identifier: GPL-3.0-or-later
// Runs ondrilet-cli as a child process for the reliability tests: each run has its own home, a
// time limit after which the child is killed and the run counts as hung, and optionally a file
// call that the fault library makes fail or stop at. The output kinds and destinations are rows,
// so that a new kind of output is one more entry; the sources they convert and the test of a
// whole output are shared by every matrix. Test threads only.
#pragma once

#include <QList>
#include <QMetaType>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace Reliability {

// A file call made to fail with an errno, or to stop the child for good, on paths below
// `folder`; `call` empty means no fault. See FaultShim.cpp for the meaning of each field.
struct Fault
{
    QString call;      // write, fsync, rename, unlink, openat, chmod
    QString errorName; // ENOSPC, EIO, EACCES, EROFS
    int after = 0;     // counted calls that still succeed
    int times = 0;     // calls that fail after those; 0: all of them
    QString match;     // only file names holding this text count
    QString hold;      // before or after: stop at the call instead of failing it
    QString folder;
};

struct CliOutcome
{
    bool finished = false; // ended on its own within the time limit
    bool crashed = false;  // ended by a signal
    int exitCode = -1;
    QString out;
    QString err;
};

// One kind of output: how to choose it on the command line, its extension, and the ffmpeg
// arguments that make a short source of the same container (for in-place runs).
struct OutputKind
{
    QString name;
    QStringList options;
    QString extension;
    QStringList sourceCodec;
    QString subfolder; // below a destination with subfolders, e.g. "Audio/wav"
    bool video = false;
    QString codecPrefix; // how ffprobe names the output's codec (audio, or the picture's)
};

// A file call to stop at or fail, as the matrices name it. `onOutput`: only calls on the file
// being written count (the output itself, or the hidden temporary file of an in-place run).
struct FilePoint
{
    const char* name;
    QString call;
    bool onOutput = false;
    int after = 0;
    int times = 0;
    QString hold;
    bool inPlaceOnly = false; // the call happens on the in-place road only
};

enum class Destination
{
    folder,
    besideSource,
    inPlace
};

class CliHarness
{
public:
    // Makes home/, work/ and out/ below `root`.
    explicit CliHarness(const QString& root);

    QString home() const { return m_home; }
    QString work() const { return m_work; }
    QString out() const { return m_out; }

    static QList<OutputKind> audioKinds();
    // MP4 and MOV, both H.264 with AAC sound.
    static QList<OutputKind> videoKinds();
    static QString destinationName(Destination destination);

    // The source every matrix converts for `kind`, made in `fixtures` on first use: a 2 s stereo
    // tone in the kind's own container, or a 1 s 320×240 clip with sound.
    static QString sourceFor(const QString& fixtures, const OutputKind& kind);
    static double sourceSeconds(const OutputKind& kind);

    // A count of writes to the output after which writing is well under way but not over.
    static int midStreamWrites(const OutputKind& kind);

    // Whether `path` is a whole conversion of sourceFor(kind): the kind's codec, the source's
    // length.
    static bool isCompleteOutput(const QString& path, const OutputKind& kind);

    // `point` as the fault library's settings for a run of `kind` to `destination` that writes
    // `output`: calls on the output's folder (the work folder when in place) count.
    Fault faultAt(const FilePoint& point, Destination destination, const QString& output) const;

    // The options that send `kind` to `destination`, followed by `files`.
    QStringList arguments(const OutputKind& kind, Destination destination,
                          const QStringList& files) const;

    // Where the output of `source` lands (settings are kept out of the name).
    QString outputPath(const OutputKind& kind, Destination destination,
                       const QString& source) const;

    // Runs the program in work/ and waits at most `timeoutMilliseconds`; a child still running
    // then is killed and the outcome is not finished.
    CliOutcome run(const QStringList& arguments, const Fault& fault = {},
                   int timeoutMilliseconds = 10000) const;

    // As run(), as the unprivileged user "nobody" through `setpriv`.
    CliOutcome runAs(const QString& setpriv, const QStringList& arguments) const;

    // Starts the program in work/ with `fault`; `mark` is created when a call is first failed or
    // held.
    void start(QProcess& process, const QStringList& arguments, const Fault& fault,
               const QString& mark = {}) const;

    // Waits until `path` exists or the child ends; false when it never appeared in time.
    static bool waitForFile(QProcess& process, const QString& path, int timeoutMilliseconds);

    // Reads standard output into `seen` until it holds `text` or the child ends; false when the
    // text never came in time.
    static bool waitForOutput(QProcess& process, const QByteArray& text, int timeoutMilliseconds,
                              QByteArray* seen);

    // The hidden helper files (temporary outputs, backups) below `directory`.
    static QStringList hiddenHelpers(const QString& directory);

private:
    // The environment and working folder of a run, the fault library's settings among them.
    void prepare(QProcess& process, const Fault& fault, const QString& mark) const;
    static CliOutcome finish(QProcess& process, int timeoutMilliseconds);

    QString m_home;
    QString m_work;
    QString m_out;
};

} // namespace Reliability

Q_DECLARE_METATYPE(Reliability::OutputKind)
Q_DECLARE_METATYPE(Reliability::Destination)
Q_DECLARE_METATYPE(Reliability::FilePoint)
