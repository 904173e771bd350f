#pragma once

#include "end-to-end/RunningProgram.h"
#include "end-to-end/VirtualDesk.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QString>
#include <QStringList>

/// Base of the tests that run the whole program: a desk and an empty home for each.
class EndToEndTest : public ::testing::Test
{
protected:
    void SetUp() override;

    /// "options.json" as it lies on the disk.
    QJsonObject options() const;
    /// Before a start.
    void writeOptions(const QJsonObject& options) const;
    QString log() const;
    /// In the order of the patch menu, without the ending.
    static QStringList voicePatches();
    /// What chooses this one of them.
    static QString patchKey(const QString& patch);
    /// Starts of the program that the log tells of.
    qsizetype banners() const;

    TestHome home;
    VirtualDesk desk;
};
