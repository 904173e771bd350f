#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

class OrloPath;
class OrloRatio;

/// A pitch reached by up to a hundred signed prime steps, such as a transposition. Otherwise the
/// same as OrloPath.
class OrloPathUnlimited
{
public:
    /// The root, 1/1.
    OrloPathUnlimited();
    /// Reads the text form; see storeFromString.
    explicit OrloPathUnlimited(const QString& text);
    /// One step, not checked.
    explicit OrloPathUnlimited(signed char step);
    OrloPathUnlimited(const OrloPathUnlimited& other);
    explicit OrloPathUnlimited(const OrloPath* path);
    OrloPathUnlimited& operator=(const OrloPathUnlimited& other);

    /// Reads a text like "/-2/3/3". Steps past the limit are dropped; a step that is no prime
    /// of the lattice gives the invalid path and a debug line.
    void storeFromString(const QString& text);

    /// Concatenation, without any cancelling. Keeps one step more than the limit.
    OrloPathUnlimited operator+(const OrloPathUnlimited& other) const;
    bool operator==(const OrloPathUnlimited& other) const;

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

    /// The largest absolute step; 1 for the root.
    int getHighestPrime() const;

private:
    static constexpr int LIMIT = 100;

    // The limit, the one step that concatenation adds, and the terminator.
    signed char mSteps[LIMIT + 2];
};

size_t qHash(const OrloPathUnlimited& path, size_t seed = 0);

Q_DECLARE_METATYPE(OrloPathUnlimited)
