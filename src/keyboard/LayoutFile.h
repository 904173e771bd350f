#pragma once

#include "keyboard/Layout.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/// The player's layouts as a JSON file of the data folder. [gui], but text() and fromText(), which are [any].
namespace LayoutFile {

/// In the data folder.
inline const QString NAME = QStringLiteral("midi_layouts.json");
inline constexpr int MAX_LAYOUTS = 256;

struct Reading
{
    QList<Layout> layouts = {};
    QStringList complaints = {}; // what was left out and why, for the player
};

/// What is good is taken. Nothing when there is no file. A file of which something is left out is logged, and
/// marked to be set aside before it is written over (SetAside.h).
Reading read(const QString& path);
Reading fromText(const QByteArray& text);
/// What WholeFile or SoonSaver writes. Holds the values of each layout's kind only.
QByteArray text(const QList<Layout>& layouts);

} // namespace LayoutFile
