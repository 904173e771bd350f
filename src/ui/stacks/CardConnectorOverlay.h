#pragma once

#include <QHash>
#include <QLine>
#include <QList>
#include <QWidget>

class CardWidget;
class OrloBallWidget;
class OrloView;

/// A clear sheet over the page with the dotted lines that tie the cards of the first stack to
/// their balls. Takes no pointer events.
class CardConnectorOverlay : public QWidget
{
    Q_OBJECT

public:
    explicit CardConnectorOverlay(QWidget* parent);

    void init(const OrloView* view);
    /// The connector must be removed before ball or card is deleted.
    void addConnector(const OrloBallWidget* ball, const CardWidget* card);
    void removeConnector(const OrloBallWidget* ball);

    const QHash<const OrloBallWidget*, const CardWidget*>& connectors() const { return mConnectors; }
    /// As drawn, in this widget's coordinates: from the ball to its card, and from the left edge
    /// to the ball; none while the stacks are hidden.
    QList<QLine> linesOf(const OrloBallWidget* ball) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QHash<const OrloBallWidget*, const CardWidget*> mConnectors;
    const OrloView* mView = nullptr;
};
