#pragma once

#include "document/clsMessage.h"
#include "support/TestHome.h"

#include <QByteArray>
#include <QString>
#include <memory>

// Opens <home>/Messages/<name> as a message.
inline std::unique_ptr<clsMessage> newMessage(const TestHome& home, const QString& name) {
    auto message = std::make_unique<clsMessage>();
    message->Initialize(home.file(QStringLiteral("Messages/")), QStringLiteral("message.xml"),
                        name);
    return message;
}

// Writes `xml` as <home>/Messages/<name>/message.xml and opens it as a message.
inline std::unique_ptr<clsMessage> messageFromXml(const TestHome& home, const QString& name,
                                                  const QByteArray& xml) {
    home.write(QStringLiteral("Messages/") + name + QStringLiteral("/message.xml"), xml);
    return newMessage(home, name);
}

// The serialised document without the declaration, for comparisons of the tree.
inline std::string body(const clsMessage& message) {
    std::string text = message.serialise();
    const auto end = text.find("?>");
    if (text.rfind("<?xml", 0) == 0 && end != std::string::npos)
        text.erase(0, end + 2);
    return text;
}

inline constexpr const char* kHead =
    "<ROOT><HEADER><CONTENT version=\"1.0\" type=\"Tessaly messages\"/></HEADER>";
