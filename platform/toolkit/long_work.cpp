#include "platform/toolkit/long_work.h"

#include "platform/toolkit/wait_window.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QWindow>

#include <chrono>
#include <exception>
#include <semaphore>
#include <thread>

using namespace std::chrono_literals;

namespace platform {

namespace {

constexpr auto unseen = 30ms; ///< work that is done by then needs no window, and no painting of what it is about to replace

int waiting = 0;
std::atomic<int> runningThreads { 0 };

/// What the interface thread and the working thread share; lives until both have let go of it.
struct SharedWork {
    WorkProgress progress;
    std::function<void(WorkProgress &)> work;
    std::exception_ptr failure;
    std::binary_semaphore ended { 0 };
    QEventLoop *loop = nullptr; ///< looked at on the interface thread only
    bool done = false; ///< likewise
};

void runOnThread(std::shared_ptr<SharedWork> shared)
{
    try {
        shared->work(shared->progress);
    } catch (...) {
        shared->failure = std::current_exception();
    }
    shared->work = nullptr;
    shared->ended.release();
    QMetaObject::invokeMethod(
        qApp,
        [shared] {
            shared->done = true;
            if (shared->loop)
                shared->loop->quit();
        },
        Qt::QueuedConnection);
    shared.reset();
    --runningThreads;
    runningThreads.notify_all();
}

/// Keeps every kind of user input from all windows but the wait window.
class InputBarrier : public QObject {
public:
    explicit InputBarrier(const QWidget &passes)
        : m_passes(passes)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::Close:
        case QEvent::Drop:
            return !belongsToWaitWindow(watched);
        default:
            return false;
        }
    }

private:
    bool belongsToWaitWindow(QObject *watched) const
    {
        const auto *widget = qobject_cast<QWidget *>(watched);
        return widget ? widget->window() == &m_passes : watched == m_passes.windowHandle();
    }

    const QWidget &m_passes;
};

/// Lets painting and the wait window through until the work is done or cancelled.
void waitInLoop(const QString &caption, SharedWork &shared)
{
    QEventLoop loop;
    WaitWindow window(caption, shared.progress);
    const InputBarrier barrier(window);
    QObject::connect(&window, &WaitWindow::cancelled, &loop, &QEventLoop::quit);
    shared.loop = &loop;
    ++waiting;
    loop.exec(QEventLoop::ExcludeSocketNotifiers);
    --waiting;
    shared.loop = nullptr;
}

} // namespace

bool longWorkRuns() { return waiting > 0; }

void waitForAbandonedWork()
{
    for (int running = runningThreads; running > 0; running = runningThreads)
        runningThreads.wait(running);
}

void runLongWork(const QString &caption, const QString &cancelled, std::function<void(WorkProgress &)> work)
{
    auto shared = std::make_shared<SharedWork>();
    shared->work = std::move(work);
    ++runningThreads;
    std::thread(runOnThread, shared).detach();
    const bool isQuick = shared->ended.try_acquire_for(unseen);
    if (!isQuick)
        waitInLoop(caption, *shared);
    if (!isQuick && !shared->done) {
        shared->progress.stop.request_stop();
        throw Abort(cancelled);
    }
    if (shared->failure)
        std::rethrow_exception(shared->failure);
}

/// What stands on the screen meanwhile.
struct InterfaceWork::Wait {
    Wait(const QString &caption, const QString &unit)
        : progress { .stop {}, .rows { 0 }, .total { 0 }, .unit = unit }
        , window(caption, progress)
        , barrier(window)
    {
        QObject::connect(&window, &WaitWindow::cancelled, &window, [this] { progress.stop.request_stop(); });
        sinceTurn.start();
    }

    WorkProgress progress;
    WaitWindow window;
    InputBarrier barrier;
    QElapsedTimer sinceTurn;
};

InterfaceWork::InterfaceWork(const QString &caption, const QString &unit)
    : m_wait(std::make_unique<Wait>(caption, unit))
{
    ++waiting;
}

InterfaceWork::~InterfaceWork() { --waiting; }

bool InterfaceWork::report(std::int64_t done, std::int64_t total)
{
    constexpr int millisecondsBetweenTurns = 50;
    m_wait->progress.rows = done;
    m_wait->progress.total = total;
    if (m_wait->sinceTurn.elapsed() >= millisecondsBetweenTurns) {
        QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
        m_wait->sinceTurn.start();
    }
    return !m_wait->progress.stop.stop_requested();
}

} // namespace platform
