#pragma once

#include <gtest/gtest.h>

#include <QLocale>

#include <clocale>
#include <string>

/// Base of suites whose texts and files must be the same where a comma stands for the decimal point: in
/// Qt's locale, and in the C library's, which stays as it is on a machine without a German one.
class LocaleTest : public ::testing::Test
{
protected:
    LocaleTest()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        std::setlocale(LC_ALL, "de_DE.UTF-8");
    }
    ~LocaleTest() override
    {
        QLocale::setDefault(mFormerQt);
        std::setlocale(LC_ALL, mFormerC.c_str());
    }

private:
    const QLocale mFormerQt;
    const std::string mFormerC = std::setlocale(LC_ALL, nullptr);
};
