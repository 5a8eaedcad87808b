#pragma once

#include <QString>

// How the program and its transport companions meet on the session bus: each companion owns
// the name org.tessaly.<Companion> and serves one object at "/" with this interface.
namespace Transport {
inline const QString kInterface = QStringLiteral("org.tessaly.Transport1");
inline const QString kPath = QStringLiteral("/");
inline QString busName(const QString& companion) {
    return QStringLiteral("org.tessaly.") + companion;
}
// Progress states that end a transfer.
inline constexpr int kProgressActive = 1;
inline constexpr int kProgressDone = 2;
inline constexpr int kProgressFailed = 4;
// The kind of link a companion reports with its devices; the phone lamp shows it.
inline constexpr int kLinkCommand = 1;
inline constexpr int kLinkBluetooth = 2;
inline constexpr int kLinkFolder = 3;
} // namespace Transport
