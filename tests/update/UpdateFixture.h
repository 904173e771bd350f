#pragma once

#include "support/LogCatcher.h"
#include "update/LoopbackServer.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

/// Takes the addresses that would go to other programs.
class AddressCatcher : public QObject
{
    Q_OBJECT

public:
    AddressCatcher();
    ~AddressCatcher() override;
    QStringList take() { return std::exchange(mOpened, {}); }

public slots:
    void open(const QUrl& url) { mOpened.append(url.toString()); }

private:
    QStringList mOpened;
};

/// A server, a folder for downloads, and an eye on the boxes.
class UpdateFixture : public ::testing::Test
{
protected:
    UpdateFixture();
    ~UpdateFixture() override;

    template <class Condition>
    static bool soon(Condition&& condition)
    {
        return QTest::qWaitFor(condition, 20000);
    }
    /// The box that is open; null: none. A second one is a fault.
    static QMessageBox* box();
    /// Text and informative text of the next box, joined by "|"; and of the one that is open now.
    static QString nextBox();
    static QString boxText();
    static bool press(QMessageBox::StandardButton button);
    /// Lets the event loop of the program run until it ends by itself.
    template <class Action>
    static bool endsBy(Action&& action)
    {
        QTimer limit;
        QObject::connect(&limit, &QTimer::timeout, qApp, [] { QCoreApplication::exit(1); });
        limit.start(20000);
        QTimer::singleShot(0, qApp, action);
        return QCoreApplication::exec() == 0;
    }

    QStringList downloaded() const;
    QByteArray content(const QString& name) const;

    LogCatcher log;
    LoopbackServer server;
    AddressCatcher opened;
    QTemporaryDir root;
    const QString downloads = root.filePath(QStringLiteral("sub/downloads/"));
};
