#pragma once

#include "app/TuningOrloApplication.h"
#include "external/MidiDouble.h"
#include "support/SoundDeviceDouble.h"
#include "support/TestHome.h"
#include "ui/window/MainWindow.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageBox>
#include <QTimer>

#include <utility>

/// A run of the program without the machine's devices, in a home of its own. Its message boxes are
/// confirmed, and their texts kept.
class ProgramFixture : public ::testing::Test
{
protected:
    explicit ProgramFixture(const char* argument = nullptr)
        : mArguments{const_cast<char*>("program"), const_cast<char*>(argument), nullptr}
        , mCount(argument ? 2 : 1)
    {
        application.useDevices(sound, midi);
        QObject::connect(&mConfirmer, &QTimer::timeout, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                boxes.append(box->text());
                EXPECT_FALSE(home.read(QStringLiteral("log.txt")).contains(box->text().toUtf8()))
                    << "before it is closed";
                answer(*box);
            }
        });
        mConfirmer.start(5);
    }
    ~ProgramFixture() override { end(); }

    /// Every 5 ms while a box is open, whose text has joined the boxes each time.
    virtual void answer(QMessageBox& box) { box.accept(); }
    /// With these options; no update is looked for.
    bool start(QJsonObject options = {})
    {
        options.insert(QStringLiteral("updateCheckInterval"), 4);
        return start(QJsonDocument(options).toJson());
    }
    bool start(const QByteArray& options)
    {
        home.write(QStringLiteral("options.json"), options);
        return startAsItIs();
    }
    bool startAsItIs() { return mRuns = application.init(); }
    void end()
    {
        if (std::exchange(mRuns, false))
            application.term();
    }
    void expectSaved(const QJsonObject& options) const
    {
        const QJsonDocument saved = QJsonDocument::fromJson(home.read(QStringLiteral("options.json")));
        for (auto it = options.begin(); it != options.end(); ++it)
            EXPECT_EQ(saved[it.key()], it.value()) << it.key().toStdString();
    }
    template <class Widget>
    Widget* find(const char* name) const
    {
        return application.mainWindow()->findChild<Widget*>(QLatin1StringView(name));
    }

private:
    char* mArguments[3];
    int mCount;

protected:
    const TestHome home;
    SoundDeviceDouble sound;
    MidiOutOverDouble midi;
    TuningOrloApplication application{mCount, mArguments};
    QStringList boxes;

private:
    QTimer mConfirmer;
    bool mRuns = false;
};
