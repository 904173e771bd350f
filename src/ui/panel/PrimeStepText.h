#pragma once

class QString;

/// A step of a prime in plain words: its ratio within the octave, its name where there is a common one, and
/// its size, as "3/2, a fifth of 702 cents". `prime` is one of the lattice's from 2 on.
QString primeStepText(int prime);
