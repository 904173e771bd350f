#pragma once

#include <gtest/gtest.h>

#include <QLocale>

#include <clocale>
#include <string>

/// Where a comma stands for the decimal point while a test runs.
enum class DecimalComma { Nowhere, InQt, InC };

/// Base of suites whose texts and files must be the same under every locale. Skips what this
/// machine has no locale for.
class LocaleTest : public ::testing::TestWithParam<DecimalComma>
{
public:
    static std::string name(const ::testing::TestParamInfo<DecimalComma>& info)
    {
        static const char* const NAMES[] = {"Plain", "CommaInQt", "CommaInC"};
        return NAMES[static_cast<int>(info.param)];
    }

protected:
    void SetUp() override
    {
        if (GetParam() == DecimalComma::InQt)
            QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        if (GetParam() == DecimalComma::InC && !std::setlocale(LC_ALL, "de_DE.UTF-8"))
            GTEST_SKIP() << "The locale de_DE.UTF-8 is not installed.";
    }

    void TearDown() override
    {
        QLocale::setDefault(mFormerQt);
        std::setlocale(LC_ALL, mFormerC.c_str());
    }

private:
    const QLocale mFormerQt;
    const std::string mFormerC = std::setlocale(LC_ALL, nullptr);
};

#define IN_ALL_LOCALES(Suite)                                                                                \
    INSTANTIATE_TEST_SUITE_P(                                                                                \
        , Suite, ::testing::Values(DecimalComma::Nowhere, DecimalComma::InQt, DecimalComma::InC),            \
        &LocaleTest::name)
