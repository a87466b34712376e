// SPDX-License-Identifier: GPL-3.0-or-later
// Which ways of awaiting corrupt memory with this compiler? Each case runs 200 times; pass its
// number (1-9) to run it alone. Not part of the build:
//   g++ -std=c++20 -g -O1 -fsanitize=address,undefined coroutine-reproducer.cpp -o repro \
//     $(pkg-config --cflags --libs Qt6Core Qt6Concurrent) -I/usr/include/qcoro6/QCoro \
//     -I/usr/include/qcoro6 -I/usr/include/qcoro6/qcoro -fPIC -lQCoro6Core && ./repro 3
// With g++ 12.2 and QCoro 0.8, cases 3 and 4 end in a heap use-after-free; the others pass.
#include <QCoreApplication>
#include <QCoro/QCoroFuture>
#include <QCoro/QCoroTask>
#include <QCoro/QCoroTimer>
#include <QFuture>
#include <QString>
#include <QTimer>
#include <QtConcurrent>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace std::chrono_literals;

namespace {

QCoro::Task<std::vector<QString>> loadNames(QString prefix, std::shared_ptr<int> counter)
{
    co_await QCoro::sleepFor(1ms);
    ++*counter;
    co_return std::vector<QString>{prefix + QStringLiteral("-a"), prefix + QStringLiteral("-b")};
}

QCoro::Task<bool> isReady(std::shared_ptr<int> counter)
{
    co_await QCoro::sleepFor(1ms);
    co_return ++*counter > 0;
}

QCoro::Task<void> throwing(QString text)
{
    co_await QCoro::sleepFor(1ms);
    throw std::runtime_error(text.toStdString());
}

QFuture<int> startWork(std::shared_ptr<std::vector<int>> data)
{
    return QtConcurrent::run([data] { return int(data->size()); });
}

QCoro::Task<int> runCase(int number, int round)
{
    auto counter = std::make_shared<int>(0);
    auto data = std::make_shared<std::vector<int>>(100, round);
    const QString text = QStringLiteral("text %1").arg(round);
    switch (number) {
    case 1: // an unnamed task from a coroutine taking its arguments by value
        co_return int((co_await loadNames(text, counter)).size());
    case 2: // unnamed tasks inside a condition
        if (!co_await isReady(counter))
            co_return -1;
        co_return 1;
    case 3: // an unnamed future from a lambda that captures: FAILS
        co_return co_await QtConcurrent::run([text, data] { return int(text.size()); });
    case 4: // the same, awaited only for the trip to the pool and back: FAILS
        co_await QtConcurrent::run([data] { (void)data->size(); });
        co_return 1;
    case 5: // an exception out of an unnamed task
        try {
            co_await throwing(text);
        } catch (const std::exception&) {
            co_return 1;
        }
        co_return 0;
    case 6: { // the same local name in sibling scopes
        int sum = 0;
        {
            const QString local = text + QStringLiteral(" first");
            co_await QCoro::sleepFor(0ms);
            sum += int(local.size());
        }
        {
            const QString local = text + QStringLiteral(" second");
            co_await QCoro::sleepFor(0ms);
            sum += int(local.size());
        }
        co_return sum;
    }
    case 7: { // a named future from a lambda that captures
        QFuture<int> work = QtConcurrent::run([text, data] { return int(text.size()); });
        co_return co_await work;
    }
    case 8: // an unnamed future from a lambda that captures nothing
        co_return co_await QtConcurrent::run([] { return 1; });
    case 9: // an unnamed future returned by a function
        co_return co_await startWork(data);
    }
    co_return 0;
}

QCoro::Task<void> runAll(int only, int* total)
{
    for (int number = 1; number <= 9; ++number)
        if (only == 0 || only == number)
            for (int round = 0; round < 200; ++round)
                *total += co_await runCase(number, round);
    QCoreApplication::quit();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int only = argc > 1 ? std::atoi(argv[1]) : 0;
    int total = 0;
    QTimer::singleShot(0, [only, &total] { runAll(only, &total); });
    app.exec();
    std::printf("total %d\n", total);
    return total > 0 ? 0 : 1;
}
