#pragma once

#include <QLockFile>
#include <QString>

#include <chrono>
#include <functional>

class QDeadlineTimer;
class QObject;
class QWidget;

/// One copy of the program on a data folder: two would overwrite each other's files. The first one holds a
/// lock file there and answers on a local socket, which only the same user can open; a later one ends, and
/// the first one's window comes to the front. What is sent over the socket is never read: its being opened
/// says all.
///
/// The lock goes with its owner, however that ends. Graphical thread; the functions before answer() need no
/// application object.
class SingleInstance
{
public:
    enum class Entry {
        First,    // goes on; also where no lock can be made, as on a read-only disk
        Answered, // the first one has been asked to show itself
        Unheard,  // the first one stands still
    };
    /// Longer than an ordinary start or end of the first one, which answers only between the two.
    static constexpr std::chrono::milliseconds LONGEST_WAIT{5000};

    explicit SingleInstance(const QString& folder);

    /// Before anything of the data folder is touched.
    Entry enter(std::chrono::milliseconds longest = LONGEST_WAIT);
    /// For the first one: calls `show` for each later one, as long as the listener lives.
    void answer(QObject* listener, const std::function<void()>& show) const;

    /// The window, which may be null, and before it the box that it waits for.
    static void bringToFront(QWidget* window);
    /// Tells that the first one stands still. The exit code.
    static int tellUnheard(int& argc, char** argv);

private:
    bool isAnswered(const QDeadlineTimer& deadline) const;
    void removeLockOfTheDead();

    QString mFolder;
    QString mSocket;
    QLockFile mLock;
};
