#pragma once

#include <QString>

// Moves a file or folder to the desktop's trash. Where there is no trash the item is deleted
// for good. Returns whether the item is gone from its place.
bool moveToTrash(const QString& path);
