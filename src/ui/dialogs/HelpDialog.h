#pragma once

#include "ui/dialogs/HelpSection.h"

#include <QDialog>

/// What presses and keys do, as a list to scroll. Neither modal nor kept: it is deleted when it is closed.
class HelpDialog : public QDialog
{
    Q_OBJECT

public:
    HelpDialog(const QList<HelpSection>& sections, QWidget* parent);
};
