#pragma once

#include <clocale>
#if defined(__APPLE__)
#include <xlocale.h>
#endif

/// Makes the calling thread read and write numbers with a point while it lives. Pure Data reads
/// "0.25" by the current locale, and a desktop that writes "0,25" would make it 0.
class NumericLocale
{
public:
    /// [any]
    NumericLocale()
        : mPrevious(uselocale(pointLocale()))
    {
    }
    /// [any] On the same thread.
    ~NumericLocale() { uselocale(mPrevious); }
    NumericLocale(const NumericLocale&) = delete;
    NumericLocale& operator=(const NumericLocale&) = delete;

private:
    static locale_t pointLocale()
    {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t mPrevious;
};
