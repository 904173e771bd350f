#pragma once

#include <QDir>
#include <QTemporaryDir>

#include <functional>

/// An empty home for the files of one test: QStandardPaths lead into it while it lives.
class TestHome
{
public:
    TestHome();
    ~TestHome();
    TestHome(const TestHome&) = delete;
    TestHome& operator=(const TestHome&) = delete;

    /// Where the program keeps its files; made here.
    QDir configDir() const;
    QString path(const QString& fileName) const { return configDir().filePath(fileName); }

    void write(const QString& fileName, const QByteArray& content) const;
    QByteArray read(const QString& fileName) const;
    /// Runs it while the files can be written but the folder takes no new one; not even a superuser's.
    bool whenNoFileCanBeMade(const std::function<bool()>& work) const;
    /// Runs it while neither files nor folders can be written.
    bool whenNothingCanBeWritten(const std::function<bool()>& work) const;

private:
    bool underModes(unsigned ofFiles, unsigned ofFolders, const std::function<bool()>& work) const;

    QTemporaryDir mDir;
    QByteArray mFormerDataHome;
};
