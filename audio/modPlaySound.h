#pragma once

#include <QString>
#include <cstdint>

// Plays one sound file at a time for the main window under the alias `playsound`, and tells
// what kind of sound a file is.

// Starts the file and gives its length in milliseconds; 0 when nothing was started (no ".",
// a missing file, a type that is no sound). A failed play shows the service's text in a box.
std::int32_t playFile(const QString& fileName);

// Stops the sound of playFile.
void stopPlaying();

// "TYPE;length;samplespersec;bitspersample", the type being the upper-cased extension: "WAV",
// "MID", ... with "-1" for what cannot be told; the bare type when the file cannot be opened;
// "---;-1;-1;-1" for a name without ".".
QString getSoundInfo(const QString& fileName);

// The position in milliseconds while playing; 0 when stopped or on failure.
std::int32_t getPlayPosition();
