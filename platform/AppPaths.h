#pragma once

#include <QString>

// The application folder and the path conventions of the program.
//
// The application folder is where the preferences, the language files, the archive and the
// messages live: $TESSALY_HOME when set; else the executable's folder when it holds the data and
// may be written (a portable install, or the build tree); else $XDG_DATA_HOME/tessaly, seeded
// from the installed data on first use.
QString appFolder();

// The executable's base name ("tessaly"), which names the preferences and legacy settings files.
QString exeBaseName();

// The folder of the installed data (the executable's folder in the build tree, or
// <prefix>/share/tessaly), or "" when none is found.
QString installedDataFolder();

// Copies every file of `from` into `to` that `to` does not have yet. Returns false on a failure.
bool seedFolder(const QString& from, const QString& to);

// Turns either separator into "/".
QString toSlashes(const QString& path);

// Joins two path pieces with exactly one "/" between them.
QString joinPath(const QString& a, const QString& b);

// Adds a trailing "/" unless there is one.
QString withTrailingSlash(const QString& path);

// A folder value read from the preferences: either separator is accepted, and a value that
// begins with "\" is taken relative to the application folder. A value that begins with "/" is
// an absolute path, as everywhere on this system. The result ends with "/" when `folder` is set.
QString resolveAppPath(const QString& value, bool folder = true);

// The last piece of a path, after either separator.
QString fileNameOf(const QString& path);
