#pragma once

#include <QString>
#include <exception>
#include <string>

// A raised run-time failure: a number, the source that raised it and a description. Operations
// that trap failures catch it and answer false, null or a status; what nobody traps reaches the
// handler of Main or the application's event filter.
class Failure : public std::exception {
public:
    Failure(int number, QString source, QString description);

    int number() const noexcept { return mNumber; }
    const QString& source() const noexcept { return mSource; }
    const QString& description() const noexcept { return mDescription; }
    const char* what() const noexcept override { return mWhat.c_str(); }

private:
    int mNumber;
    QString mSource;
    QString mDescription;
    std::string mWhat;
};

// Failure numbers of the platform that the program relies on.
namespace FailureNumber {
inline constexpr int InvalidProcedureCall = 5;
inline constexpr int Overflow = 6;
inline constexpr int OutOfMemory = 7;
inline constexpr int SubscriptOutOfRange = 9;
inline constexpr int DivisionByZero = 11;
inline constexpr int TypeMismatch = 13;
inline constexpr int FileNotFound = 53;
inline constexpr int FileAlreadyExists = 58;
inline constexpr int DiskFull = 61;
inline constexpr int PermissionDenied = 70;
inline constexpr int PathFileAccess = 75;
inline constexpr int PathNotFound = 76;
inline constexpr int ObjectNotSet = 91;
inline constexpr int InvalidPropertyValue = 380;
inline constexpr int DuplicateKey = 457;
inline constexpr int InvalidPicture = 481;
inline constexpr int PrinterError = 482;
inline constexpr int XmlLayer = -2147467259; // the XML layer's generic failure
} // namespace FailureNumber

// The platform's own description of a failure number; empty for numbers it does not know (the
// program's own failures carry their description with them).
QString standardDescription(int number);

// Raises a failure; an empty description takes the number's standard description.
[[noreturn]] void raiseFailure(int number, const QString& source, const QString& description = {});

// The missing-object failure, raised where the program reaches through a node that is absent.
[[noreturn]] void raiseObjectNotSet(const QString& source);
