#pragma once

#include <QString>

// Whether the user's trash ($XDG_DATA_HOME/Trash) can be used: its folders exist or can be made.
// It takes items from every file system (those of another are copied in). Where it cannot be
// used, a caller that still wants an item gone asks before it calls deleteForGood.
bool trashAvailable();

// Moves a file or folder to the user's trash, with the .trashinfo record that file managers read
// to restore it. Never deletes for good: false when the item is still in its place, because it
// does not exist, no trash can take it, or the move failed.
bool moveToTrash(const QString& path);

// Removes a file or folder (with everything below it) for good; whether it is gone.
bool deleteForGood(const QString& path);
