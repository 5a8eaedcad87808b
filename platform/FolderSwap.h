#pragma once

#include <QString>

// Putting a freshly written folder in the place of an old one without a moment at which a
// crash loses both.

// Trades the places of the two existing folders `a` and `b`: afterwards `a` holds what `b` held
// and `b` what `a` held. Where the file system can exchange two names in one step it does so,
// and neither name is ever missing. Elsewhere the old `b` first steps aside to `aside` (which
// must not exist), `a` takes its place and the old `b` then takes `a`'s: a crash between the
// first two renames leaves `b` missing, its new content at `a` and its old one at `aside`.
// True once `b` holds what `a` held; the old `b` is then at `a`, or, if its last move failed,
// still at `aside`. False, with the reason in `error` and the names put back as they were,
// when `b` could not be given the new folder.
bool swapFolders(const QString& a, const QString& b, const QString& aside, QString* error);

// The same trade by three renames, without asking for the one-step exchange.
bool swapFoldersByRenames(const QString& a, const QString& b, const QString& aside, QString* error);

// Whether both paths lead to the same existing folder or file (same device and inode). `b`
// itself is not followed when it is a symbolic link, so a link is never the folder it names.
bool sameFileSystemEntry(const QString& a, const QString& b);
