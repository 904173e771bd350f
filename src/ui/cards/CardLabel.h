#pragma once

#include <QLabel>
#include <QStaticText>

/// A text on a card. The style sheet gives it font and colour by its object name, and nothing else: a
/// label without box and background paints in a tenth of the time.
class CardLabel : public QLabel
{
    Q_OBJECT

public:
    explicit CardLabel(QWidget* parent);

    /// Takes the size of its text, as adjustSize() does, but keeps the measured text for painting.
    void fit();
    /// For a text that would be cut off or run into another: the property "long", by which the
    /// style sheet has a smaller font.
    void useSmallPrint(bool on);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isPlainLine() const;
    void layOutText();

    QStaticText mLaidOut;
    QString mLaidOutText;
    QFont mLaidOutFont;
};
