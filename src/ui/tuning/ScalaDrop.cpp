#include "ui/tuning/ScalaDrop.h"

#include "app/Accessors.h"

#include <QAbstractScrollArea>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

ScalaDrop::ScalaDrop(QWidget* window)
    : QObject(window)
{
    // The scenes of these would take every drop and do nothing with it.
    for (auto* area : window->findChildren<QAbstractScrollArea*>()) {
        area->setAcceptDrops(false);
        area->viewport()->setAcceptDrops(false);
    }
    window->setAcceptDrops(true);
    window->installEventFilter(this);
}

bool ScalaDrop::isScale(const QString& path)
{
    return path.endsWith(QStringLiteral(".scl"), Qt::CaseInsensitive);
}

bool ScalaDrop::isKeyboard(const QString& path)
{
    return path.endsWith(QStringLiteral(".kbm"), Qt::CaseInsensitive);
}

/// Empty for anything but one of each kind at most.
QStringList ScalaDrop::pathsOf(const QDropEvent& event) const
{
    QStringList paths;
    int scales = 0;
    int keyboards = 0;
    for (const QUrl& url : event.mimeData()->urls()) {
        const QString path = url.toLocalFile();
        scales += isScale(path) ? 1 : 0;
        keyboards += isKeyboard(path) ? 1 : 0;
        if (!isScale(path) && !isKeyboard(path))
            return {};
        paths.append(path);
    }
    return scales <= 1 && keyboards <= 1 ? paths : QStringList();
}

bool ScalaDrop::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove
        && event->type() != QEvent::Drop)
        return QObject::eventFilter(watched, event);
    auto* drop = static_cast<QDropEvent*>(event);
    const QStringList paths = mEnabled ? pathsOf(*drop) : QStringList();
    if (paths.isEmpty()) {
        drop->ignore();
        if (event->type() != QEvent::DragMove)
            app::say(mEnabled
                         ? QStringLiteral("Only a Scala file (.scl), with its keyboard (.kbm) or without, "
                                          "can be dropped here.")
                         : QStringLiteral("Chords cannot be changed now."));
        return true;
    }
    drop->setDropAction(Qt::CopyAction); // the file stays where it is
    drop->accept();
    if (event->type() == QEvent::Drop)
        emit dropped(paths);
    return true;
}
