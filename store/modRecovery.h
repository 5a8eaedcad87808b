#pragma once

#include <QString>
#include <memory>

class clsMessage;
class clsMMSManager;

// The recovery copy: the current message as it stood when the program last wrote it, kept in
// the folder "Recovery" of the application folder while the message has unsaved changes. A
// start that finds one offers to restore it. There is one copy at a time.

// The folder of the recovery copy (<application folder>/Recovery).
QString recoveryFolder();

// Writes `message` (its document and its slides' pictures) as the recovery copy, replacing the
// previous one only once the new one is complete. False when it could not be written; the
// previous copy then stays.
bool writeRecoveryCopy(const clsMessage& message);

// Whether a recovery copy waits.
bool hasRecoveryCopy();

// The name of the message the recovery copy holds; "" without a copy.
QString recoveryCopyName();

// The recovery copy as a message of `store` under its own name, with its slides and pictures,
// not yet saved; null when there is no copy or it cannot be read.
std::shared_ptr<clsMessage> restoreRecoveryCopy(clsMMSManager& store);

// Removes the recovery copy.
void removeRecoveryCopy();
