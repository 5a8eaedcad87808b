#include "platform/Failure.h"

namespace {

struct StandardFailure {
    int number;
    const char* description;
};

// The one table of the platform's failure numbers and their standard descriptions.
constexpr StandardFailure kStandardFailures[] = {
    {FailureNumber::InvalidProcedureCall, "Invalid procedure call or argument"},
    {FailureNumber::Overflow, "Overflow"},
    {FailureNumber::OutOfMemory, "Out of memory"},
    {FailureNumber::SubscriptOutOfRange, "Subscript out of range"},
    {FailureNumber::DivisionByZero, "Division by zero"},
    {FailureNumber::TypeMismatch, "Type mismatch"},
    {FailureNumber::FileNotFound, "File not found"},
    {FailureNumber::FileAlreadyExists, "File already exists"},
    {FailureNumber::DiskFull, "Disk full"},
    {FailureNumber::PermissionDenied, "Permission denied"},
    {FailureNumber::PathFileAccess, "Path/File access error"},
    {FailureNumber::PathNotFound, "Path not found"},
    {FailureNumber::ObjectNotSet, "Object variable or With block variable not set"},
    {FailureNumber::InvalidPropertyValue, "Invalid property value"},
    {FailureNumber::DuplicateKey,
     "This key is already associated with an element of this collection"},
    {FailureNumber::InvalidPicture, "Invalid picture"},
    {FailureNumber::PrinterError, "Printer error"},
};

} // namespace

Failure::Failure(int number, QString source, QString description)
    : mNumber(number), mSource(std::move(source)), mDescription(std::move(description)),
      mWhat((mSource + QStringLiteral(": ") + mDescription + QStringLiteral(" (") +
             QString::number(mNumber) + QLatin1Char(')'))
                .toStdString()) {}

QString standardDescription(int number) {
    for (const StandardFailure& entry : kStandardFailures)
        if (entry.number == number)
            return QString::fromLatin1(entry.description);
    return {};
}

void raiseFailure(int number, const QString& source, const QString& description) {
    throw Failure(number, source,
                  description.isEmpty() ? standardDescription(number) : description);
}

void raiseObjectNotSet(const QString& source) {
    raiseFailure(FailureNumber::ObjectNotSet, source);
}
