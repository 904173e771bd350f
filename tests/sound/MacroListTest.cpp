#include "sound/MacroList.h"

#include <gtest/gtest.h>

TEST(MacroList, ReadsNamesAndDefaults)
{
    struct Row
    {
        const char* text;
        QStringList names;
        QList<float> defaults;
    };
    const auto names = [](const char* joined) { return QString::fromLatin1(joined).split(u'|'); };
    const Row rows[] = {
        {"A(0.25):B::C(x)", names("A|B||C"), {0.25F, -1.0F, -1.0F, 0.0F}},
        {"A)0.5(", names("A)0.5("), {-1.0F}},
        {")(0.5)", names(")(0.5)"), {-1.0F}}, // the first ")" counts
        {"A(0.5", names("A(0.5"), {-1.0F}},
        {"A(0.5)tail", names("A"), {0.5F}},
        {"A(1)(0):(0.5)", names("A|"), {1.0F, 0.5F}},
        {"A()", names("A"), {0.0F}},
        {"A(0,5)", names("A"), {0.0F}}, // a point, whatever the locale
        {"A(nan):B(inf)", names("A|B"), {0.0F, 0.0F}},
        {"", {QString()}, {-1.0F}},
        {"1:2:3:4:5:6:7:8:9(1)", names("1|2|3|4|5|6|7|8|9"), {-1, -1, -1, -1, -1, -1, -1, -1, 1}},
    };
    for (const Row& row : rows) {
        const MacroList list = MacroList::parse(QString::fromLatin1(row.text));
        EXPECT_EQ(list.names, row.names) << row.text;
        EXPECT_EQ(list.defaults, row.defaults) << row.text;
    }
}
