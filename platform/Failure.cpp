#include "platform/Failure.h"

Failure::Failure(int number, QString source, QString description)
    : mNumber(number), mSource(std::move(source)), mDescription(std::move(description)),
      mWhat((mSource + QStringLiteral(": ") + mDescription + QStringLiteral(" (") +
             QString::number(mNumber) + QLatin1Char(')'))
                .toStdString()) {}

void raiseObjectNotSet(const QString& source) {
    throw Failure(FailureNumber::ObjectNotSet, source,
                  QStringLiteral("Object variable or With block variable not set"));
}
