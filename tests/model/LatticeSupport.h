#pragma once

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QStringList>

using namespace Qt::StringLiterals;

/// A lattice with a home and options of its own, and everything it reports, in order.
class LatticeFixture
{
public:
    LatticeFixture()
    {
        app::setParts({.orlo = &orlo, .settings = &settings});
        const auto hear = [this]<class... Values>(void (Orlo::*signal)(Values...), const char* name) {
            QObject::connect(&orlo, signal, [this, name](const Values&... values) {
                said.append(QStringList{QLatin1StringView(name), text(values)...}.join(u' '));
            });
        };
        hear(&Orlo::transposeOrBaseFrequencyChanged, "changed");
        hear(&Orlo::showCard, "show card");
        hear(&Orlo::hideCard, "hide card");
        hear(&Orlo::addNodeToStack, "add");
        hear(&Orlo::showNodesInStack, "show nodes");
        hear(&Orlo::hideNodeInStack, "hide node");
        hear(&Orlo::toggleNodeInStack, "toggle");
        hear(&Orlo::removeNodeInStack, "remove");
        hear(&Orlo::selectNodeInStack, "select");
        hear(&Orlo::setHoldNodeInStack, "hold");
        hear(&Orlo::setAlteredNodeInStack, "alter");
        hear(&Orlo::resetNodeStack, "reset");
    }
    ~LatticeFixture() { app::setParts({}); }
    LatticeFixture(const LatticeFixture&) = delete;
    LatticeFixture& operator=(const LatticeFixture&) = delete;

    void readRoot(const QByteArray& root)
    {
        orlo.read(QJsonDocument::fromJson(R"({"root": )" + root + '}').object());
        said.clear();
    }

    OrloBall* ball(const char* path) const
    {
        OrloBall* found = orlo.rootBall();
        for (const int step : OrloPath(QLatin1StringView(path)).toList())
            found = found ? found->childAtPrime(step) : nullptr;
        return found;
    }

    /// What was reported since the last call.
    std::string takeSaid() { return std::exchange(said, {}).join(u", "_s).toStdString(); }

    const TestHome home;
    Settings settings;
    Orlo orlo;

private:
    static QString text(const OrloRatio& ratio)
    {
        return u"%1/%2"_s.arg(ratio.numerator()).arg(ratio.denominator());
    }
    static QString text(bool on) { return on ? u"on"_s : u"off"_s; }

    QStringList said;
};
