#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

/// Answers the boxes that the window opens while this lives, each as a player would: by a click on
/// a button, or by typing and a click. A box without an answer is closed, and its text kept.
class BoxAnswers : public QObject
{
public:
    BoxAnswers();

    /// Yes or No to the next question.
    void answer(bool yes) { mAnswers.append({yes, QString()}); }
    /// Types this and accepts, or cancels.
    void type(const QString& text, bool accept = true) { mAnswers.append({accept, text}); }

    /// Title and text of all boxes since the last time, as "title|text".
    QStringList take() { return std::exchange(mShown, {}); }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    struct Answer
    {
        bool accept;
        QString text;
    };
    QList<Answer> mAnswers;
    QStringList mShown;
};
