#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

class OrloRatio;

/// A ball's place in the lattice: at most six signed prime steps from the root, where 3 means up by
/// the octave-reduced third harmonic and -3 down by it. A plain value, copied into the sound
/// engine's command chunks as it stands.
class OrloPath
{
public:
    /// The root, 1/1.
    OrloPath();
    /// Reads the text form; see storeFromString.
    explicit OrloPath(const QString& text);
    /// One step, not checked.
    explicit OrloPath(signed char step);
    OrloPath(const OrloPath& other);
    OrloPath& operator=(const OrloPath& other);

    /// Reads a text like "/-2/3/3". Steps past the limit are dropped; a step that is no prime
    /// of the lattice gives the invalid path and a debug line.
    void storeFromString(const QString& text);

    /// Concatenation, without any cancelling. Keeps one step more than the limit.
    OrloPath operator+(const OrloPath& other) const;
    bool operator==(const OrloPath& other) const;

    bool isValid() const;
    int length() const;
    QString toString() const;
    /// "/" for the root; the text of a valid path reads back to the same path.
    QString parseToString() const;
    /// Zero-terminated.
    const signed char* toCharArray() const { return mSteps; }
    QList<int> toList() const;
    OrloRatio toRatio() const;

    /// Appends a step, which is not checked. At the limit nothing happens.
    void addLeaf(signed char step);
    void removeLeaf();

private:
    static constexpr int LIMIT = 6;

    // The limit, the one step that concatenation adds, and the terminator.
    signed char mSteps[LIMIT + 2];
};

size_t qHash(const OrloPath& path, size_t seed = 0);

Q_DECLARE_METATYPE(OrloPath)
