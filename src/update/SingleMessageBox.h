#pragma once

#include <QMessageBox>
#include <QPointer>

#include <functional>

/// The one message box that its owner has open; a newer one takes the place of the older. Never
/// modal: the autosave and the end of the program do not wait for an answer.
class SingleMessageBox
{
public:
    struct Content
    {
        QMessageBox::Icon icon;
        QString title;
        QString text; // rich, as from h3()
        QString informative;
        QMessageBox::StandardButtons buttons;
        QMessageBox::StandardButton standard; // the default button
    };

    SingleMessageBox() = default;
    ~SingleMessageBox();
    SingleMessageBox(const SingleMessageBox&) = delete;
    SingleMessageBox& operator=(const SingleMessageBox&) = delete;

    static QString h3(const QString& plainText);

    /// `answered` gets the button, or NoButton when the box was closed without one.
    void show(const Content& content, std::function<void(QMessageBox::StandardButton)> answered = {});
    /// Without an answer.
    void close();
    bool isOpen() const { return mBox; }

private:
    QPointer<QMessageBox> mBox; // deletes itself once it is answered
};
