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
        const auto plain = [this](auto signal, const char* name) {
            QObject::connect(&orlo, signal, [this, name] { said.append(QLatin1StringView(name)); });
        };
        const auto ratio = [this](auto signal, const char* name) {
            QObject::connect(&orlo, signal, [this, name](const OrloRatio& r) { say(name, r); });
        };
        const auto flag = [this](auto signal, const char* name) {
            QObject::connect(&orlo, signal, [this, name](const OrloRatio& r, bool on) {
                say(name, r, on ? " on" : " off");
            });
        };
        plain(&Orlo::transposeOrBaseFrequencyChanged, "changed");
        ratio(&Orlo::showCard, "show card");
        ratio(&Orlo::hideCard, "hide card");
        ratio(&Orlo::addNodeToStack, "add");
        plain(&Orlo::showNodesInStack, "show nodes");
        ratio(&Orlo::hideNodeInStack, "hide node");
        flag(&Orlo::toggleNodeInStack, "toggle");
        ratio(&Orlo::removeNodeInStack, "remove");
        flag(&Orlo::selectNodeInStack, "select");
        flag(&Orlo::setHoldNodeInStack, "hold");
        flag(&Orlo::setAlteredNodeInStack, "alter");
        plain(&Orlo::resetNodeStack, "reset");
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
    void say(const char* name, const OrloRatio& ratio, const char* end = "")
    {
        said.append(u"%1 %2/%3"_s.arg(QLatin1StringView(name)).arg(ratio.numerator()).arg(ratio.denominator())
                    + QLatin1StringView(end));
    }

    QStringList said;
};
