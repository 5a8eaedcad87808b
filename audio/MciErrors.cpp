// The texts of the service's result numbers.
#include "audio/modMCI.h"

#include <QHash>

namespace {

const QHash<long, const char*>& errorTexts() {
    static const QHash<long, const char*> texts{
        {Mci::NoError, "The specified command was carried out."},
        {Mci::InvalidDeviceId,
         "Invalid MCI device ID. Use the ID returned when opening the MCI device."},
        {Mci::UnrecognizedKeyword, "The driver cannot recognize the specified command parameter."},
        {Mci::UnrecognizedCommand, "The driver cannot recognize the specified command."},
        {Mci::Hardware, "There is a problem with your media device. Make sure it is working "
                        "correctly or contact the device manufacturer."},
        {Mci::InvalidDeviceName, "The specified device is not open or is not recognized by MCI."},
        {Mci::OutOfMemory, "Not enough memory available for this task. Quit one or more "
                           "applications to increase available memory, and then try again."},
        {Mci::DeviceOpen, "The device name is already being used as an alias by this "
                          "application. Use a unique alias."},
        {Mci::CannotLoadDriver, "There is an undetectable problem in loading the specified "
                                "device driver."},
        {Mci::MissingCommandString, "No command was specified."},
        {Mci::ParamOverflow, "The output string was too large to fit in the return buffer. "
                             "Increase the size of the buffer."},
        {Mci::MissingStringArgument, "The specified command requires a character-string "
                                     "parameter. Please provide one."},
        {Mci::BadInteger, "The specified integer is invalid for this command."},
        {Mci::MissingParameter, "The specified command requires a parameter. Please supply one."},
        {Mci::UnsupportedFunction,
         "The MCI device you are using does not support the specified command."},
        {Mci::FileNotFound,
         "Cannot find the specified file. Make sure the path and filename are correct."},
        {Mci::DeviceNotReady, "The device driver is not ready."},
        {Mci::Internal, "A problem occurred in initializing MCI."},
        {Mci::CannotUseAll, "Cannot use 'all' as the device name with the specified command."},
        {Mci::ExtensionNotFound, "Cannot determine the device type from the given filename "
                                 "extension."},
        {Mci::OutOfRange, "The specified parameter is out of range for the specified command."},
        {Mci::FlagsNotCompatible, "The specified parameters cannot be used together."},
        {Mci::FileNotSaved, "Cannot save the specified file. Make sure you have enough disk "
                            "space or are still connected to the network."},
        {Mci::DeviceTypeRequired, "Cannot find the specified device. Make sure it is installed "
                                  "or that the device name is spelled correctly."},
        {Mci::DuplicateAlias,
         "The specified alias is already being used in this application. Use a unique alias."},
        {Mci::BadConstant, "The specified parameter is invalid for this command."},
        {Mci::MissingDeviceName, "The specified command requires an alias, file, driver, or "
                                 "device name. Please supply one."},
        {Mci::BadTimeFormat, "The specified value for the time format is invalid."},
        {Mci::NoClosingQuote, "A closing double-quotation mark is missing from the parameter "
                              "value. Please supply one."},
        {Mci::DuplicateFlags, "A parameter or value was specified twice. Only specify it once."},
        {Mci::InvalidFile, "The specified file cannot be played on the specified MCI device. "
                           "The file may be corrupt, or not in the correct format."},
        {Mci::NewRequiresAlias, "An alias must be used with the 'new' device name."},
        {Mci::NoElementAllowed, "The specified device does not use a filename."},
        {Mci::NonapplicableFunction, "The specified MCI command sequence cannot be performed in "
                                     "the given order. Correct the command sequence; then, try "
                                     "again."},
        {Mci::FilenameRequired, "A valid filename must be supplied."},
        {Mci::ExtraCharacters,
         "Cannot specify extra characters after a string enclosed in quotation marks."},
        {Mci::DeviceNotInstalled, "The specified device is not installed on the system."},
        {Mci::NoInteger,
         "The specified command requires an integer parameter. Please provide one."},
        {Mci::WaveOutputsUnsuitable,
         "No wave device that can play files in the current format is installed."},
        {Mci::WaveInputsUnsuitable,
         "No wave device that can record files in the current format is installed."},
        {Mci::SeqNoMidiPresent, "No MIDI hardware available or no drivers installed."},
        {Mci::FileRead, "A problem occurred in reading the specified file. Make sure the file "
                        "is still present, or check your disk or network connection."},
        {Mci::FileWrite, "A problem occurred in writing to the specified file. Make sure you "
                         "have enough disk space or are still connected to the network."},
    };
    return texts;
}

} // namespace

QString mciGetErrorString(long code) {
    const char* text = errorTexts().value(code, nullptr);
    return text ? QString::fromLatin1(text) : QString();
}
