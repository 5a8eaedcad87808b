#pragma once

#include <QString>
#include <cstdint>

class QWidget;

// Process-wide values that start-up sets once and every window reads.
inline QWidget* gMainWindow = nullptr;
inline QString gCommandLine; // begins with one blank, or is empty
inline std::int32_t gUserLCID = 0x0409;
inline QString gDecimalSeparator = QStringLiteral(".");
inline QString gUntitledName = QStringLiteral("Untitled");
inline bool gSplashActive = false;
inline bool gStarting = false;

// The application title, also the title a second instance looks for.
inline const QString kAppTitle = QStringLiteral("Tessaly");
