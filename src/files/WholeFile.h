#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// A file of the player's is replaced as a whole or stays as it was: the new one is complete on the disk
/// before it gets the name. [any] Two threads never write the same file.
class WholeFile
{
public:
    struct Outcome
    {
        enum Step { Written, NotOpened, NotWritten, NotSetAside };

        QString path;
        Step step = Written;
        QString reason = {}; // of a failure
        QString copy = {};   // where a former file that could not be read whole lies since now

        explicit operator bool() const { return step == Written; }
    };

    /// A former file that could not be read whole is first copied aside (SetAside); without a copy it is
    /// not touched. In a folder that takes no new file, the old one is written over, and gets its former
    /// content back when that fails; only there can a crash leave half a file.
    static Outcome write(const QString& path, const QByteArray& content);

    /// [gui] Hears of every write, on the thread that wrote. Set while no other thread writes.
    using Listener = std::function<void(const Outcome&)>;
    static void setListener(Listener listener);
};
