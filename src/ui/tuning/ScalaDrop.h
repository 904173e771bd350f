#pragma once

#include <QObject>
#include <QStringList>

class QDropEvent;
class QWidget;

/// Takes Scala files that are dropped on a window, and refuses all other things. [gui]
class ScalaDrop : public QObject
{
    Q_OBJECT

public:
    /// The window's child. Views in it let drops through to the window.
    explicit ScalaDrop(QWidget* window);

    /// A drop is refused with a note while this is false.
    void setEnabled(bool enabled) { mEnabled = enabled; }

    static bool isScale(const QString& path);
    static bool isKeyboard(const QString& path);

signals:
    /// One scale, one keyboard, or both.
    void dropped(const QStringList& paths);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QStringList pathsOf(const QDropEvent& event) const;

    bool mEnabled = true;
};
