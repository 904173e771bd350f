#pragma once

class Orlo;
class QLabel;

/// The two lines that tell where the lattice has been transposed to: the prime steps, and the
/// frequencies of the central node and of 1/1.
class Readout
{
public:
    Readout(QLabel* steps, QLabel* frequencies, const Orlo* orlo);

    /// The list of steps is cut to the label's width, so that it is also due when that changes.
    void update();

private:
    void showSteps();
    void showFrequencies();

    QLabel* mSteps;
    QLabel* mFrequencies;
    const Orlo* mOrlo;
};
