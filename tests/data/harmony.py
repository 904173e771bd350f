#!/usr/bin/env python3
"""Writes harmony.tsv: chords, and what they are, worked out with whole numbers of any size and 50 digits.

Columns: ratios, otonal numbers, utonal numbers, which is simpler, prime limit, fundamental in Hz with 1/1 at
440 Hz, and for each pair from low to high its cents, harmonic distance, beats a second and partials.
"""
import random
import sys
from decimal import Decimal, getcontext
from fractions import Fraction
from math import gcd, lcm

getcontext().prec = 50
PRIMES = [2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31]
ONE_ONE = 440


def log2(value):
    return (Decimal(value.numerator).ln() - Decimal(value.denominator).ln()) / Decimal(2).ln()


def whole(ratios):
    common = lcm(*(ratio.denominator for ratio in ratios))
    numbers = [int(ratio * common) for ratio in ratios]
    divisor = gcd(*numbers)
    return [number // divisor for number in numbers]


def odd(number):
    while number % 2 == 0:
        number //= 2
    return number


def weight(numbers):
    return max(map(odd, numbers)), max(numbers), sum(numbers)


def limit(numbers):
    highest = 1
    for number in numbers:
        for prime in PRIMES:
            while number % prime == 0:
                number //= prime
                highest = max(highest, prime)
        if number > 1:
            return 0
    return highest


def pair(low, high):
    ratio = high / low
    partials = [(abs(a - b * ratio), a, b) for a in range(1, 17) for b in range(1, a + 1)]
    apart, a, b = min(partials)
    beats = float(apart * low * ONE_ONE)
    distance = log2(Fraction(ratio.numerator * ratio.denominator))
    return f"{float(1200 * log2(ratio))!r} {float(distance)!r} {beats!r} {a} {b}"


def row(ratios):
    ratios = sorted(set(ratios))
    up, down = whole(ratios), whole([1 / ratio for ratio in ratios])
    simpler = "utonal" if weight(down) < weight(up) else "otonal"
    pairs = [pair(low, high) for i, low in enumerate(ratios) for high in ratios[i + 1:]]
    columns = [" ".join(f"{r.numerator}/{r.denominator}" for r in ratios), " ".join(map(str, up)),
               " ".join(map(str, down)), simpler, str(limit(up)), repr(float(ratios[0] * ONE_ONE / up[0])),
               ";".join(pairs)]
    return "\t".join(columns)


def chance(rng, steps):
    ratio = Fraction(1)
    for _ in range(rng.randint(1, steps)):
        prime = rng.choice(PRIMES)
        step = Fraction(prime, 1 if prime == 2 else 1 << (prime.bit_length() - 1))
        ratio = ratio * step if rng.random() < 0.5 else ratio / step
    small = max(ratio.numerator, ratio.denominator) < 2**64 and Fraction(1, 20) < ratio < 40
    return ratio if small else chance(rng, steps)


KNOWN = ["1/1 5/4 3/2", "1/1 6/5 3/2", "1/1 4/3 3/2", "1/1 2/1 4/1", "1/1 81/80", "4/5 1/1 6/5 7/5 9/5",
         "1/1 11/8 13/8 31/16", "1/1 37/32", "3/1 3/1 1/3",
         "18446744073709551557/18446744073709551556 18446744073709551533/18446744073709551532 1/1"]


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 20
    rng = random.Random(17)
    for text in KNOWN:
        print(row([Fraction(part) for part in text.split()]))
    for _ in range(count):
        print(row([chance(rng, 12) for _ in range(rng.randint(3, 6))] + [Fraction(1)]))


main()
