#ifndef VRNCONFIG_FRAMEDECODER_H
#define VRNCONFIG_FRAMEDECODER_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// One frame of the wire as a person and a program read it: addresses,
/// command name, and the payload's fields (label text, group index and
/// number, positions, speeds, the NACK status...). Any bytes at all are
/// accepted: a frame that is not valid, or a payload that does not have the
/// size its command gives, is shown as bytes.
struct DecodedFrame
{
    bool valid = false;
    /// "motor 0x000103", "tool 0xFE1234".
    QString source;
    /// "0x000103", "group 0x000123", "all".
    QString destination;
    /// "GET_NODE_LABEL", or "0x.." for a code the table does not know.
    QString command;
    /// The payload's fields for people: `label "Hall 2"`; empty when none.
    QString text;
    /// Every field of the frame for JSON.
    QJsonObject json;
};

DecodedFrame decodeFrame(const QByteArray& bytes);

/// `value` as 0x and `width` upper-case hexadecimal digits.
QString hexText(quint32 value, int width);
/// A node type of the wire protocol as a person names it ("motor").
QString nodeTypeName(int nodeType);

#endif // VRNCONFIG_FRAMEDECODER_H
