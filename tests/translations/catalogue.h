// SPDX-License-Identifier: MIT
// Reads a translation source: what is to be translated, and what it became.
#pragma once

#include <QFile>
#include <QString>
#include <QVector>
#include <QXmlStreamReader>

namespace catalogue {

struct Message
{
    QString context;
    QString source;
    QString translation;
    QString state; ///< empty when the translation is finished and its source exists; else lupdate's word
};

/// @return the messages in file order; none when the file cannot be read or is no translation source
inline QVector<Message> read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QVector<Message> messages;
    Message message;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            message.context = xml.readElementText();
        else if (xml.name() == QLatin1String("source"))
            message.source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation")) {
            message.state = xml.attributes().value("type").toString();
            message.translation = xml.readElementText();
            messages.append(message);
        }
    }
    return xml.hasError() ? QVector<Message>() : messages;
}

} // namespace catalogue
