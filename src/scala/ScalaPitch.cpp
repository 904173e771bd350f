#include "scala/ScalaPitch.h"

#include <QByteArray>
#include <QLocale>

#include <charconv>
#include <cmath>

namespace {

constexpr double CENTS = 1200.0;  // of an octave
constexpr double MAX_CENTS = 1e9; // of a pitch line, more than a line has digits for in a ratio

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Walks along a pitch line.
class Cursor
{
public:
    explicit Cursor(QByteArrayView text)
        : mText(text)
    {
    }

    bool isAt(char c) const { return !mText.isEmpty() && mText.front() == c; }
    bool take(char c)
    {
        const bool there = isAt(c);
        if (there)
            mText = mText.sliced(1);
        return there;
    }
    /// '-' for a minus sign.
    char sign()
    {
        if (take('-'))
            return '-';
        take('+');
        return '+';
    }
    QByteArrayView digits()
    {
        qsizetype length = 0;
        while (length < mText.size() && isDigit(mText[length]))
            ++length;
        const QByteArrayView found = mText.first(length);
        mText = mText.sliced(length);
        return found;
    }
    void skipBlanks()
    {
        while (take(' ') || take('\t')) {
        }
    }
    /// Whether the number may go on in a way that is not understood: another slash, a comma, an exponent.
    bool goesOn() const
    {
        return !mText.isEmpty()
               && (isDigit(mText.front()) || QByteArrayView("./,:\\^*+-eE").contains(mText.front()));
    }

private:
    QByteArrayView mText;
};

/// Of a number of any length; minus infinity of 0.
long double log2Of(QByteArrayView digits)
{
    constexpr qsizetype enough = 19; // significant digits, which fit in 64 bits
    while (digits.startsWith('0'))
        digits = digits.sliced(1);
    const QByteArrayView head = digits.first(qMin(enough, digits.size()));
    unsigned long long value = 0;
    std::from_chars(head.begin(), head.end(), value);
    return std::log2(static_cast<long double>(value))
           + static_cast<long double>(digits.size() - head.size()) * std::log2(10.0L);
}

bool isZero(QByteArrayView digits)
{
    return log2Of(digits) < 0.0L;
}

std::optional<unsigned long long> whole(QByteArrayView digits)
{
    unsigned long long value = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

/// Of two numbers above 0; beyond 64 bits by its cents.
ScalaPitch fraction(QByteArrayView above, QByteArrayView below)
{
    const auto n = whole(above);
    const auto d = whole(below);
    if (n && d)
        return ScalaPitch::of(OrloRatio(*n, *d));
    return ScalaPitch::ofCents(static_cast<double>((log2Of(above) - log2Of(below)) * CENTS));
}

OrloRatio inverse(const OrloRatio& ratio)
{
    return OrloRatio(ratio.denominator(), ratio.numerator());
}

/// The cursor stands behind the first digits.
std::optional<ScalaPitch> readCents(Cursor& cursor, char sign, QByteArrayView digits, QString& reason)
{
    const QByteArrayView decimals = cursor.digits();
    const double cents = (sign + digits.toByteArray() + '.' + decimals.toByteArray() + '0').toDouble();
    if (digits.isEmpty() && decimals.isEmpty())
        reason = QStringLiteral("This is not a pitch.");
    else if (!(std::abs(cents) <= MAX_CENTS))
        reason = QStringLiteral("These are too many cents.");
    else
        return ScalaPitch::ofCents(cents);
    return std::nullopt;
}

std::optional<ScalaPitch> readRatio(Cursor& cursor, char sign, QByteArrayView digits, QString& reason)
{
    QByteArrayView below("1");
    Cursor ahead = cursor; // blanks before anything but a slash begin a remark
    ahead.skipBlanks();
    if (ahead.take('/')) {
        cursor = ahead;
        cursor.skipBlanks();
        sign = cursor.isAt('-') ? '-' : sign;
        cursor.sign();
        below = cursor.digits();
    }
    if (digits.isEmpty())
        reason = QStringLiteral("This is not a pitch.");
    else if (below.isEmpty())
        reason = QStringLiteral("There is no number behind the slash.");
    else if (sign == '-')
        reason = QStringLiteral("A ratio is not negative.");
    else if (isZero(digits) || isZero(below))
        reason = QStringLiteral("A ratio has no 0.");
    else
        return fraction(digits, below);
    return std::nullopt;
}

} // namespace

ScalaPitch ScalaPitch::of(const OrloRatio& ratio)
{
    const long double quotient =
        static_cast<long double>(ratio.numerator()) / static_cast<long double>(ratio.denominator());
    return {.ratio = ratio, .cents = static_cast<double>(std::log2(quotient) * CENTS)};
}

ScalaPitch ScalaPitch::ofCents(double cents)
{
    return {.ratio = OrloRatio(), .cents = cents};
}

std::optional<ScalaPitch> ScalaPitch::fromText(QByteArrayView line, QString& reason)
{
    Cursor cursor(line);
    cursor.skipBlanks();
    const char sign = cursor.sign();
    const QByteArrayView digits = cursor.digits();
    auto pitch =
        cursor.take('.') ? readCents(cursor, sign, digits, reason) : readRatio(cursor, sign, digits, reason);
    if (!pitch || !cursor.goesOn())
        return pitch;
    reason = QStringLiteral("What stands behind the pitch is not understood.");
    return std::nullopt;
}

QString ScalaPitch::toText() const
{
    if (isExact())
        return QStringLiteral("%1/%2").arg(ratio.numerator()).arg(ratio.denominator());
    const QString text = QString::number(cents, 'f', QLocale::FloatingPointShortest);
    return text.contains(u'.') ? text : text + QStringLiteral(".0");
}

double ScalaPitch::factor() const
{
    if (isExact())
        return static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator());
    return std::exp2(cents / CENTS);
}

ScalaPitch ScalaPitch::operator+(const ScalaPitch& other) const
{
    if (!isExact() || !other.isExact() || !ratio.fitsWhenMultipliedWith(other.ratio))
        return ofCents(cents + other.cents);
    OrloRatio product = ratio;
    product *= other.ratio;
    return of(product);
}

// By halves: only products that are part of the result are formed, so none is lost beyond 64 bits for
// nothing.
ScalaPitch ScalaPitch::times(int count) const
{
    if (count == 0)
        return {};
    if (count == -1)
        return isExact() ? of(inverse(ratio)) : ofCents(-cents);
    if (count == 1)
        return *this;
    const ScalaPitch half = times(count / 2);
    const ScalaPitch even = half + half;
    return count % 2 == 0 ? even : even + times(count % 2);
}
