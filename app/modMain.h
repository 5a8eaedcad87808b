#pragma once

#include <QString>

class Failure;
class clsPropertiesXML;

// Start-up and the end of the program.

// The whole program: makes the application, runs the start-up steps and the event loop.
int Main(int argc, char** argv);

// The first-run language choice: on a store whose `Initialized` is "" or "0", writes the
// system's language (or its base language, or "en-us") to `Language` and marks the store.
void chooseFirstRunLanguage();

// Adds every section and key of the installed default preferences that `properties` lacks
// (never changing a value it has) and saves the file when it added any, so that a fresh, older
// or reset preferences file comes up complete. Returns the number of keys added, or -1 when no
// installed defaults can be read.
int completePreferences(clsPropertiesXML& properties);

// Imports the settings file an older installation left beside the program, if there is one.
void importLegacySettings();

// Shows the box of a failure that reached start-up or an event handler. `step` names the stage.
void reportFailure(const Failure& failure, const QString& step);

// The stage label of start-up, for the failure report.
QString currentStep();

// True when the machine has a sound output device; the main window offers sound only then.
bool hasWaveOutDevice();

// The main window's unload: stops the preview sound, saves and drops the shared preferences
// store, closes the player aliases and drops the sound layer. The localiser stays until Main
// ends.
void releaseSharedObjects();
