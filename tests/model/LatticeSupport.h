#pragma once

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QStringList>

/// A lattice with a home of its own, and everything it reports, in order.
class LatticeFixture
{
public:
    LatticeFixture()
    {
        app::setParts({.orlo = &orlo, .settings = &settings});
        const auto ratio = [this](const char* name) {
            return [this, name](const OrloRatio& r) { say(QLatin1StringView(name), r); };
        };
        const auto flag = [this](const char* name) {
            return [this, name](const OrloRatio& r, bool on) {
                say(QLatin1StringView(name), r);
                said.last() += on ? QStringLiteral(" on") : QStringLiteral(" off");
            };
        };
        const auto plain = [this](const char* name) {
            return [this, name] { said.append(QLatin1StringView(name)); };
        };
        const Orlo* from = &orlo;
        QObject::connect(from, &Orlo::transposeOrBaseFrequencyChanged, plain("changed"));
        QObject::connect(from, &Orlo::showCard, ratio("show card"));
        QObject::connect(from, &Orlo::hideCard, ratio("hide card"));
        QObject::connect(from, &Orlo::addNodeToStack, ratio("add"));
        QObject::connect(from, &Orlo::showNodesInStack, plain("show nodes"));
        QObject::connect(from, &Orlo::hideNodeInStack, ratio("hide node"));
        QObject::connect(from, &Orlo::toggleNodeInStack, flag("toggle"));
        QObject::connect(from, &Orlo::removeNodeInStack, ratio("remove"));
        QObject::connect(from, &Orlo::selectNodeInStack, flag("select"));
        QObject::connect(from, &Orlo::setHoldNodeInStack, flag("hold"));
        QObject::connect(from, &Orlo::setAlteredNodeInStack, flag("alter"));
        QObject::connect(from, &Orlo::resetNodeStack, plain("reset"));
    }
    ~LatticeFixture() { app::setParts({}); }
    LatticeFixture(const LatticeFixture&) = delete;
    LatticeFixture& operator=(const LatticeFixture&) = delete;

    void readRoot(const QByteArray& root)
    {
        const QJsonDocument document = QJsonDocument::fromJson(R"({"root": )" + root + '}');
        ASSERT_TRUE(document.isObject());
        orlo.read(document.object());
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
    QStringList takeSaid() { return std::exchange(said, {}); }

    const TestHome home;
    Settings settings;
    Orlo orlo;

private:
    void say(QLatin1StringView name, const OrloRatio& ratio)
    {
        said.append(QStringLiteral("%1 %2/%3").arg(name).arg(ratio.numerator()).arg(ratio.denominator()));
    }

    QStringList said;
};
