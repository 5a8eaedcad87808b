#pragma once

#include <QString>

// Moves a file or folder to the user's trash ($XDG_DATA_HOME/Trash, with the .trashinfo record
// that file managers read to restore it). Where no trash can be made the item is deleted for
// good. Returns whether the item is gone from its place.
bool moveToTrash(const QString& path);
