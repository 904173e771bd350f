#pragma once

#include <QLabel>

/// A plain text of any length in a few lines at most. What does not fit is cut at the end, and the tooltip
/// has all of it. It asks for no width, so that no text widens the panel that it stands in.
class CutLabel : public QLabel
{
    Q_OBJECT

public:
    explicit CutLabel(int mostLines, QWidget* parent = nullptr);

    /// Spaces and any letter are places to break at.
    void setWhole(const QString& text);
    const QString& whole() const { return mWhole; }

    QSize sizeHint() const override { return {0, QLabel::sizeHint().height()}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void fit();

    const int mMostLines;
    QString mWhole;
};
