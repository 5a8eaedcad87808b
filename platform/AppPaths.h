#pragma once

#include <QString>

// The application folder and the path conventions of the program.
//
// The application folder holds the user's data: the preferences, Messages/, Work/. It is
// $TESSALY_HOME when set; else the executable's folder when a portable marker
// (<exe base name>.portable, e.g. "tessaly.portable") stands beside the executable; else
// $XDG_DATA_HOME/tessaly (~/.local/share/tessaly), made when missing. It is never the build tree
// by itself, so removing a build loses no message.
QString appFolder();
// The same rule for an executable in `executableFolder`.
QString appFolderFor(const QString& executableFolder);

// The executable's base name ("tessaly"), which names the preferences and legacy settings files.
QString exeBaseName();

// The name of the marker file that makes the executable's folder a portable application folder.
QString portableMarkerName();

// The read-only data that comes with the program (default preferences, language files, skins,
// resources, Archive/): <exe>/../share/tessaly when it holds the default preferences (an
// installed program, and the build tree, which lays its copy of data/ out the same way); else
// the executable's folder of a portable install; else "".
QString installedDataFolder();
QString installedDataFolderFor(const QString& executableFolder);

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

// A value naming read-only data ("\language\tessaly\", "\skin\default\main.bmp"): as
// resolveAppPath, except that a value beginning with "\" resolves under the application folder
// only when the file or folder exists there, and under installedDataFolder() otherwise (under
// the application folder again when there is no installed data).
QString resolveDataPath(const QString& value, bool folder = true);

// The last piece of a path, after either separator.
QString fileNameOf(const QString& path);
