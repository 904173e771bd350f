#pragma once

class QString;

/// [any] A text from elsewhere - a device, a server, a file - as it may stand in a line of the log.
///
/// What could end the line, hide text or turn its direction comes as \n, \x1b or \u202e: controls,
/// separators of lines and paragraphs, marks of format and what is no character. All else is unchanged.
QString logText(const QString& foreign);
