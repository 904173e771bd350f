#pragma once

#include <QString>

/// Why this file or folder, which is there, cannot be written; empty when it can. [any]
QString whyNotWritable(const QString& path);
