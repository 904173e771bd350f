#pragma once

#include <QJsonObject>
#include <QPoint>

class VirtualDesk;

/// Where the balls and the controls lie in the program's window of its first start. It comes from
/// an equal window, shown on the same screen by a program of the tests' own, which ends again.
class ScreenMap
{
public:
    explicit ScreenMap(const VirtualDesk& desk);

    bool isValid() const { return !mMap.isEmpty(); }
    /// Centres, in the window. `view`: "circles" or "grapes". A name that is not there is a
    /// mistake of the test, and fatal.
    QPoint ball(const char* path, const char* view = "grapes") const { return point(view, path); }
    QPoint widget(const char* objectName) const { return point("widgets", objectName); }

private:
    QPoint point(const char* group, const char* name) const;

    QJsonObject mMap;
};
