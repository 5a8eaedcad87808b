#pragma once

#include <QString>

// The command-string sound service: named sound objects (aliases) driven by text commands such
// as `open "a b.wav" type waveaudio alias csound` or `status csound mode`, answered with the
// classic MCI numbers (0 for success) and texts. Every call comes from the user-interface
// thread and returns at once; play and record run in the audio backend's own thread.

// Runs one command. A query's reply goes to `answer` (when given); other commands leave it
// empty. Paths may be quoted; blanks elsewhere separate words.
long mciSendString(const QString& command, QString* answer = nullptr);

// The text for a result of mciSendString; empty for a number the service does not know.
QString mciGetErrorString(long code);

// The number of sound output devices: 0 when no device can be used.
int waveOutGetNumDevs();

// The service's own result numbers, as the classic interface numbered them.
namespace Mci {
inline constexpr long NoError = 0;
inline constexpr long InvalidDeviceId = 257;
inline constexpr long UnrecognizedKeyword = 259;
inline constexpr long UnrecognizedCommand = 261;
inline constexpr long Hardware = 262;
inline constexpr long InvalidDeviceName = 263;
inline constexpr long OutOfMemory = 264;
inline constexpr long DeviceOpen = 265;
inline constexpr long CannotLoadDriver = 266;
inline constexpr long MissingCommandString = 267;
inline constexpr long ParamOverflow = 268;
inline constexpr long MissingStringArgument = 269;
inline constexpr long BadInteger = 270;
inline constexpr long MissingParameter = 273;
inline constexpr long UnsupportedFunction = 274;
inline constexpr long FileNotFound = 275;
inline constexpr long DeviceNotReady = 276;
inline constexpr long Internal = 277;
inline constexpr long CannotUseAll = 279;
inline constexpr long ExtensionNotFound = 281;
inline constexpr long OutOfRange = 282;
inline constexpr long FlagsNotCompatible = 284;
inline constexpr long FileNotSaved = 286;
inline constexpr long DeviceTypeRequired = 287;
inline constexpr long DuplicateAlias = 289;
inline constexpr long BadConstant = 290;
inline constexpr long MissingDeviceName = 292;
inline constexpr long BadTimeFormat = 293;
inline constexpr long NoClosingQuote = 294;
inline constexpr long DuplicateFlags = 295;
inline constexpr long InvalidFile = 296;
inline constexpr long NewRequiresAlias = 299;
inline constexpr long NoElementAllowed = 301;
inline constexpr long NonapplicableFunction = 302;
inline constexpr long FilenameRequired = 304;
inline constexpr long ExtraCharacters = 305;
inline constexpr long DeviceNotInstalled = 306;
inline constexpr long NoInteger = 312;
inline constexpr long WaveOutputsUnsuitable = 326;
inline constexpr long WaveInputsUnsuitable = 328;
inline constexpr long SeqNoMidiPresent = 343;
inline constexpr long FileRead = 348;
inline constexpr long FileWrite = 349;
} // namespace Mci
