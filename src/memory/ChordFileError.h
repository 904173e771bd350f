#pragma once

#include <QList>
#include <QString>

#include <boost/rational.hpp>

/// Invalid ratios of a chord file, such as "3/0". Everything else of the file has been read
/// when this is thrown.
class ChordFileError : public boost::bad_rational
{
public:
    struct Part
    {
        int slot;
        QString text;
    };

    explicit ChordFileError(const QList<Part>& parts);
    ~ChordFileError() override;

    const QList<Part>& parts() const { return mParts; }
    void log(const QString& path) const;

private:
    QList<Part> mParts;
};
