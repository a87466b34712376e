// SPDX-License-Identifier: GPL-3.0-or-later
// Collects the log lines of one category while it lives, so that tests can check exact texts and
// levels. Main thread tests only; installs a Qt message handler and restores the previous one.
#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <utility>

class LogCapture
{
public:
    struct Line
    {
        QtMsgType type;
        QString text;
        friend bool operator==(const Line&, const Line&) = default;
    };

    explicit LogCapture(QString category)
        : m_category(std::move(category))
    {
        current() = this;
        m_previous = qInstallMessageHandler(&LogCapture::handle);
    }
    ~LogCapture()
    {
        qInstallMessageHandler(m_previous);
        current() = nullptr;
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QList<Line> lines() const { return m_lines; }
    QStringList texts() const
    {
        QStringList texts;
        for (const Line& line : m_lines)
            texts.append(line.text);
        return texts;
    }
    void clear() { m_lines.clear(); }

private:
    static LogCapture*& current()
    {
        static LogCapture* capture = nullptr;
        return capture;
    }

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        LogCapture* capture = current();
        if (capture && context.category && capture->m_category == QLatin1String(context.category))
            capture->m_lines.append(Line{type, text});
        else if (capture && capture->m_previous)
            capture->m_previous(type, context, text);
    }

    QString m_category;
    QtMessageHandler m_previous = nullptr;
    QList<Line> m_lines;
};
